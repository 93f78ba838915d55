#include "velan/text/encoding/TextFiles.h"

#include <memory>

#include "velan/platform/files/ExtendedAttributes.h"
#include "velan/platform/files/File.h"
#include "velan/platform/files/FileContents.h"
#include "velan/platform/files/FileReplacement.h"
#include "velan/text/encoding/CharsetNames.h"
#include "velan/text/encoding/EncodingAttributesInternal.h"
#include "velan/text/encoding/EncodingDetection.h"
#include "velan/text/encoding/StringConversion.h"

namespace velan {
namespace {

void store(StringEncoding* usedEncoding, StringEncoding encoding) {
  if (usedEncoding) *usedEncoding = encoding;
}

// What detection came to, or the contents as ASCII.
String detectedText(const Data& contents, const DetectedEncoding& found, StringEncoding* usedEncoding) {
  store(usedEncoding, found.text ? found.encoding : StringEncoding::ASCII);
  return found.text ? found.text : stringWithData(contents, StringEncoding::ASCII);
}

bool isDetectable(StringEncoding encoding) {
  return encoding == StringEncoding::ASCII || encoding == StringEncoding::UTF8 || encoding == StringEncoding::UTF16 ||
         encoding == StringEncoding::UTF32;
}

// A file that is new is written beside its name in any case: there is nothing to lose.
bool overwrite(const String& path, const Data& bytes) {
  FileError error;
  const auto file = File::open(path, FileAccess::Updating, &error);
  if (!file) return error.reason() == FileReason::NoSuchFile && !replaceFile(path, bytes);
  return file->truncate(0) && file->write({bytes.span()}, 0) && file->close();
}

bool writeUsing(StringEncoding encoding, const String& string, const String& path, bool atomically,
                StringEncoding* usedEncoding) {
  store(usedEncoding, encoding);
  return writeToFile(string, path, atomically, encoding);
}

}  // namespace

String stringWithContentsOfFile(const String& path, StringEncoding encoding) {
  return stringWithContentsOfFile(path, encoding, nullptr);
}

String stringWithContentsOfFile(const String& path, StringEncoding encoding, StringEncoding* usedEncoding) {
  store(usedEncoding, encoding);
  const Data contents = readFileContents(path, FileReading::Plain);
  if (!asksForDetection(encoding)) return stringWithData(contents, encoding);
  return detectedText(contents, detectedEncodingOfFile(path, contents), usedEncoding);
}

String stringWithContentsOfData(const Data& data, StringEncoding encoding, StringEncoding* usedEncoding) {
  store(usedEncoding, encoding);
  if (!asksForDetection(encoding)) return stringWithData(data, encoding);
  return detectedText(data, detectedEncodingOfData(data), usedEncoding);
}

bool writeToFile(const String& string, const String& path, bool atomically, StringEncoding encoding) {
  const Data bytes = string ? dataUsingEncoding(string.view(), encoding) : Data();
  if (!bytes) return false;
  if (!(atomically ? !replaceFile(path, bytes) : overwrite(path, bytes))) return false;
  removeExtendedAttribute(path, kTextEncodingAttribute);
  const StringEncoding number = stringEncoding(textEncoding(encoding));
  const char* name = charsetName(number);
  if (isDetectable(number) || !name) {
    removeExtendedAttribute(path, kCharsetAttribute);
  } else {
    setExtendedAttribute(path, kCharsetAttribute, name);
  }
  return true;
}

bool writeToFileUsingDefaultEncoding(const String& string, const String& path, bool atomically,
                                     StringEncoding* usedEncoding) {
  return writeUsing(defaultEncoding(), string, path, atomically, usedEncoding);
}

bool writeToFileUsingFastestEncoding(const String& string, const String& path, bool atomically,
                                     StringEncoding* usedEncoding) {
  return writeUsing(fastestEncoding(string), string, path, atomically, usedEncoding);
}

bool writeToFileUsingSmallestEncoding(const String& string, const String& path, bool atomically,
                                      StringEncoding* usedEncoding) {
  return writeUsing(smallestEncoding(string), string, path, atomically, usedEncoding);
}

}  // namespace velan
