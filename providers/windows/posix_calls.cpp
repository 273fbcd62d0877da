#include "providers/windows/posix_calls.h"

#include <io.h>
#include <windows.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "providers/windows/device_name.h"
#include "providers/windows/held_file.h"
#include "providers/windows/wide_text.h"

namespace ztbwindows {

namespace {

constexpr DWORD kShared = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr std::uint64_t kMaxAtOnce = 1U << 30U;
// The one byte that is locked. Locks keep others from reading here, so it lies behind all data.
constexpr DWORD kLockedHigh = 0x7FFFFFFF;

struct CloseHandleOf {
  void operator()(HANDLE handle) const { CloseHandle(handle); }
};
using OwnHandle = std::unique_ptr<void, CloseHandleOf>;

int errnoOf(DWORD error) {
  switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
      return ENOENT;
    case ERROR_PATH_NOT_FOUND:
      return ENOTDIR;
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return EEXIST;
    case ERROR_ACCESS_DENIED:
    case ERROR_PRIVILEGE_NOT_HELD:
      return EACCES;
    case ERROR_WRITE_PROTECT:
      return EROFS;
    case ERROR_SHARING_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
      return ETXTBSY;
    case ERROR_LOCK_VIOLATION:
    case ERROR_IO_PENDING:
      return EWOULDBLOCK;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
      return ENOSPC;
    case ERROR_DIRECTORY:
      return EISDIR;
    case ERROR_FILENAME_EXCED_RANGE:
      return ENAMETOOLONG;
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_PARAMETER:
    case ERROR_NO_UNICODE_TRANSLATION:
      return EINVAL;
    case ERROR_NOT_ENOUGH_MEMORY:
      return ENOMEM;
    case ERROR_TOO_MANY_OPEN_FILES:
      return EMFILE;
    case ERROR_FILE_TOO_LARGE:
      return EFBIG;
    default:
      return EIO;
  }
}

int failed() {
  errno = errnoOf(GetLastError());
  return -1;
}

// As failed(), for a call with this name: a folder that is not there is told from a file in its
// place.
int failedAt(std::wstring path) {
  const DWORD error = GetLastError();
  errno = errnoOf(error);
  while (error == ERROR_PATH_NOT_FOUND) {
    const std::size_t end = path.find_last_of(L"/\\");
    if (end == std::wstring::npos) {
      errno = ENOENT;
      break;
    }
    path.resize(end);
    const DWORD attributes = GetFileAttributesW(path.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) continue;
    if ((attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) errno = ENOENT;
    break;
  }
  return -1;
}

int succeeded(BOOL done) {
  return done != 0 ? 0 : failed();
}

// Wine would put a file in the place of a device, or remove it, where it may.
int refusedDevice() {
  errno = EACCES;
  return -1;
}

// Windows takes a name that is too long for one that is not there.
bool hasTooLongName(const std::wstring& path) {
  constexpr std::size_t longest = 255;
  std::size_t length = 0;
  for (const wchar_t unit : path) {
    length = unit == L'/' || unit == L'\\' ? 0 : length + 1;
    if (length > longest) return true;
  }
  return false;
}

HANDLE handleOf(int fd) {
  return reinterpret_cast<HANDLE>(_get_osfhandle(fd));
}

bool isFolder(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool isSymbolicLink(const std::wstring& path) {
  const DWORD attributes = GetFileAttributesW(path.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_REPARSE_POINT) == 0) {
    return false;
  }
  WIN32_FIND_DATAW found;
  const HANDLE search = FindFirstFileW(path.c_str(), &found);
  if (search == INVALID_HANDLE_VALUE) return false;
  FindClose(search);
  return found.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

// In steps of 100 ns from 1601 on.
timespec timeOf(std::uint64_t time) {
  timespec result = {};
  result.tv_sec = static_cast<time_t>(time / 10000000);
  result.tv_nsec = static_cast<long>(time % 10000000 * 100);
  return result;
}

timespec timeOf(FILETIME time) {
  return timeOf(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime);
}

int statusOf(HANDLE file, FileStatus* status) {
  *status = {};
  if (GetFileType(file) != FILE_TYPE_DISK) {
    status->st_mode = S_IFCHR;
    return 0;
  }
  BY_HANDLE_FILE_INFORMATION info;
  if (GetFileInformationByHandle(file, &info) == 0) return failed();
  const bool folder = (info.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  const bool readOnly = (info.dwFileAttributes & FILE_ATTRIBUTE_READONLY) != 0;
  status->st_dev = info.dwVolumeSerialNumber;
  status->st_ino = std::uint64_t{info.nFileIndexHigh} << 32U | info.nFileIndexLow;
  status->st_mode = static_cast<mode_t>((folder ? S_IFDIR : S_IFREG) | (readOnly ? 0444 : 0666));
  status->st_size =
      static_cast<off_t>(std::uint64_t{info.nFileSizeHigh} << 32U | info.nFileSizeLow);
  // One that is removed while it is open keeps its name until it is closed.
  FILE_STANDARD_INFO standard;
  const bool removed =
      GetFileInformationByHandleEx(file, FileStandardInfo, &standard, sizeof standard) != 0 &&
      standard.DeletePending != 0;
  status->st_nlink = removed ? 0 : info.nNumberOfLinks;
  status->st_mtim = timeOf(info.ftLastWriteTime);
  FILE_BASIC_INFO basic;
  if (GetFileInformationByHandleEx(file, FileBasicInfo, &basic, sizeof basic) != 0) {
    status->st_ctim = timeOf(static_cast<std::uint64_t>(basic.ChangeTime.QuadPart));
  }
  return 0;
}

// Windows says no more than that access is denied where another program has the file open in a way
// that lets it be removed.
bool isHeldOpen(const std::wstring& path) {
  const HANDLE file = CreateFileW(path.c_str(), DELETE, 0, nullptr, OPEN_EXISTING,
                                  FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file != INVALID_HANDLE_VALUE) {
    CloseHandle(file);
    return false;
  }
  return GetLastError() == ERROR_SHARING_VIOLATION;
}

OVERLAPPED placeOf(off_t offset) {
  OVERLAPPED place = {};
  place.Offset = static_cast<DWORD>(static_cast<std::uint64_t>(offset) & 0xFFFFFFFFU);
  place.OffsetHigh = static_cast<DWORD>(static_cast<std::uint64_t>(offset) >> 32U);
  return place;
}

int descriptorOf(HANDLE file) {
  const int fd = _open_osfhandle(reinterpret_cast<intptr_t>(file), O_BINARY | O_NOINHERIT);
  if (fd < 0) {
    CloseHandle(file);
    errno = EMFILE;
  }
  return fd;
}

// A name that nobody else is likely to have.
std::string newName(const std::string& folder, const std::string& prefix) {
  static std::atomic<unsigned> count{0};
  LARGE_INTEGER clock = {};
  QueryPerformanceCounter(&clock);
  std::array<char, 64> text{};
  std::snprintf(text.data(), text.size(), "%lx-%x-%llx", GetCurrentProcessId(), count++,
                static_cast<unsigned long long>(clock.QuadPart));
  return folder + "/" + prefix + text.data();
}

template <typename Action>
bool waitingWhileHeld(Action action) {
  return tryWhileHeld(action, [](DWORD milliseconds) { Sleep(milliseconds); });
}

}  // namespace

int open(const char* path, int flags, mode_t /*mode*/) {
  const std::wstring name = wideText(path);
  // Folders are not brought to the disk by themselves here.
  if ((flags & O_DIRECTORY) != 0) {
    errno = EACCES;
    return -1;
  }
  const bool writes = (flags & (O_WRONLY | O_RDWR)) != 0;
  DWORD creation = OPEN_EXISTING;
  const bool empties = (flags & O_TRUNC) != 0;
  if ((flags & O_CREAT) != 0) {
    creation = (flags & O_EXCL) != 0 ? CREATE_NEW : empties ? CREATE_ALWAYS : OPEN_ALWAYS;
  }
  const HANDLE file = CreateFileW(name.c_str(), GENERIC_READ | (writes ? GENERIC_WRITE : 0),
                                  kShared, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    failedAt(name);
    if (errno == EACCES && isFolder(name)) errno = EISDIR;
    return -1;
  }
  return descriptorOf(file);
}

int close(int fd) {
  return ::_close(fd);
}

int fstat(int fd, FileStatus* status) {
  return statusOf(handleOf(fd), status);
}

int stat(const char* path, FileStatus* status) {
  const std::wstring name = wideText(path);
  if (isDeviceName(name)) {
    *status = {};
    status->st_mode = S_IFCHR;
    return 0;
  }
  if (hasTooLongName(name)) {
    errno = ENAMETOOLONG;
    return -1;
  }
  const HANDLE file = CreateFileW(name.c_str(), FILE_READ_ATTRIBUTES, kShared, nullptr,
                                  OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
  if (file == INVALID_HANDLE_VALUE) return failedAt(name);
  const OwnHandle closed(file);
  return statusOf(file, status);
}

int lstat(const char* path, FileStatus* status) {
  if (!isSymbolicLink(wideText(path))) return stat(path, status);
  *status = {};
  status->st_mode = S_IFLNK;
  return 0;
}

ssize_t read(int fd, void* data, std::size_t size) {
  return ::_read(fd, data, static_cast<unsigned>(std::min<std::uint64_t>(size, kMaxAtOnce)));
}

ssize_t write(int fd, const void* data, std::size_t size) {
  return ::_write(fd, data, static_cast<unsigned>(std::min<std::uint64_t>(size, kMaxAtOnce)));
}

ssize_t pread(int fd, void* data, std::size_t size, off_t offset) {
  OVERLAPPED place = placeOf(offset);
  DWORD got = 0;
  const auto wanted = static_cast<DWORD>(std::min<std::uint64_t>(size, kMaxAtOnce));
  if (ReadFile(handleOf(fd), data, wanted, &got, &place) != 0) return got;
  return GetLastError() == ERROR_HANDLE_EOF ? 0 : failed();
}

ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset) {
  OVERLAPPED place = placeOf(offset);
  DWORD written = 0;
  const auto wanted = static_cast<DWORD>(std::min<std::uint64_t>(size, kMaxAtOnce));
  if (WriteFile(handleOf(fd), data, wanted, &written, &place) != 0) return written;
  return failed();
}

int ftruncate(int fd, off_t length) {
  FILE_END_OF_FILE_INFO end;
  end.EndOfFile.QuadPart = length;
  return succeeded(SetFileInformationByHandle(handleOf(fd), FileEndOfFileInfo, &end, sizeof end));
}

int fsync(int fd) {
  return succeeded(FlushFileBuffers(handleOf(fd)));
}

int flock(int fd, int operation) {
  OVERLAPPED place = {};
  place.OffsetHigh = kLockedHigh;
  const DWORD flags =
      LOCKFILE_EXCLUSIVE_LOCK | ((operation & LOCK_NB) != 0 ? DWORD{LOCKFILE_FAIL_IMMEDIATELY} : 0);
  return succeeded(LockFileEx(handleOf(fd), flags, 0, 1, 0, &place));
}

int fchmod(int /*fd*/, mode_t /*mode*/) {
  return 0;
}

int access(const char* path, int mode) {
  const std::wstring name = wideText(path);
  const DWORD attributes = GetFileAttributesW(name.c_str());
  if (attributes == INVALID_FILE_ATTRIBUTES) return failedAt(name);
  if ((mode & W_OK) == 0 || (attributes & FILE_ATTRIBUTE_READONLY) == 0) return 0;
  errno = EACCES;
  return -1;
}

ssize_t readlink(const char* /*path*/, char* /*target*/, std::size_t /*size*/) {
  errno = EINVAL;
  return -1;
}

int rename(const char* from, const char* to) {
  const std::wstring source = wideText(from);
  const std::wstring target = wideText(to);
  if (isDeviceName(source) || isDeviceName(target)) return refusedDevice();
  const bool done = waitingWhileHeld([&] {
    return MoveFileExW(source.c_str(), target.c_str(),
                       MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) != 0;
  });
  if (done) return 0;
  failed();
  if (errno == EACCES && isHeldOpen(target)) errno = ETXTBSY;
  return -1;
}

int unlink(const char* path) {
  const std::wstring name = wideText(path);
  if (isDeviceName(name)) return refusedDevice();
  return succeeded(waitingWhileHeld([&] { return DeleteFileW(name.c_str()) != 0; }) ? 1 : 0);
}

int duplicate(int fd) {
  HANDLE copy = nullptr;
  const HANDLE self = GetCurrentProcess();
  if (DuplicateHandle(self, handleOf(fd), self, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS) == 0) {
    return failed();
  }
  return descriptorOf(copy);
}

int openTemporary(const std::string& folder, const std::string& prefix, std::string& name) {
  name = newName(folder, prefix);
  const std::wstring path = wideText(name.c_str());
  const HANDLE file =
      CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE | DELETE, kShared, nullptr, CREATE_NEW,
                  FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, nullptr);
  return file == INVALID_HANDLE_VALUE ? failedAt(path) : descriptorOf(file);
}

int makeTemporaryFolder(const std::string& folder, const std::string& prefix, std::string& name) {
  name = newName(folder, prefix);
  return succeeded(CreateDirectoryW(wideText(name.c_str()).c_str(), nullptr));
}

}  // namespace ztbwindows
