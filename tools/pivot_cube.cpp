#include "tools/pivot_cube.h"

#include <fmt/format.h>

#include <algorithm>
#include <string>

#include "tools/failure.h"

namespace tool {

namespace {

// What a table for people can sensibly come from, and what fits into memory anywhere.
constexpr std::size_t mostCells = 50'000'000;

// A name that no symbol has.
std::string freeName(const ztb::Database& database, const std::string& stem) {
  std::string name = stem;
  for (int number = 1; database.findSymbolOrAlias(name); ++number) {
    name = stem + std::to_string(number);
  }
  return name;
}

}  // namespace

PivotCube::PivotCube(DataFile& file, const ztb::Symbol& symbol, ztb::Field field,
                     const SliceFilter& filter)
    : labels_(static_cast<std::size_t>(symbol.dimension())) {
  collectLabels(file, symbol, filter);
  if (recordCount_ == 0) {
    return;
  }
  std::size_t cells = 1;
  for (const std::vector<int>& labels : labels_) {
    cells *= labels.size();
    if (cells > mostCells) {
      throw Failure(
          fmt::format("{}: {}: a table over all labels of its records has more than {} cells; "
                      "choose fewer with --slice",
                      file.path(), signature(symbol), mostCells));
    }
  }
  values_.resize(cells);
  records_.resize(cells);
  transfer(file.database(), symbol, field);
}

std::size_t PivotCube::cellOf(std::span<const std::size_t> places) const {
  std::size_t cell = 0;
  for (std::size_t position = 0; position < places.size(); ++position) {
    cell = cell * labels_[position].size() + places[position];
  }
  return cell;
}

void PivotCube::collectLabels(const DataFile& file, const ztb::Symbol& symbol,
                              const SliceFilter& filter) {
  std::vector<std::vector<bool>> used(
      labels_.size(), std::vector<bool>(static_cast<std::size_t>(file.labelCount()) + 1));
  for (const ztb::Row row : symbol.rows()) {
    if (filter.matches(row.keys)) {
      ++recordCount_;
      for (std::size_t position = 0; position < used.size(); ++position) {
        used[position][static_cast<std::size_t>(row.keys[position])] = true;
      }
    }
  }
  for (std::size_t position = 0; position < used.size(); ++position) {
    for (int label = 1; label <= file.labelCount(); ++label) {
      if (used[position][static_cast<std::size_t>(label)]) {
        labels_[position].push_back(label);
      }
    }
  }
}

// The labels of a position become a set, over which the library lays out the cube. What the slice
// keeps out has a label that none of these sets holds. A set with the same records tells a value of
// zero from none.
void PivotCube::transfer(ztb::Database& database, const ztb::Symbol& symbol, ztb::Field field) {
  std::vector<void*> domains;
  std::vector<int> sizes;
  for (const std::vector<int>& labels : labels_) {
    ztb::Symbol set = database.addSet(freeName(database, "pivotLabels"), {"*"});
    for (const int label : labels) {
      set.putElementUnchecked({&label, 1}, nullptr);
    }
    domains.push_back(set.handle());
    sizes.push_back(static_cast<int>(labels.size()));
  }
  const ztb::Symbol present =
      database.addSymbol(freeName(database, "pivotRecords"), ztb::Type::set,
                         std::vector<ztb::DomainArgument>(labels_.size(), "*"));
  ztbRec* handle = database.handle();
  ztb::detail::require(c__ztbcopysymbol(handle, present.handle(), symbol.handle()), handle,
                       "ztbCopySymbol");
  const auto fetch = [&](void* cube, const ztb::Symbol& source) {
    int dropped = 0;
    ztb::detail::require(
        c__ztbsparsesymboltodensearray(handle, cube, sizes.data(), source.handle(), domains.data(),
                                       static_cast<int>(field), &dropped),
        handle, "ztbSparseSymbolToDenseArray");
  };
  fetch(values_.data(), symbol);
  fetch(records_.data(), present);
}

}  // namespace tool
