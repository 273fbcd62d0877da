#include <windows.h>
// After the header of the system.
#include <tlhelp32.h>

#include <atomic>
#include <cstdint>

#include "providers/model/solvers/thread_end.h"

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

std::atomic<void (*)()> atEnd{nullptr};

void WINAPI endThread(void* /*mark*/) {
  atEnd.load()();
}

}  // namespace

// By a slot of the system's and not by the destructor of a thread_local object: with mingw-w64 that
// runs when the memory of the thread's variables is given back already.
void atThreadEnd(void (*function)()) {
  static const DWORD slot = FlsAlloc(endThread);
  if (slot == FLS_OUT_OF_INDEXES || FlsGetValue(slot) != nullptr || isFirstThread()) return;
  atEnd = function;
  FlsSetValue(slot, &atEnd);
}

}  // namespace lomu
