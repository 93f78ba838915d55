// MD5 and SHA-1 against published digests, and what is built on them.
#include <span>

#include "tests/Testing.h"
#include "velan/text/digest/Hexadecimal.h"
#include "velan/text/digest/MD5.h"
#include "velan/text/digest/SHA1.h"
#include "velan/text/digest/SHA1Internal.h"
#include "velan/text/digest/SaltedHash.h"

namespace velan {
namespace {

// In two parts, so that bytes are held between the calls.
template <typename Context, size_t kLength, auto kInit, auto kUpdate, auto kFinal>
std::string digestOf(std::string_view text) {
  Context context;
  uint8_t digest[kLength];
  kInit(&context);
  kUpdate(&context, text.data(), text.size() / 3);
  kUpdate(&context, text.data() + text.size() / 3, text.size() - text.size() / 3);
  kFinal(&context, digest);
  return hexadecimalString(digest).toUTF8();
}

constexpr auto md5 = digestOf<isc_md5_t, ISC_MD5_DIGESTLENGTH, isc_md5_init, isc_md5_update, isc_md5_final>;
constexpr auto sha1 = digestOf<isc_sha1_t, ISC_SHA1_DIGESTLENGTH, isc_sha1_init, isc_sha1_update, isc_sha1_final>;

TEST(Hashing, PublishedDigests) {
  const Cases<std::string, const char*, const char*> cases = {
      {"", "d41d8cd98f00b204e9800998ecf8427e", "da39a3ee5e6b4b0d3255bfef95601890afd80709"},
      {"abc", "900150983cd24fb0d6963f7d28e17f72", "a9993e364706816aba3e25717850c26c9cd0d89d"},
      {"abcdbcdecdefdefgefghfghighijhijkijkljklmklmnlmnomnopnopq", "8215ef0796a20bcaaae116d3876c664a",
       "84983e441c3bd26ebaae4aa1f95129e5e54670f1"},
      {std::string(1000000, 'a'), "7707d6ae4e027c70eea2a935c2296f21", "34aa973cd4c4daa4f61eeb2bdbad27316534016f"},
  };
  for (const auto& [text, byMD5, bySHA1] : cases) {
    EXPECT_EQ(md5(text), byMD5) << text.size();
    EXPECT_EQ(sha1(text), bySHA1) << text.size();
  }
}

TEST(Hashing, ContextsAreClearedAndNullIsHarmless) {
  isc_sha1_t context;
  isc_sha1_init(&context);
  isc_sha1_update(&context, "secret", 6);
  isc_sha1_invalidate(&context);
  for (const uint8_t byte : std::span(reinterpret_cast<const uint8_t*>(&context), sizeof context)) EXPECT_EQ(byte, 0);
  isc_sha1_update(nullptr, "x", 1);
  isc_md5_invalidate(nullptr);
}

TEST(Hashing, EverySHA1KernelEqualsTheReference) {
  std::mt19937 random(3);
  const auto blocks = std::make_unique<uint8_t[]>(321);
  for (size_t round = 0; round < 50; ++round) {
    for (size_t i = 0; i <= 320; ++i) blocks[i] = static_cast<uint8_t>(random());
    const auto start = static_cast<uint32_t>(random());
    for (const auto& kernel : sha1Kernels()) {
      uint32_t a[] = {start, 1, 2, 3, ~start}, b[] = {start, 1, 2, 3, ~start};
      sha1Scalar(a, blocks.get() + 1, round % 6);
      kernel.run(b, blocks.get() + 1, round % 6);
      EXPECT_TRUE(std::equal(a, a + 5, b)) << kernel.name << ' ' << round;
    }
  }
}

template <typename Count>
concept TakesCount = requires(String text, Count times) {
  saltedHash(text, text, StringEncoding::UTF8, times);
};

TEST(SaltedHash, AppendsTheSaltInEveryRound) {
  static_assert(TakesCount<size_t> && !TakesCount<int>, "-1 would mean 2^64 rounds");
  const String once = saltedHash(u"a"_s, u"bc"_s, StringEncoding::UTF8);
  EXPECT_EQ(once, u"a9993e364706816aba3e25717850c26c9cd0d89d"_s);
  EXPECT_EQ(saltedHash(u"a"_s, u"bc"_s, StringEncoding::UTF8, 0u), once);
  EXPECT_EQ(saltedHash(u"a"_s, u"bc"_s, StringEncoding::UTF8, 2u).toUTF8(), sha1(once.toUTF8() + "bc"));
  EXPECT_EQ(saltedHash(u"abc"_s, String()), once);
  EXPECT_EQ(saltedHash(u"x"_s).toUTF8(), "7ac59e66063e043cda1a9205b4d043d6371fbe2d");
  EXPECT_EQ(saltedHash(u"a"_s, u"\u0161"_s, StringEncoding::Latin1).toUTF8(), sha1("")) << "does not convert";
  EXPECT_EQ(saltedHash(u"a"_s, u"b"_s, StringEncoding::UTF16).toUTF8(), sha1({"\xFF\xFE"
                                                                              "a\0b\0",
                                                                              6}));
  EXPECT_TRUE(saltedHash(u""_s).isAbsent());
}

}  // namespace
}  // namespace velan
