// Semi-continuous columns and special ordered sets told by binary columns, which every solver of
// integers takes.
//
// Behind the columns of a problem come a binary one for each semi-continuous column, 1 where it is
// not 0; then for each set of kind 1 one a member, and for each of kind 2 one a pair of neighbours,
// of which one at most is 1. Behind its rows come those that tie them.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_

#include <string>
#include <vector>

#include "providers/model/solver.h"

namespace lomu {

class SetForm {
 public:
  // Makes a problem without either, over arrays of this object that stay until the next call; false
  // with the reason where a column has no finite bound that the ties need.
  bool take(const SolverProblem& problem, std::string& reason);
  [[nodiscard]] const SolverProblem& problem() const { return problem_; }

 private:
  struct Entry {
    int row;
    int column;
    double value;
  };

  bool addSemiContinuous(const SolverProblem& problem, std::string& reason);
  bool addSet(const SolverProblem& problem, const ztbSolverSet& set, std::string& reason);
  int addBinary(bool isOne);
  int addRow(double upper);
  // column <= its upper bound times the sum of the binaries, and the same from below.
  bool tie(int column, const std::vector<int>& binaries, std::string& reason);
  void takeMatrix(const SolverProblem& problem);

  SolverProblem problem_{};
  std::vector<double> cost_, lower_, upper_, rowLower_, rowUpper_, value_, level_;
  std::vector<char> isInteger_;
  std::vector<int> start_, rowOf_;
  std::vector<Entry> entries_;                       // of the rows that are added
  std::vector<double> reachesLower_, reachesUpper_;  // by columns, which the ties need finite
};

inline bool hasSets(const SolverProblem& problem) {
  return problem.isSemiContinuous != nullptr || problem.setCount > 0;
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_SET_FORM_H_
