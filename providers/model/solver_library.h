// Opening a solver's shared library when the solver is first asked for. A library stays open.
#ifndef ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_
#define ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_

#include <memory>
#include <string>

#include "providers/model/solver_api.h"

namespace lomu {

class SolverLibrary {
 public:
  static bool canOpen(const std::string& path);

  // A new solver of the library; throws ModelError with the reason.
  static std::unique_ptr<Solver> makeSolver(const std::string& path);

 private:
  static MakeSolver* open(const std::string& path);
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_
