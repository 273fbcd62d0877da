// Tells a record handle that its record may have gone or moved.
//
// On the vector a removal moves the records behind it, and on the trie it may write all of them
// anew: handles on other records would then quietly stand elsewhere. The C++ wrapper counts these
// removals for each symbol, and a handle that is older throws when it is used.
#ifndef ZTB_HANDLE_AGE_HPP_
#define ZTB_HANDLE_AGE_HPP_

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/store_guard.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client::detail {

// Where the removals from a symbol are counted, for the whole process; null for one on the tree
// map, where handles stay where they are.
inline std::uint64_t* removalsOf(const SymbolPlace& place) {
  if (place.onMap()) {
    return nullptr;
  }
  // Never ended: databases may outlive the end of main. A symbol that takes the place of an ended
  // one goes on with its count.
  static std::mutex& mutex = *new std::mutex;
  static auto& removals = *new std::unordered_map<void*, std::uint64_t>;
  const std::lock_guard lock(mutex);
  return &removals[place.handle];
}

// The count that a handle was made at.
class HandleAge {
 public:
  explicit HandleAge(std::uint64_t* removals) noexcept
      : removals_(removals), seen_(removals == nullptr ? 0 : *removals) {}

  // Whether the handle stands in a store whose records move.
  [[nodiscard]] bool counts() const noexcept { return removals_ != nullptr; }
  // Throws if there was a removal since. REQUIRES: counts().
  void requireCurrent(const SymbolPlace& place, const char* operation) const {
    if (*removals_ != seen_) {
      throw Error(operation, "records of symbol " + place.name() +
                                 " were removed since this handle was made; find its record again");
    }
  }
  // Counts a removal to come, and lets this handle alone outlive it. REQUIRES: counts().
  void countRemoval() noexcept { ++*removals_; }
  void renew() noexcept { seen_ = *removals_; }

 private:
  std::uint64_t* removals_;
  std::uint64_t seen_;
};

}  // namespace ztb::inline client::detail

#endif  // ZTB_CPP20

#endif  // ZTB_HANDLE_AGE_HPP_
