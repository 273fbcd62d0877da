// A linear problem in Clp that lives from solve to solve: what changed is handed over, and the next
// solve begins at the basis where the last one ended. Integrality is not looked at.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_

#include <ClpSimplex.hpp>
#include <optional>

#include "providers/model/solvers/linear_form.h"
#include "providers/model/solvers/moving_part.h"
#include "providers/model/solvers/watch.h"

namespace lomu {

class ClpProgram {
 public:
  void load(LinearForm form);
  // Takes `form` over and leaves the one before in its place. REQUIRES the same shape.
  void update(LinearForm& form);
  // Takes the bounds over alone; false, and then to be loaded again, when one is not a number.
  // REQUIRES that nothing else changed and that no column is integer.
  bool updateBounds(const SolverProblem& problem);
  [[nodiscard]] const LinearForm& form() const { return form_; }

  // Fills `result` with what Clp finds; its point is within Clp's tolerance. REQUIRES bounds that
  // do not cross.
  void solve(Watch& watch, SolverResult& result);

 private:
  enum class Method { dual, primal };

  void handOver();
  void takeColumnsIn();
  void setRows();
  // Whether any bound is another; nothing when one is not a number.
  std::optional<bool> takeBounds(const double* lower, const double* upper, const double* rowLower,
                                 const double* rowUpper);
  // `reuse`: what Clp is to use of its last solve.
  void run(ClpSimplex& simplex, Method method, Watch& watch, int reuse);
  void decideUnsolvable(Watch& watch, SolverResult& result);
  [[nodiscard]] bool wasLimited() const { return simplex_.status() == 3 || simplex_.status() == 5; }
  void leavePoint(SolverResult& result) const;

  ClpSimplex simplex_;
  LinearForm form_;
  MovingPart part_;  // what Clp sees of it
  Method method_ = Method::dual;
  int reuse_ = 0;          // what the last update left of the solve before it
  bool settled_ = false;   // the last solve ended at an optimum at once
  double iterations_ = 0;  // of the present solve
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_CLP_PROGRAM_H_
