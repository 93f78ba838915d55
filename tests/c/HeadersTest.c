// Each C header is included and called from C11, so that C callers stay possible: its functions link and answer.
#include <stdio.h>

#include "velan/markup/Entities.h"
#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"
#include "velan/text/comparison/Comparison.h"
#include "velan/text/comparison/SetFilteredComparison.h"
#include "velan/text/digest/Checksums.h"
#include "velan/text/digest/MD5.h"
#include "velan/text/digest/SHA1.h"
#include "velan/text/encoding/UnicodeConverters.h"
#include "velan/text/inspection/Numbers.h"
#include "velan/text/search/Containment.h"
#include "velan/url/PercentEscapes.h"
#include "velan/wildcard/WildcardMatching.h"
#include "velan/wildcard/WildcardPattern.h"

static int failures = 0;

#define CHECK(condition) \
  ((condition) ? (void)0 : (void)(++failures, fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition)))

static void checkText(void) {
  CHECK(isMemberOfCharacterSetRep(digitCharacterSetRep(), u'7'));
  CHECK(toUpper(u'a') == u'A' && initUpperCharsTable() == _upperCharsTable);
  CHECK(isMemberOfCharacterSetRep(defaultWordSeparators(), u' '));
  CHECK(fastCompareUnichars(u"abc", 3, u"abd", 3) == -1);
  CHECK(fastCaseInsensitiveContainsUnichars(u"abc", 3, u"BC", 2) != NULL);
  CHECK(containsNumberWithNDigits(u"a12", 3, 2) && !containsNumberWithNDigits(u"a12", 3, 3));
  CHECK(equalCharsOfCharacterSetRep(u"a-b", 3, u"ab", 2, alphaCharacterSetRep()));
}

static void checkWildcards(void) {
  static const unichar text[] = {u'a', u'b'};
  unichar pattern[] = {u'[', u'a', u'|', u'b', u']', u'*'};
  Range range;
  CHECK(optimizeWildcard(pattern, pattern + 6, &range, 1) == WildcardTypeSetPrefix && range.length == 4);
  CHECK(stringMatchesUnixWildcard(text, text + 2, pattern, pattern + 5));
  CHECK(stringMatchesUnixWildcardFuzzy(text, 2, text, 2) >= MinWildcardFuzzyAnalogy);
}

static void checkHashing(void) {
  uint8_t digest[ISC_SHA1_DIGESTLENGTH];
  isc_sha1_t sha1;
  isc_md5_t md5;
  isc_sha1_init(&sha1);
  isc_sha1_update(&sha1, "abc", 3);
  isc_sha1_final(&sha1, digest);
  CHECK(digest[0] == 0xA9);
  isc_md5_init(&md5);
  isc_md5_update(&md5, "abc", 3);
  isc_md5_final(&md5, digest);
  CHECK(digest[0] == 0x90);
  CHECK(CRC32("abc", 3) == 0xCA6598D0 && CRC32UniChars(u"a", 1) == 0x3AB551CE);
}

static void checkMarkup(void) {
  unichar text[] = {u'&', u'a', u'm', u'p', u';', u'l', u't', u';'};
  CHECK(convertEntities2Characters(text, text, 0, 8, true, false, false) == 4);
  CHECK(convertStdEntities2Characters(text, 4) == 1 && text[0] == u'<');
}

static void checkURLs(void) {
  unichar text[] = {u'%', u'4', u'1', u'%', u'2', u'0'};
  CHECK(convertPercentEscapesOfURL(text, 6, true) == 4 && text[3] == u' ');
  CHECK(convertPercentEscapesOfURL(text, 4, false) == 2 && text[0] == u'A');
}

static void checkEncodings(void) {
  unichar units[2] = {0};
  char bytes[2] = {0};
  size_t length = 0;
  initUnicodeConverters();
  CHECK(convertUTF8ToUnicode("\xC3\xA9", 2, units, 2) == ConverterSuccess && units[0] == 0xE9);
  CHECK(convertUnicodeToUTF8(units, 1, bytes, 2) == ConverterSuccess && bytes[0] == '\xC3');
  CHECK(convertEncodingToUnicode("\x80", 1, 0x500, units, 2, &length) == 1 && length == 1 && units[0] == 0x20AC);
}

int main(void) {
  checkText();
  checkWildcards();
  checkHashing();
  checkMarkup();
  checkURLs();
  checkEncodings();
  return failures == 0 ? 0 : 1;
}
