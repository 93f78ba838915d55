#include "tools/Interruption.h"

#include <csignal>

namespace velan::tool {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

volatile std::sig_atomic_t received = 0;

// The next one ends the process.
void receive(int number) {
  received = number;
  std::signal(number, SIG_DFL);
}

}  // namespace

// What was to be ignored, as by `nohup`, still is.
Interruption::Interruption() {
  for (const int number : kSignals) {
    if (std::signal(number, receive) == SIG_IGN) std::signal(number, SIG_IGN);
  }
}

Interruption::~Interruption() {
  for (const int number : kSignals) {
    if (std::signal(number, SIG_DFL) == SIG_IGN) std::signal(number, SIG_IGN);
  }
  if (received != 0) std::raise(received);
}

bool Interruption::requested() { return received != 0; }

}  // namespace velan::tool
