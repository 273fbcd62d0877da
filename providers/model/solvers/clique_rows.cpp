#include "providers/model/solvers/clique_rows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

#include "providers/model/at.h"

namespace lomu {

namespace {

// Literals that may be looked at, for each place of the matrix.
constexpr double kWorkPerPlace = 100;

class CliqueMerger {
 public:
  CliqueMerger(const CutProblem& problem, std::size_t places)
      : problem_(problem),
        conflicts_(problem.conflicts),
        marks_(conflicts_),
        isGone_(at(problem.rowCount())),
        extended_(at(problem.rowCount())),
        shared_(conflicts_.cliques().size()),
        mostWork_(kWorkPerPlace * static_cast<double>(places)) {}

  // False when no row changes.
  bool run() {
    const std::vector<Conflicts::Clique>& cliques = conflicts_.cliques();
    std::vector<int> order;
    for (std::size_t k = 0; k < cliques.size(); ++k) {
      if (cliques[k].isRow) order.push_back(static_cast<int>(k));
    }
    std::ranges::stable_sort(order, [&](int a, int b) {
      return cliques[at(a)].literals.size() > cliques[at(b)].literals.size();
    });
    for (const int number : order) {
      if (marks_.work() + work_ > mostWork_) break;
      const Conflicts::Clique& clique = cliques[at(number)];
      if (isGone_[at(clique.row)] != 0) continue;
      std::vector<int> literals = clique.literals;
      if (isOneSided(clique.row)) extendClique(marks_, literals);
      if (literals.size() > clique.literals.size()) {
        changed_ = true;
        extended_[at(clique.row)] = literals;
      }
      leaveOut(number, literals);
    }
    return changed_;
  }

  [[nodiscard]] LinearForm merged(const LinearForm& form) const;

 private:
  [[nodiscard]] bool isOneSided(int row) const {
    return std::isinf(problem_.rowLower[at(row)]) != std::isinf(problem_.rowUpper[at(row)]);
  }

  // The rows whose literals are all among these.
  void leaveOut(int own, const std::vector<int>& literals) {
    std::vector<int> touched;
    for (const int literal : literals) {
      for (const int number : conflicts_.with(literal)) {
        if (shared_[at(number)]++ == 0) touched.push_back(number);
      }
      work_ += static_cast<double>(conflicts_.with(literal).size());
    }
    for (const int number : touched) {
      const Conflicts::Clique& other = conflicts_.cliques()[at(number)];
      const bool isWithin = shared_[at(number)] == static_cast<int>(other.literals.size());
      shared_[at(number)] = 0;
      if (number == own || !isWithin || !other.isRow || !isOneSided(other.row)) continue;
      // Others may be gone for what it was extended by.
      if (!extended_[at(other.row)].empty()) continue;
      isGone_[at(other.row)] = 1;
      changed_ = true;
    }
  }

  const CutProblem& problem_;
  const Conflicts& conflicts_;
  ConflictMarks marks_;
  std::vector<char> isGone_;
  std::vector<std::vector<int>> extended_;  // by rows; empty where one stays as it is
  std::vector<int> shared_;
  double work_ = 0;
  double mostWork_;
  bool changed_ = false;
};

LinearForm CliqueMerger::merged(const LinearForm& form) const {
  LinearForm out = form;
  out.rowLower.clear();
  out.rowUpper.clear();
  std::vector<std::vector<CutEntry>> entries(at(form.columnCount));
  out.rowCount = 0;
  for (int i = 0; i < form.rowCount; ++i) {
    if (isGone_[at(i)] != 0) continue;
    if (extended_[at(i)].empty()) {
      for (const CutEntry& entry : problem_.row[at(i)]) {
        entries[at(entry.at)].push_back({out.rowCount, entry.value});
      }
      out.rowLower.push_back(form.rowLower[at(i)]);
      out.rowUpper.push_back(form.rowUpper[at(i)]);
    } else {
      const Cut clique = cutOf(extended_[at(i)]);
      for (std::size_t k = 0; k < clique.column.size(); ++k) {
        entries[at(clique.column[k])].push_back({out.rowCount, clique.value[k]});
      }
      out.rowLower.push_back(-HUGE_VAL);
      out.rowUpper.push_back(clique.right);
    }
    ++out.rowCount;
  }
  out.start = {0};
  out.rowOf.clear();
  out.value.clear();
  for (const std::vector<CutEntry>& column : entries) {
    for (const CutEntry& entry : column) {
      out.rowOf.push_back(entry.at);
      out.value.push_back(entry.value);
    }
    out.start.push_back(static_cast<int>(out.rowOf.size()));
  }
  return out;
}

}  // namespace

bool mergeCliques(const CutProblem& problem, const LinearForm& form, LinearForm& merged) {
  CliqueMerger merger(problem, form.value.size());
  if (!merger.run()) return false;
  merged = merger.merged(form);
  return true;
}

}  // namespace lomu
