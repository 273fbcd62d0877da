// Files as the system has them: names are UTF-8 everywhere, and what differs between systems stands
// here and in system_files_linux.cpp and system_files_windows.cpp.
//
// The namespace posix has the calls of POSIX under their names; on Windows those of
// providers/windows.
#ifndef ZTB_TOOLS_FILES_SYSTEM_FILES_H_
#define ZTB_TOOLS_FILES_SYSTEM_FILES_H_

#include <cstdio>
#include <filesystem>
#include <string>
#include <string_view>

#ifdef _WIN32
#include "providers/windows/posix_calls.h"

namespace posix = ztbwindows;
#else
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

namespace posix {

using ::access;
using ::close;
using ::flock;
using ::fstat;
using ::ftruncate;
using ::lstat;
using ::open;
using ::pread;
using ::pwrite;
using ::read;
using ::rename;
using ::stat;
using ::unlink;
using ::write;
using FileStatus = struct stat;

// Whether a file that a program has open can be opened by any other one.
inline constexpr bool opensForAll = true;

inline int fchmod(int fd, mode_t mode) {
  return ::fchmod(fd, mode);
}
inline int duplicate(int fd) {
  return ::fcntl(fd, F_DUPFD_CLOEXEC, STDERR_FILENO + 1);
}

}  // namespace posix
#endif

namespace tool {

// A name as std::filesystem has it, and back; folders are parted by "/" then.
std::filesystem::path pathOf(std::string_view name);
std::string nameOf(const std::filesystem::path& path);

// As fopen does, and not handed on to other programs; modes have "b".
std::FILE* openStream(const std::string& name, const char* mode);

// Where temporary files are made.
std::string temporaryFolder();
// A new file for reading and writing, which goes with its descriptor; -1 with errno where there is
// none. `name` is one to open it by as long as the descriptor is open.
int openTemporary(const std::string& folder, std::string& name);
// A new folder and its name; not 0 with errno, and the name it would have had, where there is none.
int makeTemporaryFolder(std::string& name);

// What an errno code says.
std::string systemText(int code);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SYSTEM_FILES_H_
