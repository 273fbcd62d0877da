// The plain C face of a solver library over a C++ solver: exceptions end here, and results go into
// the caller's arrays.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_SOLVER_FACE_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_SOLVER_FACE_H_

#include <memory>

#include "providers/model/solver.h"

namespace lomu {

// What the C functions pass around as a solver.
struct SolverFace {
  explicit SolverFace(std::unique_ptr<Solver> made) : solver(std::move(made)) {}

  std::unique_ptr<Solver> solver;
  SolverResult result;  // kept, so that repeated solves allocate nothing
  std::size_t columns = 0;
  std::size_t rows = 0;

  static void free(void* face);
  static std::int32_t load(void* face, const SolverProblem* problem, char* reason,
                           std::int32_t reasonSize);
  static std::int32_t update(void* face, const SolverProblem* problem);
  static void solve(void* face, const ztbSolverLimits* limits, ztbSolverResult* result);
  static std::int32_t ranges(void* face, ztbSolverRanges* ranges);
};

template <typename SolverClass>
inline constexpr ztbSolverFunctions solverFunctions = {
    .version = ztbSolverVersion,
    .make = []() -> void* {
      try {
        return new SolverFace(std::make_unique<SolverClass>());
      } catch (...) {
        return nullptr;
      }
    },
    .free = &SolverFace::free,
    .load = &SolverFace::load,
    .update = &SolverFace::update,
    .solve = &SolverFace::solve,
    .ranges = &SolverFace::ranges,
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_SOLVER_FACE_H_
