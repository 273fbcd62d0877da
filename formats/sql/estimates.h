// How many records a condition leaves, for the planner of a query: counted where they are few,
// guessed from a look at places all over the symbol otherwise. It takes a fraction of a millisecond
// however many records there are, and is right about records that are spread evenly.
#ifndef ZTB_FORMATS_SQL_ESTIMATES_H_
#define ZTB_FORMATS_SQL_ESTIMATES_H_

#include <array>
#include <span>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/sql/labels.h"

namespace formats {

class SqlEstimates {
 public:
  // Of a symbol with one position or more that stays as it is as long as this object.
  SqlEstimates(ztb::Symbol symbol, SqlLabels& labels);

  // Records with one given label, whichever, at each marked position.
  [[nodiscard]] double ofPositions(const std::vector<bool>& given);
  // Places that such records are sought at.
  [[nodiscard]] double jumpsTo(const std::vector<bool>& given);
  // Records with these labels at the first positions.
  [[nodiscard]] double ofPrefix(std::span<const int> prefix);
  // Records with one of these labels at the first position.
  [[nodiscard]] double ofFirsts(const std::vector<int>& firsts);
  // Labels at the first position.
  [[nodiscard]] double firstCount();

 private:
  using Key = std::array<int, ZTB_MAX_DIMENSION>;

  [[nodiscard]] ztb::detail::OwnedRecord find(std::span<const int> prefix, bool last);
  [[nodiscard]] bool exists(std::span<const int> prefix) {
    return static_cast<bool>(find(prefix, false));
  }
  [[nodiscard]] int countUpTo(std::span<const int> prefix, int most);
  [[nodiscard]] Key keyAt(void* record) const;
  void look();
  double distinctAt(std::size_t position);
  double childrenOf(const std::vector<int>& prefix, std::vector<std::vector<int>>& next);

  ztb::Symbol symbol_;
  SqlLabels* labels_;
  double count_;
  // Labels at a position below one choice of those before it; at a position at all, 0 before that
  // is asked; and those that were met.
  std::vector<double> below_;
  std::vector<double> distinct_;
  std::vector<std::vector<int>> seen_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_ESTIMATES_H_
