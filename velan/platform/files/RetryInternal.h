// Starting interrupted system calls again.
#ifndef VELAN_PLATFORM_FILES_RETRY_INTERNAL_H
#define VELAN_PLATFORM_FILES_RETRY_INTERNAL_H

#include <cerrno>

namespace velan {

/// The result of `call()`, started again while a signal interrupts it. A thousand times in a row is no signal but a
/// fault: that counts as a failure.
template <typename Call>
auto retried(Call call) {
  auto result = call();
  for (int times = 0; result < 0 && errno == EINTR && times < 1000; ++times) result = call();
  return result;
}

}  // namespace velan

#endif  // VELAN_PLATFORM_FILES_RETRY_INTERNAL_H
