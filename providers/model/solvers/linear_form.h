// A problem as the linear solvers take it: a copy of the arrays in which products with a factor
// that stands still, that is, whose bounds are equal, are part of cost and matrix, and in which the
// bounds of integer columns are integers.
//
// The matrix keeps the places of the problem's, zeros included, so that the forms of one problem
// at different times have the same shape. Coefficients are finite, no number is a NaN.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_LINEAR_FORM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_LINEAR_FORM_H_

#include <string>
#include <vector>

#include "providers/model/solver.h"

namespace lomu {

// A column that is above 0, or below it, only where one of some binary columns is 1. Where rows say
// so too, their bound is so large that a binary column next to 0 would let it.
struct Choice {
  int column;
  bool isAbove;
  bool hasRow;
  std::vector<int> binaries;
};

struct LinearForm {
  int columnCount = 0;
  int rowCount = 0;
  bool hasIntegers = false;
  std::vector<double> cost, lower, upper;
  std::vector<char> isInteger;
  std::vector<double> rowLower, rowUpper;
  std::vector<int> start, rowOf;
  std::vector<double> value;
  std::vector<Choice> choices;  // which only solveWithChoices knows; empty after take()

  // Takes the problem over; false with the reason, and then without a meaning, when it is not
  // linear or has numbers that no solver takes.
  bool take(const SolverProblem& problem, std::string& reason);

  // The same as a problem without products, valid as long as the form stays as it is.
  [[nodiscard]] SolverProblem problem() const;

  [[nodiscard]] bool sameShape(const LinearForm& other) const {
    return columnCount == other.columnCount && rowCount == other.rowCount && start == other.start &&
           rowOf == other.rowOf && isInteger == other.isInteger;
  }
  // Whether all costs are such as Clp takes, which ends the process over others in an assertion;
  // the reason if not.
  [[nodiscard]] bool costsSuitClp(std::string& reason) const;
  // Whether some column or row has a lower bound above its upper one.
  [[nodiscard]] bool boundsCross() const;

 private:
  bool foldProducts(const SolverProblem& problem, std::string& reason);
  [[nodiscard]] bool numbersAreSound(std::string& reason) const;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_LINEAR_FORM_H_
