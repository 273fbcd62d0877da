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
  if (reason == nullptr) return;
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
      faceOf(face).columns = static_cast<std::size_t>(problem->columnCount);
      faceOf(face).rows = static_cast<std::size_t>(problem->rowCount);
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
  own.begin(faceOf(face).columns, faceOf(face).rows);
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
  result->bound = own.bound;
  result->startTaken = own.startTaken ? 1 : 0;
  result->hasColumnRay = own.columnRay.empty() ? 0 : 1;
  result->hasRowRay = own.rowRay.empty() ? 0 : 1;
  std::ranges::copy(own.columnRay, result->columnRay);
  std::ranges::copy(own.rowRay, result->rowRay);
  std::ranges::copy(own.level, result->level);
  putPositions(own.position, result->position);
  std::ranges::copy(own.rowMarginal, result->rowMarginal);
  putPositions(own.rowPosition, result->rowPosition);
  putReason(own.reason, result->reason, result->reasonSize);
}

std::int32_t SolverFace::ranges(void* face, ztbSolverRanges* ranges) {
  return attempted(nullptr, 0, [&] { return faceOf(face).solver->ranges(*ranges); });
}

}  // namespace lomu
