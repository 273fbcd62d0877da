#include <windows.h>
// After the header of the system.
#include <tlhelp32.h>

#include <cstdint>

#include "providers/model/solvers/first_thread.h"

namespace lomu {

namespace {

// When a thread was made; later than any where it cannot be asked.
std::uint64_t birthOf(DWORD id) {
  std::uint64_t born = UINT64_MAX;
  const HANDLE thread = OpenThread(THREAD_QUERY_LIMITED_INFORMATION, FALSE, id);
  if (thread == nullptr) return born;
  FILETIME made;
  FILETIME ended;
  FILETIME system;
  FILETIME user;
  if (GetThreadTimes(thread, &made, &ended, &system, &user) != 0) {
    born = std::uint64_t{made.dwHighDateTime} << 32U | made.dwLowDateTime;
  }
  CloseHandle(thread);
  return born;
}

}  // namespace

// The system does not say it: the first one is what is older than the others.
bool isFirstThread() {
  const DWORD own = GetCurrentThreadId();
  const std::uint64_t born = birthOf(own);
  const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  if (all == INVALID_HANDLE_VALUE) return true;
  THREADENTRY32 entry = {};
  entry.dwSize = sizeof entry;
  bool first = true;
  for (BOOL more = Thread32First(all, &entry); more != 0 && first;
       more = Thread32Next(all, &entry)) {
    const bool other =
        entry.th32OwnerProcessID == GetCurrentProcessId() && entry.th32ThreadID != own;
    if (other && birthOf(entry.th32ThreadID) < born) first = false;
  }
  CloseHandle(all);
  return first;
}

}  // namespace lomu
