// Uses a little of every service family that idxbase installs: switches,
// index names, traces, timers and the about information.
#include <idxbase/idxbase.h>

#include <cstdio>

int main() {
  PLMSearchTimer timer;
  timer.StartTimer();

  KORUnicodeString checksum("index");
  KORMakePath(checksum, IDX_Base_Constants::CHECKSUM_FILENAME);
  IDX_Base_Trace::Debug("checksum file: %s", checksum.ConvertToChar());
  IDX_Base_Trace::Debug("fast CV: %s, keep generation: %d", IDX_DEV_LA::_FastCV ? "on" : "off",
                        IDX_DEV_LA::KeepGeneration());

  KORListValKORUnicodeString about;
  GetAboutInfo(about);
  timer.StopTimer();
  std::printf("idxbase %s.%s.%s (%s), %d ms\n", about[3].ConvertToChar(), about[4].ConvertToChar(),
              about[5].ConvertToChar(), about[2].ConvertToChar(), timer.GetElapsed());
  return about.Size() == 6 ? 0 : 1;
}
