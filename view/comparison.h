// What differs between the records of two symbols, of one file or of two.
#ifndef ZTB_VIEW_COMPARISON_H_
#define ZTB_VIEW_COMPARISON_H_

#include <cstddef>
#include <vector>

namespace view {

struct RecordChange {
  enum class Kind { added, gone, changed };
  Kind kind = Kind::changed;
  // Labels by the numbers of the first file, those that only the second has behind them.
  std::vector<int> keys;
  // Values; of sets the numbers of texts in the same way.
  double before = 0;
  double after = 0;
};

struct Comparison {
  std::size_t added = 0;
  std::size_t gone = 0;
  std::size_t changed = 0;
  std::size_t same = 0;
  // Those with the greatest changes, the greatest first.
  std::vector<RecordChange> changes;

  [[nodiscard]] std::size_t bytes() const {
    return changes.size() *
           (sizeof(RecordChange) + (changes.empty() ? 0 : changes[0].keys.size() * sizeof(int)));
  }
};

}  // namespace view

#endif  // ZTB_VIEW_COMPARISON_H_
