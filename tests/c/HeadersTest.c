// Each C header is included and called from C11, so that C callers stay possible: its functions link and answer.
#include <stdio.h>

#include "velan/text/CharacterSets.h"
#include "velan/text/ConversionTables.h"
#include "velan/text/Separators.h"

static int failures = 0;

#define CHECK(condition) \
  ((condition) ? (void)0 : (void)(++failures, fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #condition)))

static void checkText(void) {
  CHECK(isMemberOfCharacterSetRep(digitCharacterSetRep(), u'7'));
  CHECK(toUpper(u'a') == u'A' && initUpperCharsTable() == _upperCharsTable);
  CHECK(isMemberOfCharacterSetRep(defaultWordSeparators(), u' '));
}

int main(void) {
  checkText();
  return failures == 0 ? 0 : 1;
}
