// Prepares a database for changing and solving its model.

#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "bridge/dictionary.h"
#include "core/frame.h"
#include "core/operations.h"
#include "peers/pbi_family.h"
#include "peers/rgy_family.h"
#include "peers/snv_family.h"

namespace ztb {
namespace {

constexpr const char* catalogueFileName = "vltcmpNT.txt";

bool carriesParameter(const std::string& name) {
  const std::string_view suffix = parameterSuffix;
  return name.size() > suffix.size() && name.ends_with(suffix);
}

std::unique_ptr<double[]> baseArray(int count) {
  return std::make_unique<double[]>(static_cast<std::size_t>(count) + 1);
}

// A parameter that stands in the model as a variable is pinned to its level until it is moved.
void pinParameters(const ZTB& db) {
  const int symbolCount = dictionarySymbolCount(db.nmt);
  for (int i = 1; i <= symbolCount; ++i) {
    if (peers::nmtSymType(db.nmt, i) != dictionaryVariable ||
        !carriesParameter(dictionarySymbolName(db.nmt, i))) {
      continue;
    }
    RowColWalk walk(db.nmt, i, true);
    for (; !walk.atEnd(); walk.next()) {
      const int column = walk.current();
      const double level = db.baseValue(db.initVarLevels, db.colCount, column);
      peers::pbiSetAltVarLowerOne(db.pbi, column, level);
      peers::pbiSetAltVarUpperOne(db.pbi, column, level);
    }
  }
}

}  // namespace

int ZTB::InitUpdate() {
  if (initFrom == Source::rxf) {
    return fail("Database initialized from RXF cannot sync with model");
  }
  if (snv != nullptr) {
    return success;
  }
  if (pbi == nullptr) {
    return fail("No model registered, call ztbRegisterPBI or ztbInitFromDict first");
  }
  initFrom = Source::pbi;
  char message[messageSize] = {};
  constexpr int size = messageSize;
  const char* directory = sysDir.c_str();
  if (!(sysDir.empty() ? peers::snvGetReady(message, size)
                       : peers::snvGetReadyD(directory, message, size))) {
    return failAs(ZTB_ERROR_NO_LIBRARY, "%s", message);
  }
  if (rgy == nullptr && !(sysDir.empty() ? peers::rgyCreate(&rgy, message, size)
                                         : peers::rgyCreateD(&rgy, directory, message, size))) {
    return failAs(ZTB_ERROR_NO_LIBRARY, "%s", message);
  }
  snv = peers::pbiEnvironment(pbi);
  modelReplaced = false;
  char modelDirectory[messageSize] = {};
  peers::snvGetStrOpt(snv, "NameSysDir", modelDirectory);
  const std::string catalogue = std::string(modelDirectory) + catalogueFileName;
  if (peers::rgyReadConfigVUC(rgy, catalogue.c_str(), modelDirectory) != 0) {
    return failAs(ZTB_ERROR_SOLVER, "Could not read configuration file");
  }
  colCount = peers::pbiN(pbi);
  rowCount = peers::pbiM(pbi);
  initVarLevels = baseArray(colCount);
  initVarMarginals = baseArray(colCount);
  initEquLevels = baseArray(rowCount);
  initEquMarginals = baseArray(rowCount);
  peers::pbiGetVarL(pbi, initVarLevels.get());
  peers::pbiGetVarM(pbi, initVarMarginals.get());
  peers::pbiGetEquL(pbi, initEquLevels.get());
  peers::pbiGetEquM(pbi, initEquMarginals.get());
  pinParameters(*this);
  return success;
}

// A model may lie where one that was freed had lain: its address alone does not tell.
bool ZTB::isPreparedModel(void* model) const {
  if (model == nullptr || model != pbi || peers::pbiEnvironment(model) != snv) {
    return false;
  }
  return initEquLevels == nullptr ||
         (peers::pbiN(model) == colCount && peers::pbiM(model) == rowCount);
}

// The live solver holds the model that it was given, and the environment goes with its model.
void ZTB::undoPreparation() {
  freeLiveSolver();
  snv = nullptr;
  colCount = 0;
  rowCount = 0;
  initVarLevels.reset();
  initVarMarginals.reset();
  initEquLevels.reset();
  initEquMarginals.reset();
  altBounds = false;
  modelReplaced = true;
}

int ZTB::failModelReplaced() {
  return fail("Another model was registered, call ztbInitUpdate first");
}

double ZTB::baseValue(const std::unique_ptr<double[]>& base, int count, int place) {
  if (base == nullptr) {
    throw std::logic_error("the model's base values were not read");
  }
  // The array holds one value more than there are rows or columns, a zero. Some updates ask for the
  // row of a column's number.
  if (place < 0 || place > count) {
    throw std::logic_error("the model has no base value for number " + std::to_string(place));
  }
  return base[static_cast<std::size_t>(place)];
}

int ztbInitUpdate(ztbRec* handle, void* /*pbi*/) {
  return operation(handle, "ztbInitUpdate", [](ZTB& db) { return db.InitUpdate(); });
}

}  // namespace ztb
