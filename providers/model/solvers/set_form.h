// Semi-continuous columns and special ordered sets told by binary columns, which every solver of
// integers takes.
//
// Behind the columns of a problem come a binary one for each semi-continuous column, 1 where it is
// not 0; then for each set of kind 1 one a member, and for each of kind 2 one a pair of neighbours,
// of which one at most is 1. Behind its rows come those that tie them: column <= bound * binary.
// Where there is no bound, or one too large for that, it is a choice, which the search branches on.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_

#include <string>
#include <vector>

#include "providers/model/solvers/linear_form.h"

namespace lomu {

class SetForm {
 public:
  // Makes a problem without either, over arrays of this object that stay until the next call.
  void take(const SolverProblem& problem);
  [[nodiscard]] const SolverProblem& problem() const { return problem_; }
  // What the rows of that problem do not say.
  [[nodiscard]] const std::vector<Choice>& choices() const { return choices_; }

 private:
  struct Entry {
    int row;
    int column;
    double value;
  };

  void addSemiContinuous(const SolverProblem& problem);
  void addSet(const SolverProblem& problem, const ztbSolverSet& set);
  int addBinary(bool isOne);
  int addRow(double upper);
  // Not 0 where one of the binaries is 1 alone: from both sides.
  void tie(int column, const std::vector<int>& binaries);
  // sign * column <= reach * the sum of the binaries.
  void tieSide(int column, double sign, double reach, const std::vector<int>& binaries);
  void takeMatrix(const SolverProblem& problem);

  SolverProblem problem_{};
  std::vector<double> cost_, lower_, upper_, rowLower_, rowUpper_, value_, level_;
  std::vector<char> isInteger_;
  std::vector<int> start_, rowOf_;
  std::vector<Entry> entries_;                       // of the rows that are added
  std::vector<double> reachesLower_, reachesUpper_;  // by columns
  std::vector<Choice> choices_;
};

inline bool hasSets(const SolverProblem& problem) {
  return problem.isSemiContinuous != nullptr || problem.setCount > 0;
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_
