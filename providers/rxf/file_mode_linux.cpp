#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

#include "providers/rxf/file_mode.h"

namespace rxffile {

namespace {

constexpr mode_t kForAll = 0666;
constexpr mode_t kOwnerOnly = 0077;

// The mask as the system shows it, -1 where it does not. Asking the call of that name would change
// the mask of the whole process for a moment.
long shownMask() {
  const int fd = open("/proc/self/status", O_RDONLY | O_CLOEXEC);
  if (fd < 0) return -1;
  // The mask stands in the second line.
  std::array<char, 512> text{};
  const ssize_t length = read(fd, text.data(), text.size() - 1);
  close(fd);
  constexpr const char* name = "\nUmask:";
  const char* line = length > 0 ? std::strstr(text.data(), name) : nullptr;
  return line == nullptr ? -1 : std::strtol(line + std::strlen(name), nullptr, 8);
}

}  // namespace

mode_t newFileMode() {
  const long shown = shownMask();
  if (shown >= 0) return kForAll & ~static_cast<mode_t>(shown);
  const mode_t mask = umask(kOwnerOnly);
  umask(mask);
  return kForAll & ~mask;
}

}  // namespace rxffile
