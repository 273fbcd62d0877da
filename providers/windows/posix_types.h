// What the compiler for Windows lacks of the types and constants of POSIX. Of the constants only
// posix_calls.cpp gives a meaning to the numbers.
#ifndef ZTB_PROVIDERS_WINDOWS_POSIX_TYPES_H_
#define ZTB_PROVIDERS_WINDOWS_POSIX_TYPES_H_

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <ctime>

#define O_CLOEXEC O_NOINHERIT
#define O_NOFOLLOW 0
#define O_NONBLOCK 0
#define O_DIRECTORY 0x100000
#define LOCK_EX 2
#define LOCK_NB 4
#ifndef S_IFLNK
#define S_IFLNK 0120000
#define S_ISLNK(mode) (((mode)&S_IFMT) == S_IFLNK)
#endif
#ifndef S_ISVTX
#define S_ISVTX 01000
#endif
// No call here gives it.
#ifndef EDQUOT
#define EDQUOT 10069
#endif

namespace ztbwindows {

using uid_t = unsigned;

// Files have no users' bits here, so that one answer does for all.
inline uid_t geteuid() {
  return 0;
}

struct FileStatus {
  std::uint64_t st_dev;
  std::uint64_t st_ino;
  mode_t st_mode;
  unsigned st_nlink;
  uid_t st_uid;
  off_t st_size;
  timespec st_mtim;
  timespec st_ctim;
};

}  // namespace ztbwindows

#endif  // ZTB_PROVIDERS_WINDOWS_POSIX_TYPES_H_
