#include "providers/model/instance.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <map>
#include <numeric>
#include <tuple>
#include <utility>

namespace lomu {

namespace {

constexpr double kFeasibilityTolerance = 1e-6;

// The bounds of a row of `type` around `rhs`.
double rowLower(RowType type, double rhs, double range) {
  switch (type) {
    case RowType::equal:
    case RowType::greaterOrEqual:
      return rhs;
    case RowType::lessOrEqual:
      return range != 0 ? rhs - range : -kInfinity;
    default:
      return -kInfinity;
  }
}

double rowUpper(RowType type, double rhs, double range) {
  switch (type) {
    case RowType::equal:
    case RowType::lessOrEqual:
      return rhs;
    case RowType::greaterOrEqual:
      return range != 0 ? rhs + range : kInfinity;
    default:
      return kInfinity;
  }
}

bool outside(double value, double low, double high) {
  if (value >= low && value <= high) return false;
  const double room = kFeasibilityTolerance * std::max(1.0, std::abs(value));
  return value < low - room || value > high + room;
}

struct Statuses {
  int model;
  int solve;
};

Statuses statusesOf(const SolverResult& result) {
  constexpr int kFeasible = 6;
  constexpr int kNone = 13;
  const int limited = result.hasPoint ? kFeasible : kNone;
  switch (result.outcome) {
    case Outcome::optimal:
      return {1, 1};
    case Outcome::locallyOptimal:
      return {2, 1};
    case Outcome::unbounded:
      return {3, 1};
    case Outcome::infeasible:
      return {4, 1};
    case Outcome::iterationLimit:
      return {limited, 2};
    case Outcome::timeLimit:
      return {limited, 3};
    case Outcome::terminated:
      return {limited, 4};
    default:
      return {kNone, 13};
  }
}

// Without those that add up to nothing in their row: a model that has no others is linear.
std::vector<Product> countingProducts(const std::vector<Product>& products) {
  const auto placeOf = [](const Product& p) {
    return std::tuple(p.row, std::min(p.column1, p.column2), std::max(p.column1, p.column2));
  };
  std::map<std::tuple<int, int, int>, double> sums;
  for (const Product& p : products) sums[placeOf(p)] += p.value;
  std::vector<Product> counting;
  std::copy_if(products.begin(), products.end(), std::back_inserter(counting),
               [&](const Product& p) { return sums.at(placeOf(p)) != 0; });
  return counting;
}

}  // namespace

Instance::Instance(const ModelData& data, const DrivenNumbers& driven)
    : maximize_(data.maximize),
      columns_(data.columns.size()),
      rows_(data.rows.size()),
      matrix_(data),
      linearized_(matrix_.value),
      products_(countingProducts(data.products)),
      carrierCount_(driven.carrierCount),
      driven_(driven.numbers),
      drivenStart_(at(driven.carrierCount) + 1, 0) {
  for (const ColumnData& c : data.columns) {
    kinds_.push_back(c.kind);
    isInteger_.push_back(c.kind == ColumnKind::continuous ? 0 : 1);
    hasIntegers_ = hasIntegers_ || c.kind != ColumnKind::continuous;
    lower_.push_back(c.lower);
    upper_.push_back(c.upper);
  }
  takeSets(data);
  alternativeLower_ = lower_;
  alternativeUpper_ = upper_;
  for (int j = 0; j < columnCount(); ++j) columns_[at(j)].level = levelWithin(j);

  for (const RowData& r : data.rows) {
    rowTypes_.push_back(r.type);
    rhs_.push_back(r.rhs);
    range_.push_back(r.range);
  }
  rhs_[0] = -data.objectiveConstant;
  alternativeRhsOf_ = rhs_;

  std::stable_sort(
      driven_.begin(), driven_.end(),
      [](const DrivenNumber& a, const DrivenNumber& b) { return a.carrier < b.carrier; });
  for (DrivenNumber& number : driven_) {
    if (number.kind == DrivenKind::coefficient) {
      number.entry = matrix_.entry(number.row, number.column);
    }
    ++drivenStart_[at(number.carrier - solverColumnCount()) + 1];
  }
  std::partial_sum(drivenStart_.begin(), drivenStart_.end(), drivenStart_.begin());

  // A solver sees the constraint rows alone, so the objective's entries are left out of its matrix.
  solverStart_.push_back(0);
  for (std::size_t j = 0; j < at(solverColumnCount()); ++j) {
    for (std::size_t e = matrix_.start[j]; e < matrix_.start[j + 1]; ++e) {
      if (matrix_.rowOf[e] == 0) continue;
      solverRowOf_.push_back(matrix_.rowOf[e] - 1);
      solverEntryOf_.push_back(e);
    }
    solverStart_.push_back(static_cast<int>(solverRowOf_.size()));
  }
  solverValue_.resize(solverEntryOf_.size());
  for (const Product& p : products_) {
    const double sign = p.row == 0 && maximize_ ? -1 : 1;
    solverProducts_.push_back({p.row - 1, p.column1, p.column2, sign * p.value});
  }
}

void Instance::takeSets(const ModelData& data) {
  const auto isSemiContinuous = [](const ColumnData& c) { return c.semiContinuous; };
  if (std::any_of(data.columns.begin(), data.columns.end(), isSemiContinuous)) {
    isSemiContinuous_.resize(data.columns.size());
    std::transform(data.columns.begin(), data.columns.end(), isSemiContinuous_.begin(),
                   isSemiContinuous);
  }
  for (const OrderedSet& set : data.sets) {
    solverSets_.push_back({.kind = set.kind,
                           .first = static_cast<std::int32_t>(setColumns_.size()),
                           .count = static_cast<std::int32_t>(set.members.size())});
    std::vector<SetMember> members = set.members;
    std::stable_sort(members.begin(), members.end(),
                     [](const SetMember& a, const SetMember& b) { return a.weight < b.weight; });
    for (const SetMember& member : members) {
      setColumns_.push_back(member.column);
      setWeights_.push_back(member.weight);
    }
  }
  hasIntegers_ = hasIntegers_ || !isSemiContinuous_.empty() || !solverSets_.empty();
}

bool Instance::isLinear(const std::vector<double>& lower, const std::vector<double>& upper) const {
  const auto standsStill = [&](int j) { return lower[at(j)] == upper[at(j)] && !mayBeZero(j); };
  return std::all_of(products_.begin(), products_.end(), [&](const Product& p) {
    return standsStill(p.column1) || standsStill(p.column2);
  });
}

ModelType Instance::typeBy(const std::vector<double>& lower,
                           const std::vector<double>& upper) const {
  if (isLinear(lower, upper)) return hasIntegers_ ? ModelType::mixedInteger : ModelType::linear;
  return hasIntegers_ ? ModelType::mixedIntegerQuadratic : ModelType::quadratic;
}

ModelType Instance::shownType() const {
  if (!forcedLinear_) return type();
  return hasIntegers_ ? ModelType::mixedInteger : ModelType::linear;
}

// Not std::clamp: a caller's bounds may cross.
double Instance::levelWithin(int j) const {
  const double level = columns_[at(j)].level;
  if (level == 0 && mayBeZero(j)) return level;
  return std::max(lowers()[at(j)], std::min(uppers()[at(j)], level));
}

void Instance::resetLevels() {
  columns_.assign(columns_.size(), SolutionRecord{});
  rows_.assign(rows_.size(), SolutionRecord{});
  for (int j = 0; j < columnCount(); ++j) {
    if (!mayBeZero(j))
      columns_[at(j)].level = std::max(lower_[at(j)], std::min(upper_[at(j)], 0.0));
  }
}

double Instance::inner(double value) const {
  if (value >= plusInfinity_) return kInfinity;
  if (value <= minusInfinity_) return -kInfinity;
  return value;
}

void Instance::setAlternativeLower(int j, double value) {
  alternativeLower_[at(j)] = inner(value);
  if (j >= solverColumnCount()) drive(j, lower_[at(j)] = alternativeLower_[at(j)]);
}

void Instance::setAlternativeUpper(int j, double value) {
  alternativeUpper_[at(j)] = inner(value);
  if (j >= solverColumnCount()) drive(j, upper_[at(j)] = alternativeUpper_[at(j)]);
}

std::span<const DrivenNumber> Instance::drivenBy(int carrier) const {
  const std::size_t k = at(carrier - solverColumnCount());
  return std::span(driven_).subspan(drivenStart_[k], drivenStart_[k + 1] - drivenStart_[k]);
}

void Instance::drive(int carrier, double value) {
  for (const DrivenNumber& number : drivenBy(carrier)) {
    if (number.kind == DrivenKind::rhs) {
      rhs_[at(number.row)] = value;
      alternativeRhsOf_[at(number.row)] = value;
    } else if (number.kind == DrivenKind::coefficient) {
      if (matrix_.value[number.entry] == value) continue;
      matrix_.value[number.entry] = value;
      // The gradients, if there are any, are added anew before each solve.
      linearized_[number.entry] = value;
      (number.row == 0 ? costsChanged_ : entriesChanged_) = true;
    } else {
      driveBound(number, value);
    }
  }
}

// A binary column stays within 0 and 1.
void Instance::driveBound(const DrivenNumber& number, double value) {
  const std::size_t j = at(number.column);
  const bool isBinary = kinds_[j] == ColumnKind::binary;
  if (number.kind == DrivenKind::lower) {
    lower_[j] = alternativeLower_[j] = isBinary ? std::max(value, 0.0) : value;
  } else {
    upper_[j] = alternativeUpper_[j] = isBinary ? std::min(value, 1.0) : value;
  }
}

double Instance::rowSide(int i, bool upper) const {
  const std::size_t row = at(i);
  return upper ? rowUpper(rowTypes_[row], rhs_[row], range_[row])
               : rowLower(rowTypes_[row], rhs_[row], range_[row]);
}

int Instance::carrierOf(DrivenKind kind, int number) const {
  const auto found = std::ranges::find_if(driven_, [&](const DrivenNumber& one) {
    return one.kind == kind && number == (kind == DrivenKind::rhs ? one.row : one.column);
  });
  return found == driven_.end() ? -1 : found->carrier;
}

int Instance::unusableCarrier() const {
  for (int j = solverColumnCount(); j < columnCount(); ++j) {
    const double value = alternativeLower_[at(j)];
    if (value != alternativeUpper_[at(j)]) return j;
    const auto drivesCoefficient = [](const DrivenNumber& number) {
      return number.kind == DrivenKind::coefficient;
    };
    if (!std::isfinite(value) && std::ranges::any_of(drivenBy(j), drivesCoefficient)) return j;
  }
  return -1;
}

bool Instance::linearize(double* offset, bool update) {
  std::fill(offset, offset + rowCount(), 0.0);
  if (products_.empty()) return true;
  if (update) linearized_ = matrix_.value;
  for (const Product& p : products_) {
    const double level1 = levelWithin(p.column1);
    const double level2 = levelWithin(p.column2);
    offset[p.row] -= p.value * level1 * level2;
    if (!update) continue;
    linearized_[matrix_.entry(p.row, p.column1)] += p.value * level2;
    linearized_[matrix_.entry(p.row, p.column2)] += p.value * level1;
  }
  return std::all_of(offset, offset + rowCount(), [](double v) { return std::isfinite(v); });
}

void* Instance::storeView() {
  views_.push_back(std::make_unique<View>(
      View{alternativeBounds_, alternativeRhs_, forcedLinear_, plusInfinity_, minusInfinity_}));
  return views_.back().get();
}

void Instance::restoreView(void* view) {
  const auto found = std::find_if(views_.begin(), views_.end(),
                                  [&](const auto& kept) { return kept.get() == view; });
  if (found == views_.end()) return;
  alternativeBounds_ = (*found)->alternativeBounds;
  alternativeRhs_ = (*found)->alternativeRhs;
  forcedLinear_ = (*found)->forcedLinear;
  plusInfinity_ = (*found)->plusInfinity;
  minusInfinity_ = (*found)->minusInfinity;
  views_.erase(found);
}

void Instance::takeCosts(const std::vector<double>& values) {
  solverCost_.assign(at(solverColumnCount()), 0.0);
  for (std::size_t j = 0; j < solverCost_.size(); ++j) {
    const std::size_t first = matrix_.start[j];
    const bool hasCost = first < matrix_.start[j + 1] && matrix_.rowOf[first] == 0;
    if (hasCost) solverCost_[j] = maximize_ ? -values[first] : values[first];
  }
}

// Without products the coefficients change by data alone.
void Instance::takeCoefficients(bool linearized) {
  const bool standStill = products_.empty() && problem_.coefficientsAsOf != 0;
  const bool costs = std::exchange(costsChanged_, false) || !standStill;
  const bool entries = std::exchange(entriesChanged_, false) || !standStill;
  if (!costs && !entries) return;
  // Another number than that of any other state of any instance.
  static std::atomic<std::uint64_t> last{0};
  problem_.coefficientsAsOf = ++last;
  const std::vector<double>& values = linearized ? linearized_ : matrix_.value;
  if (costs) takeCosts(values);
  if (!entries) return;
  problem_.matrixAsOf = problem_.coefficientsAsOf;
  std::transform(solverEntryOf_.begin(), solverEntryOf_.end(), solverValue_.begin(),
                 [&](std::size_t e) { return values[e]; });
}

const SolverProblem& Instance::solverProblem() {
  // Switches that a failed solve left on mean nothing for a model that is not linear any more.
  const bool linear = isLinear(lowers(), uppers());
  const bool linearized = forcedLinear_ && linear;
  takeCoefficients(linearized);
  const bool shifted = alternativeRhs_ && (linear || !forcedLinear_);
  const std::vector<double>& sides = shifted ? alternativeRhsOf_ : rhs_;
  solverRowLower_.resize(rows_.size() - 1);
  solverRowUpper_.resize(rows_.size() - 1);
  for (std::size_t i = 1; i < rows_.size(); ++i) {
    solverRowLower_[i - 1] = rowLower(rowTypes_[i], sides[i], range_[i]);
    solverRowUpper_[i - 1] = rowUpper(rowTypes_[i], sides[i], range_[i]);
  }
  solverLevel_.resize(columns_.size());
  std::transform(columns_.begin(), columns_.end(), solverLevel_.begin(),
                 [](const SolutionRecord& r) { return r.level; });

  problem_.columnCount = solverColumnCount();
  problem_.rowCount = rowCount() - 1;
  problem_.cost = solverCost_.data();
  problem_.lower = lowers().data();
  problem_.upper = uppers().data();
  problem_.isInteger = isInteger_.data();
  problem_.hasIntegers = hasIntegers_ ? 1 : 0;
  problem_.rowLower = solverRowLower_.data();
  problem_.rowUpper = solverRowUpper_.data();
  problem_.start = solverStart_.data();
  problem_.rowOf = solverRowOf_.data();
  problem_.value = solverValue_.data();
  setProducts(problem_, linearized ? std::span<const SolverProduct>() : solverProducts_);
  problem_.level = solverLevel_.data();
  problem_.levelIsStart = levelsAreStart_ ? 1 : 0;
  problem_.position = startBasis_.isEmpty() ? nullptr : startBasis_.columns.data();
  problem_.rowPosition = startBasis_.isEmpty() ? nullptr : startBasis_.rows.data();
  solverSemiContinuous_.resize(isSemiContinuous_.size());
  for (std::size_t j = 0; j < isSemiContinuous_.size(); ++j) {
    solverSemiContinuous_[j] = mayBeZero(static_cast<int>(j)) ? 1 : 0;
  }
  problem_.isSemiContinuous =
      solverSemiContinuous_.empty() ? nullptr : solverSemiContinuous_.data();
  problem_.sets = solverSets_.data();
  problem_.setCount = static_cast<std::int32_t>(solverSets_.size());
  problem_.setColumns = setColumns_.data();
  problem_.setWeights = setWeights_.data();
  return problem_;
}

void Instance::takeResult(const SolverResult& result) {
  const Statuses statuses = statusesOf(result);
  modelStatus_ = statuses.model;
  solveStatus_ = statuses.solve;
  iterations_ = result.iterations;
  if (!result.hasPoint) {
    takeBound(result);
    return;
  }

  // Levels of rows and marginals of columns come from the model itself, products included, so that
  // every solver leaves the same for the same point. A look at an optimum has worked them out for
  // the solver's own problem, whose coefficients are ours where there are no products.
  const bool areKnown = products_.empty() && !result.columnMarginal.empty();
  const double sign = maximize_ ? -1 : 1;
  for (std::size_t i = 1; i < rows_.size(); ++i) {
    const double marginal = sign * result.rowMarginal[i - 1] + 0.0;  // never -0
    const double level = areKnown ? result.rowLevel[i - 1] + 0.0 : 0;
    rows_[i] = {level, marginal, static_cast<int>(result.rowPosition[i - 1]), 0};
  }
  rows_[0] = {0, -1, static_cast<int>(Position::basic), 0};  // with this weight one sum serves all
  if (areKnown) {
    takeKnownColumns(result);
  } else {
    takeColumns(result);
    addProducts(result);
  }
  takeCarriers();
  rows_[0].level -= rhs_[0];
  rows_[0].marginal = 0;
  for (std::size_t i = 1; i < rows_.size(); ++i) {
    const double low = rowLower(rowTypes_[i], rhs_[i], range_[i]);
    const double high = rowUpper(rowTypes_[i], rhs_[i], range_[i]);
    rows_[i].condition = outside(rows_[i].level, low, high) ? 2 : 0;
  }
  takeBound(result);
}

// Against a point the bound is told by how far it is below; that what does not move adds to the
// objective is in the point's value then.
void Instance::takeBound(const SolverResult& result) {
  const double sign = maximize_ ? -1 : 1;
  if (!result.hasPoint) {
    // Where there is no best point, nothing bounds one.
    const bool none = result.outcome == Outcome::infeasible || result.outcome == Outcome::unbounded;
    // The solver was handed products as costs where the model was presented as linear.
    const bool isLinearForm = products_.empty() || (forcedLinear_ && isLinear(lowers(), uppers()));
    const double shift = alternativeRhs_ ? alternativeRhsOf_[0] : rhs_[0];
    bound_ = isLinearForm && !none ? sign * result.bound - shift : -sign * kInfinity;
    return;
  }
  bound_ = rows_[0].level;
  if (result.outcome == Outcome::optimal && std::isinf(result.bound)) return;
  double cost = 0;
  for (std::size_t j = 0; j < solverCost_.size(); ++j) cost += solverCost_[j] * result.level[j];
  for (const SolverProduct& p : productsOf(problem_)) {
    if (p.row == kObjectiveRow) {
      cost += p.value * result.level[at(p.column1)] * result.level[at(p.column2)];
    }
  }
  bound_ -= sign * std::max(0.0, cost - result.bound);
}

int Instance::conditionOf(std::size_t j, double level) const {
  if (!outside(level, lowers()[j], uppers()[j])) return 0;
  return mayBeZero(static_cast<int>(j)) && !outside(level, 0, 0) ? 0 : 2;
}

// The records of the columns, but for products, and what the columns add to the rows' levels. The
// marginal of a column is the gradient of the objective less the rows' gradients times their
// marginals; a basic column has none.
void Instance::takeColumns(const SolverResult& result) {
  for (std::size_t j = 0; j < at(solverColumnCount()); ++j) {
    const double level = result.level[j] + 0.0;  // never -0
    double marginal = 0;
    const std::size_t end = matrix_.start[j + 1];
    for (std::size_t e = matrix_.start[j]; e < end; ++e) {
      SolutionRecord& row = rows_[at(matrix_.rowOf[e])];
      if (level != 0) row.level += matrix_.value[e] * level;
      marginal -= row.marginal * matrix_.value[e];
    }
    const Position position = result.position[j];
    columns_[j] = {level, position == Position::basic ? 0 : marginal + 0.0,
                   static_cast<int>(position), conditionOf(j, level)};
  }
}

// The same where the marginals of the columns are known, and the rows' levels but for that of the
// objective.
void Instance::takeKnownColumns(const SolverResult& result) {
  const double* const lower = lowers().data();
  const double* const upper = uppers().data();
  // Without branches for what follows no pattern: which columns are basic.
  const auto unlessBasic = [](double marginal, Position position) {
    const std::uint64_t all = position == Position::basic ? 0 : ~std::uint64_t{0};
    return std::bit_cast<double>(std::bit_cast<std::uint64_t>(marginal) & all);
  };
  for (std::size_t j = 0; j < at(solverColumnCount()); ++j) {
    const double level = result.level[j] + 0.0;  // never -0
    const double minimized = result.columnMarginal[j];
    const double marginal = maximize_ ? 0 - minimized : minimized + 0.0;
    const Position position = result.position[j];
    const bool isWithin = level >= lower[j] && level <= upper[j];
    columns_[j] = {level, unlessBasic(marginal, position), static_cast<int>(position),
                   isWithin ? 0 : conditionOf(j, level)};
  }
  rows_[0].level = maximize_ ? 0 - result.cost : result.cost + 0.0;
}

// The change of the objective, as the model states it, per unit of a number that data give. Of a
// column whose bounds are equal, the one counts that its marginal pushes against.
double Instance::worthOf(const DrivenNumber& number) const {
  if (number.kind == DrivenKind::rhs) return rows_[at(number.row)].marginal;
  const SolutionRecord& column = columns_[at(number.column)];
  if (number.kind == DrivenKind::coefficient) {
    return -rows_[at(number.row)].marginal * column.level;
  }
  const bool isLower = number.kind == DrivenKind::lower;
  const std::size_t j = at(number.column);
  if (lowers()[j] == uppers()[j]) {
    const double marginal = maximize_ ? -column.marginal : column.marginal;
    return (isLower ? marginal > 0 : marginal < 0) ? column.marginal : 0;
  }
  const Position position = isLower ? Position::atLower : Position::atUpper;
  return column.status == static_cast<int>(position) ? column.marginal : 0;
}

void Instance::takeCarriers() {
  for (int j = solverColumnCount(); j < columnCount(); ++j) {
    double marginal = 0;
    for (const DrivenNumber& number : drivenBy(j)) marginal += worthOf(number);
    columns_[at(j)] = {alternativeLower_[at(j)], marginal, static_cast<int>(Position::atLower), 0};
  }
}

void Instance::addProducts(const SolverResult& result) {
  for (const Product& p : products_) {
    SolutionRecord& row = rows_[at(p.row)];
    SolutionRecord& column1 = columns_[at(p.column1)];
    SolutionRecord& column2 = columns_[at(p.column2)];
    row.level += p.value * column1.level * column2.level;
    const double weight = row.marginal * p.value;
    if (result.position[at(p.column1)] != Position::basic) {
      column1.marginal -= weight * column2.level;
    }
    if (result.position[at(p.column2)] != Position::basic) {
      column2.marginal -= weight * column1.level;
    }
  }
}

}  // namespace lomu
