// The records that the record stores and their rivals are given: of any dimension, with one or five
// values, in key order.
//
// Two cells in five of a cube hold a record; all positions have about as many labels. Everything
// follows from the shape and a fixed seed.
#ifndef ZTB_BENCH_STORE_DATA_H_
#define ZTB_BENCH_STORE_DATA_H_

#include <cstddef>
#include <vector>

namespace bench {

struct StoreShape {
  std::size_t dim;
  std::size_t slots;
  std::size_t records;

  bool operator==(const StoreShape&) const = default;
};

struct StoreData {
  StoreShape shape;
  std::vector<int> keys;              // `dim` numbers a record, ascending
  std::vector<double> values;         // `slots` a record, beside `keys`
  std::vector<std::size_t> shuffled;  // all record numbers in a random order
  int lastLabel;                      // the largest number in a key

  [[nodiscard]] const int* key(std::size_t record) const {
    return keys.data() + record * shape.dim;
  }
  [[nodiscard]] const double* value(std::size_t record) const {
    return values.data() + record * shape.slots;
  }
};

// The data of that shape; the latest made are kept.
const StoreData& storeDataOf(const StoreShape& shape);

}  // namespace bench

#endif  // ZTB_BENCH_STORE_DATA_H_
