// The about information, from given level information.
#ifndef IDXBASE_SERVICES_ABOUT_INFO_H_
#define IDXBASE_SERVICES_ABOUT_INFO_H_

#include "idxbase/kor_collections.h"
#include "idxbase/kor_system.h"

namespace idxbase::detail {

// Replaces the content of `info` with: the third number of `level.level`
// read as "%d-%d-%d.%d.%d" (0 when absent), the level text itself (empty
// when null), then the four integers of `level`, all in decimal.
void FillAboutInfo(const KORLevelInfo& level, KORListValKORUnicodeString& info);

}  // namespace idxbase::detail

#endif  // IDXBASE_SERVICES_ABOUT_INFO_H_
