#include "peers/peer_family.h"

#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>
#include <ztb/case_folding.hpp>

#include "peers/bounded_text.h"
#include "peers/slot.h"

namespace ztb::peers {
namespace {

constexpr int fileNameSize = 512;
// A peer is not told the size of the buffer for its words; this is what it may count on.
constexpr int peerTextSize = 256;

// Holds a lock while it lives, if locks of its kind are enabled at its making.
class FamilyLock {
 public:
  FamilyLock(platform::Lock& lock, std::int32_t enabled) : lock_(enabled != 0 ? &lock : nullptr) {
    if (lock_ != nullptr) lock_->enter();
  }
  FamilyLock(const FamilyLock&) = delete;
  FamilyLock& operator=(const FamilyLock&) = delete;
  ~FamilyLock() { release(); }

  void release() {
    if (lock_ != nullptr) lock_->leave();
    lock_ = nullptr;
  }

 private:
  platform::Lock* lock_;
};

// Guards the loading of all families, whatever the state of their own locks: three of them share a
// library. A library that opens a database while it is loaded enters again.
constinit platform::Lock loadingLock;
// Held by the thread that ends the process: two ends at once are not allowed.
constinit platform::Lock endingLock;

[[noreturn]] void endProcess() {
  endingLock.enter();
  std::exit(PeerFamily::missingOperationExitCode);
}

// A buffer for a peer's words, with its final zero whatever the peer wrote.
class PeerText {
 public:
  char* buffer() noexcept { return text_; }
  const char* text() noexcept {
    text_[peerTextSize - 1] = '\0';
    return text_;
  }

 private:
  char text_[peerTextSize] = {};
};

void makeFileName(char (&name)[fileNameSize], const char* directory, const char* baseName) {
  const platform::FileNaming& naming = platform::fileNaming;
  BoundedText text(name, fileNameSize);
  if (directory != nullptr && *directory != '\0') {
    text.append(directory);
    // The character looked at is the final zero, so a directory that ends in a separator gets a
    // second one. Systems take the two as one, and the names in messages stay as callers know them.
    if (name[text.length()] != naming.separator) text.append({&naming.separator, 1});
  }
  text.append(naming.prefix).append(baseName).append(naming.bits).append(naming.suffix);
}

// No operation or entry point has a longer symbol, its final zero included.
constexpr int symbolNameSize = 64;

// The first hit of `name` in lower case, as it stands, in upper case; null if there is none.
AnyFunction BindSymbol(void* library, const char* name) noexcept {
  char folded[symbolNameSize] = {};
  BoundedText(folded, symbolNameSize).append(name);
  for (char& c : folded) c = ztb::foldedChar(c);
  if (const AnyFunction function = platform::findSymbol(library, folded)) return function;
  if (const AnyFunction function = platform::findSymbol(library, name)) return function;
  for (char& c : folded) c = ztb::upperChar(c);
  return platform::findSymbol(library, folded);
}

// An entry point that the loader left null because nobody wanted to hear of its absence.
template <typename Function>
Function* bound(Function* function, const char* name) {
  if (function == nullptr) {
    throw std::logic_error(std::string("Peer library has no entry point '") + name + "'");
  }
  return function;
}

}  // namespace

bool PeerFamily::makeReady(const char* directory, char* msg, int msgSize) {
  const FamilyLock lock(state.libraryLock, state.mutexesEnabled);
  if (msg != nullptr) *msg = '\0';
  if (state.libraryLoaded.load(std::memory_order_acquire) != 0) return true;
  const FamilyLock loading(loadingLock, 1);
  if (state.libraryLoaded.load(std::memory_order_acquire) != 0) return true;

  char fileName[fileNameSize];
  makeFileName(fileName, directory, table_.libraryBaseName);
  if (LoadLibraryFamily(fileName, msg, msgSize) != 0) {
    forgetBindings();
    return false;
  }
  if (state.SetLoadPath != nullptr && directory != nullptr && *directory != '\0') {
    state.SetLoadPath(directory);
  }
  state.libraryLoaded.store(1, std::memory_order_release);
  return true;
}

bool PeerFamily::createObject(void** handleOut, const char* directory, char* msg, int msgSize) {
  if (!makeReady(directory, msg, msgSize)) return false;
  bound(state.XCreate, table_.createName)(handleOut);
  if (handleOut == nullptr) {
    if (msg != nullptr) BoundedText(msg, msgSize).append("Error while creating object");
    return false;
  }
  const FamilyLock lock(state.objectCountLock, state.mutexesEnabled);
  ++state.objectCount;
  return true;
}

int PeerFamily::freeObject(void** handleRef) {
  bound(state.XFree, table_.freeName)(handleRef);
  const FamilyLock lock(state.objectCountLock, state.mutexesEnabled);
  --state.objectCount;
  return 1;
}

int PeerFamily::LoadLibraryFamily(const char* fileName, char* msg, int msgSize) {
  if (state.libraryLoaded != 0) return 0;
  state.libraryHandle = platform::openLibrary(fileName);
  if (state.libraryHandle == nullptr) {
    if (msg == nullptr) return 1;
    BoundedText(msg, msgSize)
        .append("Could not load shared library ")
        .append(fileName)
        .append(": ")
        .append(platform::openErrorText());
    return 1;
  }

  const int reportSize = msg != nullptr ? msgSize : 0;
  BoundedText report(msg, reportSize);
  const auto missing = [&](const char* symbol) {
    if (reportSize < 1) return 0;
    report.append("Could not load symbol '")
        .append(symbol)
        .append("': ")
        .append(platform::missingSymbolText(state.libraryHandle, symbol));
    return 2;
  };

  if (const char* symbol = bindEntryPoints()) return missing(symbol);
  PeerText reason;
  std::int32_t compatibility = 0;
  if (state.XAPIVersion(table_.apiVersion, reason.buffer(), &compatibility) == 0) {
    report.append(reason.text());
    return 1;
  }
  bindOptional();
  if (const SlotBase* slot = bindSlots(reason.buffer())) return missing(slot->symbolName());
  report.append(reason.text());
  return 0;
}

void PeerFamily::add(const SlotBase& slot) noexcept {
  (lastSlot_ != nullptr ? lastSlot_->next_ : firstSlot_) = &slot;
  lastSlot_ = &slot;
}

void PeerFamily::forgetBindings() noexcept {
  state.XCreate = nullptr;
  state.XCreateD = nullptr;
  state.XFree = nullptr;
  state.XCheck = nullptr;
  state.XAPIVersion = nullptr;
  state.SetLoadPath = nullptr;
  state.GetLoadPath = nullptr;
  state.ReadBlockStart = nullptr;
  state.ReadBlock = nullptr;
  for (const SlotBase* slot = firstSlot_; slot != nullptr; slot = slot->next_) {
    slot->function_ = nullptr;
  }
}

template <typename Function>
bool PeerFamily::bind(Function*& target, const char* name) const noexcept {
  if (name == nullptr) return true;
  target = reinterpret_cast<Function*>(BindSymbol(state.libraryHandle, name));
  return target != nullptr;
}

const char* PeerFamily::bindEntryPoints() noexcept {
  if (!bind(state.XCreate, table_.createName)) return table_.createName;
  if (!bind(state.XCreateD, table_.createInDirectoryName)) return table_.createInDirectoryName;
  if (!bind(state.XFree, table_.freeName)) return table_.freeName;
  if (!bind(state.XCheck, table_.checkName)) return table_.checkName;
  if (!bind(state.XAPIVersion, table_.versionName)) return table_.versionName;
  return nullptr;
}

void PeerFamily::bindOptional() noexcept {
  bind(state.SetLoadPath, table_.setLoadPathName);
  bind(state.GetLoadPath, table_.getLoadPathName);
  if (!bind(state.ReadBlockStart, table_.readBlockStartName) ||
      !bind(state.ReadBlock, table_.readBlockName)) {
    state.ReadBlockStart = nullptr;
    state.ReadBlock = nullptr;
  }
}

const SlotBase* PeerFamily::bindSlots(char* reason) {
  for (const SlotBase* slot = firstSlot_; slot != nullptr; slot = slot->next_) {
    const bool offered = askFor(*slot, reason);
    slot->function_ = offered ? BindSymbol(state.libraryHandle, slot->symbolName()) : slot->stub_;
    if (slot->function_ == nullptr) return slot;
  }
  return nullptr;
}

bool PeerFamily::askFor(const SlotBase& slot, char* reason) const {
  return state.XCheck(slot.name(), slot.argumentCount(), slot.codes().data(), reason) != 0;
}

void PeerFamily::reportMissing(const SlotBase& slot) {
  PeerText reason;
  askFor(slot, reason.buffer());
  char text[256];
  BoundedText(text, sizeof text)
      .append(slot.name())
      .append(" could not be loaded: ")
      .append(reason.text());
  const std::int32_t errorCount = ++state.apiErrorCount;
  if (state.screenIndicator != 0) {
    std::printf("%s\n", text);
    std::fflush(stdout);
  }

  FamilyLock lock(state.errorLock, state.mutexesEnabled);
  if (state.errorCallback != nullptr && state.errorCallback(errorCount, text) != 0) {
    lock.release();
    endProcess();
  }
  lock.release();
  if (state.exitIndicator != 0) endProcess();
}

}  // namespace ztb::peers
