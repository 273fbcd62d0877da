// Names that have to differ when ASCII case is folded, and that have to fit in 63 characters.
#ifndef ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_
#define ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_

#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

#include "providers/model/name_index.h"

namespace lomu {

inline constexpr std::size_t kMaxNameLength = 63;

class DistinctNames {
 public:
  // `wanted`, if it fits and is free. Otherwise the first of wanted_2, wanted_3, ... that is free,
  // with as much of `wanted` as leaves room. `ending` stays at the end: price_var gives
  // price_2_var. REQUIRES: `items` are those that took their names here, and the next one is added
  // with this name.
  template <typename Items>
  std::string take(const Items& items, std::string_view wanted, std::string_view ending = {}) {
    if (wanted.size() <= kMaxNameLength && takes(items, wanted)) return std::string(wanted);
    unsigned& number = lastNumber_.try_emplace(ztb::folded(wanted), 1U).first->second;
    for (;;) {
      std::string name = numbered(wanted, ending, ++number);
      if (takes(items, name)) return name;
    }
  }

  // Makes room for so many names at once, where none was taken yet.
  void reserve(std::size_t names) { taken_.reserve(names); }

  // The names that were taken, by the numbers of their items; nothing is left here.
  NameIndex<FoldedNames> release() { return std::exchange(taken_, {}); }

 private:
  template <typename Items>
  bool takes(const Items& items, std::string_view name) {
    const int number = static_cast<int>(items.size());
    return taken_.enter(items, name, number) == number;
  }
  // A long name gets a number all the same when its cut is free: the cut is no name of its own.
  static std::string numbered(std::string_view wanted, std::string_view ending, unsigned number);

  NameIndex<FoldedNames> taken_;
  std::unordered_map<std::string, unsigned> lastNumber_;  // of a folded name
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_
