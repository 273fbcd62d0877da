// A file of HDF5 that holds what an exchange file holds: the labels, and for each symbol its
// records as one-dimensional chunked datasets, a column each, shuffled and deflated. Failures throw
// std::runtime_error.
#ifndef ZTB_BENCH_HDF5_FILE_H_
#define ZTB_BENCH_HDF5_FILE_H_

#include <hdf5.h>

#include <array>
#include <string>
#include <vector>

#include "bench/data.h"

namespace bench {

inline constexpr const char* hdf5Name = "HDF5";

// The records of one symbol by columns.
struct Columns {
  std::array<std::vector<int>, dimension> keys;
  std::vector<double> values;
};

class Hdf5File {
 public:
  enum class Mode { create, read };

  Hdf5File(const std::string& file, Mode mode);
  ~Hdf5File();
  Hdf5File(const Hdf5File&) = delete;
  Hdf5File& operator=(const Hdf5File&) = delete;

  void writeLabels(const std::vector<std::string>& labels);
  [[nodiscard]] std::vector<std::string> readLabels() const;
  void writeSymbol(const std::string& name, const Columns& columns);
  [[nodiscard]] std::vector<std::string> symbolNames() const;
  void readSymbol(const std::string& name, Columns& columns) const;

 private:
  hid_t file_;
};

}  // namespace bench

#endif  // ZTB_BENCH_HDF5_FILE_H_
