// A slot: one operation of a peer family, as it is declared and as it is called.
//
// A row of a table in ztb/peer.h declares everything about an operation: its name, the symbol of
// the peer's function, its C type and signature codes. The question put to the peer, the symbol
// that is looked up and the stub all come from that row.
//
// A slot is called like the function it stands for, object first: rxfClose(rxf).
//
// A slot is null until its family is ready; calling it then is a fault of the caller. Afterwards
// it holds either the peer's function or the operation's stub, so a call is one indirect call
// without a test. A stub ends the process by default (see PeerFamily).

#ifndef ZTB_PEERS_SLOT_H_
#define ZTB_PEERS_SLOT_H_

#include <algorithm>
#include <cstddef>
#include <span>

#include "peers/peer_family.h"
#include "peers/platform.h"
#include "peers/signature.h"

namespace ztb::peers {

// The slot of a table's row, under the operation's name.
#define ZTB_PEER_SLOT(family, result, name, symbol, parameters, codes) \
  inline const Slot<#name, result parameters> name{family, #symbol, {ZTB_PEER_LIST codes}};

// What the loader needs of a slot, whatever its type.
class SlotBase {
 public:
  SlotBase(const SlotBase&) = delete;
  SlotBase& operator=(const SlotBase&) = delete;

  [[nodiscard]] const char* name() const noexcept { return name_; }
  // Name of the operation's symbol in the peer library.
  [[nodiscard]] const char* symbolName() const noexcept { return symbolName_; }
  [[nodiscard]] std::span<const int> codes() const noexcept { return codes_; }
  // Number of arguments behind the object handle.
  [[nodiscard]] int argumentCount() const noexcept { return static_cast<int>(codes_.size()) - 1; }
  // The slot declared behind this one in the same family, or null.
  [[nodiscard]] const SlotBase* next() const noexcept { return next_; }
  [[nodiscard]] bool isNull() const noexcept { return function_ == nullptr; }
  [[nodiscard]] bool holdsStub() const noexcept { return function_ == stub_; }

 protected:
  // Enters the slot into its family. The names and `codes` must live as long as the slot.
  SlotBase(PeerFamily& family, const char* name, const char* symbolName, std::span<const int> codes,
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
  const char* symbolName_;
  std::span<const int> codes_;
  AnyFunction stub_;
  // A slot is constant to those who call it; only its family changes these two.
  mutable AnyFunction function_ = nullptr;
  mutable const SlotBase* next_ = nullptr;
};

// The name of an operation as a template argument, so that every operation has a stub of its own.
template <std::size_t size>
struct OperationName {
  consteval OperationName(const char (&literal)[size]) { std::copy_n(literal, size, text); }
  char text[size] = {};
};

template <OperationName operationName, typename Type>
class Slot;

template <OperationName operationName, typename Result, typename... Args>
class Slot<operationName, Result(void*, Args...)> final : private Signature<Result(Args...)>,
                                                          public SlotBase {
 public:
  // C type of the peer's function.
  using Function = Result(void* object, Args... args);

  Slot(PeerFamily& family, const char* symbol, const Signature<Result(Args...)>& signature) noexcept
      : Signature<Result(Args...)>(signature),
        SlotBase(family, operationName.text, symbol, this->all(),
                 reinterpret_cast<AnyFunction>(&stub)) {
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
