#include "transfer/domain_checks.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>

#include "core/handles.h"

namespace ztb {
namespace {

[[noreturn]] void throwTooManyCells() {
  throw std::length_error("a cube of these sizes has more cells than can be counted");
}

}  // namespace

LabelRanks ranksOf(AbstractZTBSymbol& set, const ZTB& db) {
  LabelRanks ranks(static_cast<std::size_t>(db.uels.size()));
  int rank = 0;
  set.forEachKey([&](const int* key) {
    const auto label = static_cast<std::size_t>(key[0]);
    if (label >= ranks.size()) {
      throw std::logic_error("set " + set.name + " holds the unknown label number " +
                             std::to_string(key[0]));
    }
    ranks[label] = ++rank;
  });
  return ranks;
}

RankTables::RankTables(void* const* domains, int count, const ZTB& db)
    : labels_(static_cast<std::size_t>(db.uels.size())) {
  for (int d = 0; d < count; ++d) {
    const auto known = std::find(domains, domains + d, domains[d]) - domains;
    if (known == d) {
      tables_.push_back(ranksOf(*symbolOf(domains[d]), db));
      ranks_[static_cast<std::size_t>(d)] = tables_.back().data();
    } else {
      ranks_[static_cast<std::size_t>(d)] = ranks_[static_cast<std::size_t>(known)];
    }
  }
}

bool checkDomain(ZTB& db, const AbstractZTBSymbol& symbol, AbstractZTBSymbol* domain) {
  const char* name = symbol.name.c_str();
  if (domain == nullptr) {
    return db.failAs(ZTB_ERROR_DOMAIN, "No domain symbol handle specified for symbol %s", name) ==
           success;
  }
  if (domain->name == "*") {
    return db.failAs(ZTB_ERROR_DOMAIN, "Cannot use universe as domain symbol %s", name) == success;
  }
  if (domain->database != symbol.database) {
    return db.failAs(ZTB_ERROR_DOMAIN, "Symbol %s and domain symbol %s in different databases",
                     name, domain->name.c_str()) == success;
  }
  if (domain->dim != 1) {
    return db.failAs(ZTB_ERROR_DOMAIN, "Domain symbol %s has dimension %d, needs to be 1",
                     domain->name.c_str(), domain->dim) == success;
  }
  return db.ensureLoaded(*domain);
}

bool checkCard(ZTB& db, const AbstractZTBSymbol& domain, int position, int cells) {
  if (domain.recordCount() == cells) {
    return true;
  }
  return db.failAs(ZTB_ERROR_DOMAIN, "Cube dimension %d is %d while card(%s) is %zd.", position + 1,
                   cells, domain.name.c_str(),
                   static_cast<ssize_t>(domain.recordCount())) == success;
}

std::int64_t cellCount(const int* vDim, int dim) {
  std::int64_t cells = 1;
  bool tooMany = false;
  for (int d = 0; d < dim; ++d) {
    if (vDim[d] == 0) {
      return 0;
    }
    tooMany = __builtin_mul_overflow(cells, vDim[d], &cells) || tooMany;
  }
  if (tooMany) {
    throwTooManyCells();
  }
  return cells;
}

std::int32_t wrappedCellCount(const int* vDim, int dim) {
  std::uint32_t cells = 1;
  for (int d = 0; d < dim; ++d) {
    cells *= static_cast<std::uint32_t>(vDim[d]);
  }
  return static_cast<std::int32_t>(cells);
}

void requireCountableCells(std::int64_t cells) {
  if (cells < 0 || cells > std::numeric_limits<std::int32_t>::max()) {
    throwTooManyCells();
  }
}

bool checkSparseSymbol(ZTB& db, const AbstractZTBSymbol* symbol) {
  if (symbol == nullptr) {
    return db.fail("Empty symbol pointer") == success;
  }
  if (symbol->name == "*") {
    return db.fail("Can't map universe") == success;
  }
  if (symbol->dim == 0) {
    return db.fail("Can't map scalars") == success;
  }
  return true;
}

}  // namespace ztb
