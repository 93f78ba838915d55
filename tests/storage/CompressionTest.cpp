#include <zlib.h>

#include "tests/Testing.h"
#include "tests/storage/SimulatedFiles.h"
#include "velan/storage/Compression.h"
#include "velan/storage/Digest.h"
#include "velan/storage/Encryption.h"
#include "velan/text/digest/Hexadecimal.h"

namespace velan {
namespace {

const Data kText = Data::withBytes(std::string(50000, 'x') + "some more text, some more");

TEST(Compression, LevelsAndWrappers) {
  EXPECT_EQ(dataByGzippingData(kText).view().substr(0, 2), "\x1F\x8B");
  EXPECT_EQ(dataByDeflatingData(kText, 1).view().substr(0, 2), "\x78\x01");
  EXPECT_EQ(dataByDeflatingData(kText, 0), dataByDeflatingData(kText, 1));
  EXPECT_EQ(dataByDeflatingData(kText, 12), dataByDeflatingData(kText, 9));
  EXPECT_EQ(dataByDeflatingData(kText, -1), dataByDeflatingData(kText, 6));
  EXPECT_TRUE(dataByDeflatingData(Data()).isAbsent());
  EXPECT_TRUE(dataByDeflatingBytes("", 0).isAbsent());
  EXPECT_TRUE(dataByGzippingBytes("x", size_t{1} << 32).isAbsent());
}

TEST(Compression, InflatesWholeStreamsOnly) {
  for (const Data& stream : {dataByGzippingData(kText), dataByDeflatingData(kText)}) {
    EXPECT_EQ(dataByInflatingData(stream), kText);
    MutableData more(stream);
    more.appendBytes("x", 1);
    EXPECT_TRUE(dataByInflatingData(more).isAbsent()) << "a trailing byte";
    EXPECT_TRUE(dataByInflatingData(stream.subdata({0, 30})).isAbsent()) << "unfinished";
    EXPECT_EQ(dataByInflatingData(stream, kText.length()), kText);
    EXPECT_TRUE(dataByInflatingData(stream, kText.length() - 1).isAbsent()) << "above the limit";
  }
  const Data stream = dataByDeflatingData(kText);
  EXPECT_TRUE(dataByInflatingData(stream.subdata({2, 1000000})).isAbsent()) << "without a header";
  MutableData receiver(stream);
  EXPECT_TRUE(setDataByInflating(receiver));
  EXPECT_EQ(receiver.data(), kText);
  EXPECT_FALSE(setDataByInflatingBytes(receiver, nullptr, 4));
  EXPECT_EQ(receiver.length(), kText.length()) << "refused at once: left alone";
  EXPECT_FALSE(setDataByInflatingBytes(receiver, stream.bytes(), stream.length(), 20000));
  EXPECT_EQ(receiver.length(), 20000u) << "the output so far";
}

// Words, noise and zeros of lengths around the sizes of parts, through zlib itself in both directions.
TEST(Compression, IsReadableByZlibAndTheOtherWayRound) {
  std::mt19937 random(1);
  for (const size_t length : {1u, 2u, 300u, 4096u, 65535u, 65537u, 1000000u}) {
    for (const unsigned kinds : {1u, 7u, 256u}) {
      std::string text(length, '\0');
      for (char& byte : text) byte = static_cast<char>(random() % kinds);
      for (const bool useGzip : {false, true}) {
        const Data stream = dataByCompressingBytes(text.data(), length, 1, useGzip);
        EXPECT_LE(stream.length(), compressBound(length) + 12) << length << ' ' << kinds;
        std::string back(length, 'x');
        z_stream zlib{};
        ASSERT_EQ(inflateInit2(&zlib, useGzip ? 31 : 15), Z_OK);
        zlib.next_in = const_cast<Bytef*>(stream.bytes());
        zlib.avail_in = static_cast<uInt>(stream.length());
        zlib.next_out = reinterpret_cast<Bytef*>(back.data());
        zlib.avail_out = static_cast<uInt>(length);
        EXPECT_EQ(inflate(&zlib, Z_FINISH), Z_STREAM_END);
        EXPECT_EQ(zlib.avail_in, 0u);
        inflateEnd(&zlib);
        EXPECT_TRUE(back == text) << length << ' ' << kinds;
        for (const int level : {1, 6}) {
          EXPECT_EQ(dataByInflatingData(dataByCompressingBytes(text.data(), length, level, useGzip)).view(), text);
        }
      }
    }
  }
}

// The algorithms themselves are tested where they are implemented.
TEST(Digest, OfBuffers) {
  EXPECT_EQ(SHA1DigestStringValue(Data::withBytes("abc")), u"a9993e364706816aba3e25717850c26c9cd0d89d"_s);
  EXPECT_EQ(MD5DigestStringValue(Data()), u"d41d8cd98f00b204e9800998ecf8427e"_s);
}

TEST(Encryption, KnownBytesAndBackAgain) {
  CapturedLog log;
  const Data text = Data::withBytes("sixteen bytes ok");
  const Data encrypted = encryptedDataUsingKey(text, u"pass"_s);
  if (!encrypted) GTEST_SKIP() << "built without AES";
  // openssl enc -aes-256-cbc -iv 0 -K with the first 32 digits of the salted hash
  EXPECT_EQ(hexadecimalString(encrypted.span()).toUTF8(),
            "fda0f19aa0a948d51cd219f8e69c0d15318df70e604fb8cdb0111e9b0f981bfa");
  EXPECT_EQ(decryptedDataUsingKey(encrypted, u"pass"_s), text);
  EXPECT_NE(decryptedDataUsingKey(encrypted, u"other"_s), text);
  for (const size_t length : {15u, 17u, 100000u}) {
    const Data data = Data::withBytes(std::string(length, 'd'));
    EXPECT_EQ(decryptedDataUsingKey(encryptedDataUsingKey(data, u"k"_s), u"k"_s), data);
  }
  log.messages.clear();
  EXPECT_TRUE(encryptedDataUsingKey(Data(), u"k"_s).isAbsent());
  EXPECT_TRUE(log.messages.empty());
  EXPECT_TRUE(encryptedDataUsingKey(text, u""_s).isAbsent());
  EXPECT_TRUE(decryptedDataUsingKey(encrypted.subdata({0, 15}), u"pass"_s).isAbsent());
  EXPECT_EQ(log.messages,
            (std::vector<std::string>{"WARNING: Couldn't encrypt data.", "WARNING: Couldn't decrypt data."}));
}

}  // namespace
}  // namespace velan
