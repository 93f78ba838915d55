// Random bytes from the system.
#ifndef VELAN_PLATFORM_RANDOM_BYTES_INTERNAL_H
#define VELAN_PLATFORM_RANDOM_BYTES_INTERNAL_H

#include <cstdint>
#include <span>

namespace velan {

/// Fills `bytes` with random bytes that nobody can foretell; false when the system has none to give. May be called from
/// any thread.
bool fillWithRandomBytes(std::span<uint8_t> bytes);

}  // namespace velan

#endif  // VELAN_PLATFORM_RANDOM_BYTES_INTERNAL_H
