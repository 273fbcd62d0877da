// A sparse matrix by columns, its rows ascending within a column and each place once.
#ifndef ZTB_PROVIDERS_MODEL_SPARSE_MATRIX_H_
#define ZTB_PROVIDERS_MODEL_SPARSE_MATRIX_H_

#include <cstddef>
#include <vector>

#include "providers/model/model_data.h"

namespace lomu {

struct SparseMatrix {
  std::vector<std::size_t> start;  // of each column, and the end of the last
  std::vector<int> rowOf;
  std::vector<double> value;

  // The terms summed by place, with a place, zero if need be, for both factors of every product.
  explicit SparseMatrix(const ModelData& data);

  // The entry of a place that exists.
  [[nodiscard]] std::size_t entry(int row, int column) const;

 private:
  std::size_t gather(std::size_t begin, std::size_t end, std::size_t to);
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SPARSE_MATRIX_H_
