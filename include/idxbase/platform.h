// The foundation layer that idxbase runs on and shares with its callers:
// strings, time, collections, points and vectors, threads, settings,
// file descriptors and operating-system services.
#ifndef IDXBASE_PLATFORM_H_
#define IDXBASE_PLATFORM_H_

#include "idxbase/kor_collections.h"
#include "idxbase/kor_file.h"
#include "idxbase/kor_math.h"
#include "idxbase/kor_settings.h"
#include "idxbase/kor_string.h"
#include "idxbase/kor_system.h"
#include "idxbase/kor_threads.h"
#include "idxbase/kor_time.h"
#include "idxbase/kor_types.h"

#endif  // IDXBASE_PLATFORM_H_
