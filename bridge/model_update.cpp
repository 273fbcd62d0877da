// Writes parameter data into a loaded model instance, as levels, bounds and marginals of the rows
// or columns of one model symbol.

#include <optional>
#include <string>

#include "bridge/dictionary.h"
#include "core/frame.h"
#include "core/operations.h"
#include "exchange/special_values.h"
#include "peers/pbi_family.h"

namespace ztb {
namespace {

enum Action {
  actionFixed = 0,
  actionUpper = 1,
  actionLower = 2,
  actionBounds = 3,
  actionPrimal = 4,
  actionDual = 5,
};

// What a row or column gets that has no record in the data symbol; any other code is the base case.
enum Update { updateZero = 0, updateBaseCase = 1, updateAccumulate = 2 };

// Values from here on cannot go into a model, but for the infinities.
constexpr double badValue = 1e300;

// One change of a model: an action on the rows or columns of a symbol.
class Modifier {
 public:
  Modifier(ZTB& db, const AbstractZTBSymbol& modelSymbol, int action, AbstractZTBSymbol& data,
           int update)
      : db_(db),
        isVariable_(modelSymbol.type == ZTB_VARIABLE),
        action_(action),
        data_(data),
        update_(update) {}

  // Applies it to every row or column of a dictionary symbol; the count of records that met one.
  // Nothing, with the text in the database's last error and the walk left open, when a value or
  // the action is refused.
  std::optional<int> apply(int index) {
    int matched = 0;
    const bool isColumn = peers::nmtSymType(db_.nmt, index) == dictionaryVariable;
    requireDictionaryKeyRoom(db_.nmt, index);
    RowColWalk walk(db_.nmt, index, isColumn);
    for (; !walk.atEnd(); walk.next()) {
      // The value for this row or column; nothing for its base value.
      std::optional<double> value;
      if (const double* found = data_.findValuesInTurn(walk.keys().data())) {
        ++matched;
        value = found[ZTB_LEVEL];
        if (!accept(*value)) {
          walk.leaveOpen();
          return std::nullopt;
        }
      } else if (update_ == updateAccumulate) {
        continue;
      } else if (update_ == updateZero) {
        value = 0.0;
      }
      if (action_ < actionFixed || action_ > actionDual) {
        db_.fail("Invalid actionType, saw %d", action_);
        walk.leaveOpen();
        return std::nullopt;
      }
      act(walk.current(), value);
    }
    return matched;
  }

 private:
  bool accept(double& value) {
    if (sameBits(value, internalSpecialValues[epsilonCode])) {
      value = 0.0;
    }
    if (sameBits(value, internalPlusInfinity) || sameBits(value, internalMinusInfinity) ||
        value < badValue) {
      return true;
    }
    return db_.fail("Bad value %g", value) == success;
  }

  void act(int place, std::optional<double> value) {
    switch (action_) {
      case actionFixed:
        fix(place, value ? *value : baseColumn(place));
        break;
      case actionUpper:
        setUpper(place, value);
        break;
      case actionLower:
        setLower(place, value);
        break;
      case actionBounds:
        setUpper(place, value);
        setLower(place, value);
        break;
      case actionPrimal:
        setLevel(place, value);
        break;
      default:
        setMarginal(place, value);
        break;
    }
  }

  [[nodiscard]] double baseColumn(int column) const {
    return ZTB::baseValue(db_.initVarLevels, db_.colCount, column);
  }

  void fix(int column, double value) {
    peers::pbiSetVarLOne(db_.pbi, column, value);
    peers::pbiSetAltVarLowerOne(db_.pbi, column, value);
    peers::pbiSetAltVarUpperOne(db_.pbi, column, value);
  }

  // A bound of the model's own, which alternative bounds hide.
  template <class Getter>
  [[nodiscard]] double ownBound(const Getter& getter, int column) const {
    peers::pbiAltBoundsSet(db_.pbi, 0);
    const double bound = getter(db_.pbi, column);
    peers::pbiAltBoundsSet(db_.pbi, 1);
    return bound;
  }

  void setUpper(int column, std::optional<double> value) {
    const double upper = value ? *value : ownBound(peers::pbiGetVarUpperOne, column);
    peers::pbiSetAltVarUpperOne(db_.pbi, column, upper);
    if (peers::pbiGetVarLOne(db_.pbi, column) > upper) {
      peers::pbiSetVarLOne(db_.pbi, column, upper);
    }
  }

  void setLower(int column, std::optional<double> value) {
    const double lower = value ? *value : ownBound(peers::pbiGetVarLowerOne, column);
    peers::pbiSetAltVarLowerOne(db_.pbi, column, lower);
    if (lower > peers::pbiGetVarLOne(db_.pbi, column)) {
      peers::pbiSetVarLOne(db_.pbi, column, lower);
    }
  }

  void setLevel(int place, std::optional<double> value) {
    if (isVariable_) {
      peers::pbiSetVarLOne(db_.pbi, place, value ? *value : baseColumn(place));
    } else {
      peers::pbiSetEquLOne(db_.pbi, place,
                           value ? *value : ZTB::baseValue(db_.initEquLevels, db_.rowCount, place));
    }
  }

  void setMarginal(int place, std::optional<double> value) {
    void* pbi = db_.pbi;
    if (isVariable_) {
      const double marginal =
          value ? *value : ZTB::baseValue(db_.initVarMarginals, db_.colCount, place);
      const double level = peers::pbiGetVarLOne(pbi, place);
      const int status = peers::pbiGetVarStatOne(pbi, place);
      const int secondStatus = peers::pbiGetVarCStatOne(pbi, place);
      peers::pbiSetSolutionVarRec(pbi, place, level, marginal, status, secondStatus);
    } else {
      const double marginal =
          value ? *value : ZTB::baseValue(db_.initEquMarginals, db_.rowCount, place);
      const double level = peers::pbiGetEquLOne(pbi, place);
      const int status = peers::pbiGetEquStatOne(pbi, place);
      const int secondStatus = peers::pbiGetEquCStatOne(pbi, place);
      peers::pbiSetSolutionEquRec(pbi, place, level, marginal, status, secondStatus);
    }
  }

  ZTB& db_;
  bool isVariable_;
  int action_;
  AbstractZTBSymbol& data_;
  int update_;
};

int updateModelSymbol(ZTB& db, AbstractZTBSymbol* symbol, int action, AbstractZTBSymbol* data,
                      int update, int* noMatchCount) {
  if (symbol == nullptr) {
    return db.fail("No VELT symbol handle specified");
  }
  const char* name = symbol->name.c_str();
  if (data == nullptr) {
    return db.fail("No Data symbol handle specified for VELT symbol %s", name);
  }
  if (symbol->type < ZTB_PARAMETER || symbol->type > ZTB_EQUATION) {
    return db.fail("VELT symbol %s must be parameter, variable, or equation", name);
  }
  if (data->type != ZTB_PARAMETER) {
    return db.fail("Data symbol %s must be parameter", data->name.c_str());
  }
  if (!db.requireReadable(*data)) {
    return failure;
  }
  const std::string modelName =
      symbol->type == ZTB_PARAMETER ? symbol->name + parameterSuffix : symbol->name;
  db.altBounds = symbol->type != ZTB_EQUATION;
  if (db.nmt == nullptr) {
    return db.fail("No model registered, call ztbRegisterPBI or ztbInitFromDict first");
  }
  if (db.modelReplaced) {
    return db.failModelReplaced();
  }
  const int index = peers::nmtSymIndex(db.nmt, modelName.c_str());
  if (index <= 0) {
    *noMatchCount = data->recordCount();
    return success;
  }
  const std::optional<int> matched = Modifier(db, *symbol, action, *data, update).apply(index);
  if (!matched) {
    return failure;
  }
  *noMatchCount = data->recordCount() - *matched;
  return success;
}

}  // namespace

int ztbUpdateModelSymbol(ztbRec* handle, void* modelSymbol, int actionType, void* dataSymbol,
                         int updateType, int* noMatchCnt) {
  return operation(handle, "ztbUpdateModelSymbol", [&](ZTB& db) {
    return updateModelSymbol(db, symbolOf(modelSymbol), actionType, symbolOf(dataSymbol),
                             updateType, noMatchCnt);
  });
}

}  // namespace ztb
