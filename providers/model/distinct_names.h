// Names that have to differ when ASCII case is folded, and that have to fit in 63 characters.
#ifndef ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_
#define ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace lomu {

inline constexpr std::size_t kMaxNameLength = 63;

class DistinctNames {
 public:
  // `wanted`, if it fits and is free. Otherwise the first of wanted_2, wanted_3, ... that is free,
  // with as much of `wanted` as leaves room. `ending` stays at the end: price_var gives
  // price_2_var.
  std::string take(std::string_view wanted, std::string_view ending = {});

 private:
  std::unordered_set<std::string> taken_;                 // folded
  std::unordered_map<std::string, unsigned> lastNumber_;  // of a folded name
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DISTINCT_NAMES_H_
