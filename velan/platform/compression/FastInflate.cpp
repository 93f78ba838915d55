// Inflating through libdeflate.
#include <libdeflate.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

#include "velan/base/ByteOrder.h"
#include "velan/platform/ServicesInternal.h"
#include "velan/platform/compression/FastDeflateInternal.h"

namespace velan {
namespace {

constexpr size_t kLikelyRatio = 4;
constexpr size_t kMostRatio = 1032;  // no deflate stream inflates to more
constexpr size_t kShortestGzip = 18;
constexpr uint8_t kHeaderChecksum = 2;
constexpr uint8_t kWholeWindow = 0x78;

bool isGzip(std::span<const uint8_t> stream) {
  return stream.size() >= kShortestGzip && stream[0] == 0x1F && stream[1] == 0x8B;
}

// It looks neither at the checksum of a gzip header nor at the size of the window in a zlib one.
bool isLookedAtInFull(std::span<const uint8_t> stream) {
  return isGzip(stream) ? !(stream[3] & kHeaderChecksum) : !stream.empty() && stream[0] == kWholeWindow;
}

// What a gzip stream says at its end of the length of its contents, modulo 2^32; a guess elsewhere. At least 1.
size_t likelyLength(std::span<const uint8_t> stream) {
  if (!isGzip(stream)) return stream.size() * kLikelyRatio;
  const uint8_t* const end = stream.data() + stream.size();
  return std::max<size_t>(loadLittleEndian<uint32_t>(end - sizeof(uint32_t)), 1);
}

libdeflate_result inflateOnce(libdeflate_decompressor* decompressor, std::span<const uint8_t> stream, uint8_t* output,
                              size_t room, size_t& length) {
  size_t read = 0;
  const auto inflate = isGzip(stream) ? libdeflate_gzip_decompress_ex : libdeflate_zlib_decompress_ex;
  const libdeflate_result result = inflate(decompressor, stream.data(), stream.size(), output, room, &read, &length);
  return result == LIBDEFLATE_SUCCESS && read != stream.size() ? LIBDEFLATE_BAD_DATA : result;
}

}  // namespace

Data fastInflated(std::span<const uint8_t> stream, size_t limit) {
  if (limit == 0 || !isLookedAtInFull(stream)) return Data();
  const std::unique_ptr<libdeflate_decompressor, decltype(&libdeflate_free_decompressor)> decompressor(
      libdeflate_alloc_decompressor(), libdeflate_free_decompressor);
  if (!decompressor) return Data();
  const size_t most = std::min(limit, stream.size() * kMostRatio);
  for (size_t room = std::min(likelyLength(stream), most);; room = std::min(room * kLikelyRatio, most)) {
    auto* const output = static_cast<uint8_t*>(std::malloc(room));
    if (!output) return Data();
    size_t length = 0;
    const libdeflate_result result = inflateOnce(decompressor.get(), stream, output, room, length);
    if (result == LIBDEFLATE_SUCCESS && length > 0) {
      void* const fitting = std::realloc(output, length);
      return Data::withBytesNoCopy(fitting ? fitting : output, length, true);
    }
    std::free(output);
    if (result != LIBDEFLATE_INSUFFICIENT_SPACE || room == most) return Data();
  }
}

Service fastInflateService() { return {"libdeflate", LIBDEFLATE_VERSION_STRING, "fast expansion"}; }

}  // namespace velan
