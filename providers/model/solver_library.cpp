#include "providers/model/solver_library.h"

#include <dlfcn.h>

#include "providers/model/model_error.h"

namespace lomu {

MakeSolver* SolverLibrary::open(const std::string& path) {
  void* library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr)
    throw ModelError(std::string("the solver cannot be opened: ") + dlerror());
  void* found = dlsym(library, "ztbMakeSolver");
  if (found == nullptr) throw ModelError(path + " is no solver library: it has no ztbMakeSolver");
  return reinterpret_cast<MakeSolver*>(found);
}

bool SolverLibrary::canOpen(const std::string& path) {
  try {
    open(path);
    return true;
  } catch (const ModelError&) {
    return false;
  }
}

std::unique_ptr<Solver> SolverLibrary::makeSolver(const std::string& path) {
  std::unique_ptr<Solver> solver(open(path)(kSolverApiVersion));
  if (solver == nullptr) throw ModelError(path + " is of another version than this library");
  return solver;
}

}  // namespace lomu
