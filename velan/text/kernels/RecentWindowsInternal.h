// The windows in which units were looked up: the next units of a text mostly lie there, too.
#ifndef VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H
#define VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {
namespace {

/// `windows` are the first units of those that were looked up last, the latest first; the very first window is not
/// among them.
inline void addRecent(unichar base, unichar (&windows)[3]) {
  windows[2] = windows[1];
  windows[1] = windows[0];
  windows[0] = base;
}

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H
