// What to do about files that somebody has open for a moment, as virus scanners and indexers have
// new ones: try again, a bounded number of times.
#ifndef ZTB_PROVIDERS_WINDOWS_HELD_FILE_H_
#define ZTB_PROVIDERS_WINDOWS_HELD_FILE_H_

#include <windows.h>

#include <algorithm>

namespace ztbwindows {

// The waits between them add up to less than five seconds.
inline constexpr int kTriesOfHeldFile = 25;

// Calls `action`, which gives false and leaves an error of Windows where it fails, until it
// succeeds, fails for another reason than that somebody has the file, or was called often enough;
// between calls `pause` with milliseconds. Result: whether it succeeded; the error of the last call
// stays.
template <typename Action, typename Pause>
bool tryWhileHeld(Action action, Pause pause) {
  constexpr DWORD longest = 200;
  DWORD wait = 2;
  for (int tries = 1;; ++tries) {
    if (action()) return true;
    const DWORD error = GetLastError();
    const bool held = error == ERROR_SHARING_VIOLATION || error == ERROR_ACCESS_DENIED ||
                      error == ERROR_USER_MAPPED_FILE;
    if (!held || tries == kTriesOfHeldFile) return false;
    pause(wait);
    wait = std::min(2 * wait, longest);
  }
}

}  // namespace ztbwindows

#endif  // ZTB_PROVIDERS_WINDOWS_HELD_FILE_H_
