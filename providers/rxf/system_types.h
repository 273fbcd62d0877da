// The types and constants of the calls in system_calls.h. A system of POSIX has them; for Windows
// providers/windows has what its compiler lacks.
#ifndef ZTB_PROVIDERS_RXF_SYSTEM_TYPES_H_
#define ZTB_PROVIDERS_RXF_SYSTEM_TYPES_H_

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#ifdef _WIN32
#include "providers/windows/posix_types.h"

namespace rxffile {

using ztbwindows::FileStatus;
using ztbwindows::geteuid;
using ztbwindows::uid_t;

inline constexpr const char* kSeparators = "/\\:";

}  // namespace rxffile
#else
#include <sys/file.h>

namespace rxffile {

using FileStatus = struct stat;

// What parts the folders of a path.
inline constexpr const char* kSeparators = "/";

}  // namespace rxffile
#endif

#endif  // ZTB_PROVIDERS_RXF_SYSTEM_TYPES_H_
