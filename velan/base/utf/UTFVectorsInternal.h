// Transcoding with vectors of bytes, written once for the instruction sets that can shuffle bytes by a table. A source
// file that includes this one says what it offers in a class `V`:
//
//   Bytes, Signed, Units         a vector as bytes, as signed bytes, as units of 16 bits
//   load, store                  at any address; a store of one lane of 16 bytes
//   before<n>(now, earlier)      for each byte the one n places before it, where `earlier` precedes `now`
//   lookUp(table, indices)       the table's byte at each index, which is below 16
//   low(a, b), high(a, b)        the halves of each lane interleaved, by bytes or by units
//   lane(vector, i), shuffled    a lane; its bytes in the order of a table
//   widen(bytes, to)             the bytes as units
//   pack(first, second, to)      the units of two vectors as bytes, where all are below 0x80
//   bits(vectors)                one bit for each byte of the whole block, set where it is 0xFF
//   unitBits(vectors)            one bit for each unit of the whole block, set where it is 0xFFFF
//
// Nothing depends on where characters begin but how far the output moves on, so that the processor works at several
// blocks at once. All is in an anonymous namespace, because each file compiles it for other instructions.
#ifndef VELAN_BASE_UTF_UTF_VECTORS_INTERNAL_H
#define VELAN_BASE_UTF_UTF_VECTORS_INTERNAL_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "velan/base/utf/UTFKernelsInternal.h"

namespace velan {
namespace {

constexpr size_t kBlock = kUTF8Block;
constexpr size_t kUnitBlock = 32;  // units of UTF-16
constexpr size_t kLane = 16;
constexpr size_t kShortest = 16;  // what is shorter goes to the reference

using Lane = uint8_t __attribute__((vector_size(kLane)));
using ShuffleTable = std::array<std::array<uint8_t, kLane>, 256>;

constexpr uint64_t lowest(size_t count) { return count >= 64 ? ~0ull : (1ull << count) - 1; }

// The bytes that `keeps` wants of a lane, moved together.
template <typename Keeps>
constexpr ShuffleTable shuffles(Keeps keeps) {
  ShuffleTable table{};
  for (size_t mask = 0; mask < table.size(); ++mask) {
    size_t count = 0;
    for (size_t i = 0; i < kLane; ++i) {
      if (keeps(mask, i)) table[mask][count++] = static_cast<uint8_t>(i);
    }
  }
  return table;
}

// Of 8 units those at the bits of the mask.
alignas(64) constexpr ShuffleTable kKeepUnits = shuffles([](size_t mask, size_t i) { return mask >> (i / 2) & 1; });
// Of 8 pairs of bytes the second, and where the mask has a bit also the first.
alignas(64) constexpr ShuffleTable kKeepPairs = shuffles([](size_t mask, size_t i) {
  return i % 2 == 1 || (mask >> (i / 2) & 1);
});
// Of 4 groups of 4 bytes the last; of its two bits in the mask the lower one keeps the third, the higher one the
// second.
alignas(64) constexpr ShuffleTable kKeepGroups = shuffles([](size_t mask, size_t i) {
  return i % 4 == 3 || (i % 4 != 0 && (mask >> (i / 4 * 2 + 2 - i % 4) & 1));
});

// What may not follow each other, after Keiser and Lemire, "Validating UTF-8 in less than one instruction per byte"
// (2021): each kind of fault has a bit, set in all three tables where the nibbles fit, so that it survives their "and".
struct Fault {
  unsigned firstHigh[2], firstLow[2], secondHigh[2];  // from, to
  uint8_t bit;
};
constexpr uint8_t kTwoContinuations = 0x80;  // no fault after a lead byte of three or four
constexpr Fault kFaults[] = {
    {{0xC, 0xF}, {0x0, 0xF}, {0x0, 0x7}, 0x01},               // a lead byte, and nothing that continues it
    {{0xC, 0xF}, {0x0, 0xF}, {0xC, 0xF}, 0x01},               //
    {{0x0, 0x7}, {0x0, 0xF}, {0x8, 0xB}, 0x02},               // a continuation byte behind ASCII
    {{0xC, 0xC}, {0x0, 0x1}, {0x8, 0xB}, 0x04},               // overlong
    {{0xE, 0xE}, {0x0, 0x0}, {0x8, 0x9}, 0x08},               //
    {{0xE, 0xE}, {0xD, 0xD}, {0xA, 0xB}, 0x10},               // a surrogate
    {{0xF, 0xF}, {0x4, 0xF}, {0x9, 0xB}, 0x20},               // above U+10FFFF
    {{0xF, 0xF}, {0x5, 0xF}, {0x8, 0x8}, 0x40},               //
    {{0xF, 0xF}, {0x0, 0x0}, {0x8, 0x8}, 0x40},               // overlong
    {{0x8, 0xB}, {0x0, 0xF}, {0x8, 0xB}, kTwoContinuations},  //
};

constexpr std::array<uint8_t, 16> faultsOf(const unsigned (Fault::*range)[2]) {
  std::array<uint8_t, 16> table{};
  for (const Fault& fault : kFaults) {
    for (unsigned i = (fault.*range)[0]; i <= (fault.*range)[1]; ++i) table[i] |= fault.bit;
  }
  return table;
}

alignas(16) constexpr auto kFirstHigh = faultsOf(&Fault::firstHigh);
alignas(16) constexpr auto kFirstLow = faultsOf(&Fault::firstLow);
alignas(16) constexpr auto kSecondHigh = faultsOf(&Fault::secondHigh);

template <typename V>
struct FromUTF8 {
  using Bytes = typename V::Bytes;
  using Signed = typename V::Signed;
  static constexpr size_t kVectors = kBlock / sizeof(Bytes);

  static Bytes isContinuation(Bytes bytes) { return reinterpret_cast<Bytes>(reinterpret_cast<Signed>(bytes) < -64); }

  static Bytes faults(Bytes now, Bytes before1, Bytes before2, Bytes before3) {
    const Bytes pairs =
        V::lookUp(kFirstHigh, before1 >> 4) & V::lookUp(kFirstLow, before1 & 0x0F) & V::lookUp(kSecondHigh, now >> 4);
    const auto continues = reinterpret_cast<Bytes>((before2 >= 0xE0) | (before3 >= 0xF0));
    return pairs ^ (continues & kTwoContinuations);
  }

  static bool isASCII(const uint8_t* block) {
    Bytes all{};
    for (size_t i = 0; i < kVectors; ++i) all |= V::load(block + i * sizeof(Bytes));
    return !V::anyHighest(all);
  }

  static void putASCII(const uint8_t* block, unichar* units) {
    for (size_t i = 0; i < kVectors; ++i) V::widen(V::load(block + i * sizeof(Bytes)), units + i * sizeof(Bytes));
  }

  // Writes the units of a block that begins with a character, of which the whole characters have `count` bytes, and
  // with room for as many units as it has bytes. Returns how many they are; 0 where the block is malformed.
  static size_t put(const uint8_t* block, size_t count, unichar* units) {
    Bytes now[kVectors];
    for (size_t i = 0; i < kVectors; ++i) now[i] = V::load(block + i * sizeof(Bytes));
    Bytes low[kVectors];
    Bytes high[kVectors];
    Bytes continuation[kVectors];
    Bytes third[kVectors];
    Bytes bad{};
    Bytes earlier{};
    Bytes four{};
    for (size_t i = 0; i < kVectors; ++i) {
      const Bytes before1 = V::template before<1>(now[i], earlier);
      const Bytes before2 = V::template before<2>(now[i], earlier);
      bad |= faults(now[i], before1, before2, V::template before<3>(now[i], earlier));
      earlier = now[i];
      // The unit that ends here: of two bytes 110abcde 10ABCDEF its bytes are 00000abc and deABCDEF; of three with
      // 1110xxxx before, xxxxbcde … likewise.
      continuation[i] = isContinuation(now[i]);
      low[i] = (now[i] & ~(continuation[i] & 0xC0)) | (continuation[i] & (before1 << 6));
      high[i] = continuation[i] & ((before1 >> 2 & 0x0F) | (isContinuation(before1) & (before2 << 4)));
      four |= now[i] >= 0xF0;
    }
    if (V::any(bad)) return 0;
    uint64_t ends = ~(V::bits(continuation) >> 1) & lowest(count);
    if (V::any(four)) {
      // The third byte of four ends the high surrogate, the fourth the low one.
      earlier = Bytes{};
      for (size_t i = 0; i < kVectors; ++i) {
        const Bytes before1 = V::template before<1>(now[i], earlier);
        const Bytes before2 = V::template before<2>(now[i], earlier);
        third[i] = reinterpret_cast<Bytes>(before2 >= 0xF0);
        const auto fourth = reinterpret_cast<Bytes>(V::template before<3>(now[i], earlier) >= 0xF0);
        earlier = now[i];
        // 0xD7C0 and the 11 upper bits of the code point, whose lower 8 carry when they reach 0x40.
        const Bytes middle = before1 & 0x3F;
        const Bytes carry = reinterpret_cast<Bytes>(middle >= 0x10) & 1;
        const Bytes lowOfHigh = (middle << 2 | (now[i] >> 4 & 3)) + 0xC0;
        const Bytes highOfHigh = (before2 & 7) + 0xD7 + carry;
        low[i] = (third[i] & lowOfHigh) | (~third[i] & low[i]);
        high[i] = (third[i] & highOfHigh) | (fourth & (0xDC | (before1 >> 2 & 3))) | (~(third[i] | fourth) & high[i]);
      }
      ends |= V::bits(third) & lowest(count);
    }
    size_t out = 0;
    const auto putKept = [&](Lane lane, size_t index) {
      const uint64_t mask = ends >> (8 * index) & 0xFF;
      V::store(units + out, V::shuffled(lane, kKeepUnits[mask]));
      out += static_cast<size_t>(__builtin_popcountll(mask));
    };
    for (size_t i = 0; i < kVectors; ++i) {
      const Bytes first = V::low(low[i], high[i]);
      const Bytes second = V::high(low[i], high[i]);
      for (size_t k = 0; k < sizeof(Bytes) / kLane; ++k) {
        const size_t index = i * sizeof(Bytes) / 8 + 2 * k;
        putKept(V::lane(first, k), index);
        putKept(V::lane(second, k), index + 1);
      }
    }
    return out;
  }

  static Transcoded begin(const uint8_t* bytes, size_t length, unichar* units) {
    size_t in = 0;
    size_t out = 0;
    while (length - in >= kBlock) {
      if (isASCII(bytes + in)) {
        putASCII(bytes + in, units + out);
        in += kBlock;
        out += kBlock;
        continue;
      }
      const size_t count = wholeCharacters(bytes + in);
      const size_t written = put(bytes + in, count, units + out);
      if (written == 0) return {in, out};
      in += count;
      out += written;
    }
    const size_t rest = length - in;
    if (rest < kShortest) return {in, out};
    uint8_t block[kBlock] = {};
    unichar room[kBlock];
    std::memcpy(block, bytes + in, rest);
    const size_t written = put(block, rest, room);
    if (written == 0) return {in, out};
    std::memcpy(units + out, room, written * sizeof(unichar));
    return {length, out + written};
  }
};

template <typename V>
struct FromUTF16 {
  using Bytes = typename V::Bytes;
  using Units = typename V::Units;
  static constexpr size_t kVectors = kUnitBlock * sizeof(unichar) / sizeof(Bytes);
  static constexpr size_t kRoom = kUnitBlock + 2;  // the last store of a block may reach so far

  static Units either(Units mask, Units yes, Units no) { return (mask & yes) | (~mask & no); }

  // Two bytes for each unit, the last one of its character highest.
  static Units pairs(Units units, Units ascii, Units two) {
    const Units several = (units & 0x3F) << 8 | (units >> 6 & 0x3F) | (two & 0x40) | 0x8080;
    return either(ascii, units << 8, several);
  }

  // The bytes of a block in which no unit is above U+07FF.
  static size_t putShort(const Units (&units)[kVectors], char* bytes) {
    Units several[kVectors];
    for (size_t i = 0; i < kVectors; ++i) several[i] = reinterpret_cast<Units>(units[i] >= 0x80);
    const uint32_t masks = V::unitBits(several);
    size_t out = 0;
    for (size_t i = 0; i < kVectors; ++i) {
      const auto vector = reinterpret_cast<Bytes>(pairs(units[i], ~several[i], several[i]));
      for (size_t k = 0; k < sizeof(Bytes) / kLane; ++k) {
        const uint32_t mask = masks >> (8 * (i * sizeof(Bytes) / kLane + k)) & 0xFF;
        V::store(bytes + out, V::shuffled(V::lane(vector, k), kKeepPairs[mask]));
        out += 8 + static_cast<size_t>(__builtin_popcount(mask));
      }
    }
    return out;
  }

  // The bytes of any block. Of a pair of surrogates each gives two bytes.
  template <bool hasSurrogates>
  static size_t putLong(const Units (&units)[kVectors], char* bytes) {
    Units two[kVectors];
    Units three[kVectors];
    Bytes earlier{};
    Units pair[kVectors];
    for (size_t i = 0; i < kVectors; ++i) {
      const auto ascii = reinterpret_cast<Units>(units[i] < 0x80);
      three[i] = reinterpret_cast<Units>(units[i] >= 0x800);
      two[i] = ~ascii;
      pair[i] = pairs(units[i], ascii, ~three[i]);
      if constexpr (hasSurrogates) {
        const auto before = reinterpret_cast<Units>(V::template before<2>(reinterpret_cast<Bytes>(units[i]), earlier));
        earlier = reinterpret_cast<Bytes>(units[i]);
        const Units top = units[i] & 0xFC00;
        const auto high = reinterpret_cast<Units>(top == 0xD800);
        const auto low = reinterpret_cast<Units>(top == 0xDC00);
        const Units upper = (units[i] & 0x3FF) + 0x40;  // the 11 upper bits of the code point
        pair[i] = either(high, (upper >> 2 & 0x3F) << 8 | upper >> 8 | 0x80F0, pair[i]);
        pair[i] = either(low, (units[i] & 0x3F) << 8 | (before & 3) << 4 | (units[i] >> 6 & 0x0F) | 0x8080, pair[i]);
        three[i] &= ~(high | low);
      }
    }
    Bytes kept[kVectors];
    for (size_t i = 0; i < kVectors; ++i) kept[i] = reinterpret_cast<Bytes>(either(Units{} + 0xFF, two[i], three[i]));
    const uint64_t masks = V::bits(kept);
    size_t out = 0;
    const auto put = [&](Lane lane, size_t index) {
      const auto mask = static_cast<uint32_t>(masks >> (2 * index) & 0xFF);
      V::store(bytes + out, V::shuffled(lane, kKeepGroups[mask]));
      out += 4 + static_cast<size_t>(__builtin_popcount(mask));
    };
    for (size_t i = 0; i < kVectors; ++i) {
      const Units first = units[i] >> 12 << 8 | 0xE000;
      const auto lows = reinterpret_cast<Bytes>(V::low(first, pair[i]));
      const auto highs = reinterpret_cast<Bytes>(V::high(first, pair[i]));
      for (size_t k = 0; k < sizeof(Bytes) / kLane; ++k) {
        const size_t index = i * sizeof(Units) / 2 + 8 * k;
        put(V::lane(lows, k), index);
        put(V::lane(highs, k), index + 4);
      }
    }
    return out;
  }

  // Writes the bytes of a block, with room for `kRoom` units; returns how many. `count` becomes 0 where it is
  // malformed, and less by one where it ends with a high surrogate.
  static size_t put(const unichar* block, size_t& count, char* bytes) {
    Units units[kVectors];
    Units all{};
    for (size_t i = 0; i < kVectors; ++i) {
      units[i] = reinterpret_cast<Units>(V::load(block + i * sizeof(Units) / 2));
      all |= units[i];
    }
    count = kUnitBlock;
    if (!V::any(reinterpret_cast<Bytes>(all > 0x7F))) {
      for (size_t i = 0; i < kVectors; i += 2) V::pack(units[i], units[i + 1], bytes + i * sizeof(Units) / 2);
      return kUnitBlock;
    }
    if (!V::any(reinterpret_cast<Bytes>(all > 0x7FF))) return putShort(units, bytes);
    Units high[kVectors];
    Units low[kVectors];
    Units surrogate{};
    for (size_t i = 0; i < kVectors; ++i) {
      high[i] = reinterpret_cast<Units>((units[i] & 0xFC00) == 0xD800);
      low[i] = reinterpret_cast<Units>((units[i] & 0xFC00) == 0xDC00);
      surrogate |= high[i] | low[i];
    }
    if (!V::any(reinterpret_cast<Bytes>(surrogate))) return putLong<false>(units, bytes);
    const uint32_t highs = V::unitBits(high);
    if (highs << 1 != V::unitBits(low)) {
      count = 0;
      return 0;
    }
    const size_t written = putLong<true>(units, bytes);
    const size_t cut = highs >> 31;  // its two bytes are to be written with those of its partner
    count -= cut;
    return written - 2 * cut;
  }

  // Two blocks at a time, as long as both are ASCII; returns how many units.
  static size_t putASCIIPairs(const unichar* units, size_t length, char* bytes) {
    size_t in = 0;
    for (; length - in >= 2 * kUnitBlock; in += 2 * kUnitBlock) {
      Units block[2 * kVectors];
      Units all{};
      for (size_t i = 0; i < 2 * kVectors; ++i) {
        block[i] = reinterpret_cast<Units>(V::load(units + in + i * sizeof(Units) / 2));
        all |= block[i];
      }
      if (V::any(reinterpret_cast<Bytes>(all > 0x7F))) break;
      for (size_t i = 0; i < 2 * kVectors; i += 2) {
        V::pack(block[i], block[i + 1], bytes + in + i * sizeof(Units) / 2);
      }
    }
    return in;
  }

  static Transcoded begin(const unichar* units, size_t length, char* bytes) {
    size_t in = 0;
    size_t out = 0;
    size_t count = 0;
    while (length - in >= kRoom) {
      const size_t written = put(units + in, count, bytes + out);
      if (count == 0) return {in, out};
      in += count;
      out += written;
      if (written != kUnitBlock) continue;  // not all is ASCII
      const size_t more = putASCIIPairs(units + in, length - in, bytes + out);
      in += more;
      out += more;
    }
    const size_t rest = length - in < kUnitBlock ? length - in : kUnitBlock - 1;
    if (rest < kShortest) return {in, out};
    unichar block[kUnitBlock] = {};
    char room[kRoom * kMaxUTF8BytesPerUnit];
    std::memcpy(block, units + in, rest * sizeof(unichar));
    const size_t written = put(block, count, room);
    if (count == 0) return {in, out};
    const size_t own = written - (kUnitBlock - rest);  // without the zeros behind them
    std::memcpy(bytes + out, room, own);
    return {in + rest, out + own};
  }
};

}  // namespace
}  // namespace velan

#endif  // VELAN_BASE_UTF_UTF_VECTORS_INTERNAL_H
