// The calls that solves of the small model have in common.
#ifndef ZTB_TESTS_BRIDGE_SOLVE_CALLS_H_
#define ZTB_TESTS_BRIDGE_SOLVE_CALLS_H_

#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {

// From the present levels to a linear model: shifts of 0.5, 0 and 1.5 from 0, 8 and 9.
inline Lines shiftCalls() {
  return lines(R"(
model pbiModelType
model pbiEvalGradNLUpdate [0 0 0] 1 0
model pbiGetRhsOne 0
model pbiSetAltRHSOne 0 -0.5
model pbiGetRhsOne 1
model pbiSetAltRHSOne 1 8
model pbiGetRhsOne 2
model pbiSetAltRHSOne 2 7.5
model pbiAltRHSSet 1
model pbiForceLinearSet 1)");
}

// A run through the environment.
inline Lines warmCalls(const std::string& solver) {
  return {"env snvCallSolver model \"\" \"" + solver +
          "\" 5 0 \"\" \"\" 2e+300 2100000000 2100000000 2e+300 2e+300 null"};
}

inline Lines viewCalls() {
  return lines(R"(
model pbiViewStore
model pbiModelStatSet 13
model pbiSolveStatSet 13)");
}

// What ends every solve that succeeds.
inline Lines endCalls() {
  return lines(R"(
model pbiAltRHSSet 0
model pbiForceLinearSet 0
dict nmtNLSyms
dict nmtSymName 1 64
dict nmtSymName 2 64
dict nmtSymName 3 64
dict nmtSymName 4 64
dict nmtSymName 5 64)");
}

}  // namespace ztbtest

#endif  // ZTB_TESTS_BRIDGE_SOLVE_CALLS_H_
