// A solver at work on a model: made from a row of the catalogue, handed the model once, then told
// of its changes before every further solve.
#ifndef ZTB_PROVIDERS_MODEL_LIVE_SOLVER_H_
#define ZTB_PROVIDERS_MODEL_LIVE_SOLVER_H_

#include <string>

#include "providers/model/catalogue.h"
#include "providers/model/checked_solver.h"
#include "providers/model/model.h"
#include "providers/model/solver.h"

namespace lomu {

class LiveSolver {
 public:
  // Opens the solver's library. Throws ModelError.
  explicit LiveSolver(const CatalogueRow& row);

  // Hands the model over. Throws ModelError when the solver does not take it.
  void load(Model& model);
  // Whether this is the model that was loaded.
  [[nodiscard]] bool holds(const Model& model) const { return model_ == &model; }
  // Takes over the present state of the loaded model; false when the solver cannot.
  bool update();
  // Solves and leaves statuses and solution in the model; a cold solve is counted there, and told
  // in the log. Throws ModelError with the solver's
  // reason when it gave up. REQUIRES load.
  void solve(const SolverLimits& limits);

 private:
  [[nodiscard]] bool takes(const Instance& instance) const;
  void logResult() const;

  CatalogueRow row_;
  CheckedSolver solver_;
  Model* model_ = nullptr;
  SolverResult result_;  // kept, so that repeated solves allocate nothing
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LIVE_SOLVER_H_
