#include "store/huge_pages.h"

#ifdef __linux__
#include <sys/mman.h>

#include <cerrno>
#include <memory>
#endif

namespace ztb::dmap {

void askForHugePages([[maybe_unused]] void* from, [[maybe_unused]] std::size_t size) noexcept {
#ifdef __linux__
  if (std::align(hugePage, hugePage, from, size) == nullptr) {
    return;
  }
  const int error = errno;
  madvise(from, size / hugePage * hugePage, MADV_HUGEPAGE);
  errno = error;
#endif
}

}  // namespace ztb::dmap
