// Opening a solver's shared library when the solver is first asked for. A library stays open.
#ifndef ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_
#define ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_

#include <memory>
#include <string>

#include "providers/model/solver.h"

namespace lomu {

class SolverLibrary {
 public:
  // Whether there is a solver library, of whatever version.
  static bool canOpen(const std::string& path);
  // Why there is none, and the Debian package that has what is missing where it is one of ours;
  // empty when there is one.
  static std::string whyNot(const std::string& path);

  // A new solver of the library. Throws std::bad_alloc, and ModelError with the reason: a library
  // of another version of the interface, say. Of the solver's functions, none throws anything but
  // std::bad_alloc.
  static std::unique_ptr<Solver> makeSolver(const std::string& path);
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVER_LIBRARY_H_
