// Where a text has been looked up: its next units mostly lie there, too.
#ifndef VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H
#define VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H

#include "velan/base/CTypes.h"

namespace velan {
namespace {

/// The first units of the windows that were looked up last, the latest first; the very first window is not among them.
struct RecentWindows {
  void add(unichar base) {
    latest[2] = latest[1];
    latest[1] = latest[0];
    latest[0] = base;
  }

  unichar latest[3] = {0x400, 0x2000, 0x3000};
};

}  // namespace
}  // namespace velan

#endif  // VELAN_TEXT_KERNELS_RECENT_WINDOWS_INTERNAL_H
