// One peer family: a process-wide table of operation slots, filled from a library that is opened
// at run time.
//
// A family is not ready at first and becomes ready once; it then stays ready, and its library stays
// open, to the end of the process. Families and their slots are globals. A family is initialised
// at compile time and its slots enter themselves into it before main() or before the library that
// holds them is usable, so no family may be made ready from the initialiser of another global.
//
// Any thread may make a family ready, make objects and call slots, several at the same time: one
// loads, the others wait for it. This guard stands apart from the family's own locks, which stay
// disabled. A family that is ready costs one load of `libraryLoaded` more than nothing.

#ifndef ZTB_PEERS_PEER_FAMILY_H_
#define ZTB_PEERS_PEER_FAMILY_H_

#include <atomic>
#include <cstdint>

#include "peers/platform.h"

namespace ztb::peers {

class SlotBase;

// Types of the entry points that every peer library exports for a family.
using CreateFunction = void(void** object);
using CreateInDirectoryFunction = void(void** object, const char* directory);
using FreeFunction = void(void** object);
using CheckFunction = int(const char* operation, int argCount, const int* codes, char* msg);
using VersionFunction = int(int api, char* msg, int* compatibility);
using SetLoadPathFunction = void(const char* directory);
using GetLoadPathFunction = void(char* directory);
// Of the exchange-file family, see ztb/peer.h.
using ReadBlockStartFunction = int(void* rxf, int symbolNumber, int* recordCount);
using ReadBlockFunction = int(void* rxf, int* keys, double* values, int room);

// What tells one family from another. An entry point or other name that is null isn't bound.
struct FamilyTable {
  const char* libraryBaseName;
  std::int32_t apiVersion;
  const char* createName;
  const char* createInDirectoryName;
  const char* freeName;
  const char* checkName;
  const char* versionName;
  const char* setLoadPathName;
  const char* getLoadPathName;
  const char* readBlockStartName;
  const char* readBlockName;
};

// State of a family, one for the process. Nothing in the library changes the indicators, the
// callback or `mutexesEnabled`; they are where a host or a test can reach them.
struct FamilyState {
  void* libraryHandle = nullptr;
  // Written last when the family becomes ready: who reads 1 sees all that loading has bound.
  std::atomic<std::int32_t> libraryLoaded = 0;

  CreateFunction* XCreate = nullptr;
  CreateInDirectoryFunction* XCreateD = nullptr;
  FreeFunction* XFree = nullptr;
  CheckFunction* XCheck = nullptr;
  VersionFunction* XAPIVersion = nullptr;
  SetLoadPathFunction* SetLoadPath = nullptr;
  GetLoadPathFunction* GetLoadPath = nullptr;
  // Both or neither.
  ReadBlockStartFunction* ReadBlockStart = nullptr;
  ReadBlockFunction* ReadBlock = nullptr;

  std::int32_t screenIndicator = 1;  // print a stub's text on standard output
  std::int32_t exitIndicator = 1;    // end the process when a stub was called
  std::int32_t (*errorCallback)(std::int32_t errorCount, const char* text) = nullptr;
  std::atomic<std::int32_t> apiErrorCount = 0;  // stubs called so far
  std::atomic<std::int32_t> objectCount = 0;    // objects made here and not freed yet
  std::int32_t mutexesEnabled = 0;

  platform::Lock libraryLock;
  platform::Lock objectCountLock;
  platform::Lock errorLock;
};

class PeerFamily {
 public:
  // Exit code of a process that called an operation which its peer lacks.
  static constexpr int missingOperationExitCode = 123;

  constexpr explicit PeerFamily(const FamilyTable& table) noexcept : table_(table) {}
  PeerFamily(const PeerFamily&) = delete;
  PeerFamily& operator=(const PeerFamily&) = delete;

  // Makes the family ready from `directory`, or from the default search path if it is null or
  // empty. True if the family is ready now; it does nothing if it was before, whatever the
  // directory. On failure the reason stands in `msg`, cut to `msgSize` chars with its final zero:
  //   "Could not load shared library FILE: REASON", "Could not load symbol 'NAME': REASON", or the
  //   peer's own words when it refuses the version.
  // `msg` may be null. A missing symbol then goes unnoticed: the family counts as ready, and the
  // entry point or slot and all behind it stay null.
  bool makeReady(const char* directory, char* msg, int msgSize);

  // makeReady(), then an object from the family's create entry point; the object is stored through
  // `handleOut`. With `handleOut` null the entry point is called all the same; the result is false
  // and `msg` holds "Error while creating object".
  // Throws std::logic_error if the library was found to lack the entry point.
  bool createObject(void** handleOut, const char* directory, char* msg, int msgSize);

  // Frees the object that `handleRef` refers to. Always 1.
  // REQUIRES: the object came from createObject() of this family.
  // Throws std::logic_error if the library was found to lack the entry point.
  int freeObject(void** handleRef);

  [[nodiscard]] const FamilyTable& table() const noexcept { return table_; }

  // The slots in the order of their declaration: the first one, then SlotBase::next().
  [[nodiscard]] const SlotBase* firstSlot() const noexcept { return firstSlot_; }

  FamilyState state;

 private:
  friend class SlotBase;

  // 0 for success, 1 for a library that cannot be opened or refuses the version, 2 for a missing
  // symbol. Does nothing if the family is ready.
  int LoadLibraryFamily(const char* fileName, char* msg, int msgSize);

  void add(const SlotBase& slot) noexcept;
  void forgetBindings() noexcept;
  // Name of the first entry point that the library lacks, or null.
  const char* bindEntryPoints() noexcept;
  // What a library may lack.
  void bindOptional() noexcept;
  // The first slot whose operation the peer offers but has no symbol for, or null. The peer's words
  // go to `reason`.
  const SlotBase* bindSlots(char* reason);
  // Whether the peer offers the operation with this signature; if not, `reason` may say why.
  bool askFor(const SlotBase& slot, char* reason) const;
  void reportMissing(const SlotBase& slot);

  // Binds `name` into `target`. True if it was found or there is nothing to bind.
  template <typename Function>
  bool bind(Function*& target, const char* name) const noexcept;

  const FamilyTable& table_;
  const SlotBase* firstSlot_ = nullptr;
  const SlotBase* lastSlot_ = nullptr;
};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_PEER_FAMILY_H_
