#include "providers/model/glpk_functions.h"

#include <dlfcn.h>

#include "providers/model/model_error.h"

namespace lomu {

namespace {

// The interface of the glpk.h that this is compiled against.
constexpr const char* kLibrary = "libglpk.so.40";

void* find(void* library, const std::string& path, const char* name) {
  void* const found = dlsym(library, name);
  if (found == nullptr)
    throw ModelError(path + " is no GLPK: it has no " + name, ZTB_ERROR_NO_LIBRARY);
  return found;
}

}  // namespace

GlpkFunctions GlpkFunctions::open(const std::string& path) {
  void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw ModelError(
        "MathProg files are read by GLPK (package libglpk40), which cannot be "
        "opened: " +
            std::string(dlerror()),
        ZTB_ERROR_NO_LIBRARY);
  }
  GlpkFunctions functions{};
#define ZTB_GLPK_FIND(name) \
  functions.name = reinterpret_cast<decltype(functions.name)>(find(library, path, "glp_" #name));
  ZTB_GLPK_FUNCTIONS(ZTB_GLPK_FIND)
#undef ZTB_GLPK_FIND
  return functions;
}

const GlpkFunctions& glpk() {
  static const GlpkFunctions functions = GlpkFunctions::open(kLibrary);
  return functions;
}

}  // namespace lomu
