#include <iconv.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <new>
#include <utility>

#include "velan/platform/ConverterInternal.h"

namespace velan {
namespace {

constexpr const char* kUTF16 = std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

class Descriptor {
 public:
  Descriptor(const char* to, const char* from) : _descriptor(iconv_open(to, from)) {}
  Descriptor(Descriptor&& other) noexcept : _descriptor(std::exchange(other._descriptor, invalid())) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (*this) iconv_close(_descriptor);
  }

  explicit operator bool() const { return _descriptor != invalid(); }
  iconv_t get() const { return _descriptor; }

 private:
  static iconv_t invalid() { return reinterpret_cast<iconv_t>(-1); }

  iconv_t _descriptor;
};

// With offsets each sequence is converted alone: `iconv` tells where it stands only when it comes back.
class IconvDecoder final : public Decoder {
 public:
  explicit IconvDecoder(Descriptor descriptor) : _descriptor(std::move(descriptor)) {}

  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = 0;
    size_t written = 0;
    const auto step = [&](DecodingStop stop, size_t rejected) {
      return DecodingStep{at + rejected, written, rejected, stop};
    };
    while (at < bytes.size()) {
      const size_t rest = bytes.size() - at;
      const auto [why, consumed, produced] = offsets
                                                 ? convertSequence(bytes.subspan(at), units + written, room - written)
                                                 : convert(bytes.data() + at, rest, units + written, room - written);
      if (offsets) noteOffsets(bytes, at, consumed, produced, offsets + written);
      at += consumed;
      written += produced;
      const size_t left = bytes.size() - at;
      if (why == E2BIG) return step(DecodingStop::OutputFull, 0);
      if (why == EINVAL) return last ? step(DecodingStop::Truncated, left) : step(DecodingStop::InputEnd, 0);
      if (why == EILSEQ) {
        if (left == 1 && bytes[at] >= 0x80 && !last) return step(DecodingStop::InputEnd, 0);
        const bool unassigned = left > 1 && bytes[at] >= 0x80 && bytes[at + 1] >= 0x80;
        return step(unassigned ? DecodingStop::Unassigned : DecodingStop::Malformed, unassigned ? 2 : 1);
      }
    }
    if (!last) return step(DecodingStop::InputEnd, 0);
    const auto [why, consumed, produced] = convert(nullptr, 0, units + written, room - written);
    if (offsets) noteOffsets(bytes, at, 0, produced, offsets + written);
    written += produced;
    return step(why == E2BIG ? DecodingStop::OutputFull : DecodingStop::InputEnd, 0);
  }

 private:
  struct Converted {
    int why;  // an error number, or 0
    size_t consumed;
    size_t produced;
  };

  // Without bytes it writes what was kept back.
  Converted convert(const uint8_t* bytes, size_t length, unichar* units, size_t room) {
    auto* source = const_cast<char*>(reinterpret_cast<const char*>(bytes));
    auto* target = reinterpret_cast<char*>(units);
    size_t left = length;
    size_t free = room * sizeof(unichar);
    const size_t result = iconv(_descriptor.get(), source ? &source : nullptr, &left, &target, &free);
    return {result == static_cast<size_t>(-1) ? errno : 0, length - left, room - free / sizeof(unichar)};
  }

  Converted convertSequence(std::span<const uint8_t> bytes, unichar* units, size_t room) {
    for (size_t length = 1;; ++length) {
      const Converted converted = convert(bytes.data(), length, units, room);
      if (converted.why != EINVAL || length == bytes.size()) return converted;
    }
  }

  // A character is kept back until the next shows whether they combine; it belongs to where it began.
  void noteOffsets(std::span<const uint8_t> bytes, size_t at, size_t consumed, size_t produced, int32_t* offsets) {
    std::fill_n(offsets, produced, static_cast<int32_t>(at));
    if (produced > 0 && _keptBackAt >= 0) offsets[0] = _keptBackAt;
    constexpr uint8_t kEscape = 0x1B;
    _keptBackAt = produced == 0 && consumed > 0 && bytes[at] != kEscape ? static_cast<int32_t>(at) : -1;
  }

  Descriptor _descriptor;
  int32_t _keptBackAt = -1;
};

class IconvEncoder final : public Encoder {
 public:
  explicit IconvEncoder(Descriptor descriptor) : _descriptor(std::move(descriptor)) {}

  bool encode(std::u16string_view text, std::string& bytes) override {
    auto* source = const_cast<char*>(reinterpret_cast<const char*>(text.data()));
    size_t left = text.size() * sizeof(unichar);
    for (bool flushing = false; !flushing;) {
      char piece[8192];
      char* target = piece;
      size_t free = sizeof piece;
      flushing = left == 0;
      const size_t result = iconv(_descriptor.get(), flushing ? nullptr : &source, &left, &target, &free);
      bytes.append(piece, sizeof piece - free);
      // A positive result counts characters that were only approximated.
      if (result == static_cast<size_t>(-1) ? errno != E2BIG : result != 0) return false;
      if (result == static_cast<size_t>(-1)) flushing = false;
    }
    return true;
  }

 private:
  Descriptor _descriptor;
};

}  // namespace

std::unique_ptr<Decoder> iconvDecoder(const char* name) {
  Descriptor descriptor(kUTF16, name);
  return std::unique_ptr<Decoder>(descriptor ? new (std::nothrow) IconvDecoder(std::move(descriptor)) : nullptr);
}

std::unique_ptr<Encoder> iconvEncoder(const char* name) {
  Descriptor descriptor(name, kUTF16);
  return std::unique_ptr<Encoder>(descriptor ? new (std::nothrow) IconvEncoder(std::move(descriptor)) : nullptr);
}

}  // namespace velan
