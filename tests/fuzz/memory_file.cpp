#include "tests/fuzz/memory_file.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstdlib>

namespace formatfuzz {

MemoryFile::MemoryFile()
    : file_(memfd_create("fuzz", MFD_CLOEXEC)), path_("/proc/self/fd/" + std::to_string(file_)) {
  if (file_ < 0) std::abort();
}

MemoryFile::~MemoryFile() {
  close(file_);
}

void MemoryFile::put(std::string_view bytes) const {
  if (ftruncate(file_, 0) != 0 ||
      pwrite(file_, bytes.data(), bytes.size(), 0) != static_cast<ssize_t>(bytes.size())) {
    std::abort();
  }
}

}  // namespace formatfuzz
