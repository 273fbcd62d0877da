// The whole of what the peer loader asks of an operating system: how a peer's file is named, how
// it is opened, how a name in it is found, and a lock. One source file for each system implements
// it; nothing else in this folder knows which system it runs on.

#ifndef ZTB_PEERS_PLATFORM_H_
#define ZTB_PEERS_PLATFORM_H_

#include <cstddef>
#include <mutex>

namespace ztb::peers {

// A function of any type; cast to its real type before it is called.
using AnyFunction = void (*)();

namespace platform {

// Pieces of a library's file name: prefix, base name, bits, suffix; a directory goes before them
// with the separator between.
struct FileNaming {
  char separator;
  const char* prefix;
  const char* bits;
  const char* suffix;
};

extern const FileNaming fileNaming;

// Opens a library for the life of the process: there is no operation that closes one. Null on
// failure; openErrorText() then says why.
void* openLibrary(const char* fileName) noexcept;

// Why the openLibrary call of this thread that failed last did so. Never null; valid until the
// next call of this interface on the same thread.
const char* openErrorText() noexcept;

// Address of exactly `name` in `library`, or null.
AnyFunction findSymbol(void* library, const char* name) noexcept;

// The system's words on why `library` has no `name`. Never null; valid as above.
// REQUIRES: findSymbol(library, name) gave null.
const char* missingSymbolText(void* library, const char* name) noexcept;

// A lock that its holder may enter again. It can be a constant-initialised global; what the system
// needs for it is made at the first enter() and lives to the end of the process.
class Lock {
 public:
  constexpr Lock() noexcept = default;
  Lock(const Lock&) = delete;
  Lock& operator=(const Lock&) = delete;

  void enter();
  // REQUIRES: the calling thread has entered.
  void leave();

 private:
  std::once_flag made_;
  alignas(std::max_align_t) std::byte storage_[64] = {};
};

}  // namespace platform
}  // namespace ztb::peers

#endif  // ZTB_PEERS_PLATFORM_H_
