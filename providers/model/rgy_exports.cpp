// The exported functions of the solver catalogue. Its handle is a pointer to a Catalogue, that of a
// live solver to a LiveSolver. Why a call failed stands in the model's message, and in its log.

#include <ztb/peer.h>

#include <exception>
#include <iterator>
#include <new>
#include <string>

#include "providers/model/catalogue.h"
#include "providers/model/fixed_text.h"
#include "providers/model/live_solver.h"
#include "providers/model/model.h"
#include "providers/model/model_error.h"

// With C linkage, a definition that differs from its prototype in ztb/peer.h does not compile.
#define RGY_EXPORT extern "C"

namespace {

using lomu::Catalogue;
using lomu::copyText;
using lomu::LiveSolver;
using lomu::Model;

constexpr ztbPeerOperation kRgyOperations[] = {ZTB_PEER_RGY_OPERATIONS(ZTB_PEER_ENTRY)};

Catalogue& catalogue(void* rgy) {
  return *static_cast<Catalogue*>(rgy);
}

// Runs `body`; 0 when it throws nothing, else 1 with the reason in the model's message and log.
template <typename Body>
int reported(Model& model, const Body& body) {
  try {
    body();
    model.message.clear();
    return 0;
  } catch (const std::exception& error) {
    model.noteFailure(error);
    return 1;
  }
}

}  // namespace

RGY_EXPORT void rgyXCreate(void** object) {
  if (object != nullptr) *object = new (std::nothrow) Catalogue;
}

RGY_EXPORT void rgyXFree(void** object) {
  if (object == nullptr) return;
  delete static_cast<Catalogue*>(*object);
  *object = nullptr;
}

RGY_EXPORT int CrgyXCheck(const char* operation, int argCount, const int* codes, char* msg) {
  return ztbPeerCheck("RGY", kRgyOperations, std::size(kRgyOperations), operation, argCount, codes,
                      msg);
}

RGY_EXPORT int CrgyXAPIVersion(int api, char* msg, int* compatibility) {
  return ztbPeerVersion("RGY", ZTB_PEER_RGY_VERSION, api, msg, compatibility);
}

// 0 for success. A catalogue that cannot be read leaves the one before in force; ztbCatalogueCheck
// tells the line and the reason.
RGY_EXPORT int CrgyReadConfigVUC(void* rgy, const char* fileName, const char* systemDirectory) {
  try {
    catalogue(rgy) = Catalogue::read(fileName, systemDirectory == nullptr ? "" : systemDirectory);
    return 0;
  } catch (const std::exception&) {
    return 1;
  }
}

// The number of a solver from 1; 0 for one that is unknown or whose library cannot be opened.
RGY_EXPORT int CrgyAlgNumber(void* rgy, const char* solverName) {
  // A database that was never prepared for solves has no catalogue object.
  if (rgy == nullptr || solverName == nullptr) return 0;
  try {
    return catalogue(rgy).number(solverName);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

RGY_EXPORT int rgyAlgAllowsModifyProblem(void* rgy, int solver) {
  const lomu::CatalogueRow* row = catalogue(rgy).row(solver);
  return row != nullptr && row->inPlace ? 1 : 0;
}

RGY_EXPORT int CrgyAlgCreate(void* rgy, int solver, void** alg, const char* /*systemDirectory*/,
                             char* msg) {
  *alg = nullptr;
  copyText("", msg);
  const lomu::CatalogueRow* row = catalogue(rgy).row(solver);
  if (row == nullptr) {
    copyText("there is no solver number " + std::to_string(solver) + " in the catalogue", msg);
    return 0;
  }
  try {
    *alg = new LiveSolver(*row);
    return 1;
  } catch (const std::exception& error) {
    copyText(lomu::failureText(error), msg);
    return 0;
  }
}

RGY_EXPORT int rgyAlgReadyAPI(void* /*rgy*/, int /*solver*/, void* alg, void* pbi) {
  if (alg == nullptr || pbi == nullptr) return 1;
  Model& model = *static_cast<Model*>(pbi);
  return reported(model, [&] { static_cast<LiveSolver*>(alg)->load(model); });
}

RGY_EXPORT int rgyAlgModifyProblem(void* /*rgy*/, int /*solver*/, void* alg) {
  try {
    return alg != nullptr && static_cast<LiveSolver*>(alg)->update() ? 0 : 1;
  } catch (const std::exception&) {
    return 1;
  }
}

RGY_EXPORT int rgyAlgCallSolver(void* /*rgy*/, int /*solver*/, void* alg, void* pbi) {
  if (alg == nullptr || pbi == nullptr) return 1;
  Model& model = *static_cast<Model*>(pbi);
  LiveSolver& solver = *static_cast<LiveSolver*>(alg);
  return reported(model, [&] {
    if (!solver.holds(model)) throw lomu::ModelError("the live solver was not given this model");
    solver.solve(model.environment->limits());
  });
}

RGY_EXPORT void rgyAlgFree(void* /*rgy*/, int /*solver*/, void** alg) {
  if (alg == nullptr) return;
  delete static_cast<LiveSolver*>(*alg);
  *alg = nullptr;
}
