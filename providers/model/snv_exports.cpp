// The exported functions of the solver environment: its handle is a pointer to an Environment.

#include <ztb/peer.h>

#include <algorithm>
#include <cmath>
#include <exception>
#include <iterator>
#include <string>

#include "providers/model/environment.h"
#include "providers/model/fixed_text.h"
#include "providers/model/live_solver.h"
#include "providers/model/model.h"
#include "providers/model/model_error.h"

// With C linkage, a definition that differs from its prototype in ztb/peer.h does not compile.
#define SNV_EXPORT extern "C"

namespace {

using lomu::copyText;
using lomu::Environment;
using lomu::Model;
using lomu::ModelError;

constexpr ztbPeerOperation kSnvOperations[] = {ZTB_PEER_SNV_OPERATIONS(ZTB_PEER_ENTRY)};

Environment& environment(void* snv) {
  return *static_cast<Environment*>(snv);
}

void solveAfresh(Environment& env, Model& model, const char* solverName, double seconds,
                 int iterations) {
  const lomu::Catalogue& catalogue = env.catalogue();
  const lomu::CatalogueRow* row = catalogue.row(catalogue.number(solverName));
  if (row == nullptr) {
    throw ModelError("there is no solver \"" + std::string(solverName) +
                     "\": " + catalogue.whyNot(solverName));
  }
  lomu::LiveSolver solver(*row);
  solver.load(model);
  lomu::SolverLimits limits = env.limits();
  if (seconds > 0) limits.seconds = std::min(limits.seconds, seconds);
  if (iterations >= 0) limits.iterations = std::min(limits.iterations, iterations);
  solver.solve(limits);
}

}  // namespace

SNV_EXPORT void snvXCreate(void** object) {
  if (object == nullptr) return;
  try {
    *object = new Environment;
  } catch (...) {
    *object = nullptr;
  }
}

SNV_EXPORT void CsnvXCreateD(void** object, const char* /*directory*/) {
  snvXCreate(object);
}

// For objects of snvXCreate; a model's environment is freed with the model.
SNV_EXPORT void snvXFree(void** object) {
  if (object == nullptr) return;
  delete static_cast<Environment*>(*object);
  *object = nullptr;
}

SNV_EXPORT int CsnvXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  return ztbPeerCheck("SNV", kSnvOperations, std::size(kSnvOperations), operation, argCount, codes,
                      msg);
}

SNV_EXPORT int CsnvXAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("SNV", ZTB_PEER_SNV_VERSION, api, msg, compatibility);
}

// An unknown option gives an empty text. `buffer` has room for 256 bytes.
SNV_EXPORT char* CsnvGetStrOpt(void* snv, const char* key, char* buffer) {
  copyText("", buffer);
  if (key == nullptr) return buffer;
  try {
    copyText(environment(snv).options().get(key), buffer);
  } catch (const std::exception&) {
    copyText("", buffer);
  }
  return buffer;
}

SNV_EXPORT void CsnvLog(void* snv, const char* text) {
  if (text != nullptr) environment(snv).log(text);
}

SNV_EXPORT void snvTerminateClear(void* snv) {
  environment(snv).clearTerminate();
}

// A fresh run: nothing is left of the solver behind it. The arguments 8 and 9 limit time in seconds
// and iterations, beside the options; the other numbers and texts have no meaning here.
SNV_EXPORT int CsnvCallSolver(void* snv, void* pbi, const char* /*text2*/, const char* solverName,
                              int /*number4*/, int /*number5*/, const char* /*text6*/,
                              const char* /*text7*/, double seconds, int iterations,
                              int /*number10*/, double /*number11*/, double /*number12*/,
                              void** /*handle13*/, char* msg) {
  copyText("", msg);
  if (pbi == nullptr) {
    copyText("there is no model to solve", msg);
    return 1;
  }
  if (solverName == nullptr) {
    copyText("no solver was named", msg);
    return 1;
  }
  Model& model = *static_cast<Model*>(pbi);
  try {
    solveAfresh(environment(snv), model, solverName, seconds, iterations);
    model.message.clear();
    return 0;
  } catch (const std::exception& error) {
    copyText(lomu::failureText(error), msg);
    model.noteFailure(error);
    return 1;
  }
}
