// Every way to transcode equals the reference. Runs at every level of instructions.
#include "tests/Testing.h"
#include "velan/base/utf/UTFKernelsInternal.h"

namespace velan {
namespace {

// Heap buffers of the exact size, at an odd address if wanted: the address sanitizer sees an access one too far.
template <typename Input>
void expectEqualToReference(const std::basic_string<Input>& text, size_t shift) {
  using Output = std::conditional_t<sizeof(Input) == 1, unichar, char>;
  const auto run = [&](const Kernel<UTFTranscoding>& kernel, Transcoded& result) {
    const auto in = std::make_unique<Input[]>(text.size() + shift);
    std::copy(text.begin(), text.end(), in.get() + shift);
    const auto out = std::make_unique<Output[]>(text.size() * (sizeof(Input) == 1 ? 1 : kMaxUTF8BytesPerUnit));
    if constexpr (sizeof(Input) == 1) {
      const auto* bytes = reinterpret_cast<const uint8_t*>(in.get() + shift);
      result = kernel.run.toUTF16(bytes, text.size(), out.get());
    } else {
      result = kernel.run.toUTF8(in.get() + shift, text.size(), out.get());
    }
    return std::basic_string<Output>(out.get(), result.written);
  };
  Transcoded expected{};
  const auto units = run(*utfKernels().begin(), expected);
  for (const auto& kernel : utfKernels()) {
    Transcoded result{};
    ASSERT_EQ(run(kernel, result), units) << kernel.name << ' ' << testing::PrintToString(text);
    ASSERT_EQ(result.consumed, expected.consumed) << kernel.name << ' ' << testing::PrintToString(text);
  }
}

constexpr uint32_t kLastOfLength[] = {0x7F, 0x7FF, 0xFFFF, 0x10FFFF};

// Text of code points of up to `longest` bytes, the shorter ones as frequent.
std::u16string randomText(std::mt19937& random, size_t characters, size_t longest) {
  std::u16string text;
  for (size_t i = 0; i < characters; ++i) {
    auto codePoint = static_cast<uint32_t>(random() % (kLastOfLength[random() % longest] + 1));
    if (codePoint >= 0xD800 && codePoint < 0xE000) codePoint = 0xD7FF;
    if (codePoint < 0x10000) {
      text.push_back(static_cast<unichar>(codePoint));
    } else {
      text.push_back(static_cast<unichar>(0xD7C0 + (codePoint >> 10)));
      text.push_back(static_cast<unichar>(0xDC00 + (codePoint & 0x3FF)));
    }
  }
  return text;
}

TEST(UTFKernels, WellFormedTextOfEveryLengthAtEveryAddress) {
  std::mt19937 random(1);
  for (size_t characters = 0; characters <= 200; ++characters) {
    for (size_t longest = 1; longest <= 4; ++longest) {
      const std::u16string text = randomText(random, characters, longest);
      expectEqualToReference(text, characters % 5);
      expectEqualToReference(*utf8FromUTF16(text), characters % 17);
      if (HasFatalFailure()) return;
    }
  }
}

// One byte replaced, inserted or cut off, at every place of texts that fill some blocks.
TEST(UTFKernels, MalformedTextStopsAtTheSameByte) {
  std::mt19937 random(2);
  const std::vector<std::string> insertions = {
      "\x80",         "\xBF",         "\xC0\x80",         "\xC1\xBF", "\xC2",
      "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xE2\x82", "\xF4\x90\x80\x80",
      "\xF5",         "\xFF",         "\xF0\x9F\x98",     "\xEE\x80"};
  for (size_t longest = 1; longest <= 4; ++longest) {
    std::string utf8 = *utf8FromUTF16(randomText(random, 70, longest));
    for (size_t i = 0; i <= utf8.size(); ++i) {
      const std::string& inserted = insertions[i % insertions.size()];
      expectEqualToReference(utf8.substr(0, i) + inserted + utf8.substr(i), 0);
      expectEqualToReference(utf8.substr(0, i), 1);
      std::string damaged = utf8;
      if (i < utf8.size()) damaged[i] = static_cast<char>(random());
      expectEqualToReference(damaged, 0);
      if (HasFatalFailure()) return;
    }
  }
  for (size_t length = 1; length <= 100; ++length) {
    for (size_t at = 0; at < length; ++at) {
      std::u16string text(length, at % 2 ? u'\u20AC' : u'a');
      text[at] = at % 3 ? u'\xD800' : u'\xDC00';
      expectEqualToReference(text, 1);
      if (at + 1 < length) text[at + 1] = u'\xDC01';
      expectEqualToReference(text, 0);
      if (HasFatalFailure()) return;
    }
  }
}

// Runs of ASCII go by longer steps than other text.
TEST(UTFKernels, OneOtherCharacterAnywhereInASCII) {
  std::string bytes(420, ' ');
  for (size_t i = 0; i < bytes.size(); ++i) bytes[i] = static_cast<char>('!' + i % 90);
  const std::u16string units(bytes.begin(), bytes.end());
  for (size_t i = 0; i <= bytes.size(); ++i) {
    for (const std::string_view other : {"\xC2\x80", "\xEF\xBF\xBF", "\x80"}) {
      expectEqualToReference(bytes.substr(0, i) + std::string(other) + bytes.substr(i), 0);
    }
    for (const unichar other : {u'\x80', u'\uFFFF', u'\xDC00'}) {
      expectEqualToReference(units.substr(0, i) + other + units.substr(i), 1);
    }
    if (HasFatalFailure()) return;
  }
}

TEST(UTFKernels, RandomBytes) {
  std::mt19937 random(3);
  for (int i = 0; i < 20000; ++i) {
    std::string bytes(random() % 150, 'x');
    for (char& byte : bytes) byte = "\x41\x80\xBF\xC2\xE0\xED\xF0\xF4\xA0\x9F"[random() % 10];
    expectEqualToReference(bytes, 0);
    if (HasFatalFailure()) return;
  }
}

TEST(UTFKernels, EveryCodePointGoesBothWays) {
  std::u16string all;
  for (uint32_t c = 0; c < 0x110000; ++c) {
    if (c >= 0xD800 && c < 0xE000) continue;
    if (c >= 0x10000) all.push_back(static_cast<unichar>(0xD800 + ((c - 0x10000) / 0x400)));
    all.push_back(static_cast<unichar>(c < 0x10000 ? c : 0xDC00 + c % 0x400));
  }
  const auto utf8 = utf8FromUTF16(all);
  ASSERT_TRUE(utf8);
  EXPECT_TRUE(isUTF8(*utf8));
  EXPECT_EQ(utf8->size(), 0x80u + 2 * 0x780 + 3 * (0x10000 - 0x800 - 0x800) + 4 * 0x100000);
  EXPECT_TRUE(String::fromUTF8(*utf8).view() == all);
  EXPECT_EQ(String(all).toUTF8(), *utf8);
  expectEqualToReference(all, 0);
  expectEqualToReference(*utf8, 0);
}

}  // namespace
}  // namespace velan
