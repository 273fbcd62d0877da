// How much memory the records of an exchange file may take in a database: what C++ makes of the
// limit in ztb/rxf.h. A program that opens a file with a limit links librxfcclib64.so besides
// libztbcclib64.so: ztb::rxf in CMake, `pkg-config --libs ztb ztb-rxf` elsewhere.
#ifndef ZTB_MEMORY_LIMIT_HPP_
#define ZTB_MEMORY_LIMIT_HPP_

#include <ztb/rxf.h>

#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// How a file is opened.
struct OpenOptions {
  // Bytes that its records may take in the database, by the estimate for the map. Reading a symbol
  // that would go beyond throws "... could not be read from ...: Limit exceeded: ..." before
  // anything is taken. 0 leaves the limit that the thread has, which is none unless
  // ztbRxfMemoryLimit set one.
  unsigned long long maxMemory = 0;
};

namespace detail {

// The limit of the calling thread, put back as it was at the end.
class MemoryLimitScope {
 public:
  explicit MemoryLimitScope(unsigned long long bytes) : before_(ztbRxfMemoryLimit(bytes)) {}
  MemoryLimitScope(const MemoryLimitScope&) = delete;
  MemoryLimitScope& operator=(const MemoryLimitScope&) = delete;
  ~MemoryLimitScope() { ztbRxfMemoryLimit(before_); }

  // Throws when a database opened a file in this scope and has no limit.
  static void requireTaken() {
    if (ztbRxfMemoryLimitTaken() == 0) {
      throw Error("ztbRxfMemoryLimit",
                  "No memory limit can be set: databases use another exchange-file library than "
                  "the one that this program is linked with",
                  ErrorKind::noLibrary);
    }
  }

 private:
  unsigned long long before_;
};

}  // namespace detail

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_MEMORY_LIMIT_HPP_
