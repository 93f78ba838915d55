// Ending in order after Ctrl-C.
#ifndef VELAN_TOOLS_INTERRUPTION_H
#define VELAN_TOOLS_INTERRUPTION_H

namespace velan::tool {

/// While it lives SIGINT, SIGTERM and SIGHUP do not end the process at once: what is under way ends by itself, or asks
/// and gives up, and cleans up behind itself. The signal then has its way when this goes. A second one has it at once.
class Interruption {
 public:
  Interruption();
  ~Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;

  static bool requested();
};

}  // namespace velan::tool

#endif  // VELAN_TOOLS_INTERRUPTION_H
