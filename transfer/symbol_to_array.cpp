// One field of a symbol's records into a caller's cube: row-major, last index fastest, placed by
// the rank of each label among the records of a domain set.

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "exchange/special_values.h"
#include "transfer/domain_checks.h"

namespace ztb {
namespace {

// The cube's cell values: whole numbers for a set, doubles for any other symbol.
class Cube {
 public:
  Cube(void* cells, const AbstractZTBSymbol& symbol)
      : cells_(cells), isSet_(symbol.type == ZTB_SET) {}

  // Nothing for a size below 0.
  void clear(std::int32_t size) const {
    if (isSet_) {
      std::fill_n(static_cast<int*>(cells_), size, 0);
    } else {
      std::fill_n(static_cast<double*>(cells_), size, 0.0);
    }
  }
  void put(std::int64_t cell, int number) const { static_cast<int*>(cells_)[cell] = number; }
  void put(std::int64_t cell, double value) const { static_cast<double*>(cells_)[cell] = value; }

 private:
  void* cells_;
  bool isSet_;
};

// The cell of a record in a row-major cube, from 0; below 0 if a label is outside its domain.
class CellFinder {
 public:
  CellFinder(const RankTables& ranks, const int* vDim, int dim)
      : labels_(ranks.labels()), dim_(dim) {
    for (int d = 0; d < dim; ++d) {
      ranks_[static_cast<std::size_t>(d)] = ranks.ranks(static_cast<std::size_t>(d));
      sizes_[static_cast<std::size_t>(d)] = vDim[d];
    }
  }

  std::int64_t operator()(const int* keys) const { return at<0>(keys); }
  // The same where the number of positions, unless 0, is known to the compiler.
  template <int knownDim>
  [[nodiscard]] std::int64_t at(const int* keys) const {
    const auto dim = static_cast<std::size_t>(knownDim > 0 ? knownDim : dim_);
    std::int64_t cell = 0;
    for (std::size_t d = 0; d < dim; ++d) {
      const auto label = static_cast<std::size_t>(keys[d]);
      const int rank = label < labels_ ? ranks_[d][label] : 0;
      if (rank == 0) {
        return -1;
      }
      cell = cell * sizes_[d] + rank - 1;
    }
    return cell;
  }

 private:
  std::array<const int*, dmap::maxDimension> ranks_ = {};
  std::array<std::int64_t, dmap::maxDimension> sizes_ = {};
  std::size_t labels_;
  int dim_;
};

// The slot to transfer: a parameter has one, a variable or equation five. False with
// "Field %d is out of bounds [0,%d]".
bool selectField(ZTB& db, const AbstractZTBSymbol& symbol, int& field) {
  if (symbol.type == ZTB_SET) {
    return true;
  }
  if (dmap::slotCount(symbol.type) == 1) {
    field = 0;
    return true;
  }
  if (field < 0 || field >= dmap::maxSlots) {
    return db.fail("Field %d is out of bounds [0,%d]", field, dmap::maxSlots - 1) == success;
  }
  return true;
}

int denseToDense(ZTB& db, void* cells, const int* vDim, void* sym, int field) {
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (symbol == nullptr) {
    return db.fail("Empty symbol pointer");
  }
  if (symbol->dim == 0) {
    return db.fail("Can't map scalars");
  }
  if (symbol->name == "*") {
    return db.fail("Can't map universe");
  }
  if (!db.ensureLoaded(*symbol)) {
    return failure;
  }
  const std::int64_t size = cellCount(vDim, symbol->dim);
  if (size == 0) {
    return db.fail("Zero sized cube");
  }
  if (size != symbol->recordCount()) {
    return db.fail("Size of cube %zd and number of record %zd in %s do not match",
                   static_cast<ssize_t>(size), static_cast<ssize_t>(symbol->recordCount()),
                   symbol->name.c_str());
  }
  const Cube cube(cells, *symbol);
  if (symbol->type == ZTB_SET) {
    for (int cell = 0; cell < size; ++cell) {
      cube.put(cell, cell + 1);
    }
    return success;
  }
  if (!selectField(db, *symbol, field)) {
    return failure;
  }
  auto* const values = static_cast<double*>(cells);
  symbol->copySlot(static_cast<std::size_t>(field), values);
  for (std::int64_t cell = 0; cell < size; ++cell) {
    if (!isOrdinary(values[cell])) {
      values[cell] = db.mapOut(values[cell]);
    }
  }
  return success;
}

// What the two sparse operations check first, with the size of the cube in 32 bits.
bool checkSparse(ZTB& db, AbstractZTBSymbol* symbol, const int* vDim, int& field,
                 std::int32_t& size) {
  if (!checkSparseSymbol(db, symbol) || !db.ensureLoaded(*symbol)) {
    return false;
  }
  requireKeyRoom(*symbol);
  size = wrappedCellCount(vDim, symbol->dim);
  if (size == 0) {
    return db.fail("Zero sized cube") == success;
  }
  return selectField(db, *symbol, field);
}

int sparseToDense(ZTB& db, void* cells, const int* vDim, void* sym, void* const* domains, int field,
                  int* nDropped) {
  *nDropped = -1;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  std::int32_t size = 0;
  if (!checkSparse(db, symbol, vDim, field, size)) {
    return failure;
  }
  const int dim = symbol->dim;
  const bool isSet = symbol->type == ZTB_SET;
  for (int d = 0; d < dim; ++d) {
    AbstractZTBSymbol* domain = symbolOf(domains[d]);
    if (!checkDomain(db, *symbol, domain) || !checkCard(db, *domain, d, vDim[d])) {
      return failure;
    }
  }
  requireCountableCells(size);
  const RankTables ranks(domains, dim, db);
  const Cube cube(cells, *symbol);
  cube.clear(size);
  *nDropped = 0;
  const CellFinder cellOf(ranks, vDim, dim);
  if (isSet) {
    int placed = 0;
    symbol->forEachRecord([&](const int* keys, const double*) {
      const std::int64_t cell = cellOf(keys);
      if (cell < 0) {
        ++*nDropped;
      } else {
        cube.put(cell, ++placed);
      }
    });
    return success;
  }
  // All that a record needs lies together.
  struct Placing {
    CellFinder cellOf;
    const ZTB* db;
    double* cells;
    std::size_t field;
    int dropped;
  } placing{cellOf, &db, static_cast<double*>(cells), static_cast<std::size_t>(field), 0};
  const auto placeAll = [symbol, to = &placing]<int knownDim>() {
    symbol->forEachRecord([to](const int* keys, const double* values) {
      const std::int64_t cell = to->cellOf.at<knownDim>(keys);
      if (cell < 0) {
        ++to->dropped;
      } else {
        to->cells[cell] = to->db->mapOut(values[to->field]);
      }
    });
  };
  switch (dim) {
    case 1:
      placeAll.operator()<1>();
      break;
    case 2:
      placeAll.operator()<2>();
      break;
    case 3:
      placeAll.operator()<3>();
      break;
    default:
      placeAll.operator()<0>();
  }
  *nDropped = placing.dropped;
  return success;
}

// For each label of a domain, by its rank from 1, the 1-based rank in a squeeze domain; 0 if that
// lacks it.
std::vector<int> squeezeMap(AbstractZTBSymbol& domain, const RankTables& ranks,
                            std::size_t position, AbstractZTBSymbol& squeezeDomain) {
  std::vector<int> map(static_cast<std::size_t>(domain.recordCount()) + 1);
  int squeezed = 0;
  squeezeDomain.forEachKey([&](const int* key) {
    ++squeezed;
    const int rank = ranks.rank(position, key[0]);
    if (rank != 0) {
      map[static_cast<std::size_t>(rank)] = squeezed;
    }
  });
  return map;
}

int sparseToSqueezed(ZTB& db, void* cells, const int* vDim, void* sym, void* const* squeezeDomains,
                     void* const* domains, int field, int* nDropped) {
  *nDropped = -1;
  AbstractZTBSymbol* symbol = symbolOf(sym);
  std::int32_t size = 0;
  if (!checkSparse(db, symbol, vDim, field, size)) {
    return failure;
  }
  const int dim = symbol->dim;
  const Cube cube(cells, *symbol);
  cube.clear(size);
  for (int d = 0; d < dim; ++d) {
    AbstractZTBSymbol* squeezeDomain = symbolOf(squeezeDomains[d]);
    if (!checkDomain(db, *symbol, symbolOf(domains[d])) ||
        !checkDomain(db, *symbol, squeezeDomain) || !checkCard(db, *squeezeDomain, d, vDim[d])) {
      return failure;
    }
  }
  requireCountableCells(size);
  const RankTables ranks(domains, dim, db);
  std::vector<std::vector<int>> squeezeMaps;
  std::array<std::int64_t, dmap::maxDimension> domainSizes = {};
  for (int d = 0; d < dim; ++d) {
    AbstractZTBSymbol& domain = *symbolOf(domains[d]);
    const auto position = static_cast<std::size_t>(d);
    squeezeMaps.push_back(squeezeMap(domain, ranks, position, *symbolOf(squeezeDomains[d])));
    domainSizes[position] = domain.recordCount();
  }
  *nDropped = 0;
  symbol->forEachRecordWhile([&](const int* keys, const double* values) {
    std::int64_t cell = 0;
    std::uint64_t fullCell = 0;
    for (int d = 0; d < dim; ++d) {
      const auto position = static_cast<std::size_t>(d);
      const int rank = ranks.rank(position, keys[d]);
      const int squeezed = squeezeMaps[position][static_cast<std::size_t>(rank)];
      if (squeezed == 0) {
        ++*nDropped;
        return false;
      }
      cell = cell * vDim[d] + squeezed - 1;
      fullCell = static_cast<std::uint64_t>(rank) - 1 +
                 fullCell * static_cast<std::uint64_t>(domainSizes[position]);
    }
    if (symbol->type == ZTB_SET) {
      cube.put(cell, static_cast<int>(fullCell + 1));
    } else {
      cube.put(cell, db.mapOut(values[field]));
    }
    return true;
  });
  return success;
}

}  // namespace

int ztbDenseSymbolToDenseArray(ztbRec* handle, void* cube, const int* vDim, void* sym, int field) {
  return operation(handle, "ztbDenseSymbolToDenseArray",
                   [&](ZTB& db) { return denseToDense(db, cube, vDim, sym, field); });
}

int ztbSparseSymbolToDenseArray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                                void** domains, int field, int* nDropped) {
  return operation(handle, "ztbSparseSymbolToDenseArray", [&](ZTB& db) {
    return sparseToDense(db, cube, vDim, sym, domains, field, nDropped);
  });
}

int ztbSparseSymbolToSqzdArray(ztbRec* handle, void* cube, const int* vDim, void* sym,
                               void** squeezeDomains, void** domains, int field, int* nDropped) {
  return operation(handle, "ztbSparseSymbolToSqzdArray", [&](ZTB& db) {
    return sparseToSqueezed(db, cube, vDim, sym, squeezeDomains, domains, field, nDropped);
  });
}

}  // namespace ztb
