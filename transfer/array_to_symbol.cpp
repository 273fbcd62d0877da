// A caller's cube into the records of a set or parameter.

#include <algorithm>
#include <array>
#include <vector>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "transfer/domain_checks.h"

namespace ztb {
namespace {

using Places = std::array<std::size_t, dmap::maxDimension>;

// The cells of a cube to read: whole numbers for a set, doubles for a parameter.
class Cells {
 public:
  Cells(const ZTB& db, const void* cells, bool isSet) : db_(db), cells_(cells), isSet_(isSet) {}

  [[nodiscard]] bool isZero(std::size_t cell) const {
    return isSet_ ? whole(cell) == 0 : real(cell) == 0.0;
  }
  // What the record at a cell holds.
  [[nodiscard]] double value(std::size_t cell) const {
    return isSet_ ? whole(cell) : db_.mapIn(real(cell));
  }

 private:
  [[nodiscard]] int whole(std::size_t cell) const { return static_cast<const int*>(cells_)[cell]; }
  [[nodiscard]] double real(std::size_t cell) const {
    return static_cast<const double*>(cells_)[cell];
  }

  const ZTB& db_;
  const void* cells_;
  bool isSet_;
};

// Empties the target; whatever is refused afterwards, its records are gone. Records that are still
// in a source are given up without being read.
bool emptyTarget(ZTB& db, AbstractZTBSymbol* symbol) {
  if (!checkSparseSymbol(db, symbol)) {
    return false;
  }
  if (!db.emptySymbol(*symbol)) {
    return false;
  }
  markWritten(db, *symbol);
  if (symbol->type != ZTB_SET && symbol->type != ZTB_PARAMETER) {
    return db.fail("Copy into var/equ symbol %s not possible", symbol->name.c_str()) == success;
  }
  requireKeyRoom(*symbol);
  return true;
}

// Adds a record wherever its key belongs. The cells of a cube mostly come in the order of their
// keys. A tree map does the same by appending, which then needs no search; the other stores may
// not.
class RecordTarget {
 public:
  explicit RecordTarget(AbstractZTBSymbol& symbol)
      : symbol_(symbol), appends_(symbol.storageKind() == dmap::StorageKind::dMap) {}

  void add(const int* keys, double value) {
    if (appends_) {
      symbol_.appendRecord(keys, &value);
    } else {
      symbol_.insertRecord(keys, &value);
    }
  }

 private:
  AbstractZTBSymbol& symbol_;
  bool appends_;
};

bool checkPosition(ZTB& db, const AbstractZTBSymbol& symbol, AbstractZTBSymbol* domain,
                   int position, int cells) {
  if (!checkDomain(db, symbol, domain) || !checkCard(db, *domain, position, cells)) {
    return false;
  }
  if (cells == 0) {
    return db.fail("Zero sized dimension %d", position + 1) == success;
  }
  return true;
}

// A label at a position of the cube: its number, and its rank from 0 in the domain that lays the
// position out.
struct CubeLabel {
  int label;
  std::size_t rank;
};

using CubeLabels = std::vector<CubeLabel>;

// The labels of a domain in the order of its records.
CubeLabels allLabels(AbstractZTBSymbol& domain) {
  CubeLabels labels;
  labels.reserve(static_cast<std::size_t>(domain.recordCount()));
  domain.forEachKey([&labels](const int* key) { labels.push_back({key[0], labels.size()}); });
  return labels;
}

// The labels of a slice set that the full domain has.
CubeLabels sliceLabels(AbstractZTBSymbol& sliceDomain, const RankTables& ranks,
                       std::size_t position) {
  CubeLabels labels;
  sliceDomain.forEachKey([&](const int* key) {
    const int rank = ranks.rank(position, key[0]);
    if (rank != 0) {
      labels.push_back({key[0], static_cast<std::size_t>(rank) - 1});
    }
  });
  return labels;
}

// Ascending labels give ascending keys, which every store takes; a vector takes no others.
void sortLabels(CubeLabels& labels) {
  const auto below = [](const CubeLabel& left, const CubeLabel& right) {
    return left.label < right.label;
  };
  if (!std::is_sorted(labels.begin(), labels.end(), below)) {
    std::stable_sort(labels.begin(), labels.end(), below);
  }
}

// Makes a record of each cell at these labels, with one list of them, not empty, for a position.
void fill(AbstractZTBSymbol& symbol, std::vector<CubeLabels>& labels, const Cells& cells,
          const int* vDim, bool skipsZeros) {
  std::for_each(labels.begin(), labels.end(), sortLabels);
  RecordTarget target(symbol);
  Places index = {};
  KeyBuffer keys = {};
  const std::size_t last = labels.size() - 1;
  for (bool more = true; more;) {
    std::size_t row = 0;
    for (std::size_t d = 0; d < last; ++d) {
      const CubeLabel& wanted = labels[d][index[d]];
      row = row * static_cast<std::size_t>(vDim[d]) + wanted.rank;
      keys[d] = wanted.label;
    }
    row *= static_cast<std::size_t>(vDim[last]);
    for (const CubeLabel& wanted : labels[last]) {
      const std::size_t cell = row + wanted.rank;
      if (!skipsZeros || !cells.isZero(cell)) {
        keys[last] = wanted.label;
        target.add(keys.data(), cells.value(cell));
      }
    }
    more = false;
    for (std::size_t d = last; d-- > 0 && !more;) {
      more = ++index[d] < labels[d].size();
      index[d] = more ? index[d] : 0;
    }
  }
}

int wholeCube(ZTB& db, void* sym, void* const* domains, const void* cube, const int* vDim) {
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (!emptyTarget(db, symbol)) {
    return failure;
  }
  const auto dim = static_cast<std::size_t>(symbol->dim);
  for (std::size_t d = 0; d < dim; ++d) {
    if (!checkPosition(db, *symbol, symbolOf(domains[d]), static_cast<int>(d), vDim[d])) {
      return failure;
    }
  }
  requireCountableCells(cellCount(vDim, symbol->dim));
  std::vector<CubeLabels> labels;
  for (std::size_t d = 0; d < dim; ++d) {
    labels.push_back(allLabels(*symbolOf(domains[d])));
  }
  const bool isSet = symbol->type == ZTB_SET;
  fill(*symbol, labels, Cells(db, cube, isSet), vDim, isSet);
  return success;
}

int slices(ZTB& db, void* sym, void* const* sliceDomains, void* const* domains, const void* cube,
           const int* vDim) {
  AbstractZTBSymbol* symbol = symbolOf(sym);
  if (!emptyTarget(db, symbol)) {
    return failure;
  }
  const auto dim = static_cast<std::size_t>(symbol->dim);
  for (std::size_t d = 0; d < dim; ++d) {
    if (!checkPosition(db, *symbol, symbolOf(domains[d]), static_cast<int>(d), vDim[d]) ||
        !checkDomain(db, *symbol, symbolOf(sliceDomains[d]))) {
      return failure;
    }
  }
  const RankTables ranks(domains, symbol->dim, db);
  std::vector<CubeLabels> labels;
  for (std::size_t d = 0; d < dim; ++d) {
    labels.push_back(sliceLabels(*symbolOf(sliceDomains[d]), ranks, d));
    if (labels.back().empty()) {
      return success;
    }
  }
  fill(*symbol, labels, Cells(db, cube, symbol->type == ZTB_SET), vDim, true);
  return success;
}

}  // namespace

int ztbDenseArrayToSymbol(ztbRec* handle, void* sym, void** domains, const void* cube,
                          const int* vDim) {
  return operation(handle, "ztbDenseArrayToSymbol",
                   [&](ZTB& db) { return wholeCube(db, sym, domains, cube, vDim); });
}

int ztbDenseArraySlicesToSymbol(ztbRec* handle, void* sym, void** sliceDomains, void** domains,
                                const void* cube, const int* vDim) {
  return operation(handle, "ztbDenseArraySlicesToSymbol",
                   [&](ZTB& db) { return slices(db, sym, sliceDomains, domains, cube, vDim); });
}

}  // namespace ztb
