// The records that every contestant is given: a sparse cube of plants, customers and weeks.
//
// Everything follows from the record count and a fixed seed, so two runs and all contestants of one
// run work on the same data. Label numbers are those of a database to which the labels were added
// in the order of `labels`.
#ifndef ZTB_BENCH_DATA_H_
#define ZTB_BENCH_DATA_H_

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace bench {

inline constexpr std::size_t dimension = 3;

using Key = std::array<int, dimension>;

// A record as a caller meets it that has labels and no numbers.
struct LabelledRecord {
  std::array<const std::string*, dimension> labels;
  double value;
};

struct Data {
  std::vector<std::string> labels;       // label of number i + 1
  std::vector<Key> keys;                 // in ascending order
  std::vector<double> values;            // beside `keys`
  std::vector<LabelledRecord> shuffled;  // all records in a random order
  Key middle;                            // a key from the middle

  [[nodiscard]] std::size_t size() const { return keys.size(); }
  [[nodiscard]] const std::string& label(int number) const {
    return labels[static_cast<std::size_t>(number) - 1];
  }
};

// The data of that many records; the latest made are kept, so that a run over one size at a time
// makes them once.
const Data& dataOf(std::size_t records);

}  // namespace bench

#endif  // ZTB_BENCH_DATA_H_
