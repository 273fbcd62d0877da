// The basis of a solve as a file, for a later solve of the same model in another process.
//
// A text: a line "ztb basis 1", a line with the counts of columns and rows and a checksum of their
// names, then a letter for each column and each row behind the objective, 64 in a line: L at the
// lower bound, U at the upper one, B basic, S between its bounds.
#ifndef ZTB_PROVIDERS_MODEL_BASIS_FILE_H_
#define ZTB_PROVIDERS_MODEL_BASIS_FILE_H_

#include <cstdint>
#include <string>
#include <vector>

namespace lomu {

struct Basis {
  std::vector<std::int32_t> columns, rows;  // each a ztbSolverPosition
  std::uint64_t names = 0;                  // their checksum

  [[nodiscard]] bool isEmpty() const { return columns.empty() && rows.empty(); }
  // As many are basic as there are rows.
  [[nodiscard]] bool isWhole() const;
};

// Replaces what stands there once it is whole. Throws ModelError.
void writeBasis(const Basis& basis, const std::string& file);

// Throws ModelError that names file and line.
Basis readBasis(const std::string& file);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_BASIS_FILE_H_
