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

  void add(const int* keys, const double* values) {
    const bool ascends =
        isFirst_ || std::lexicographical_compare(last_, last_ + dim_, keys, keys + dim_);
    if (count_ == most) {
      put();
    }
    last_ = std::copy_n(keys, dim_, keys_.data() + count_ * dim_) - dim_;
    std::copy_n(values, slots_, values_.data() + count_ * slots_);
    ++count_;
    isFirst_ = false;
    if (!ascends) {
      put();
    }
  }
  void put() {
    symbol_.insertRecordsAtPosition(keys_.data(), values_.data(), static_cast<int>(count_));
    count_ = 0;
  }

 private:
  static constexpr std::size_t most = 32;

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
    double values[dmap::maxSlots] = {};
    if (type == dictionaryVariable) {
      readColumn(pbi, walk.current(), values);
    } else {
      readRow(pbi, walk.current(), rowType, values);
    }
    const KeyBuffer keys = walk.keys();
    if (rxfFile != nullptr) {
      peers::rxfDataWriteRaw(rxfFile, keys.data(), values);
    } else {
      records.add(keys.data(), values);
    }
  }
  records.put();
}

}  // namespace ztb
