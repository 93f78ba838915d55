#include "velan/storage/Compression.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <utility>

#include "velan/platform/compression/FastDeflateInternal.h"
#include "velan/storage/CompressionInternal.h"

namespace velan {
namespace {

constexpr size_t kChunk = 16384;
constexpr int kZlibWindow = 15;
constexpr int kGzipWindow = 31;
constexpr int kEitherWindow = 47;
constexpr int kMemoryLevel = 8;
constexpr int kDefaultLevel = -1;
constexpr int kFastLevel = 1;

int clampedLevel(int level) { return level == kDefaultLevel ? level : std::clamp(level, 1, 9); }

void setInput(z_stream& stream, const void* bytes, size_t length) {
  stream.next_in = static_cast<Bytef*>(const_cast<void*>(bytes));
  stream.avail_in = static_cast<uInt>(length);
}

// Runs `step` on chunks of output until the end of the stream. `Z_OK` when `sink` has enough.
template <typename Step>
int runStream(z_stream& stream, Step step, FunctionRef<bool(std::span<const uint8_t>)> sink) {
  Bytef chunk[kChunk];
  int status = Z_OK;
  try {
    while (status == Z_OK) {
      stream.next_out = chunk;
      stream.avail_out = kChunk;
      status = step(&stream);
      const size_t count = kChunk - stream.avail_out;
      if (count > 0 && !sink({chunk, count})) return Z_OK;
    }
  } catch (const std::bad_alloc&) {
    return Z_MEM_ERROR;
  }
  return status;
}

Inflation inflateTo(MutableData& output, const void* bytes, size_t length, size_t limit) {
  return inflateInParts(bytes, length, [&output, limit](std::span<const uint8_t> part) {
    const size_t room = std::min(part.size(), limit - output.length());
    output.appendBytes(part.data(), room);
    return room == part.size();
  });
}

std::span<const uint8_t> spanOf(const void* bytes, size_t length) {
  return {static_cast<const uint8_t*>(bytes), length};
}

bool replaceBy(MutableData& receiver, const Data& data) {
  try {
    receiver = MutableData(data);
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

// Absent when memory runs out.
Data taken(MutableData& output) {
  try {
    return output.takeData();
  } catch (const std::bad_alloc&) {
    return Data();
  }
}

}  // namespace

bool fitsZlib(const void* bytes, size_t length) { return bytes && length >= 1 && length <= UINT32_MAX; }

Inflation inflateInParts(const void* bytes, size_t length, FunctionRef<bool(std::span<const uint8_t>)> sink) {
  z_stream stream{};
  setInput(stream, bytes, length);
  if (!fitsZlib(bytes, length)) return Inflation::Damaged;
  if (inflateInit2(&stream, kEitherWindow) != Z_OK) return Inflation::NoMemory;
  const int status = runStream(
      stream, [](z_stream* s) { return inflate(s, Z_NO_FLUSH); }, sink);
  inflateEnd(&stream);
  if (status == Z_OK) return Inflation::Stopped;
  if (status == Z_MEM_ERROR) return Inflation::NoMemory;
  return status == Z_STREAM_END && stream.avail_in == 0 ? Inflation::Whole : Inflation::Damaged;
}

Inflation inflateInto(Data& result, const Data& data, size_t limit) {
  if (Data whole = fastInflated(data.span(), limit)) {
    result = std::move(whole);
    return Inflation::Whole;
  }
  MutableData output;
  const Inflation inflation = inflateTo(output, data.bytes(), data.length(), limit);
  if (inflation != Inflation::Whole) return inflation;
  Data whole = taken(output);
  if (!whole) return Inflation::NoMemory;
  result = std::move(whole);
  return Inflation::Whole;
}

Data dataByCompressingBytes(const void* bytes, size_t length, int compressionLevel, bool useGzip) {
  if (fitsZlib(bytes, length) && clampedLevel(compressionLevel) == kFastLevel) {
    if (Data compressed = fastDeflated(spanOf(bytes, length), useGzip)) return compressed;
  }
  z_stream stream{};
  setInput(stream, bytes, length);
  if (!fitsZlib(bytes, length) ||
      deflateInit2(&stream, clampedLevel(compressionLevel), Z_DEFLATED, useGzip ? kGzipWindow : kZlibWindow,
                   kMemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK) {
    return Data();
  }
  MutableData output;
  const int status = runStream(
      stream, [](z_stream* s) { return deflate(s, Z_FINISH); },
      [&output, length](std::span<const uint8_t> part) {
        if (output.isEmpty()) output.reserve(length / 4);
        output.appendBytes(part.data(), part.size());
        return true;
      });
  deflateEnd(&stream);
  return status == Z_STREAM_END ? taken(output) : Data();
}

Data dataByGzippingBytes(const void* bytes, size_t length) { return dataByGzippingBytes(bytes, length, kDefaultLevel); }

Data dataByGzippingBytes(const void* bytes, size_t length, int compressionLevel) {
  return dataByCompressingBytes(bytes, length, compressionLevel, true);
}

Data dataByGzippingData(const Data& data) { return dataByGzippingBytes(data.bytes(), data.length()); }

Data dataByGzippingData(const Data& data, int compressionLevel) {
  return dataByGzippingBytes(data.bytes(), data.length(), compressionLevel);
}

Data dataByDeflatingBytes(const void* bytes, size_t length) {
  return dataByDeflatingBytes(bytes, length, kDefaultLevel);
}

Data dataByDeflatingBytes(const void* bytes, size_t length, int compressionLevel) {
  return dataByCompressingBytes(bytes, length, compressionLevel, false);
}

Data dataByDeflatingData(const Data& data) { return dataByDeflatingBytes(data.bytes(), data.length()); }

Data dataByDeflatingData(const Data& data, int compressionLevel) {
  return dataByDeflatingBytes(data.bytes(), data.length(), compressionLevel);
}

Data dataByInflatingBytes(const void* bytes, size_t length) { return dataByInflatingBytes(bytes, length, SIZE_MAX); }

Data dataByInflatingBytes(const void* bytes, size_t length, size_t limit) {
  if (!fitsZlib(bytes, length)) return Data();
  if (Data whole = fastInflated(spanOf(bytes, length), limit)) return whole;
  MutableData output;
  return inflateTo(output, bytes, length, limit) == Inflation::Whole ? taken(output) : Data();
}

Data dataByInflatingData(const Data& data) { return dataByInflatingData(data, SIZE_MAX); }

Data dataByInflatingData(const Data& data, size_t limit) {
  return dataByInflatingBytes(data.bytes(), data.length(), limit);
}

bool setDataByInflating(MutableData& receiver) {
  return setDataByInflatingBytes(receiver, receiver.bytes(), receiver.length());
}

bool setDataByInflatingBytes(MutableData& receiver, const void* bytes, size_t length) {
  return setDataByInflatingBytes(receiver, bytes, length, SIZE_MAX);
}

bool setDataByInflatingBytes(MutableData& receiver, const void* bytes, size_t length, size_t limit) {
  if (!fitsZlib(bytes, length)) return false;
  if (const Data whole = fastInflated(spanOf(bytes, length), limit)) return replaceBy(receiver, whole);
  MutableData output;
  const Inflation inflation = inflateTo(output, bytes, length, limit);
  receiver = std::move(output);
  return inflation == Inflation::Whole;
}

}  // namespace velan
