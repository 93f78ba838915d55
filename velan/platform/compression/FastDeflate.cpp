// Deflating through ISA-L.
#include <isa-l.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <string>

#include "velan/platform/ServicesInternal.h"
#include "velan/platform/compression/FastDeflateInternal.h"

namespace velan {
namespace {

constexpr int kLevel = 1;
constexpr size_t kMostBytes = 1 << 30;  // its lengths are 32 bits wide, and the output can be longer than the input

// Too large for small stacks.
struct Workspace {
  isal_zstream stream;
  uint8_t tables[ISAL_DEF_LVL1_DEFAULT];
};

// Bytes that do not compress are stored in parts of at most 65,535 with five more; wrappers take at most 18.
size_t longestOutput(size_t length) { return length + length / 4096 + 512; }

}  // namespace

Data fastDeflated(std::span<const uint8_t> bytes, bool useGzip) {
  if (bytes.empty() || bytes.size() > kMostBytes) return Data();
  const std::unique_ptr<Workspace> workspace(new (std::nothrow) Workspace);
  const size_t room = longestOutput(bytes.size());
  auto* const output = workspace ? static_cast<uint8_t*>(std::malloc(room)) : nullptr;
  if (!output) return Data();
  isal_zstream& stream = workspace->stream;
  isal_deflate_init(&stream);
  stream.level = kLevel;
  stream.level_buf = workspace->tables;
  stream.level_buf_size = sizeof workspace->tables;
  stream.gzip_flag = useGzip ? IGZIP_GZIP : IGZIP_ZLIB;
  stream.end_of_stream = 1;
  stream.flush = NO_FLUSH;
  stream.next_in = const_cast<uint8_t*>(bytes.data());
  stream.avail_in = static_cast<uint32_t>(bytes.size());
  stream.next_out = output;
  stream.avail_out = static_cast<uint32_t>(room);
  const bool isDone = isal_deflate(&stream) == COMP_OK && stream.internal_state.state == ZSTATE_END;
  const size_t length = stream.total_out;
  void* const fitting = isDone ? std::realloc(output, length) : nullptr;
  const Data result = Data::withBytesNoCopy(fitting ? fitting : output, length, true);
  return isDone ? result : Data();
}

Service fastDeflateService() {
  return {"ISA-L", std::to_string(ISAL_MAJOR_VERSION) + "." + std::to_string(ISAL_MINOR_VERSION), "fast compression"};
}

}  // namespace velan
