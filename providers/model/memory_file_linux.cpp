#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

#include "providers/model/memory_file.h"

namespace lomu {

MemoryFile::MemoryFile(std::string_view text) : descriptor_(memfd_create("model", MFD_CLOEXEC)) {
  if (descriptor_ < 0) throw std::system_error(errno, std::generic_category(), "file in memory");
  while (!text.empty()) {
    const ssize_t count = write(descriptor_, text.data(), text.size());
    if (count < 0) {
      const int error = errno;
      close(descriptor_);
      throw std::system_error(error, std::generic_category(), "file in memory");
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  path_ = "/proc/self/fd/" + std::to_string(descriptor_);
}

MemoryFile::~MemoryFile() {
  close(descriptor_);
}

}  // namespace lomu
