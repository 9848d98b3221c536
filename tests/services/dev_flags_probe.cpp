// Prints a few development switches as the shared library read them while
// it was loaded, for the test that runs it under a chosen environment:
// "<_FastCV> <KeepGeneration()> [<GetPersistantConfigCacheDir()>]".
#include <cstdio>

#include "idxbase/settings.h"

int main() {
  std::printf("%d %d [%s]\n", IDX_DEV_LA::_FastCV ? 1 : 0, IDX_DEV_LA::KeepGeneration(),
              IDX_DEV_LA::GetPersistantConfigCacheDir().ConvertToChar());
  return 0;
}
