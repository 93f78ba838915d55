// Vectors of code units, one class for each instruction set that the including file is compiled for. Loops are
// templates over such a class, so that they are written once. Only kernels' sources may include this; the anonymous
// namespace keeps what is compiled for one processor from standing in for what is compiled for another.
//
// A class has `kUnits`, the units in it, and `Narrower`, the class for what is left at the end (`Scalar` in the
// narrowest). `Matches` are the answers of a comparison, one a unit; `bits` brings them to a number with `kBits` bits a
// unit, all of them 1 where the answer is yes, and the first unit's lowest; `positions` with one bit a unit.
// `loadFirst` reads up to `kUnits` units, at least one; the others are 0. `inBitmap` looks units up in a bitmap of
// `kWindow` units, with the bit `c & 7` of the byte `c >> 3` for the unit `c`, of which only the low bits count.
// `inTable` looks them up in a `Table` of `kTableWindow` units in the same way, where that is not 0, and `tableWindow`
// gives the number of such a part of a larger table. `ahead` gives the
// units a little behind those of a vector at `p`; `kAhead` more than those of the vector are read, if not 0.
// `loadBytes` and `storeBytes` are for vectors of bytes, two in the place of a unit, and `widened` makes units of
// bytes; `storeAsBytes` writes a byte an answer, all of its bits 1 where that is yes, and `storeInBitmap` those of two
// vectors of units below `kWindow`.
#ifndef VELAN_BASE_KERNELS_UNIT_VECTORS_INTERNAL_H
#define VELAN_BASE_KERNELS_UNIT_VECTORS_INTERNAL_H

#include <array>

#include "velan/base/CTypes.h"

#ifdef __x86_64__
#ifndef __clang__
#pragma GCC diagnostic ignored "-Wuninitialized"  // of the compiler's own intrinsics
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#endif
#include <immintrin.h>
#elif defined(__AARCH64EL__)
#include <arm_neon.h>
#endif

namespace velan {

/// For each set of eight units the bytes that bring those in it together.
struct CompressingShuffles {
  constexpr CompressingShuffles() {
    for (unsigned set = 0; set < 256; ++set) {
      unsigned to = 0;
      for (unsigned from = 0; from < 8; ++from) {
        if (!(set >> from & 1)) continue;
        bytes[set][to++] = static_cast<uint8_t>(2 * from);
        bytes[set][to++] = static_cast<uint8_t>(2 * from + 1);
      }
    }
  }

  alignas(16) uint8_t bytes[256][16] = {};
};
inline constexpr CompressingShuffles kCompressingShuffles;

/// From the byte `n` on, what moves 16 bytes down by `n`, with zeros behind them.
struct DownwardShuffles {
  alignas(32) uint8_t bytes[32] = {0,    1,    2,    3,    4,    5,    6,    7,    8,    9,    10,
                                   11,   12,   13,   14,   15,   0x80, 0x80, 0x80, 0x80, 0x80, 0x80,
                                   0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80, 0x80};
};
inline constexpr DownwardShuffles kDownwardShuffles;

namespace {

struct Scalar {
  static constexpr size_t kUnits = 1;
  static constexpr unichar kTableWindow = 0;
};

#ifdef __SSE4_1__

struct Units128 {
  using Narrower = Scalar;
  using Matches = __m128i;
  static constexpr size_t kUnits = 8;
  static constexpr unsigned kBits = 2;
  static constexpr unichar kWindow = 128;
  static constexpr unichar kTableWindow = 0;
  static constexpr bool kKnowsLowBits = false;
  static constexpr size_t kAhead = 0;

  __m128i v;

  static Units128 load(const unichar* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
  static Units128 loadFirst(const unichar* p, size_t count) {
    if (count == kUnits) return load(p);
    if (count < 4) {
      const uint64_t last = uint64_t{p[count - 1]} << (16 * (count - 1));
      return {_mm_cvtsi64_si128(static_cast<int64_t>(p[0] | uint64_t{p[count / 2]} << (16 * (count / 2)) | last))};
    }
    const auto half = [](const unichar* at) { return _mm_loadl_epi64(reinterpret_cast<const __m128i*>(at)); };
    const auto shift = _mm_cvtsi32_si128(static_cast<int>(16 * (kUnits - count)));
    return {_mm_unpacklo_epi64(half(p), _mm_srl_epi64(half(p + count - 4), shift))};
  }
  static Units128 of(unichar c) { return {_mm_set1_epi16(static_cast<short>(c))}; }
  /// Those `distance` units behind the vector at `p`.
  Units128 ahead(const unichar* p, size_t distance) const { return load(p + distance); }
  void store(unichar* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }
  static Units128 loadBytes(const uint8_t* p) { return {_mm_loadu_si128(reinterpret_cast<const __m128i*>(p))}; }
  static Units128 widened(const uint8_t* p) {
    return {_mm_cvtepu8_epi16(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(p)))};
  }
  void storeBytes(uint8_t* p) const { _mm_storeu_si128(reinterpret_cast<__m128i*>(p), v); }

  /// Writes a whole vector of which only those wanted count, which come first; returns how many.
  size_t storeCompressed(Matches m, unichar* p) const {
    const auto set = static_cast<unsigned>(_mm_movemask_epi8(_mm_packs_epi16(m, m))) & 0xFF;
    const auto* shuffle = reinterpret_cast<const __m128i*>(kCompressingShuffles.bytes[set]);
    Units128{_mm_shuffle_epi8(v, _mm_load_si128(shuffle))}.store(p);
    return static_cast<size_t>(__builtin_popcount(set));
  }
  Units128 operator+(Units128 other) const { return {_mm_add_epi16(v, other.v)}; }
  Units128 operator-(Units128 other) const { return {_mm_sub_epi16(v, other.v)}; }
  Units128 operator^(Units128 other) const { return {_mm_xor_si128(v, other.v)}; }
  /// 0 where a unit has `bits` among those of `mask`.
  Units128 differing(Units128 mask, Units128 bits) const { return {_mm_xor_si128(_mm_and_si128(v, mask.v), bits.v)}; }
  static Units128 unionOf(Units128 a, Units128 b, Units128 c) { return {_mm_or_si128(_mm_or_si128(a.v, b.v), c.v)}; }
  /// `known | (a ^ b)`
  static Units128 unionWithDifference(Units128 known, Units128 a, Units128 b) {
    return {_mm_or_si128(known.v, _mm_xor_si128(a.v, b.v))};
  }
  static Units128 least(Units128 a, Units128 b) { return {_mm_min_epu16(a.v, b.v)}; }
  Units128 onlyWhere(Matches m) const { return {_mm_and_si128(v, m)}; }
  Matches operator==(Units128 other) const { return _mm_cmpeq_epi16(v, other.v); }
  Matches operator<=(Units128 other) const { return _mm_cmpeq_epi16(_mm_min_epu16(v, other.v), v); }
  /// Without `less` where `m` says so.
  Units128 lessWhere(Matches m, Units128 less) const { return {_mm_sub_epi16(v, _mm_and_si128(m, less.v))}; }
  Matches inBitmap(const uint8_t* bitmap) const {
    const auto row = _mm_and_si128(_mm_srli_epi16(v, 3), _mm_set1_epi16(0x0F));
    const auto column = _mm_or_si128(_mm_and_si128(v, _mm_set1_epi16(7)), _mm_set1_epi16(-0x8000));
    const auto bytes = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap)), row);
    const auto bit = _mm_shuffle_epi8(_mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201)), column);
    return _mm_cmpeq_epi16(_mm_and_si128(bytes, bit), bit);
  }

  /// Of each unit the entry for its four low bits; what is in the high bytes has no meaning.
  Units128 byNibble(const uint8_t* table) const {
    const auto entries = _mm_loadu_si128(reinterpret_cast<const __m128i*>(table));
    return {_mm_shuffle_epi8(entries, _mm_and_si128(v, _mm_set1_epi16(0x0F)))};
  }
  /// Where the low bytes of three have a bit in common.
  static Matches haveCommonBits(Units128 a, Units128 b, Units128 c) {
    const auto bits = _mm_slli_epi16(_mm_and_si128(_mm_and_si128(a.v, b.v), c.v), 8);
    return inverse(_mm_cmpeq_epi16(bits, _mm_setzero_si128()));
  }

  static Matches both(Matches a, Matches b) { return _mm_and_si128(a, b); }
  static Matches either(Matches a, Matches b) { return _mm_or_si128(a, b); }
  static Matches inverse(Matches m) { return _mm_xor_si128(m, _mm_set1_epi16(-1)); }
  static uint64_t bits(Matches m) { return static_cast<uint32_t>(_mm_movemask_epi8(m)); }
  static void storeAsBytes(Matches m, uint8_t* p) {
    _mm_storel_epi64(reinterpret_cast<__m128i*>(p), _mm_packs_epi16(m, m));
  }
  static void storeInBitmap(Units128 a, Units128 b, const uint8_t* bitmap, uint8_t* p) {
    const auto units = _mm_packus_epi16(a.v, b.v);
    const auto row = _mm_and_si128(_mm_srli_epi16(units, 3), _mm_set1_epi8(0x0F));
    const auto bytes = _mm_shuffle_epi8(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap)), row);
    const auto bit = _mm_shuffle_epi8(_mm_set1_epi64x(static_cast<int64_t>(0x8040201008040201)), units);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), _mm_cmpeq_epi8(_mm_and_si128(bytes, bit), bit));
  }
  static uint64_t positions(Matches m) {
    return static_cast<uint32_t>(_mm_movemask_epi8(_mm_packs_epi16(m, _mm_setzero_si128())));
  }
};

#endif
#ifdef __AVX2__

struct Units256 {
  using Narrower = Units128;
  using Matches = __m256i;
  static constexpr size_t kUnits = 16;
  static constexpr unsigned kBits = 2;
  static constexpr unichar kWindow = 128;
  static constexpr unichar kTableWindow = 0;
  static constexpr bool kKnowsLowBits = false;
  static constexpr size_t kAhead = 0;

  __m256i v;

  static Units256 load(const unichar* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static Units256 loadFirst(const unichar* p, size_t count) {
    if (count <= Narrower::kUnits) return {_mm256_zextsi128_si256(Narrower::loadFirst(p, count).v)};
    const auto* shuffle = reinterpret_cast<const __m128i*>(kDownwardShuffles.bytes + 2 * (kUnits - count));
    const auto high = _mm_shuffle_epi8(Narrower::load(p + count - Narrower::kUnits).v, _mm_loadu_si128(shuffle));
    return {_mm256_inserti128_si256(_mm256_castsi128_si256(Narrower::load(p).v), high, 1)};
  }
  static Units256 of(unichar c) { return {_mm256_set1_epi16(static_cast<short>(c))}; }
  /// Those `distance` units behind the vector at `p`.
  Units256 ahead(const unichar* p, size_t distance) const { return load(p + distance); }
  void store(unichar* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }
  static Units256 loadBytes(const uint8_t* p) { return {_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))}; }
  static Units256 widened(const uint8_t* p) {
    return {_mm256_cvtepu8_epi16(_mm_loadu_si128(reinterpret_cast<const __m128i*>(p)))};
  }
  void storeBytes(uint8_t* p) const { _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), v); }

  size_t storeCompressed(Matches m, unichar* p) const {
    const size_t low = Units128{_mm256_castsi256_si128(v)}.storeCompressed(_mm256_castsi256_si128(m), p);
    return low + Units128{_mm256_extracti128_si256(v, 1)}.storeCompressed(_mm256_extracti128_si256(m, 1), p + low);
  }
  Units256 operator+(Units256 other) const { return {_mm256_add_epi16(v, other.v)}; }
  Units256 operator-(Units256 other) const { return {_mm256_sub_epi16(v, other.v)}; }
  Units256 operator^(Units256 other) const { return {_mm256_xor_si256(v, other.v)}; }
  /// 0 where a unit has `bits` among those of `mask`.
  Units256 differing(Units256 mask, Units256 bits) const {
    return {_mm256_xor_si256(_mm256_and_si256(v, mask.v), bits.v)};
  }
  static Units256 unionOf(Units256 a, Units256 b, Units256 c) {
    return {_mm256_or_si256(_mm256_or_si256(a.v, b.v), c.v)};
  }
  /// `known | (a ^ b)`
  static Units256 unionWithDifference(Units256 known, Units256 a, Units256 b) {
    return {_mm256_or_si256(known.v, _mm256_xor_si256(a.v, b.v))};
  }
  static Units256 least(Units256 a, Units256 b) { return {_mm256_min_epu16(a.v, b.v)}; }
  Units256 onlyWhere(Matches m) const { return {_mm256_and_si256(v, m)}; }
  Matches operator==(Units256 other) const { return _mm256_cmpeq_epi16(v, other.v); }
  Matches operator<=(Units256 other) const { return _mm256_cmpeq_epi16(_mm256_min_epu16(v, other.v), v); }
  /// Without `less` where `m` says so.
  Units256 lessWhere(Matches m, Units256 less) const { return {_mm256_sub_epi16(v, _mm256_and_si256(m, less.v))}; }
  Matches inBitmap(const uint8_t* bitmap) const {
    const auto row = _mm256_and_si256(_mm256_srli_epi16(v, 3), _mm256_set1_epi16(0x0F));
    const auto column = _mm256_or_si256(_mm256_and_si256(v, _mm256_set1_epi16(7)), _mm256_set1_epi16(-0x8000));
    const auto bytes = _mm256_shuffle_epi8(
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap))), row);
    const auto bit = _mm256_shuffle_epi8(_mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201)), column);
    return _mm256_cmpeq_epi16(_mm256_and_si256(bytes, bit), bit);
  }

  /// Of each unit the entry for its four low bits; what is in the high bytes has no meaning.
  Units256 byNibble(const uint8_t* table) const {
    const auto entries = _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(table)));
    return {_mm256_shuffle_epi8(entries, _mm256_and_si256(v, _mm256_set1_epi16(0x0F)))};
  }
  /// Where the low bytes of three have a bit in common.
  static Matches haveCommonBits(Units256 a, Units256 b, Units256 c) {
    const auto bits = _mm256_slli_epi16(_mm256_and_si256(_mm256_and_si256(a.v, b.v), c.v), 8);
    return inverse(_mm256_cmpeq_epi16(bits, _mm256_setzero_si256()));
  }

  static Matches both(Matches a, Matches b) { return _mm256_and_si256(a, b); }
  static Matches either(Matches a, Matches b) { return _mm256_or_si256(a, b); }
  static Matches inverse(Matches m) { return _mm256_xor_si256(m, _mm256_set1_epi16(-1)); }
  static uint64_t bits(Matches m) { return static_cast<uint32_t>(_mm256_movemask_epi8(m)); }
  static void storeAsBytes(Matches m, uint8_t* p) {
    const __m128i bytes = _mm_packs_epi16(_mm256_castsi256_si128(m), _mm256_extracti128_si256(m, 1));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(p), bytes);
  }
  static void storeInBitmap(Units256 a, Units256 b, const uint8_t* bitmap, uint8_t* p) {
    const auto units = _mm256_permute4x64_epi64(_mm256_packus_epi16(a.v, b.v), 0xD8);  // in their order
    const auto row = _mm256_and_si256(_mm256_srli_epi16(units, 3), _mm256_set1_epi8(0x0F));
    const auto bytes = _mm256_shuffle_epi8(
        _mm256_broadcastsi128_si256(_mm_loadu_si128(reinterpret_cast<const __m128i*>(bitmap))), row);
    const auto bit = _mm256_shuffle_epi8(_mm256_set1_epi64x(static_cast<int64_t>(0x8040201008040201)), units);
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm256_cmpeq_epi8(_mm256_and_si256(bytes, bit), bit));
  }
  static uint64_t positions(Matches m) {
    const auto packed = _mm_packs_epi16(_mm256_castsi256_si128(m), _mm256_extracti128_si256(m, 1));
    return static_cast<uint32_t>(_mm_movemask_epi8(packed));
  }
};

#endif
#ifdef __AVX512VBMI2__

struct Units512 {
  using Narrower = Units256;
  using Matches = __mmask32;
  static constexpr size_t kUnits = 32;
  static constexpr unsigned kBits = 1;
  static constexpr unichar kWindow = 1024;
  static constexpr unichar kTableWindow = 128;
  static constexpr bool kKnowsLowBits = true;
  static constexpr size_t kAhead = kUnits;

  __m512i v;

  static Units512 load(const unichar* p) { return {_mm512_loadu_si512(p)}; }
  static Units512 loadFirst(const unichar* p, size_t count) {
    return {_mm512_maskz_loadu_epi16(static_cast<__mmask32>((uint64_t{1} << count) - 1), p)};
  }
  static Units512 of(unichar c) { return {_mm512_set1_epi16(static_cast<short>(c))}; }
  /// Those `distance` units behind, at most `kUnits`: of this vector and the next one, as a load across lines of the
  /// cache takes as long as two.
  Units512 ahead(const unichar* p, size_t distance) const {
    static constexpr auto kPlaces = [] {
      std::array<unichar, kUnits> places{};
      for (size_t i = 0; i < kUnits; ++i) places[i] = static_cast<unichar>(i);
      return places;
    }();
    const __m512i places = _mm512_add_epi16(load(kPlaces.data()).v, of(static_cast<unichar>(distance)).v);
    return {_mm512_permutex2var_epi16(v, places, load(p + kUnits).v)};
  }
  void store(unichar* p) const { _mm512_storeu_si512(p, v); }
  static Units512 loadBytes(const uint8_t* p) { return {_mm512_loadu_si512(p)}; }
  static Units512 widened(const uint8_t* p) {
    return {_mm512_cvtepu8_epi16(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)))};
  }
  void storeBytes(uint8_t* p) const { _mm512_storeu_si512(p, v); }

  Units512 operator+(Units512 other) const { return {_mm512_add_epi16(v, other.v)}; }
  Units512 operator-(Units512 other) const { return {_mm512_sub_epi16(v, other.v)}; }
  Units512 operator^(Units512 other) const { return {_mm512_xor_si512(v, other.v)}; }
  size_t storeCompressed(Matches m, unichar* p) const {
    _mm512_storeu_si512(p, _mm512_maskz_compress_epi16(m, v));
    return static_cast<size_t>(__builtin_popcount(m));
  }
  Units512 differing(Units512 mask, Units512 bits) const {
    return {_mm512_ternarylogic_epi64(v, mask.v, bits.v, 0x6A)};
  }
  static Units512 unionOf(Units512 a, Units512 b, Units512 c) {
    return {_mm512_ternarylogic_epi64(a.v, b.v, c.v, 0xFE)};
  }
  /// `known | (a ^ b)`
  static Units512 unionWithDifference(Units512 known, Units512 a, Units512 b) {
    return {_mm512_ternarylogic_epi64(known.v, a.v, b.v, 0xF6)};
  }
  static Units512 least(Units512 a, Units512 b) { return {_mm512_min_epu16(a.v, b.v)}; }
  Units512 onlyWhere(Matches m) const { return {_mm512_maskz_mov_epi16(m, v)}; }
  Matches operator==(Units512 other) const { return _mm512_cmpeq_epi16_mask(v, other.v); }
  Matches operator<=(Units512 other) const { return _mm512_cmple_epu16_mask(v, other.v); }
  Units512 lessWhere(Matches m, Units512 less) const { return {_mm512_mask_sub_epi16(v, m, v, less.v)}; }
  static Units512 choose(Matches m, Units512 yes, Units512 no) { return {_mm512_mask_mov_epi16(no.v, m, yes.v)}; }
  Units512 tableWindow() const { return {_mm512_srli_epi16(v, 7)}; }
  struct Table {
    explicit Table(const unichar* t) : rows{load(t).v, load(t + 32).v, load(t + 64).v, load(t + 96).v} {}
    __m512i rows[4];
  };
  Units512 inTable(const Table& table) const {
    const __m512i low = _mm512_permutex2var_epi16(table.rows[0], v, table.rows[1]);
    const __m512i high = _mm512_permutex2var_epi16(table.rows[2], v, table.rows[3]);
    return {_mm512_mask_mov_epi16(low, _mm512_test_epi16_mask(v, _mm512_set1_epi16(0x40)), high)};
  }
  Matches inBitmap(const uint8_t* bitmap) const {
    const __m512i bytes =
        _mm512_permutex2var_epi8(_mm512_loadu_si512(bitmap), _mm512_srli_epi16(v, 3), _mm512_loadu_si512(bitmap + 64));
    const __m512i column = _mm512_and_si512(v, _mm512_set1_epi16(7));
    return _mm512_test_epi16_mask(bytes, _mm512_sllv_epi16(_mm512_set1_epi16(1), column));
  }

  /// Of each unit the entry for its seven low bits; what is in the high bytes has no meaning.
  Units512 byLowBits(const uint8_t* table) const {
    return {_mm512_permutex2var_epi8(_mm512_loadu_si512(table), v, _mm512_loadu_si512(table + 64))};
  }
  /// Where the low bytes of three have a bit in common.
  static Matches haveCommonBits(Units512 a, Units512 b, Units512 c) {
    return _mm512_test_epi16_mask(_mm512_ternarylogic_epi64(a.v, b.v, c.v, 0x80), _mm512_set1_epi16(0xFF));
  }

  static Matches both(Matches a, Matches b) { return a & b; }
  static Matches either(Matches a, Matches b) { return a | b; }
  static Matches inverse(Matches m) { return ~m; }
  /// By way of a number of 32 bits: where registers are short g++ 12 keeps a mask's 32 bits in memory and reads 64.
  static uint64_t bits(Matches m) {
    uint32_t low = m;
    asm("" : "+r"(low));  // NOLINT(hicpp-no-assembler)
    return low;
  }
  static void storeAsBytes(Matches m, uint8_t* p) {
    _mm256_storeu_si256(reinterpret_cast<__m256i*>(p), _mm256_movm_epi8(m));
  }
  static void storeInBitmap(Units512 a, Units512 b, const uint8_t* bitmap, uint8_t* p) {
    storeAsBytes(a.inBitmap(bitmap), p);
    storeAsBytes(b.inBitmap(bitmap), p + kUnits);
  }
  static uint64_t positions(Matches m) { return bits(m); }
};

#endif
#ifdef __AARCH64EL__

struct UnitsNeon {
  using Narrower = Scalar;
  using Matches = uint16x8_t;
  static constexpr size_t kUnits = 8;
  static constexpr unsigned kBits = 8;
  static constexpr unichar kWindow = 128;
  static constexpr unichar kTableWindow = 0;
  static constexpr bool kKnowsLowBits = false;
  static constexpr size_t kAhead = 0;

  uint16x8_t v;

  static UnitsNeon load(const unichar* p) { return {vld1q_u16(reinterpret_cast<const uint16_t*>(p))}; }
  static UnitsNeon loadFirst(const unichar* p, size_t count) {
    if (count == kUnits) return load(p);
    if (count < 4) {
      const uint64_t last = uint64_t{p[count - 1]} << (16 * (count - 1));
      const uint64_t low = p[0] | uint64_t{p[count / 2]} << (16 * (count / 2)) | last;
      return {vreinterpretq_u16_u64(vcombine_u64(vcreate_u64(low), vcreate_u64(0)))};
    }
    const auto half = [](const unichar* at) {
      return vreinterpret_u64_u16(vld1_u16(reinterpret_cast<const uint16_t*>(at)));
    };
    const auto down = vdup_n_s64(-16 * static_cast<int64_t>(kUnits - count));
    return {vreinterpretq_u16_u64(vcombine_u64(half(p), vshl_u64(half(p + count - 4), down)))};
  }
  static UnitsNeon of(unichar c) { return {vdupq_n_u16(c)}; }
  /// Those `distance` units behind the vector at `p`.
  UnitsNeon ahead(const unichar* p, size_t distance) const { return load(p + distance); }
  void store(unichar* p) const { vst1q_u16(reinterpret_cast<uint16_t*>(p), v); }
  static UnitsNeon loadBytes(const uint8_t* p) { return {vreinterpretq_u16_u8(vld1q_u8(p))}; }
  static UnitsNeon widened(const uint8_t* p) { return {vmovl_u8(vld1_u8(p))}; }
  void storeBytes(uint8_t* p) const { vst1q_u8(p, vreinterpretq_u8_u16(v)); }

  size_t storeCompressed(Matches m, unichar* p) const {
    const uint8x8_t bit = vcreate_u8(0x8040201008040201);
    const uint8_t set = vaddv_u8(vand_u8(vmovn_u16(m), bit));
    const uint8x16_t shuffle = vld1q_u8(kCompressingShuffles.bytes[set]);
    UnitsNeon{vreinterpretq_u16_u8(vqtbl1q_u8(vreinterpretq_u8_u16(v), shuffle))}.store(p);
    return static_cast<size_t>(__builtin_popcount(set));
  }
  UnitsNeon operator+(UnitsNeon other) const { return {vaddq_u16(v, other.v)}; }
  UnitsNeon operator-(UnitsNeon other) const { return {vsubq_u16(v, other.v)}; }
  UnitsNeon operator^(UnitsNeon other) const { return {veorq_u16(v, other.v)}; }
  UnitsNeon differing(UnitsNeon mask, UnitsNeon bits) const { return {veorq_u16(vandq_u16(v, mask.v), bits.v)}; }
  static UnitsNeon unionOf(UnitsNeon a, UnitsNeon b, UnitsNeon c) { return {vorrq_u16(vorrq_u16(a.v, b.v), c.v)}; }
  /// `known | (a ^ b)`
  static UnitsNeon unionWithDifference(UnitsNeon known, UnitsNeon a, UnitsNeon b) {
    return {vorrq_u16(known.v, veorq_u16(a.v, b.v))};
  }
  static UnitsNeon least(UnitsNeon a, UnitsNeon b) { return {vminq_u16(a.v, b.v)}; }
  UnitsNeon onlyWhere(Matches m) const { return {vandq_u16(v, m)}; }
  Matches operator==(UnitsNeon other) const { return vceqq_u16(v, other.v); }
  Matches operator<=(UnitsNeon other) const { return vcleq_u16(v, other.v); }
  UnitsNeon lessWhere(Matches m, UnitsNeon less) const { return {vsubq_u16(v, vandq_u16(m, less.v))}; }
  Matches inBitmap(const uint8_t* bitmap) const {
    const uint16x8_t row = vandq_u16(vshrq_n_u16(v, 3), vdupq_n_u16(0x0F));
    const uint8x16_t bytes = vqtbl1q_u8(vld1q_u8(bitmap), vreinterpretq_u8_u16(row));
    const uint16x8_t column = vandq_u16(v, vdupq_n_u16(7));
    const uint16x8_t bit = vshlq_u16(vdupq_n_u16(1), vreinterpretq_s16_u16(column));
    return vtstq_u16(vreinterpretq_u16_u8(bytes), bit);
  }

  /// Of each unit the entry for its four low bits; what is in the high bytes has no meaning.
  UnitsNeon byNibble(const uint8_t* table) const {
    const uint16x8_t nibbles = vandq_u16(v, vdupq_n_u16(0x0F));
    return {vreinterpretq_u16_u8(vqtbl1q_u8(vld1q_u8(table), vreinterpretq_u8_u16(nibbles)))};
  }
  /// Where the low bytes of three have a bit in common.
  static Matches haveCommonBits(UnitsNeon a, UnitsNeon b, UnitsNeon c) {
    return vtstq_u16(vandq_u16(vandq_u16(a.v, b.v), c.v), vdupq_n_u16(0xFF));
  }

  static Matches both(Matches a, Matches b) { return vandq_u16(a, b); }
  static Matches either(Matches a, Matches b) { return vorrq_u16(a, b); }
  static Matches inverse(Matches m) { return vmvnq_u16(m); }
  static uint64_t bits(Matches m) { return vget_lane_u64(vreinterpret_u64_u8(vmovn_u16(m)), 0); }
  static void storeAsBytes(Matches m, uint8_t* p) { vst1_u8(p, vmovn_u16(m)); }
  static void storeInBitmap(UnitsNeon a, UnitsNeon b, const uint8_t* bitmap, uint8_t* p) {
    const uint8x16_t units = vcombine_u8(vmovn_u16(a.v), vmovn_u16(b.v));
    const uint8x16_t bytes = vqtbl1q_u8(vld1q_u8(bitmap), vshrq_n_u8(units, 3));
    const int8x16_t column = vreinterpretq_s8_u8(vandq_u8(units, vdupq_n_u8(7)));
    vst1q_u8(p, vtstq_u8(bytes, vshlq_u8(vdupq_n_u8(1), column)));
  }
  static uint64_t positions(Matches m) { return vaddv_u8(vand_u8(vmovn_u16(m), vcreate_u8(0x8040201008040201))); }
};

#endif

}  // namespace
}  // namespace velan

#endif  // VELAN_BASE_KERNELS_UNIT_VECTORS_INTERNAL_H
