// Checks of the sets that lay out a caller's cube, and the tables made from them.
#ifndef ZTB_TRANSFER_DOMAIN_CHECKS_H_
#define ZTB_TRANSFER_DOMAIN_CHECKS_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/ztb.h"
#include "store/abstract_symbol.h"

namespace ztb {

// The ranks of a set's labels. Throws std::logic_error when a record of the set holds a number that
// no label has.
LabelRanks ranksOf(AbstractZTBSymbol& set, const ZTB& db);

// The ranks of a list of sets, worked out once for each set however often it stands in the list.
// All tables have one entry for each label of the database.
class RankTables {
 public:
  RankTables(void* const* domains, int count, const ZTB& db);

  // The rank of a label among the records of the set at a position, from 1; 0 if it has none.
  [[nodiscard]] int rank(std::size_t position, int label) const {
    return static_cast<std::size_t>(label) < labels_
               ? ranks_[position][static_cast<std::size_t>(label)]
               : 0;
  }
  // The ranks at a position by label, and how many labels there are.
  [[nodiscard]] const int* ranks(std::size_t position) const { return ranks_[position]; }
  [[nodiscard]] std::size_t labels() const { return labels_; }

 private:
  std::vector<LabelRanks> tables_;
  std::array<const int*, dmap::maxDimension> ranks_ = {};
  std::size_t labels_;
};

// Whether a set may lay out a position of a symbol. The text of a refusal, in this order:
// "No domain symbol handle specified for symbol %s",
// "Cannot use universe as domain symbol %s", "Symbol %s and domain symbol %s in different
// databases", "Domain symbol %s has dimension %d, needs to be 1", or that of a failed load.
bool checkDomain(ZTB& db, const AbstractZTBSymbol& symbol, AbstractZTBSymbol* domain);

// Whether a set has as many records as the cube has cells at a position. The text of a refusal:
// "Cube dimension %d is %d while card(%s) is %zd."
bool checkCard(ZTB& db, const AbstractZTBSymbol& domain, int position, int cells);

// Cells of a cube, 0 if any of its sizes is. Throws std::length_error for more than a 64-bit number
// counts.
std::int64_t cellCount(const int* vDim, int dim);

// The same in 32 bits, where the product of larger sizes wraps around: to 0, below 0, or to less
// than there is.
std::int32_t wrappedCellCount(const int* vDim, int dim);

// Throws std::length_error for a number of cells that 32 bits do not count.
void requireCountableCells(std::int64_t cells);

// "Empty symbol pointer", "Can't map universe" and "Can't map scalars", in this order.
bool checkSparseSymbol(ZTB& db, const AbstractZTBSymbol* symbol);

}  // namespace ztb

#endif  // ZTB_TRANSFER_DOMAIN_CHECKS_H_
