// Each adapter tells about its service here, whether the build has it or not.
#ifndef VELAN_PLATFORM_SERVICES_INTERNAL_H
#define VELAN_PLATFORM_SERVICES_INTERNAL_H

#include "velan/platform/Services.h"

namespace velan {

Service encryptionService();
Service fastDeflateService();
Service fastInflateService();
Service hunspellService();
Service languageDetectionService();

}  // namespace velan

#endif  // VELAN_PLATFORM_SERVICES_INTERNAL_H
