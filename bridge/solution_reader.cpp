// Reads the records of a model's symbol out of the model.

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>

#include "bridge/dictionary.h"
#include "exchange/special_values.h"
#include "peers/pbi_family.h"
#include "peers/rxf_family.h"

namespace ztb {
namespace {

// Row types of a model that bound a row by its right-hand side.
constexpr bool isEqualRow(int type) {
  return type == 0 || type == 4 || type == 6;
}
constexpr bool isGreaterRow(int type) {
  return type == 1;
}
constexpr bool isLessRow(int type) {
  return type == 2 || type == 5;
}

void readColumn(void* pbi, int column, double* values) {
  int status = 0;
  int secondStatus = 0;
  peers::pbiGetSolutionVarRec(pbi, column, &values[ZTB_LEVEL], &values[ZTB_MARGINAL], &status,
                              &secondStatus);
  values[ZTB_SCALE] = peers::pbiGetVarScaleOne(pbi, column);
  values[ZTB_LOWER] = peers::pbiGetVarLowerOne(pbi, column);
  values[ZTB_UPPER] = peers::pbiGetVarUpperOne(pbi, column);
}

void readRow(void* pbi, int row, int rowType, double* values) {
  int status = 0;
  int secondStatus = 0;
  peers::pbiGetSolutionEquRec(pbi, row, &values[ZTB_LEVEL], &values[ZTB_MARGINAL], &status,
                              &secondStatus);
  values[ZTB_SCALE] = peers::pbiGetEquScaleOne(pbi, row);
  const double rightHandSide = peers::pbiGetRhsOne(pbi, row);
  const bool boundBelow = isEqualRow(rowType) || isGreaterRow(rowType);
  const bool boundAbove = isEqualRow(rowType) || isLessRow(rowType);
  double lower = internalMinusInfinity;
  double upper = internalPlusInfinity;
  if (boundBelow) {
    lower = rightHandSide;
  }
  if (boundAbove) {
    upper = rightHandSide;
  }
  values[ZTB_LOWER] = lower;
  values[ZTB_UPPER] = upper;
}

// Records on their way into a symbol, some at a time. One whose key is not above that of the one
// before goes in at once, so that a store that refuses it does so then.
class RecordsToCome {
 public:
  // REQUIRES: the symbol's keys have room in a KeyBuffer.
  explicit RecordsToCome(AbstractZTBSymbol& symbol)
      : symbol_(symbol),
        dim_(static_cast<std::size_t>(symbol.dim)),
        slots_(static_cast<std::size_t>(dmap::slotCount(symbol.type))) {}

  // Where the values of the next one go, all zero now.
  double* values() {
    double* const place = values_.data() + count_ * slots_;
    std::fill_n(place, dmap::maxSlots, 0.0);
    return place;
  }
  void add(const int* keys) {
    const bool ascends = isFirst_ || isAboveLast(keys);
    // A loop: most keys are short, and a call would cost more than the copy.
    int* const place = keys_.data() + count_ * dim_;
    for (std::size_t d = 0; d < dim_; ++d) {
      place[d] = keys[d];
    }
    last_ = place;
    isFirst_ = false;
    ++count_;
    if (!ascends || count_ == most) {
      put();
    }
  }
  void put() {
    symbol_.insertRecordsAtPosition(keys_.data(), values_.data(), static_cast<int>(count_));
    count_ = 0;
  }

 private:
  static constexpr std::size_t most = 32;

  [[nodiscard]] bool isAboveLast(const int* keys) const {
    for (std::size_t d = 0; d < dim_; ++d) {
      if (keys[d] != last_[d]) {
        return keys[d] > last_[d];
      }
    }
    return false;
  }

  AbstractZTBSymbol& symbol_;
  std::size_t dim_;
  std::size_t slots_;
  std::size_t count_ = 0;
  bool isFirst_ = true;
  const int* last_ = nullptr;  // the key of the last one, which stays when it is put
  std::array<int, most* dmap::maxDimension> keys_ = {};
  std::array<double, most* dmap::maxSlots> values_ = {};
};

}  // namespace

void ZTB::LoadSymbolFromModel(AbstractZTBSymbol& symbol, void* rxfFile) {
  const int index = dictionarySymbolIndex(nmt, symbol.name);
  if (index <= 0) {
    return;
  }
  const int type = peers::nmtSymType(nmt, index);
  const int dim = requireDictionaryKeyRoom(nmt, index);
  if (dim != symbol.dim) {
    throw std::logic_error("symbol " + symbol.name + " has " + std::to_string(symbol.dim) +
                           " positions, " + std::to_string(dim) + " in the model");
  }
  RowColWalk walk(nmt, index, type == dictionaryVariable);
  // All rows of a symbol are taken to be of the first one's type.
  const int rowType = type == dictionaryEquation && !walk.atEnd()
                          ? peers::pbiGetEquTypeOne(pbi, walk.current())
                          : 0;
  RecordsToCome records(symbol);
  for (; !walk.atEnd(); walk.next()) {
    double* const values = records.values();
    if (type == dictionaryVariable) {
      readColumn(pbi, walk.current(), values);
    } else {
      readRow(pbi, walk.current(), rowType, values);
    }
    const KeyBuffer keys = walk.keys();
    if (rxfFile != nullptr) {
      peers::rxfDataWriteRaw(rxfFile, keys.data(), values);
    } else {
      records.add(keys.data());
    }
  }
  records.put();
}

}  // namespace ztb
