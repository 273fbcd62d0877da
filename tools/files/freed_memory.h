// Memory that was freed, kept for what is asked for next.
#ifndef ZTB_TOOLS_FILES_FREED_MEMORY_H_
#define ZTB_TOOLS_FILES_FREED_MEMORY_H_

#include <cstdlib>

#ifdef __GLIBC__
#include <malloc.h>
#endif

namespace tool {

// Has the process keep freed blocks of up to some megabytes: a model of medium size goes through
// many, and each that comes fresh from the system costs a fault for every page of it. Larger ones
// go back to the system as before. Without meaning where the C library is another one.
inline void keepFreedMemory() {
#ifdef __GLIBC__
  constexpr int kMegabyte = 1 << 20;
  mallopt(M_MMAP_THRESHOLD, 4 * kMegabyte);
  mallopt(M_TRIM_THRESHOLD, 64 * kMegabyte);
  mallopt(M_TOP_PAD, kMegabyte);
#endif
}

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_FREED_MEMORY_H_
