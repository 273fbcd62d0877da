#include "providers/model/solvers/conflicts.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "providers/model/at.h"
#include "providers/model/solvers/cut_problem.h"

namespace lomu {

namespace {

// Literals in cliques, for each place of the matrix.
constexpr double kLiteralsPerPlace = 4;
// Pairs that exceed a side by less are none.
constexpr double kExcess = 1e-5;

}  // namespace

Cut cutOf(const std::vector<int>& literals) {
  Cut cut;
  cut.right = 1;
  for (const int literal : literals) {
    const bool isZero = literal % 2 != 0;
    cut.column.push_back(literal / 2);
    cut.value.push_back(isZero ? -1 : 1);
    if (isZero) cut.right -= 1;
  }
  return cut;
}

Conflicts::Conflicts(const CutProblem& problem) : with_(2 * at(problem.columnCount())) {
  for (const auto& row : problem.row) room_ += kLiteralsPerPlace * static_cast<double>(row.size());
  for (int i = 0; i < problem.rowCount(); ++i) {
    if (std::isfinite(problem.rowUpper[at(i)])) takeSide(problem, i, 1);
    if (std::isfinite(problem.rowLower[at(i)])) takeSide(problem, i, -1);
  }
}

// The side as weights of literals in a capacity: the heaviest ones of which any two are too much,
// and with each of the others those that are too much beside it.
void Conflicts::takeSide(const CutProblem& problem, int row, double sign) {
  const std::vector<CutEntry>& entries = problem.row[at(row)];
  double capacity = sign * (sign > 0 ? problem.rowUpper : problem.rowLower)[at(row)];
  double size = std::max(1.0, std::abs(capacity));
  struct Weighed {
    double weight;
    int literal;
  };
  std::vector<Weighed> things;
  for (const CutEntry& entry : entries) {
    const double factor = sign * entry.value;
    if (problem.isBinary(entry.at)) {
      things.push_back({std::abs(factor), 2 * entry.at + (factor < 0 ? 1 : 0)});
      if (factor < 0) capacity -= factor;
      size = std::max(size, std::abs(factor));
      continue;
    }
    const double least = factor * (factor > 0 ? problem.lower : problem.upper)[at(entry.at)];
    if (!std::isfinite(least)) return;
    capacity -= least;
    size = std::max(size, std::abs(least));
  }
  if (things.size() < 2) return;
  std::ranges::stable_sort(things,
                           [](const Weighed& a, const Weighed& b) { return a.weight > b.weight; });
  const double tooMuch = capacity + kExcess * size;
  std::size_t count = 1;
  while (count < things.size() && things[count - 1].weight + things[count].weight > tooMuch) {
    ++count;
  }
  const auto first = [&](std::size_t number) {
    std::vector<int> literals;
    for (std::size_t k = 0; k < number; ++k) literals.push_back(things[k].literal);
    return literals;
  };
  if (count >= 2) {
    const bool isRow = count == entries.size() && things[0].weight <= capacity;
    if (!add({first(count), row, isRow})) return;
  }
  std::size_t heavy = count - 1;
  for (std::size_t k = count; k < things.size(); ++k) {
    while (heavy > 0 && things[heavy - 1].weight + things[k].weight <= tooMuch) --heavy;
    if (heavy == 0) return;
    Clique clique{first(heavy), row, false};
    clique.literals.push_back(things[k].literal);
    if (!add(std::move(clique))) return;
  }
}

bool Conflicts::add(Clique clique) {
  room_ -= static_cast<double>(clique.literals.size());
  if (room_ < 0) return false;
  for (const int literal : clique.literals) {
    with_[at(literal)].push_back(static_cast<int>(cliques_.size()));
  }
  cliques_.push_back(std::move(clique));
  return true;
}

ConflictMarks::ConflictMarks(const Conflicts& conflicts)
    : conflicts_(conflicts),
      mark_(at(conflicts.literalCount())),
      weight_(at(conflicts.literalCount())) {
  for (const Conflicts::Clique& clique : conflicts.cliques()) {
    const auto size = static_cast<double>(clique.literals.size());
    for (const int literal : clique.literals) weight_[at(literal)] += size;
  }
}

void ConflictMarks::mark(int literal) {
  ++now_;
  for (const int number : conflicts_.with(literal)) {
    const std::vector<int>& literals = conflicts_.cliques()[at(number)].literals;
    for (const int other : literals) mark_[at(other)] = now_;
    work_ += static_cast<double>(literals.size());
  }
  mark_[at(literal)] = 0;
}

std::vector<int> ConflictMarks::common(const std::vector<int>& literals) {
  const auto first =
      std::ranges::min_element(literals, [&](int a, int b) { return weight(a) < weight(b); });
  std::vector<int> left;
  ++now_;
  for (const int number : conflicts_.with(*first)) {
    for (const int other : conflicts_.cliques()[at(number)].literals) {
      work_ += 1;
      if (mark_[at(other)] == now_ || other == *first) continue;
      mark_[at(other)] = now_;
      left.push_back(other);
    }
  }
  for (auto one = literals.begin(); one != literals.end() && !left.empty(); ++one) {
    if (one == first) continue;
    mark(*one);
    std::erase_if(left, [&](int other) { return !isMarked(other); });
  }
  return left;
}

void extendClique(ConflictMarks& marks, std::vector<int>& clique) {
  std::vector<int> left = marks.common(clique);
  const auto more = [&](int a, int b) { return marks.weight(a) > marks.weight(b); };
  std::ranges::stable_sort(left, more);
  while (!left.empty()) {
    const int next = left.front();
    clique.push_back(next);
    marks.mark(next);
    std::erase_if(left, [&](int other) { return !marks.isMarked(other); });
  }
}

}  // namespace lomu
