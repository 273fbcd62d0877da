// A slot: one operation of a peer family, as it is declared and as it is called.
//
// One line declares everything about an operation, its name, C type and signature codes; the
// question put to the peer, the symbol that is looked up and the stub all come from that line:
//
//   inline const Slot<"rxfClose", int()> rxfClose{rxfFamily, {3}};
//
// The object handle, which is the first argument of every operation, doesn't show in the type. A
// slot is called like the function it stands for, handle first: rxfClose(rxf).
//
// A slot is null until its family is ready; calling it then is a fault of the caller. Afterwards
// it holds either the peer's function or the operation's stub, so a call is one indirect call
// without a test. A stub ends the process by default (see PeerFamily).

#ifndef ZTB_PEERS_SLOT_H_
#define ZTB_PEERS_SLOT_H_

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <type_traits>

#include "peers/peer_family.h"
#include "peers/platform.h"
#include "peers/signature.h"

namespace ztb::peers {

// A symbol's name with its final zero. No operation or entry point has a longer one.
inline constexpr int symbolNameSize = 64;
using SymbolName = std::array<char, symbolNameSize>;

// What the loader needs of a slot, whatever its type.
class SlotBase {
 public:
  SlotBase(const SlotBase&) = delete;
  SlotBase& operator=(const SlotBase&) = delete;

  [[nodiscard]] const char* name() const noexcept { return name_; }
  // Name of the operation's symbol in the peer library.
  [[nodiscard]] SymbolName symbolName() const noexcept;
  [[nodiscard]] std::span<const int> codes() const noexcept { return codes_; }
  // Number of arguments behind the object handle.
  [[nodiscard]] int argumentCount() const noexcept { return static_cast<int>(codes_.size()) - 1; }
  // The slot declared behind this one in the same family, or null.
  [[nodiscard]] const SlotBase* next() const noexcept { return next_; }
  [[nodiscard]] bool isNull() const noexcept { return function_ == nullptr; }
  [[nodiscard]] bool holdsStub() const noexcept { return function_ == stub_; }

 protected:
  // Enters the slot into its family. `codes` must live as long as the slot.
  SlotBase(PeerFamily& family, const char* name, std::span<const int> codes,
           AnyFunction stub) noexcept;
  ~SlotBase() = default;

  [[nodiscard]] AnyFunction function() const noexcept { return function_; }

  // What a stub does before it returns: says that the operation is missing and ends the process,
  // unless the state of the family says otherwise.
  void reportMissing() const;

 private:
  friend class PeerFamily;

  PeerFamily& family_;
  const char* name_;
  std::span<const int> codes_;
  AnyFunction stub_;
  // A slot is constant to those who call it; only its family changes these two.
  mutable AnyFunction function_ = nullptr;
  mutable const SlotBase* next_ = nullptr;
};

// The name of an operation as a template argument, so that every operation has a stub of its own.
template <std::size_t size>
struct OperationName {
  static_assert(size + std::size("C__") <= symbolNameSize);
  consteval OperationName(const char (&literal)[size]) { std::copy_n(literal, size, text); }
  char text[size] = {};
};

template <OperationName operationName, typename Type>
class Slot;

template <OperationName operationName, typename Result, typename... Args>
class Slot<operationName, Result(Args...)> final : private Signature<Result(Args...)>,
                                                   public SlotBase {
 public:
  // C type of the peer's function.
  using Function = Result(void* object, Args... args);

  Slot(PeerFamily& family, const Signature<Result(Args...)>& signature) noexcept
      : Signature<Result(Args...)>(signature),
        SlotBase(family, operationName.text, this->all(), reinterpret_cast<AnyFunction>(&stub)) {
    self_ = this;
  }

  // REQUIRES: the family is ready.
  Result operator()(void* object, Args... args) const {
    return reinterpret_cast<Function*>(function())(object, args...);
  }

 private:
  static Result stub(void* /*object*/, Args... /*args*/) {
    self_->reportMissing();
    return Result();
  }

  static inline const Slot* self_ = nullptr;
};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_SLOT_H_
