// What integers of two values must be, found by trying both: where one value leads the rows to a
// contradiction the other is left, and what both lead to holds anyway. Puzzles lose half of their
// columns so, before any linear problem is solved.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_PROBING_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_PROBING_H_

#include <vector>

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

// That `column` is offset + factor * other, all whole numbers.
struct Tie {
  int column, other;
  double offset, factor;
};

// Of the integers that could move; with less of them still a search does not end sooner as a rule,
// only another way.
constexpr double kShareWorthIt = 1.0 / 3;

// Tightens bounds of integer columns of `form`, where at least `share` of those that could move
// stand still then, and puts others to a bound of theirs that the rows leave them alone at; else,
// and when no point is found to be possible, which the search is to say, the form stays as it is.
// Rows have the room of point_check.h, so that only points with such a column a hair off its bound
// are lost. The work is limited by the size of the matrix, and ends with the watch; what was found
// till then holds. Whether anything changed.
//
// `ties` gets, where it is given, integers that have one value beside the one of another integer
// of two values, and the other beside the other.
bool probeIntegers(LinearForm& form, Watch& watch, double share = kShareWorthIt,
                   std::vector<Tie>* ties = nullptr);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_PROBING_H_
