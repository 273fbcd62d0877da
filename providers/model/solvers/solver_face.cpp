#include "providers/model/solvers/solver_face.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <new>
#include <string_view>
#include <vector>

namespace lomu {

namespace {

SolverFace& faceOf(void* face) {
  return *static_cast<SolverFace*>(face);
}

void putReason(std::string_view text, char* reason, std::int32_t reasonSize) {
  std::snprintf(reason, static_cast<std::size_t>(reasonSize), "%.*s", static_cast<int>(text.size()),
                text.data());
}

void putPositions(const std::vector<Position>& positions, std::int32_t* to) {
  std::transform(positions.begin(), positions.end(), to,
                 [](Position position) { return static_cast<std::int32_t>(position); });
}

// What `attempt` gives, or why there is nothing, in `reason` where it has to be told.
template <class Attempt>
std::int32_t attempted(char* reason, std::int32_t reasonSize, const Attempt& attempt) {
  try {
    return attempt() ? ztbSolverYes : ztbSolverNo;
  } catch (const std::bad_alloc&) {
    return ztbSolverNoMemory;
  } catch (const std::exception& error) {
    putReason(error.what(), reason, reasonSize);
  } catch (...) {
    putReason("an error without a text", reason, reasonSize);
  }
  return ztbSolverNo;
}

}  // namespace

void SolverFace::free(void* face) {
  delete static_cast<SolverFace*>(face);
}

std::int32_t SolverFace::load(void* face, const SolverProblem* problem, char* reason,
                              std::int32_t reasonSize) {
  putReason("", reason, reasonSize);
  return attempted(reason, reasonSize, [&] {
    std::string why;
    const bool taken = faceOf(face).solver->load(*problem, why);
    if (taken) {
      SolverResult& result = faceOf(face).result;
      result.level.resize(static_cast<std::size_t>(problem->columnCount));
      result.position.resize(result.level.size());
      result.rowMarginal.resize(static_cast<std::size_t>(problem->rowCount));
      result.rowPosition.resize(result.rowMarginal.size());
    } else {
      putReason(why, reason, reasonSize);
    }
    return taken;
  });
}

std::int32_t SolverFace::update(void* face, const SolverProblem* problem) {
  return attempted(nullptr, 0, [&] { return faceOf(face).solver->update(*problem); });
}

void SolverFace::solve(void* face, const ztbSolverLimits* limits, ztbSolverResult* result) {
  SolverResult& own = faceOf(face).result;
  own.outcome = Outcome::failed;
  own.hasPoint = false;
  own.iterations = 0;
  own.reason.clear();
  std::ranges::fill(own.level, 0.0);
  std::ranges::fill(own.position, Position::basic);
  std::ranges::fill(own.rowMarginal, 0.0);
  std::ranges::fill(own.rowPosition, Position::basic);
  try {
    faceOf(face).solver->solve(SolverLimits(*limits), own);
  } catch (const std::exception& error) {
    putReason(error.what(), result->reason, result->reasonSize);
    return;
  } catch (...) {
    putReason("an error without a text", result->reason, result->reasonSize);
    return;
  }
  result->outcome = static_cast<std::int32_t>(own.outcome);
  result->hasPoint = own.hasPoint ? 1 : 0;
  result->iterations = own.iterations;
  std::ranges::copy(own.level, result->level);
  putPositions(own.position, result->position);
  std::ranges::copy(own.rowMarginal, result->rowMarginal);
  putPositions(own.rowPosition, result->rowPosition);
  putReason(own.reason, result->reason, result->reasonSize);
}

}  // namespace lomu
