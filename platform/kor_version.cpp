#include "idxbase/kor_system.h"
#include "idxbase_build_info.h"

namespace {

// Year-month-day.hour.minute of the build, as CMake wrote it.
constexpr char kBuildStamp[] = IDXBASE_BUILD_STAMP;

}  // namespace

void KORGetMERLOLevelInfo(KORLevelInfo& info) {
  info.version = IDXBASE_VERSION_MAJOR;
  info.release = IDXBASE_VERSION_MINOR;
  info.servicePack = IDXBASE_VERSION_PATCH;
  info.hotFix = 0;
  info.level = kBuildStamp;
}
