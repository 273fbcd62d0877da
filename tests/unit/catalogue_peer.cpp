// A solver catalogue that writes down what it is asked to free, and offers nothing else.

#include <ztb/peer.h>

#include <cstring>
#include <string>

#define CATALOGUE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

std::string& calls() {
  static std::string theCalls;
  return theCalls;
}

}  // namespace

// The calls since the last time it was asked, each ended by a newline.
CATALOGUE_EXPORT const char* catalogueCalls() {
  static std::string result;
  result = calls();
  calls().clear();
  return result.c_str();
}

CATALOGUE_EXPORT void rgyXCreate(void** object) {
  *object = new int(7);
}

CATALOGUE_EXPORT void rgyXFree(void** object) {
  calls() += "rgyXFree\n";
  delete static_cast<int*>(*object);
  *object = nullptr;
}

CATALOGUE_EXPORT int CrgyXCheck(const char* operation, int /*argCount*/, const int* /*codes*/,
                                char* /*msg*/) {
  return std::strcmp(operation, "rgyAlgFree") == 0 ? 1 : 0;
}

CATALOGUE_EXPORT int CrgyXAPIVersion(int /*api*/, char* /*msg*/, int* compatibility) {
  *compatibility = ZTB_PEER_RGY_VERSION;
  return 1;
}

// The object and the solver are told by the numbers that they point to.
CATALOGUE_EXPORT void rgyAlgFree(void* rgy, int solver, void** alg) {
  calls() += "rgyAlgFree " + std::to_string(*static_cast<int*>(rgy)) + ' ' +
             std::to_string(solver) + ' ' + std::to_string(*static_cast<int*>(*alg)) + '\n';
  *alg = nullptr;
}
