// Finding things by name: a table of numbers, the names staying where they are.
#ifndef ZTB_PROVIDERS_MODEL_NAME_INDEX_H_
#define ZTB_PROVIDERS_MODEL_NAME_INDEX_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>

namespace lomu {

inline std::string_view nameOf(const std::string& name) {
  return name;
}
template <typename Item>
std::string_view nameOf(const Item& item) {
  return item.name;
}

// How names are compared.
struct ExactNames {
  static std::size_t hash(std::string_view name) { return std::hash<std::string_view>()(name); }
  static bool same(std::string_view a, std::string_view b) { return a == b; }
};

// With ASCII case folded.
struct FoldedNames {
  static std::size_t hash(std::string_view name) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char c : name) {
      hash = (hash ^ static_cast<unsigned char>(ztb::foldedChar(c))) * 1099511628211U;
    }
    return hash;
  }
  static bool same(std::string_view a, std::string_view b) { return ztb::sameFolded(a, b); }
};

// Over a vector of names, or of items with a `name`; it holds numbers of items and is told the
// vector at each call, so that the vector may grow and move.
template <typename Names = ExactNames>
class NameIndex {
 public:
  static constexpr int kNone = -1;

  // Makes room for so many names at once, where none was entered yet.
  void reserve(std::size_t names) {
    if (count_ > 0) return;
    slots_.assign(std::bit_ceil(std::max(kSmallest, 2 * names + 2)), {});
  }

  template <typename Items>
  [[nodiscard]] int find(const Items& items, std::string_view name) const {
    return slots_.empty() ? kNone : slots_[slotOf(items, name, hashOf(name))].number;
  }

  // Enters the name under `number`, unless it stands already. Gives the number that it stands
  // under. The item of the number may be added behind the call. Nothing is changed when memory
  // runs out.
  template <typename Items>
  int enter(const Items& items, std::string_view name, int number) {
    if (2 * (count_ + 1) > slots_.size()) grow();
    const std::uint32_t hash = hashOf(name);
    Slot& slot = slots_[slotOf(items, name, hash)];
    if (slot.number == kNone) {
      slot = {hash, number};
      ++count_;
    }
    return slot.number;
  }

 private:
  static constexpr std::size_t kSmallest = 64;

  struct Slot {
    std::uint32_t hash = 0;
    int number = kNone;
  };

  static std::uint32_t hashOf(std::string_view name) {
    const std::uint64_t hash = Names::hash(name);
    return static_cast<std::uint32_t>(hash ^ (hash >> 32U));
  }

  // The slot of the name, or the free one where it belongs.
  template <typename Items>
  [[nodiscard]] std::size_t slotOf(const Items& items, std::string_view name,
                                   std::uint32_t hash) const {
    std::size_t at = hash & (slots_.size() - 1);
    while (slots_[at].number != kNone &&
           (slots_[at].hash != hash ||
            !Names::same(nameOf(items[static_cast<std::size_t>(slots_[at].number)]), name))) {
      at = (at + 1) & (slots_.size() - 1);
    }
    return at;
  }

  void grow() {
    std::vector<Slot> larger(slots_.empty() ? kSmallest : 2 * slots_.size());
    for (const Slot& slot : slots_) {
      if (slot.number == kNone) continue;
      std::size_t at = slot.hash & (larger.size() - 1);
      while (larger[at].number != kNone) at = (at + 1) & (larger.size() - 1);
      larger[at] = slot;
    }
    slots_.swap(larger);
  }

  std::vector<Slot> slots_;  // a power of two, at most half of them taken
  std::size_t count_ = 0;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_NAME_INDEX_H_
