// Each C header is included and called from C11, so that C callers stay possible: its functions link and answer.
#include <stdio.h>

#include "velan/text/CharacterSets.h"
#include "velan/text/Checksums.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/MD5.h"
#include "velan/text/SHA1.h"
#include "velan/text/Separators.h"

static int failures = 0;

#define CHECK(condition) \
  ((condition) ? (void)0 : (void)(++failures, fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition)))

static void checkText(void) {
  CHECK(isMemberOfCharacterSetRep(digitCharacterSetRep(), u'7'));
  CHECK(toUpper(u'a') == u'A' && initUpperCharsTable() == _upperCharsTable);
  CHECK(isMemberOfCharacterSetRep(defaultWordSeparators(), u' '));
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

int main(void) {
  checkText();
  checkHashing();
  return failures == 0 ? 0 : 1;
}
