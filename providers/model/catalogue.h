// The solver catalogue: which solvers there are, what they solve and which library holds them.
//
// A text file of one row a solver: name, kinds (LP, MIP, QP, MIQP, with commas between them),
// in-place (yes or no) and library, with blanks between them. "#" begins a comment, empty lines do
// not count.
#ifndef ZTB_PROVIDERS_MODEL_CATALOGUE_H_
#define ZTB_PROVIDERS_MODEL_CATALOGUE_H_

#include <string>
#include <string_view>
#include <vector>

#include "providers/model/instance.h"

namespace lomu {

struct CatalogueRow {
  std::string name;
  std::vector<std::string> kinds;
  bool inPlace = false;
  std::string library;  // its path
};

// "LP", "MIP", "QP" or "MIQP".
std::string_view kindOf(ModelType type);

class Catalogue {
 public:
  Catalogue() = default;
  // Reads a file; a library without a directory is looked for in `directory`, which ends in a
  // separator or is empty. Throws ModelError with file and line.
  static Catalogue read(const std::string& file, const std::string& directory);
  // The same from a text; `file` is what errors name.
  static Catalogue parse(std::string_view text, const std::string& file,
                         const std::string& directory);

  // The number of a solver whose library can be opened, from 1; 0 for any other name.
  [[nodiscard]] int number(std::string_view name) const;
  // Why a solver has no number: what other names there are, or why its library cannot be opened.
  // Empty when it has one.
  [[nodiscard]] std::string whyNot(std::string_view name) const;
  // The row of a number; null when there is none.
  [[nodiscard]] const CatalogueRow* row(int number) const;
  [[nodiscard]] const std::vector<CatalogueRow>& rows() const { return rows_; }

 private:
  [[nodiscard]] const CatalogueRow* named(std::string_view name) const;

  std::vector<CatalogueRow> rows_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_CATALOGUE_H_
