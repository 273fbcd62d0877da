#include "tests/solve/heard_clp.h"

#include <memory>
#include <string>

#include "providers/model/solver_library.h"
#include "providers/model/solvers/solver_face.h"

namespace {

bool keepsMarginals = false;
bool keepsProofs = false;
int loads = 0;

class HeardClp : public lomu::Solver {
 public:
  HeardClp() : clp_(lomu::SolverLibrary::makeSolver(ZTB_CLP)) {}
  bool load(const lomu::SolverProblem& problem, std::string& reason) override {
    ++loads;
    return clp_->load(problem, reason);
  }
  bool update(const lomu::SolverProblem& problem) override { return clp_->update(problem); }
  void solve(const lomu::SolverLimits& limits, lomu::SolverResult& result) override {
    clp_->solve(limits, result);
    if (keepsMarginals) result.rowMarginal.assign(result.rowMarginal.size(), 0.0);
    if (keepsProofs) result.rowRay.clear();
  }

 private:
  std::unique_ptr<lomu::Solver> clp_;
};

}  // namespace

void heardClpKeeps(bool marginals, bool proofs) {
  keepsMarginals = marginals;
  keepsProofs = proofs;
  loads = 0;
}

int heardClpLoads() {
  return loads;
}

const ztbSolverFunctions* ztbSolverLibrary() {
  return &lomu::solverFunctions<HeardClp>;
}
