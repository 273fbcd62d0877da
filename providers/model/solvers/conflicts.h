// Which values of binary columns exclude each other, as single rows tell. A literal is a binary
// column at a value: 2 * column for 1, 2 * column + 1 for 0. A clique is a set of literals of which
// no point has two.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CONFLICTS_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CONFLICTS_H_

#include <cstddef>
#include <vector>

namespace lomu {

struct CutProblem;
struct Cut;

// The columns and the right side of "at most one of the literals".
Cut cutOf(const std::vector<int>& literals);

class Conflicts {
 public:
  Conflicts() = default;
  explicit Conflicts(const CutProblem& problem);

  struct Clique {
    std::vector<int> literals;
    int row;
    // All that the row says on this side, with nothing else in it: the clique says as much.
    bool isRow;
  };
  [[nodiscard]] const std::vector<Clique>& cliques() const { return cliques_; }
  // The numbers of the cliques with the literal, ascending.
  [[nodiscard]] const std::vector<int>& with(int literal) const {
    return with_[static_cast<std::size_t>(literal)];
  }
  [[nodiscard]] int literalCount() const { return static_cast<int>(with_.size()); }

 private:
  void takeSide(const CutProblem& problem, int row, double sign);
  bool add(Clique clique);

  std::vector<Clique> cliques_;
  std::vector<std::vector<int>> with_;
  double room_ = 0;  // for literals in cliques, until there are enough
};

// Asks which literals are in conflict with which.
class ConflictMarks {
 public:
  // REQUIRES that the conflicts outlive this.
  explicit ConflictMarks(const Conflicts& conflicts);

  // From here on `isMarked` tells the literals in conflict with this one.
  void mark(int literal);
  [[nodiscard]] bool isMarked(int literal) const {
    return mark_[static_cast<std::size_t>(literal)] == now_;
  }
  // How much there is to look at with the literal.
  [[nodiscard]] double weight(int literal) const {
    return weight_[static_cast<std::size_t>(literal)];
  }
  // The literals in conflict with each of these, in no order.
  [[nodiscard]] std::vector<int> common(const std::vector<int>& literals);
  // How much was looked at so far.
  [[nodiscard]] double work() const { return work_; }

 private:
  const Conflicts& conflicts_;
  std::vector<int> mark_;
  std::vector<double> weight_;
  int now_ = 0;
  double work_ = 0;
};

// Adds literals that are in conflict with all of the clique and with each other, those with most to
// look at first, until there are none.
void extendClique(ConflictMarks& marks, std::vector<int>& clique);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CONFLICTS_H_
