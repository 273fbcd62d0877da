// A linear problem in Clp that lives from solve to solve: the first solve is that of Clp's own
// program, presolve and choice of method included; then what changed is handed over, and the next
// solve begins at the basis where the last one ended. Integrality is not looked at.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_

#include <ClpSimplex.hpp>
#include <ClpSolve.hpp>
#include <cstdint>
#include <vector>

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/moving_part.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

// Keeps Clp from taking the signal of an interrupt from the program while it solves.
inline void leaveInterrupts(ClpSolve& choice) {
  constexpr int kWhoseInterrupts = 2;
  choice.setSpecialOption(kWhoseInterrupts, 1);
}

class ClpProgram {
 public:
  void load(LinearForm form);
  // Takes `form` over and leaves it without a meaning. REQUIRES isWhole and the same shape.
  void update(LinearForm& form);
  // Takes over bounds alone, or costs as well; false, with nothing taken, when one is a NaN, or a
  // cost infinite. REQUIRES isWhole, that nothing else changed, and that no column is integer.
  bool update(const SolverProblem& problem, bool withCosts);
  // Has the first solve begin with a basis, as ztb/solver.h has one; false when it does not fit.
  // REQUIRES that nothing was solved since load.
  bool begin(const std::int32_t* position, const std::int32_t* rowPosition);
  // False from an exception in one of these or in solve on, until a load: Clp has part of a
  // problem.
  [[nodiscard]] bool isWhole() const { return isWhole_; }
  [[nodiscard]] const LinearForm& form() const { return form_; }
  // That of the form.
  [[nodiscard]] bool boundsCross() const { return boundsCross_; }

  // Fills `result` with what Clp finds; its point is within Clp's tolerance. REQUIRES isWhole and
  // bounds that do not cross.
  void solve(Watch& watch, SolverResult& result);
  // The ranges of the last solve; false unless it found an optimum.
  bool ranges(SolverRanges& ranges);
  // Whether Clp looked at the scale of the coefficients in the last solve, and may have scaled.
  [[nodiscard]] bool scales() const { return simplex_.scalingFlag() != 0; }
  // The next solve is to use nothing of the last one but its basis.
  void forgetWork();

 private:
  // What Clp makes of its last solve, as it takes it: bits to leave arrays and factorization for
  // the next one, to begin with the factorization, and to begin with arrays whose data did not
  // change. They save a third of a solve of few iterations.
  static constexpr int kNothing = 0;
  static constexpr int kLeaveWork = 1;
  static constexpr int kUseFactorization = kLeaveWork | 2;
  static constexpr int kUseWork = kUseFactorization | 4;

  enum class Method { dual, primal };
  struct Bounds {
    const double* lower;
    const double* upper;
    const double* rowLower;
    const double* rowUpper;
  };
  // Whether coefficients of rows are not as before: of the columns that Clp sees, and of the
  // others.
  struct Changes {
    bool entries = false;
    bool shifts = false;
  };

  void handOver();
  void handOverMore(const MovingPart& more);
  // Gives what changed its bounds, a column or a row in Clp's count, a status that fits them.
  void settle(int place);
  bool setRows();  // whether any changed
  // Finds the columns and rows whose bounds changed; false when one of these is a NaN.
  bool lookAtBounds(const Bounds& bounds);
  // Takes them over. Whether any cost that Clp sees is another.
  bool takeCosts(const double* costs);
  // The same for the bounds.
  bool takeBounds(const Bounds& bounds, bool shiftsChanged);
  // Whether one of the bounds that changed crosses the other one.
  [[nodiscard]] bool changedBoundsCross() const;
  [[nodiscard]] Changes changesTo(const LinearForm& form) const;
  void chooseMethod(bool costsChanged, bool boundsChanged);
  // `reuse`: what Clp is to use of its last solve.
  void run(ClpSimplex& simplex, Method method, Watch& watch, int reuse);
  void runFresh(Watch& watch);
  // As many basic columns and rows as there are rows, and no other between its bounds.
  [[nodiscard]] bool hasVertex() const;
  void lookAtScale();
  void runLive(Watch& watch);
  void runUnscaled(Watch& watch);
  void decideUnsolvable(Watch& watch, SolverResult& result);
  void solveFromNothing(Watch& watch, SolverResult& result);
  // Whether Clp left a proof that no point exists; it is in `result` then.
  bool leaveRowRay(const ClpSimplex& simplex, SolverResult& result) const;
  // Leaves what Clp has as a proof that there is no end, with its point.
  void leaveColumnRay(SolverResult& result) const;
  void rangeCosts(SolverRanges& ranges);
  void rangeRows(SolverRanges& ranges);
  [[nodiscard]] bool wasLimited() const { return simplex_.status() == 3 || simplex_.status() == 5; }
  void leaveLimit(const Watch& watch, SolverResult& result) const;
  void leaveMarginals(SolverResult& result) const;
  void leavePoint(SolverResult& result) const;

  ClpSimplex simplex_;
  LinearForm form_;
  MovingPart part_;  // what Clp sees of it
  bool isWhole_ = false;
  bool isFresh_ = true;                            // not solved yet
  bool boundsCross_ = false;                       // those of the form
  int scaling_ = 0;                                // Clp's way to scale, unless it is told
  bool isScaled_ = true;                           // by Clp, in the solves after the first
  bool basisIsLost_ = false;                       // the next solve is as the first
  std::vector<int> changedColumns_, changedRows_;  // as lookAtBounds found them
  Method method_ = Method::dual;
  bool isMixed_ = false;   // costs and bounds are others than in the last solve
  int stepsInPrimal_ = 0;  // so many more such solves begin with the primal method
  int reuse_ = 0;          // what the next run may use of the last one
  double iterations_ = 0;  // of the present solve, or of the last one between two
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_
