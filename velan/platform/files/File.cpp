#include "velan/platform/files/File.h"

#include <fcntl.h>
#include <sys/file.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <new>
#include <utility>

#include "velan/base/Log.h"
#include "velan/platform/files/FileCallsInternal.h"
#include "velan/platform/files/FileErrorInternal.h"
#include "velan/platform/files/FileLockInternal.h"
#include "velan/platform/files/RetryInternal.h"

namespace velan {
namespace {

constexpr size_t kSmallestBuffer = 2 * File::kBufferSize;  // a header and what is read ahead, or what is kept back
constexpr size_t kLargestBuffer = 65536;
constexpr size_t kLongPiece = 16384;
constexpr size_t kZeroChunk = 2048;
constexpr uint8_t kZeros[kZeroChunk] = {};

iovec pieceOf(const uint8_t* bytes, size_t length) { return {const_cast<uint8_t*>(bytes), length}; }

// The pieces of one write followed by zero bytes, of which `next` describes as much as one call takes.
class Gather {
 public:
  Gather(File::Pieces pieces, uint64_t zeros) : _piece(pieces.begin()), _end(pieces.end()), _zeros(zeros) {}

  // Fills `_vectors`; 0 when everything has been written.
  int next() {
    _count = 0;
    size_t skip = _used;
    for (const auto* piece = _piece; piece != _end; ++piece, skip = 0) {
      if (piece->size() > skip) _vectors[_count++] = pieceOf(piece->data() + skip, piece->size() - skip);
    }
    for (uint64_t left = _zeros; left > 0 && _count < _vectors.size();) {
      const size_t chunk = static_cast<size_t>(std::min<uint64_t>(left, kZeroChunk));
      _vectors[_count++] = pieceOf(kZeros, chunk);
      left -= chunk;
    }
    return static_cast<int>(_count);
  }

  const iovec* vectors() const { return _vectors.data(); }

  void wrote(size_t count) {
    while (_piece != _end && count >= _piece->size() - _used) {
      count -= _piece->size() - _used;
      ++_piece;
      _used = 0;
    }
    if (_piece != _end) {
      _used += count;
    } else {
      _zeros -= count;
    }
  }

 private:
  const std::span<const uint8_t>* _piece;
  const std::span<const uint8_t>* _end;
  uint64_t _zeros;
  size_t _used = 0;  // bytes of the first piece that are written already
  size_t _count = 0;
  std::array<iovec, 16> _vectors;
};

uint64_t totalOf(File::Pieces pieces, uint64_t zeros) {
  uint64_t total = zeros;
  for (const auto& piece : pieces) total += piece.size();
  return total;
}

}  // namespace

File::File(int descriptor, FileAccess access, int64_t length, FileCalls& calls)
    : _calls(&calls),
      _descriptor(descriptor),
      _access(access),
      _size(length),
      _room(kSmallestBuffer),
      _buffer(new uint8_t[kSmallestBuffer]) {
  if (access == FileAccess::Appending) _position = length;
}

// A failure that the system explained.
bool File::failed() {
  _error = lastSystemError();
  return false;
}

File::~File() { close(); }

// A failure that the system had no part in.
bool File::refused(const FileError& error) {
  _error = error;
  return false;
}

bool File::lock(bool exclusive) {
  if (retried([&] { return _calls->lock(_descriptor, (exclusive ? LOCK_EX : LOCK_SH) | LOCK_NB); }) == 0) return true;
  failed();
  if (_error.reason() == FileReason::Locked) _error = FileError::lockedBy(lockHolder(_descriptor));
  return false;
}

bool File::seek(int64_t offset) {
  if (offset < 0 || !flush()) return false;
  _position = offset;
  return true;
}

int64_t File::length() {
  struct stat status {};
  if (_calls->status(_descriptor, status) != 0) return failed() - 1;
  _size = status.st_size;
  return _pending ? std::max(_size, _position) : _size;
}

bool File::reaches(int64_t end) { return end <= _size || end <= length(); }

// Reads `count` bytes and, in the same call, up to `ahead` more into the buffer.
bool File::readInto(int64_t offset, uint8_t* bytes, size_t count, size_t ahead, int64_t& got) {
  size_t done = 0;
  while (done < count) {
    const iovec pieces[] = {{bytes + done, count - done}, {_buffer.get(), ahead}};
    const int64_t at = offset + static_cast<int64_t>(done);
    const ssize_t now = retried([&] { return _calls->read(_descriptor, pieces, ahead ? 2 : 1, at); });
    if (now < 0) return failed();
    if (now == 0) break;
    const size_t more = static_cast<size_t>(now);
    if (more > count - done) {
      _filled = more - (count - done);
      _start = offset + static_cast<int64_t>(count);
    }
    done += std::min(more, count - done);
  }
  got = static_cast<int64_t>(done);
  return true;
}

bool File::enlargeBuffer() {
  if (_room == kLargestBuffer) return true;
  std::unique_ptr<uint8_t[]> larger(new (std::nothrow) uint8_t[kLargestBuffer]);
  if (!larger) return false;
  std::memcpy(larger.get(), _buffer.get(), _filled);
  _buffer = std::move(larger);
  _room = kLargestBuffer;
  return true;
}

// How much to read behind `count` bytes at `offset`: the more the longer reading goes on, also over small gaps. Behind
// a long piece little, as that goes to its place at once, and what lies in the buffer is copied once more.
size_t File::toReadAhead(int64_t offset, size_t count) {
  const bool goesOn = offset >= _sequel && offset - _sequel <= static_cast<int64_t>(_ahead);
  _ahead = goesOn ? std::min(_ahead * 2, kLargestBuffer) : kBufferSize;
  if (count >= kLongPiece || (_ahead > _room && !enlargeBuffer())) return kBufferSize;
  return _ahead;
}

// Makes the buffer begin at `offset` and hold `count` bytes, as far as the file has them, and up to `ahead` more.
bool File::fillBuffer(int64_t offset, size_t count, size_t ahead) {
  size_t filled = bufferedAt(offset);
  if (filled > 0) std::memmove(_buffer.get(), _buffer.get() + (offset - _start), filled);
  _filled = 0;
  while (filled < count) {
    const iovec piece{_buffer.get() + filled, std::min(count + ahead, _room) - filled};
    const int64_t at = offset + static_cast<int64_t>(filled);
    const ssize_t now = retried([&] { return _calls->read(_descriptor, &piece, 1, at); });
    if (now < 0) return failed();
    if (now == 0) break;
    filled += static_cast<size_t>(now);
  }
  _start = offset;
  _filled = filled;
  return true;
}

int64_t File::readLong(int64_t offset, uint8_t* bytes, size_t count, size_t ahead) {
  const size_t buffered = bufferedAt(offset);
  if (buffered > 0) std::memcpy(bytes, _buffer.get() + (offset - _start), buffered);
  _filled = 0;
  int64_t got = 0;
  const int64_t from = offset + static_cast<int64_t>(buffered);
  if (!readInto(from, bytes + buffered, count - buffered, ahead, got)) return -1;
  _sequel = from + got + static_cast<int64_t>(_filled);
  return static_cast<int64_t>(buffered) + got;
}

// What is short goes through the buffer, where it can be looked at again; what is long goes to its place at once.
int64_t File::readOn(int64_t offset, void* bytes, size_t count) {
  if (!peekAt(offset, count)) {
    if (!flush()) return -1;
    const size_t ahead = toReadAhead(offset + static_cast<int64_t>(bufferedAt(offset)), count);
    if (count > ahead) return readLong(offset, static_cast<uint8_t*>(bytes), count, ahead);
    if (!fillBuffer(offset, count, ahead)) return -1;
    _sequel = _start + static_cast<int64_t>(_filled);
  }
  const size_t got = std::min(count, bufferedAt(offset));
  if (got > 0) std::memcpy(bytes, _buffer.get() + (offset - _start), got);
  return static_cast<int64_t>(got);
}

int64_t File::read(void* bytes, size_t count) {
  const int64_t got = readOn(_position, bytes, count);
  _position += std::max<int64_t>(got, 0);
  return got;
}

int64_t File::readAt(int64_t offset, void* bytes, size_t count) {
  int64_t got = 0;
  if (!flush()) return -1;
  return readInto(offset, static_cast<uint8_t*>(bytes), count, 0, got) ? got : -1;
}

bool File::putOut(int64_t offset, Pieces pieces, uint64_t zeros) {
  Gather gather(pieces, zeros);
  while (const int count = gather.next()) {
    const ssize_t now = retried([&] { return _calls->write(_descriptor, gather.vectors(), count, offset); });
    if (now == 0) errno = ENOSPC;
    if (now <= 0) return failed();
    offset += now;
    gather.wrote(static_cast<size_t>(now));
  }
  return true;
}

bool File::writeOut(int64_t offset, Pieces pieces, uint64_t zeros) {
  const uint64_t total = totalOf(pieces, zeros);
  if (_access == FileAccess::Reading) return refused({});
  if (total > static_cast<uint64_t>(INT64_MAX - offset)) return refused(FileReason::TooLarge);
  if (putOut(offset, pieces, zeros)) {
    _size = std::max(_size, offset + static_cast<int64_t>(total));
    return true;
  }
  struct stat status {};
  if (_calls->status(_descriptor, status) == 0 && status.st_size > _size) {
    retried([&] { return _calls->truncate(_descriptor, _size); });
  }
  return false;
}

bool File::flush() {
  if (!_pending) return true;
  _pending = false;
  const size_t count = _filled;
  _filled = 0;
  if (writeOut(_start, {{_buffer.get(), count}}, 0)) return true;
  logFormat("ERROR: %zu bytes at %lld are lost (%d)", count, static_cast<long long>(_start), _error.number());
  _position = _start;
  _lost = true;
  return false;
}

bool File::write(Pieces pieces, uint64_t zeros) {
  const uint64_t total = totalOf(pieces, zeros);
  if (_access == FileAccess::Reading) return refused({});
  if (_pending && total > _kept - _filled && !flush()) return false;
  if (!_pending) {
    _filled = 0;
    if (_access == FileAccess::Appending) _position = _size;
  }
  if (total > _kept) {
    if (!writeOut(_position, pieces, zeros)) return false;
  } else {
    if (!_pending) _start = _position;
    _pending = true;
    for (const auto& piece : pieces) {
      if (!piece.empty()) std::memcpy(_buffer.get() + _filled, piece.data(), piece.size());
      _filled += piece.size();
    }
    std::memset(_buffer.get() + _filled, 0, static_cast<size_t>(zeros));
    _filled += static_cast<size_t>(zeros);
  }
  _position += static_cast<int64_t>(total);
  return true;
}

bool File::overwrite(int64_t offset, Pieces pieces, uint64_t zeros) {
  if (_access != FileAccess::Updating || offset < 0) return refused({});
  if (!flush()) return false;
  dropReadAhead();
  return writeOut(offset, pieces, zeros);
}

bool File::truncate(int64_t offset) {
  if (_access == FileAccess::Reading || offset < 0) return refused({});
  if (!flush()) return false;
  dropReadAhead();
  if (retried([&] { return _calls->truncate(_descriptor, offset); }) != 0) return failed();
  _size = _position = offset;
  return true;
}

bool File::barrier() {
  if (_unreliable) return false;
  _unreliable = retried([&] { return _calls->synchronize(_descriptor); }) != 0;
  return !_unreliable || failed();
}

bool File::synchronize() {
  const bool written = flush() && !_lost;
  _lost = false;
  if (!written || !barrier()) return false;
#ifdef POSIX_FADV_DONTNEED
  // What is appended is seldom read soon; on the disk it need not stay in memory.
  if (_access == FileAccess::Appending) posix_fadvise(_descriptor, 0, 0, POSIX_FADV_DONTNEED);
#endif
  return true;
}

bool File::close() {
  if (_descriptor < 0) return true;
  const bool written = flush();
  _calls->lock(_descriptor, LOCK_UN);
  // An interrupted close has closed, and what was written is where it would be.
  const bool closed = _calls->close(_descriptor) == 0 || errno == EINTR || failed();
  _descriptor = -1;
  return written && closed;
}

}  // namespace velan
