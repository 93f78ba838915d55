#include "velan/platform/Services.h"

#include <unicode/uchar.h>
#include <unicode/uversion.h>
#include <zlib.h>

#include "velan/base/kernels/CPUInternal.h"
#include "velan/platform/ServicesInternal.h"

namespace velan {

namespace {

std::string versionString(const UVersionInfo& version) {
  char text[U_MAX_VERSION_STRING_LENGTH];
  u_versionToString(version, text);
  return text;
}

Service icuService() {
  UVersionInfo version;
  u_getVersion(version);
  return {"ICU", versionString(version), "character data, normal forms, encodings, word breaks"};
}

Service zlibService() { return {"zlib", zlibVersion(), "compression"}; }

}  // namespace

// Required ones first, then the options; an adapter's own source file knows its version.
std::vector<Service> services() {
  return {
      icuService(),         zlibService(),        encryptionService(), hunspellService(), languageDetectionService(),
      fastDeflateService(), fastInflateService(),
  };
}

std::string instructionSets() { return featureNames(cpuFeatures()); }

std::string unicodeVersion() {
  UVersionInfo version;
  u_getUnicodeVersion(version);
  return versionString(version);
}

}  // namespace velan
