#include "providers/model/status_texts.h"

#include <ztb/model.h>

namespace lomu {

const char* modelStatusText(int status) {
  switch (status) {
    case ztbModelOptimal:
      return "optimal";
    case ztbModelLocallyOptimal:
      return "locally optimal";
    case ztbModelUnbounded:
      return "unbounded";
    case ztbModelInfeasible:
      return "infeasible";
    case ztbModelFeasible:
      return "feasible";
    default:
      return "no solution";
  }
}

const char* solveStatusText(int status) {
  switch (status) {
    case ztbSolveNormal:
      return "normal completion";
    case ztbSolveIterationLimit:
      return "iteration limit";
    case ztbSolveTimeLimit:
      return "time limit";
    case ztbSolveTerminated:
      return "terminated";
    default:
      return "failed";
  }
}

}  // namespace lomu
