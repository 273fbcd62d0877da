// A file that opens and takes nothing, as on a full disk. Wine has the one of Linux.
#ifndef ZTB_TESTS_SUPPORT_FULL_DISK_H_
#define ZTB_TESTS_SUPPORT_FULL_DISK_H_

namespace ztbtest {

#ifdef _WIN32
inline constexpr const char* kFullDisk = "Z:/dev/full";
#else
inline constexpr const char* kFullDisk = "/dev/full";
#endif

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_FULL_DISK_H_
