// The labels, or the texts of elements, of several files as one list: those of the first file in
// their order, then what each further file has more.
#ifndef ZTB_FORMATS_SETS_LABEL_UNION_H_
#define ZTB_FORMATS_SETS_LABEL_UNION_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/text/words.h"

namespace formats {

class LabelUnion {
 public:
  // The number of an entry, from 1; one that is there already, the case of ASCII letters not
  // counting, keeps its spelling. The view must live as long as the list.
  int add(std::string_view entry) {
    const auto [found, isNew] =
        numbers_.try_emplace(tool::folded(entry), static_cast<int>(entries_.size()) + 1);
    if (isNew) {
      entries_.push_back(entry);
    } else if (at(found->second) != entry) {
      ++respelled_;
    }
    return found->second;
  }

  // From 1.
  [[nodiscard]] std::string_view at(int number) const {
    return entries_[static_cast<std::size_t>(number) - 1];
  }
  [[nodiscard]] int size() const { return static_cast<int>(entries_.size()); }
  [[nodiscard]] const std::vector<std::string_view>& entries() const { return entries_; }
  // How often an entry was spelled otherwise than the first of its kind.
  [[nodiscard]] std::size_t respelled() const { return respelled_; }

 private:
  std::unordered_map<std::string, int> numbers_;
  std::vector<std::string_view> entries_;
  std::size_t respelled_ = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_LABEL_UNION_H_
