#include "providers/model/model_shape.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <unordered_map>
#include <utility>
#include <vector>

#include "providers/model/element_name.h"

namespace lomu {

namespace {

constexpr int kMixed = -1;

// Widens a range of sizes by that of a number; zeros and infinities have none.
void widen(double number, double& smallest, double& largest) {
  const double size = std::abs(number);
  if (size == 0 || std::isinf(size)) return;
  smallest = smallest == 0 ? size : std::min(smallest, size);
  largest = std::max(largest, size);
}

class FamilyCounter {
 public:
  explicit FamilyCounter(ModelShape& shape) : shape_(shape) {}

  // The number of the family of the column or row `name`.
  std::size_t take(const std::string& name, bool isRow, int kind) {
    // Names differ, so that one without labels is a family by itself.
    if (name.find_first_of("[(") == std::string::npos) return add(name, isRow, kind, 0);
    const ElementName element = parseElementName(name);
    const auto dimension = static_cast<int>(element.labels.size());
    std::string key = element.symbol + (isRow ? " r" : " c") + std::to_string(dimension);
    const auto [place, isNew] = numberOf_.try_emplace(std::move(key), shape_.families.size());
    if (isNew) {
      shape_.names.push_back(element.symbol);
      return add(shape_.names.back(), isRow, kind, dimension);
    }
    ztbModelFamily& family = shape_.families[place->second];
    ++family.count;
    if (family.kind != kind) family.kind = kMixed;
    return place->second;
  }

 private:
  // A family of one.
  std::size_t add(const std::string& name, bool isRow, int kind, int dimension) {
    ztbModelFamily family{};
    family.name = name.c_str();
    family.isRow = isRow ? 1 : 0;
    family.dimension = dimension;
    family.count = 1;
    family.kind = kind;
    shape_.families.push_back(family);
    return shape_.families.size() - 1;
  }

  ModelShape& shape_;
  std::unordered_map<std::string, std::size_t> numberOf_;
};

}  // namespace

ModelShape::ModelShape(const ModelData& data) {
  FamilyCounter counter(*this);
  std::vector<std::size_t> familyOfColumn;
  std::vector<std::size_t> familyOfRow;
  familyOfColumn.reserve(data.columns.size());
  familyOfRow.reserve(data.rows.size());
  for (const ColumnData& column : data.columns) {
    familyOfColumn.push_back(counter.take(column.name, false, static_cast<int>(column.kind)));
    ztbModelFamily& family = families[familyOfColumn.back()];
    widen(column.lower, family.smallestSide, family.largestSide);
    widen(column.upper, family.smallestSide, family.largestSide);
    size.integers += column.kind == ColumnKind::integer ? 1 : 0;
    size.binaries += column.kind == ColumnKind::binary ? 1 : 0;
    size.semiContinuous += column.semiContinuous ? 1 : 0;
  }
  for (const RowData& row : data.rows) {
    familyOfRow.push_back(counter.take(row.name, true, static_cast<int>(row.type)));
    ztbModelFamily& family = families[familyOfRow.back()];
    widen(row.rhs, family.smallestSide, family.largestSide);
    widen(row.range, family.smallestSide, family.largestSide);
  }
  const auto addEntry = [&](std::size_t number, double value) {
    ztbModelFamily& family = families[number];
    ++family.entries;
    widen(value, family.smallest, family.largest);
    widen(value, size.smallest, size.largest);
  };
  for (const Term& term : data.terms) {
    addEntry(familyOfColumn[static_cast<std::size_t>(term.column)], term.value);
    addEntry(familyOfRow[static_cast<std::size_t>(term.row)], term.value);
  }
  for (const Product& product : data.products) {
    const auto first = familyOfColumn[static_cast<std::size_t>(product.column1)];
    const auto second = familyOfColumn[static_cast<std::size_t>(product.column2)];
    addEntry(first, product.value);
    if (second != first) addEntry(second, product.value);
    addEntry(familyOfRow[static_cast<std::size_t>(product.row)], product.value);
  }
  size.columns = static_cast<int>(data.columns.size());
  size.rows = static_cast<int>(data.rows.size()) - 1;
  size.terms = static_cast<long long>(data.terms.size());
  size.products = static_cast<long long>(data.products.size());
  size.sets = static_cast<int>(data.sets.size());
  size.maximize = data.maximize ? 1 : 0;
  size.constant = data.objectiveConstant;
  size.families = static_cast<int>(families.size());
}

}  // namespace lomu
