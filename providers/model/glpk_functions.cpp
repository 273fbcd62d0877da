#include "providers/model/glpk_functions.h"

#include "providers/model/model_error.h"
#include "providers/model/platform.h"

namespace lomu {

namespace {

void* find(void* library, const std::string& path, const char* name) {
  void* const found = platform::findSymbol(library, name);
  if (found == nullptr)
    throw ModelError(path + " is no GLPK: it has no " + name, ZTB_ERROR_NO_LIBRARY);
  return found;
}

}  // namespace

GlpkFunctions GlpkFunctions::open(const std::string& path) {
  void* const library = platform::openLibrary(path);
  if (library == nullptr) {
    throw ModelError("MathProg files are read by GLPK (" + platform::glpkPlace() +
                         "), which cannot be opened: " + platform::openErrorText(path),
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
  static const GlpkFunctions functions = GlpkFunctions::open(platform::glpkLibrary());
  return functions;
}

}  // namespace lomu
