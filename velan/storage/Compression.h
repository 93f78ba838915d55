// Deflate and gzip over byte buffers, through zlib and libraries that are faster at some of it.
#ifndef VELAN_STORAGE_COMPRESSION_H
#define VELAN_STORAGE_COMPRESSION_H

#include "velan/base/Data.h"
#include "velan/base/MutableData.h"

namespace velan {

// Compressing. Absent for null bytes, a length of 0 or above 4,294,967,295, and when memory runs out. Level -1 is
// zlib's default; below 1 counts as 1, above 9 as 9. Level 1 is ISA-L's where the build has it: several times as fast
// for about the same size. May be called from any thread.

/// `dataByCompressingBytes:length:compressionLevel:useGzip`: with the gzip wrapper (RFC 1952) or the zlib wrapper (RFC
/// 1950: two bytes of header, an Adler-32 at the end).
VELAN_EXPORT Data dataByCompressingBytes(const void* bytes, size_t length, int compressionLevel, bool useGzip);

/// `dataByGzippingBytes:length`: gzip, default level.
VELAN_EXPORT Data dataByGzippingBytes(const void* bytes, size_t length);
/// `dataByGzippingBytes:length:compressionLevel`: gzip.
VELAN_EXPORT Data dataByGzippingBytes(const void* bytes, size_t length, int compressionLevel);
/// `dataByGzippingData`: gzip, default level.
VELAN_EXPORT Data dataByGzippingData(const Data& data);
/// `dataByGzippingData:compressionLevel`: gzip.
VELAN_EXPORT Data dataByGzippingData(const Data& data, int compressionLevel);

/// `dataByDeflatingBytes:length`: zlib wrapper, default level.
VELAN_EXPORT Data dataByDeflatingBytes(const void* bytes, size_t length);
/// `dataByDeflatingBytes:length:compressionLevel`: zlib wrapper.
VELAN_EXPORT Data dataByDeflatingBytes(const void* bytes, size_t length, int compressionLevel);
/// `dataByDeflatingData`: zlib wrapper, default level.
VELAN_EXPORT Data dataByDeflatingData(const Data& data);
/// `dataByDeflatingData:compressionLevel`: zlib wrapper.
VELAN_EXPORT Data dataByDeflatingData(const Data& data, int compressionLevel);

// Inflating. Either wrapper is recognised. Fails for null bytes, a length of 0 or above 4,294,967,295, a damaged or
// unfinished stream, a preset dictionary, and when bytes follow the stream: a second gzip member too. A few bytes can
// inflate to a thousand times as many: give a `limit` where they come from strangers.

/// `dataByInflatingBytes:length`: the inflated bytes, or absent.
VELAN_EXPORT Data dataByInflatingBytes(const void* bytes, size_t length);
/// `dataByInflatingBytes:length`: absent also when more than `limit` bytes would come out.
VELAN_EXPORT Data dataByInflatingBytes(const void* bytes, size_t length, size_t limit);
/// `dataByInflatingData`: the inflated bytes, or absent.
VELAN_EXPORT Data dataByInflatingData(const Data& data);
/// `dataByInflatingData`: absent also when more than `limit` bytes would come out.
VELAN_EXPORT Data dataByInflatingData(const Data& data, size_t limit);

/// `setDataByInflating`: replaces the contents of `receiver` by what they inflate to.
VELAN_EXPORT bool setDataByInflating(MutableData& receiver);
/// `setDataByInflatingBytes:length`: replaces the contents of `receiver`. When the stream turns out to be bad the
/// receiver holds the output so far; bytes that are refused at once leave it alone. `bytes` may lie in the receiver.
VELAN_EXPORT bool setDataByInflatingBytes(MutableData& receiver, const void* bytes, size_t length);
/// `setDataByInflatingBytes:length`: fails also when more than `limit` bytes would come out; it holds at most so many.
VELAN_EXPORT bool setDataByInflatingBytes(MutableData& receiver, const void* bytes, size_t length, size_t limit);

}  // namespace velan

#endif  // VELAN_STORAGE_COMPRESSION_H
