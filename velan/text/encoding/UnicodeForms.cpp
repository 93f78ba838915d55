#include <algorithm>
#include <cstring>
#include <new>

#include "velan/base/ByteOrder.h"
#include "velan/base/utf/UTF.h"
#include "velan/base/utf/UTFInternal.h"
#include "velan/text/encoding/UnicodeFormsInternal.h"

namespace velan {
namespace {

constexpr unichar kMark = 0xFEFF;
constexpr uint32_t kLastCodePoint = 0x10FFFF;

std::string_view asText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

class UTF8Decoder final : public Decoder {
 public:
  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = 0;
    size_t written = 0;
    const auto stopped = [&](DecodingStop stop, size_t rejected) {
      if (offsets) noteOffsets(units, written, offsets);
      return DecodingStep{at + rejected, written, rejected, stop};
    };
    while (at < bytes.size()) {
      // No more bytes than there is room for even if each gives a unit.
      const Transcoded piece =
          convertUTF8ToUTF16(asText(bytes.subspan(at, std::min(bytes.size() - at, room - written))), units + written);
      at += piece.consumed;
      written += piece.written;
      if (at == bytes.size()) break;
      if (piece.consumed > 0) continue;
      const UTF8Sequence sequence = decodeUTF8Sequence(bytes.data() + at, bytes.size() - at);
      if (!sequence.valid) {
        if (!sequence.truncated) return stopped(DecodingStop::Malformed, sequence.length);
        return last ? stopped(DecodingStop::Truncated, sequence.length) : stopped(DecodingStop::InputEnd, 0);
      }
      if (room - written < (sequence.length == 4 ? 2u : 1u)) return stopped(DecodingStop::OutputFull, 0);
      written += putUTF16(sequence.codePoint, units + written);
      at += sequence.length;
    }
    return stopped(DecodingStop::InputEnd, 0);
  }

 private:
  static void noteOffsets(const unichar* units, size_t count, int32_t* offsets) {
    int32_t at = 0;
    for (size_t i = 0; i < count; ++i) {
      offsets[i] = at;
      if (isHighSurrogate(units[i])) offsets[++i] = at;
      at += isSurrogate(units[i]) ? 4 : units[i] < 0x80 ? 1 : units[i] < 0x800 ? 2 : 3;
    }
  }
};

// The order of a form with a mark shows at its first bytes.
template <typename T>
class MarkedOrder {
 public:
  explicit MarkedOrder(ByteOrder order) : _order(order) {}

  // How many bytes the mark takes; asked until the order is known, with at least one number.
  size_t find(const uint8_t* bytes) {
    if (_order != ByteOrder::FromMark) return 0;
    const bool little = loadLittleEndian<T>(bytes) == kMark;
    _order = little ? ByteOrder::Little : ByteOrder::Big;
    return little || loadBigEndian<T>(bytes) == kMark ? sizeof(T) : 0;
  }
  T load(const uint8_t* bytes) const {
    return _order == ByteOrder::Little ? loadLittleEndian<T>(bytes) : loadBigEndian<T>(bytes);
  }

 private:
  ByteOrder _order;
};

DecodingStep endOf(size_t consumed, size_t written, size_t left, bool last) {
  if (left == 0 || !last) return {consumed, written, 0, DecodingStop::InputEnd};
  return {consumed + left, written, left, DecodingStop::Truncated};
}

class UTF16Decoder final : public Decoder {
 public:
  UTF16Decoder(ByteOrder order, LoneSurrogates loneSurrogates) : _order(order), _loneSurrogates(loneSurrogates) {}

  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = bytes.size() < 2 ? 0 : _order.find(bytes.data());
    size_t written = 0;
    while (bytes.size() - at >= 2) {
      const unichar unit = _order.load(bytes.data() + at);
      size_t count = 1;
      if (isSurrogate(unit) && _loneSurrogates == LoneSurrogates::Refuse) {
        if (isHighSurrogate(unit) && bytes.size() - at < 4) return endOf(at, written, bytes.size() - at, last);
        if (isLowSurrogate(unit) || !isLowSurrogate(_order.load(bytes.data() + at + 2))) {
          return {at + 2, written, 2, DecodingStop::Malformed};
        }
        count = 2;
      }
      if (room - written < count) return {at, written, 0, DecodingStop::OutputFull};
      for (size_t i = 0; i < count; ++i) {
        if (offsets) offsets[written] = static_cast<int32_t>(at);
        units[written++] = _order.load(bytes.data() + at + 2 * i);
      }
      at += 2 * count;
    }
    return endOf(at, written, bytes.size() - at, last);
  }

 private:
  MarkedOrder<uint16_t> _order;
  LoneSurrogates _loneSurrogates;
};

class UTF32Decoder final : public Decoder {
 public:
  explicit UTF32Decoder(ByteOrder order) : _order(order) {}

  DecodingStep decode(std::span<const uint8_t> bytes, bool last, unichar* units, size_t room,
                      int32_t* offsets) override {
    size_t at = bytes.size() < 4 ? 0 : _order.find(bytes.data());
    size_t written = 0;
    for (; bytes.size() - at >= 4; at += 4) {
      const uint32_t codePoint = _order.load(bytes.data() + at);
      if (codePoint > kLastCodePoint || (codePoint < 0x10000 && isSurrogate(static_cast<unichar>(codePoint)))) {
        return {at + 4, written, 4, DecodingStop::Malformed};
      }
      if (room - written < (codePoint < 0x10000 ? 1u : 2u)) return {at, written, 0, DecodingStop::OutputFull};
      const size_t count = putUTF16(codePoint, units + written);
      if (offsets) std::fill_n(offsets + written, count, static_cast<int32_t>(at));
      written += count;
    }
    return endOf(at, written, bytes.size() - at, last);
  }

 private:
  MarkedOrder<uint32_t> _order;
};

class UTF8Encoder final : public Encoder {
 public:
  bool encode(std::u16string_view text, std::string& bytes) override { return appendUTF8(text, bytes); }
};

template <typename T>
void store(ByteOrder order, char* bytes, T value) {
  if (order == ByteOrder::Big) {
    storeBigEndian<T>(bytes, value);
  } else {
    storeLittleEndian<T>(bytes, value);
  }
}

class UTF16Encoder final : public Encoder {
 public:
  explicit UTF16Encoder(ByteOrder order) : _order(order) {}

  bool encode(std::u16string_view text, std::string& bytes) override {
    const bool mark = _order == ByteOrder::FromMark;
    const size_t start = bytes.size();
    bytes.resize(start + (text.size() + (mark ? 1 : 0)) * 2);
    char* next = bytes.data() + start;
    const auto put = [&](unichar unit) {
      store<uint16_t>(_order, next, unit);
      next += 2;
    };
    if (mark) put(kMark);
    std::for_each(text.begin(), text.end(), put);
    return true;
  }

 private:
  ByteOrder _order;
};

class UTF32Encoder final : public Encoder {
 public:
  explicit UTF32Encoder(ByteOrder order) : _order(order) {}

  bool encode(std::u16string_view text, std::string& bytes) override {
    const size_t start = bytes.size();
    bytes.resize(start + (text.size() + 1) * 4);
    char* next = bytes.data() + start;
    const auto put = [&](uint32_t codePoint) {
      store<uint32_t>(_order, next, codePoint);
      next += 4;
    };
    if (_order == ByteOrder::FromMark) put(kMark);
    for (size_t i = 0; i < text.size(); ++i) {
      const unichar unit = text[i];
      if (!isSurrogate(unit)) {
        put(unit);
      } else if (isHighSurrogate(unit) && i + 1 < text.size() && isLowSurrogate(text[i + 1])) {
        put(0x10000u + ((unit & 0x3FFu) << 10) + (text[++i] & 0x3FFu));
      } else {
        return false;
      }
    }
    bytes.resize(static_cast<size_t>(next - bytes.data()));
    return true;
  }

 private:
  ByteOrder _order;
};

}  // namespace

std::unique_ptr<Decoder> utf8Decoder() { return std::unique_ptr<Decoder>(new (std::nothrow) UTF8Decoder); }

std::unique_ptr<Decoder> utf16Decoder(ByteOrder order, LoneSurrogates loneSurrogates) {
  return std::unique_ptr<Decoder>(new (std::nothrow) UTF16Decoder(order, loneSurrogates));
}

std::unique_ptr<Decoder> utf32Decoder(ByteOrder order) {
  return std::unique_ptr<Decoder>(new (std::nothrow) UTF32Decoder(order));
}

std::unique_ptr<Encoder> utf8Encoder() { return std::unique_ptr<Encoder>(new (std::nothrow) UTF8Encoder); }

std::unique_ptr<Encoder> utf16Encoder(ByteOrder order) {
  return std::unique_ptr<Encoder>(new (std::nothrow) UTF16Encoder(order));
}

std::unique_ptr<Encoder> utf32Encoder(ByteOrder order) {
  return std::unique_ptr<Encoder>(new (std::nothrow) UTF32Encoder(order));
}

}  // namespace velan
