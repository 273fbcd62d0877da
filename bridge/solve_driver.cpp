// Runs a solver on the changed model and makes the database see the new solution.
//
// A solver that can take a changed problem in place stays alive between solves; any other, and one
// that could not take the change, is started afresh through the solver environment. The solution is
// not copied: the model's symbols are emptied and read from the model when they are next touched.

#include <ctime>
#include <stdexcept>
#include <string>
#include <vector>

#include "bridge/dictionary.h"
#include "core/frame.h"
#include "core/operations.h"
#include "peers/pbi_family.h"
#include "peers/rgy_family.h"
#include "peers/snv_family.h"

namespace ztb {
namespace {

// Both statuses of a model stand on this until its solver writes its own.
constexpr int statusBeforeSolve = 13;

// Arguments of a fresh run of a solver.
constexpr int linkType = 5;
constexpr double noLimit = 2e300;
constexpr int noCountLimit = 2100000000;

// Stores the time that a solver takes, in seconds, if the caller wants it.
template <class Solve>
int timed(double* solveTime, Solve&& solve) {
  const std::clock_t begin = solveTime == nullptr ? 0 : std::clock();
  const int result = solve();
  if (solveTime != nullptr) {
    *solveTime = static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
  }
  return result;
}

// One solve.
class SolveDriver {
 public:
  SolveDriver(ZTB& db, const char* solverName, double* solveTime)
      : db_(db), solverName_(solverName), solveTime_(solveTime) {}

  int run() {
    if (db_.rgy == nullptr && peers::rgyAlgNumber.isNull()) {
      return db_.fail("Model is not prepared for solving, call ztbInitUpdate first");
    }
    if (db_.modelReplaced) {
      return db_.failModelReplaced();
    }
    solver_ = peers::rgyAlgNumber(db_.rgy, solverName_);
    if (solver_ <= 0) {
      return db_.failAs(ZTB_ERROR_NOT_FOUND, "Invalid solver name: %s", solverName_);
    }
    changed_ = solver_ != db_.solverNumber;
    if (db_.altBounds) {
      peers::pbiAltBoundsSet(db_.pbi, 1);
    }
    shiftRightHandSide();
    if (changed_) {
      changeSolver();
    }
    peers::snvTerminateClear(db_.snv);
    if (db_.solverLoaded && hotStart() != success) {
      return failure;
    }
    if (!db_.solverLoaded && warmStart() != success) {
      return failure;
    }
    peers::pbiAltRHSSet(db_.pbi, 0);
    peers::pbiForceLinearSet(db_.pbi, 0);
    dropSolution();
    return success;
  }

 private:
  // A linear model is presented as such, with its products evaluated at the present levels.
  void shiftRightHandSide() {
    const bool linear = isLinear();
    if (db_.initEquLevels == nullptr) {
      throw std::logic_error("the model's rows were not counted");
    }
    std::vector<double> delta(static_cast<std::size_t>(db_.rowCount));
    int errors = 0;
    peers::pbiEvalGradNLUpdate(db_.pbi, delta.data(), 1, &errors);
    if (!linear) {
      return;
    }
    for (int row = 0; row < db_.rowCount; ++row) {
      peers::pbiSetAltRHSOne(
          db_.pbi, row, peers::pbiGetRhsOne(db_.pbi, row) - delta[static_cast<std::size_t>(row)]);
    }
    peers::pbiAltRHSSet(db_.pbi, 1);
    peers::pbiForceLinearSet(db_.pbi, 1);
  }

  [[nodiscard]] bool isLinear() const {
    for (const int type : {1, 2, 3}) {
      if (peers::pbiModelType(db_.pbi) == type) {
        return true;
      }
    }
    return false;
  }

  void changeSolver() {
    if (db_.solverNumber > 0 && db_.solverLoaded) {
      freeSolver(db_.solverNumber);
    }
    db_.solverLoaded = peers::rgyAlgAllowsModifyProblem(db_.rgy, solver_) != 0;
    db_.solverNumber = solver_;
  }

  void freeSolver(int number) {
    peers::rgyAlgFree(db_.rgy, number, &db_.solverAlg);
    db_.solverAlg = nullptr;
  }

  // Solves with the live solver. A solver that cannot take the change is given up, which is no
  // failure: `solverLoaded` is then clear.
  int hotStart() {
    void* view = peers::pbiViewStore(db_.pbi);
    peers::pbiModelStatSet(db_.pbi, statusBeforeSolve);
    peers::pbiSolveStatSet(db_.pbi, statusBeforeSolve);
    if (changed_) {
      if (makeLiveSolver() != success) {
        return failure;
      }
    } else if (peers::rgyAlgModifyProblem(db_.rgy, solver_, db_.solverAlg) != 0) {
      peers::snvLog(db_.snv, "*** Hotstart failed! Falling back to warm start...");
      freeSolver(solver_);
      db_.solverLoaded = false;
    }
    if (db_.solverLoaded && timed(solveTime_, [this] {
                              return peers::rgyAlgCallSolver(db_.rgy, solver_, db_.solverAlg,
                                                             db_.pbi);
                            }) != 0) {
      return db_.failAs(ZTB_ERROR_SOLVER, "callsolver failed");
    }
    peers::pbiViewRestore(db_.pbi, &view);
    return success;
  }

  int makeLiveSolver() {
    char message[ZTB::messageSize] = {};
    if (peers::rgyAlgCreate(db_.rgy, solver_, &db_.solverAlg, db_.sysDir.c_str(), message) == 0) {
      return db_.failAs(ZTB_ERROR_SOLVER, "%s", message);
    }
    if (peers::rgyAlgReadyAPI(db_.rgy, solver_, db_.solverAlg, db_.pbi) != 0) {
      return db_.failAs(ZTB_ERROR_SOLVER, "readyapi failed");
    }
    return success;
  }

  int warmStart() {
    char message[ZTB::messageSize] = {};
    void* unused = nullptr;
    const int result = timed(solveTime_, [&] {
      return peers::snvCallSolver(db_.snv, db_.pbi, "", solverName_, linkType, 0, "", "", noLimit,
                                  noCountLimit, noCountLimit, noLimit, noLimit, &unused, message);
    });
    return result == 0 ? success : db_.failAs(ZTB_ERROR_SOLVER, "%s", message);
  }

  void dropSolution() {
    ++db_.recordChanges;
    const int count = dictionarySymbolCount(db_.nmt);
    for (int i = 1; i <= count; ++i) {
      const std::string name = dictionarySymbolName(db_.nmt, i);
      AbstractZTBSymbol* symbol = db_.symbols.contains(name) ? db_.symbols.atName(name) : nullptr;
      if (symbol != nullptr) {
        symbol->startRecordsAnew();
        symbol->loaded = false;
        symbol->unreadable.reset();
      }
    }
  }

  ZTB& db_;
  const char* solverName_;
  double* solveTime_;
  int solver_ = 0;
  bool changed_ = false;
};

}  // namespace

int ztbCallSolver(ztbRec* handle, const char* solverName) {
  return operation(handle, "ztbCallSolver",
                   [&](ZTB& db) { return SolveDriver(db, solverName, nullptr).run(); });
}

int ztbCallSolverTimed(ztbRec* handle, const char* solverName, double* solveTime) {
  return operation(handle, "ztbCallSolverTimed",
                   [&](ZTB& db) { return SolveDriver(db, solverName, solveTime).run(); });
}

}  // namespace ztb
