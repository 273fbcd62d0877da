// A model instance: what a database changes between solves and a solver reads and writes.
//
// Rows and columns count from 0; row 0 is the objective, which constrains nothing. A column has a
// level, a marginal, two statuses, its own bounds and alternative ones; a row has a right-hand side
// and an alternative one. Three switches say which of them readers and solvers see: alternative
// bounds, alternative right-hand side, and forced linearity, under which products of columns are
// replaced by their gradient at the last linearize(), as long as each has a factor that stands
// still: a model that is forced presents itself as linear, but any other is solved as it is. Own
// bounds and right-hand sides never change, but for those that are driven.
//
// The last columns may be carriers of data: each stands still at the number that data give it, and
// what it drives (a coefficient, a right-hand side, a bound) stands at that number, whatever the
// switches say. Solvers do not see carriers.
//
// The level of the objective row is the objective's value, constant included. Marginals are the
// change of the objective, as the model states it, per unit of right-hand side or of a bound.
// Infinite values pass out as what setInfinities was given, and come in as them or anything beyond.
#ifndef ZTB_PROVIDERS_MODEL_INSTANCE_H_
#define ZTB_PROVIDERS_MODEL_INSTANCE_H_

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "providers/model/basis_file.h"
#include "providers/model/driven_numbers.h"
#include "providers/model/model_data.h"
#include "providers/model/solver.h"
#include "providers/model/sparse_matrix.h"

namespace lomu {

// The model types. The first three are linear: products, if any, have a factor that stands still.
enum class ModelType {
  linear = 1,
  mixedInteger = 2,
  relaxedMixedInteger = 3,
  quadratic = 4,
  mixedIntegerQuadratic = 5
};

struct SolutionRecord {
  double level = 0;
  double marginal = 0;
  int status = static_cast<int>(Position::basic);
  int condition = 0;  // 0 within bounds, 2 outside of them by more than the tolerance
};

class Instance {
 public:
  // REQUIRES: the rows and columns that terms and products name exist.
  explicit Instance(const ModelData& data, const DrivenNumbers& driven = {});

  [[nodiscard]] int columnCount() const { return static_cast<int>(columns_.size()); }
  [[nodiscard]] int rowCount() const { return static_cast<int>(rows_.size()); }
  [[nodiscard]] bool maximizes() const { return maximize_; }
  // The columns that solvers see, which come first.
  [[nodiscard]] int solverColumnCount() const { return columnCount() - carrierCount_; }
  [[nodiscard]] bool hasColumn(int j) const { return j >= 0 && j < columnCount(); }
  [[nodiscard]] bool hasRow(int i) const { return i >= 0 && i < rowCount(); }
  // A model whose products all have a factor with equal bounds is linear. By the bounds that
  // readers see, or by the alternative ones.
  [[nodiscard]] ModelType type() const { return typeBy(lowers(), uppers()); }
  // The type that the model presents itself with: a linear one while forced linearity is on.
  [[nodiscard]] ModelType shownType() const;
  [[nodiscard]] ModelType alternativeType() const {
    return typeBy(alternativeLower_, alternativeUpper_);
  }

  void setPlusInfinity(double value) { plusInfinity_ = value; }
  void setMinusInfinity(double value) { minusInfinity_ = value; }
  void useAlternativeBounds(bool on) { alternativeBounds_ = on; }
  void useAlternativeRhs(bool on) { alternativeRhs_ = on; }
  void forceLinear(bool on) { forcedLinear_ = on; }
  // Whether solvers are told to take the levels as a solution to begin with.
  void useLevelsAsStart(bool on) { levelsAreStart_ = on; }

  // Records of columns and rows; REQUIRES hasColumn or hasRow for the functions below.
  SolutionRecord& column(int j) { return columns_[at(j)]; }
  SolutionRecord& row(int i) { return rows_[at(i)]; }
  [[nodiscard]] const SolutionRecord& column(int j) const { return columns_[at(j)]; }
  [[nodiscard]] const SolutionRecord& row(int i) const { return rows_[at(i)]; }
  // Bounds and right-hand sides with the infinities of doubles.
  [[nodiscard]] double plainLower(int j) const { return lowers()[at(j)]; }
  [[nodiscard]] double plainUpper(int j) const { return uppers()[at(j)]; }
  [[nodiscard]] double plainRhs(int i) const { return rhs_[at(i)]; }
  [[nodiscard]] double lower(int j) const { return outer(lowers()[at(j)]); }
  [[nodiscard]] double upper(int j) const { return outer(uppers()[at(j)]); }
  void setAlternativeLower(int j, double value);
  void setAlternativeUpper(int j, double value);
  [[nodiscard]] RowType rowType(int i) const { return rowTypes_[at(i)]; }
  // The row's own right-hand side, whatever the switch says: a caller that shifts it after a failed
  // solve shifts from the same place. The objective's is its constant with the sign turned.
  [[nodiscard]] double rhs(int i) const { return outer(rhs_[at(i)]); }
  void setAlternativeRhs(int i, double value) { alternativeRhsOf_[at(i)] = inner(value); }

  // The first carrier that does not stand at one number, or drives a coefficient with an infinite
  // one; -1 when there is none. No model can be solved that has one.
  [[nodiscard]] int unusableCarrier() const;

  // A side of a row, upper or lower, and the carrier that drives a right-hand side or bound; -1
  // where none does.
  [[nodiscard]] double rowSide(int i, bool upper) const;
  [[nodiscard]] int carrierOf(DrivenKind kind, int number) const;

  // Evaluates the products at the present levels, taken into their bounds. `offset[i]` becomes what
  // the linear form of row i has to be shifted by: row = linear form + offset. With `update` the
  // gradients go into the matrix that a forced-linear solve uses. False when a value is not finite.
  bool linearize(double* offset, bool update);

  // The state of the switches and infinities, kept until it is restored or the instance ends.
  void* storeView();
  void restoreView(void* view);

  // Levels, marginals and statuses as at the beginning, by the present bounds.
  void resetLevels();

  // The basis that solvers are told to begin with; an empty one is none.
  void beginAtBasis(Basis basis) { startBasis_ = std::move(basis); }
  [[nodiscard]] bool beginsAtBasis() const { return !startBasis_.isEmpty(); }

  void setModelStatus(int status) { modelStatus_ = status; }
  void setSolveStatus(int status) { solveStatus_ = status; }
  [[nodiscard]] int modelStatus() const { return modelStatus_; }
  [[nodiscard]] int solveStatus() const { return solveStatus_; }
  [[nodiscard]] double iterations() const { return iterations_; }
  // What no objective is better than; the infinity of the better direction where nothing is known.
  [[nodiscard]] double bound() const { return bound_; }

  // What a solver is given, by the present switches; valid until the instance changes.
  const SolverProblem& solverProblem();
  // Takes over what a solver left. Without a point, levels and marginals stay as they were.
  void takeResult(const SolverResult& result);

 private:
  struct View {
    bool alternativeBounds;
    bool alternativeRhs;
    bool forcedLinear;
    double plusInfinity;
    double minusInfinity;
  };

  static std::size_t at(int i) { return static_cast<std::size_t>(i); }
  [[nodiscard]] double outer(double value) const {
    if (value == kInfinity) return plusInfinity_;
    if (value == -kInfinity) return minusInfinity_;
    return value;
  }
  [[nodiscard]] double inner(double value) const;
  [[nodiscard]] const std::vector<double>& lowers() const {
    return alternativeBounds_ ? alternativeLower_ : lower_;
  }
  [[nodiscard]] const std::vector<double>& uppers() const {
    return alternativeBounds_ ? alternativeUpper_ : upper_;
  }
  [[nodiscard]] bool isLinear(const std::vector<double>& lower,
                              const std::vector<double>& upper) const;
  [[nodiscard]] ModelType typeBy(const std::vector<double>& lower,
                                 const std::vector<double>& upper) const;
  // A semi-continuous column that updates fix stands where they put it.
  [[nodiscard]] bool mayBeZero(int j) const {
    if (isSemiContinuous_.empty() || isSemiContinuous_[at(j)] == 0) return false;
    return alternativeLower_[at(j)] != alternativeUpper_[at(j)] || lower_[at(j)] == upper_[at(j)];
  }
  [[nodiscard]] double levelWithin(int j) const;
  void takeSets(const ModelData& data);
  // What a carrier drives.
  [[nodiscard]] std::span<const DrivenNumber> drivenBy(int carrier) const;
  void drive(int carrier, double value);
  void driveBound(const DrivenNumber& number, double value);
  [[nodiscard]] double worthOf(const DrivenNumber& number) const;
  void takeCarriers();
  void takeCosts(const std::vector<double>& values);
  void takeCoefficients(bool linearized);
  // 0 within the bounds that readers see, or at 0 where that is a place to be; else 2.
  [[nodiscard]] int conditionOf(std::size_t j, double level) const;
  void takeColumns(const SolverResult& result);
  void takeKnownColumns(const SolverResult& result);
  void takeBound(const SolverResult& result);
  void addProducts(const SolverResult& result);

  bool maximize_;
  std::vector<SolutionRecord> columns_;
  std::vector<SolutionRecord> rows_;
  std::vector<ColumnKind> kinds_;
  std::vector<char> isInteger_;
  bool hasIntegers_ = false;  // or what takes a search all the same: semi-continuous columns, sets
  std::vector<double> lower_, upper_;
  std::vector<double> alternativeLower_, alternativeUpper_;
  std::vector<RowType> rowTypes_;
  std::vector<double> rhs_, alternativeRhsOf_, range_;

  SparseMatrix matrix_;             // the linear terms, and a zero wherever a gradient may come
  std::vector<double> linearized_;  // the values of matrix_ with the gradients in
  std::vector<Product> products_;

  int carrierCount_;
  std::vector<DrivenNumber> driven_;      // by carrier
  std::vector<std::size_t> drivenStart_;  // of each carrier in driven_, and the end
  // Since the solver's were taken: those of the objective, and the others.
  bool costsChanged_ = false;
  bool entriesChanged_ = false;

  double plusInfinity_ = kInfinity;
  double minusInfinity_ = -kInfinity;
  bool alternativeBounds_ = false;
  bool alternativeRhs_ = false;
  bool forcedLinear_ = false;
  bool levelsAreStart_ = false;
  Basis startBasis_;
  std::vector<std::unique_ptr<View>> views_;

  int modelStatus_ = 13;
  int solveStatus_ = 13;
  double iterations_ = 0;
  double bound_ = 0;

  // What solverProblem() points to.
  SolverProblem problem_{};
  std::vector<double> solverCost_, solverRowLower_, solverRowUpper_, solverValue_, solverLevel_;
  std::vector<int> solverStart_, solverRowOf_;
  std::vector<std::size_t> solverEntryOf_;  // the entry of matrix_ behind each solver entry
  std::vector<SolverProduct> solverProducts_;
  std::vector<char> isSemiContinuous_, solverSemiContinuous_;
  std::vector<ztbSolverSet> solverSets_;
  std::vector<int> setColumns_;
  std::vector<double> setWeights_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_INSTANCE_H_
