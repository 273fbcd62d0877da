// The calls of POSIX on files over those of Windows: names are UTF-8, files are opened so that
// others may rename and remove them meanwhile, and what another program holds for a moment is tried
// again. Descriptors are those of the C runtime, which all libraries of a process share; they are
// binary and not handed on to other processes.
//
// Each call has the meaning, the result and the errno of the POSIX call of its name; what Windows
// has no word for is said here. ETXTBSY is what keeps a file from being replaced that somebody has
// open.
#ifndef ZTB_PROVIDERS_WINDOWS_POSIX_CALLS_H_
#define ZTB_PROVIDERS_WINDOWS_POSIX_CALLS_H_

#include <cstddef>
#include <string>

#include "providers/windows/posix_types.h"

namespace ztbwindows {

// Folders cannot be opened.
int open(const char* path, int flags, mode_t mode = 0);
int close(int fd);
int fstat(int fd, FileStatus* status);
int stat(const char* path, FileStatus* status);
// A symbolic link has S_IFLNK and nothing else of its own.
int lstat(const char* path, FileStatus* status);
ssize_t read(int fd, void* data, std::size_t size);
ssize_t write(int fd, const void* data, std::size_t size);
ssize_t pread(int fd, void* data, std::size_t size, off_t offset);
ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset);
int ftruncate(int fd, off_t length);
int fsync(int fd);
int flock(int fd, int operation);
// Does nothing: who may do what is the folder's to say.
int fchmod(int fd, mode_t mode);
int access(const char* path, int mode);
// Links are followed by the system; there is none to read.
ssize_t readlink(const char* path, char* target, std::size_t size);
// EACCES for the name of a device, as unlink() too.
int rename(const char* from, const char* to);
int unlink(const char* path);

// Whether a file that a program has open can be opened by any other one: each says whether it may.
inline constexpr bool opensForAll = false;

// As F_DUPFD_CLOEXEC of fcntl does.
int duplicate(int fd);
// A new file for reading and writing under a name of its own in `folder`, which begins with
// `prefix`; it goes when it is closed for the last time. Others may open it until then, as this
// system's calls above do. `name` is set.
int openTemporary(const std::string& folder, const std::string& prefix, std::string& name);
// A new folder, likewise, which stays.
int makeTemporaryFolder(const std::string& folder, const std::string& prefix, std::string& name);

}  // namespace ztbwindows

#endif  // ZTB_PROVIDERS_WINDOWS_POSIX_CALLS_H_
