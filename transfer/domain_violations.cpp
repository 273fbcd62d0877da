// Finding records with labels outside the sets that their symbol names as domains, one at a time.

#include <algorithm>
#include <cstddef>
#include <vector>

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "store/symbol_factory.h"
#include "transfer/domain_membership.h"

namespace ztb {
namespace {

using RecordHandle = AbstractZTBSymbol::RecordHandle;

bool checkingDatabase(const ZTB& db) {
  return db.dvState == 1;
}

// The deciding sets of a whole-database check: every symbol's own, aliases included.
bool prepareDatabase(ZTB& db) {
  return db.symbols.forEach([&db](AbstractZTBSymbol* symbol) {
    AbstractZTBSymbol* set = decidingSet(symbol);
    return set == nullptr || prepareMembership(db, *set);
  });
}

void buildDatabase(ZTB& db) {
  db.symbols.forEach([&db](AbstractZTBSymbol* symbol) {
    AbstractZTBSymbol* set = decidingSet(symbol);
    if (set != nullptr) {
      buildMembership(db, *set);
    }
    return true;
  });
}

// The test of a symbol's records against the tables that its domains have at this moment.
class ViolationTest {
 public:
  explicit ViolationTest(const AbstractZTBSymbol& symbol) {
    for (std::size_t position = 0; position < symbol.domainSymbols.size(); ++position) {
      const AbstractZTBSymbol* set = decidingSet(symbol.domainSymbols[position]);
      if (set != nullptr && !set->domainMembership.empty()) {
        checked_.push_back({position, &set->domainMembership});
      }
    }
  }

  [[nodiscard]] bool violates(const int* keys) const {
    return std::ranges::any_of(checked_, [keys](const Position& position) {
      return rankOf(*position.membership, keys[position.number]) == 0;
    });
  }

 private:
  struct Position {
    std::size_t number;
    const LabelRanks* membership;
  };

  std::vector<Position> checked_;
};

void freeDatabase(ZTB& db) {
  db.symbols.forEach([](AbstractZTBSymbol* symbol) {
    if (AbstractZTBSymbol* set = decidingSet(symbol)) {
      freeMembership(*set);
    }
    return true;
  });
}

// Drops the tables of a symbol's domains, unless a check of the database keeps them.
void endSymbolCheck(const ZTB& db, const AbstractZTBSymbol& symbol) {
  if (!checkingDatabase(db)) {
    freeDomains(symbol);
  }
}

// The handle behind a violation handle, or null with the reason in the database's last error.
AbstractZTBSymbolIterator* violationOf(ZTB& db, void* dvHandle) {
  AbstractZTBSymbolIterator* record = recordOf(dvHandle);
  if (record == nullptr) {
    db.fail("No domain violation handle specified");
    return nullptr;
  }
  if (record->symbol()->isEnd(*record)) {
    db.fail("No valid violation handle");
    return nullptr;
  }
  return record;
}

int violationSymbol(ZTB& db, void* dvHandle, void** symPtr) {
  AbstractZTBSymbolIterator* record = violationOf(db, dvHandle);
  if (record == nullptr) {
    return failure;
  }
  *symPtr = record->symbol();
  return success;
}

int violationRecord(ZTB& db, void* dvHandle, void** recPtr) {
  AbstractZTBSymbolIterator* record = violationOf(db, dvHandle);
  if (record == nullptr) {
    return failure;
  }
  *recPtr = nullptr;
  *recPtr = copyRecordHandle(db.recordStorage, *record).release();
  return success;
}

int firstInSymbol(ZTB& db, AbstractZTBSymbol& symbol, void** dvHandle) {
  *dvHandle = nullptr;
  if (!checkingDatabase(db) && !prepareDomains(db, symbol)) {
    return failure;
  }
  try {
    if (!checkingDatabase(db)) {
      buildDomains(db, symbol);
    }
    const ViolationTest test(symbol);
    auto [clean, record] = symbol.firstRejected(
        [&test](const int* keys, const double*) { return !test.violates(keys); });
    if (!clean) {
      *dvHandle = record.release();
    } else {
      endSymbolCheck(db, symbol);
    }
  } catch (...) {
    endSymbolCheck(db, symbol);
    throw;
  }
  return success;
}

int firstInDatabase(ztbRec* handle, ZTB& db, void** dvHandle) {
  *dvHandle = nullptr;
  AbstractZTBSymbol* symbol = nullptr;
  if (!nextSymbolWithDomain(db, nullptr, symbol)) {
    return failure;
  }
  if (symbol == nullptr) {
    return success;
  }
  if (!prepareDatabase(db)) {
    return failure;
  }
  try {
    buildDatabase(db);
  } catch (...) {
    freeDatabase(db);
    throw;
  }
  db.dvState = 1;
  while (symbol != nullptr) {
    if (ztbGetFirstDVInSymbol(handle, symbol, dvHandle) != success) {
      return failure;
    }
    if (*dvHandle != nullptr) {
      return success;
    }
    if (!nextSymbolWithDomain(db, symbol, symbol)) {
      freeDatabase(db);
      db.dvState = 0;
      return failure;
    }
  }
  return success;
}

int firstInNextSymbol(ztbRec* handle, ZTB& db, AbstractZTBSymbolIterator& record, int* found) {
  *found = 0;
  AbstractZTBSymbol* symbol = record.symbol();
  while (nextSymbolWithDomain(db, symbol, symbol)) {
    if (symbol == nullptr) {
      return success;
    }
    void* fresh = nullptr;
    if (ztbGetFirstDVInSymbol(handle, symbol, &fresh) != success) {
      return failure;
    }
    if (fresh != nullptr) {
      try {
        record.moveToSymbolOf(*recordOf(fresh));
      } catch (...) {
        ztbFreeDVHandle(handle, fresh);
        throw;
      }
      *found = 1;
      return ztbFreeDVHandle(handle, fresh);
    }
  }
  return failure;
}

}  // namespace

int ztbCheckDBDV(ztbRec* handle, int* hasViolation) {
  return operation(handle, "ztbCheckDBDV", [&](ZTB&) {
    void* violation = nullptr;
    int result = ztbGetFirstDBDV(handle, &violation);
    *hasViolation = violation == nullptr ? 0 : 1;
    if (violation != nullptr && ztbFreeDVHandle(handle, violation) != success) {
      result = failure;
    }
    return result == success ? ztbDomainCheckDone(handle) : failure;
  });
}

int ztbCheckSymbolDV(ztbRec* handle, void* sym, int* hasViolation) {
  return operation(handle, "ztbCheckSymbolDV", [&](ZTB&) {
    void* violation = nullptr;
    const int result = ztbGetFirstDVInSymbol(handle, sym, &violation);
    *hasViolation = violation == nullptr ? 0 : 1;
    return violation == nullptr ? result : ztbFreeDVHandle(handle, violation);
  });
}

int ztbGetFirstDBDV(ztbRec* handle, void** dvHandle) {
  return operation(handle, "ztbGetFirstDBDV",
                   [&](ZTB& db) { return firstInDatabase(handle, db, dvHandle); });
}

void* ztbGetFirstDBDVPy(ztbRec* handle, int* status) {
  return handleFromPlain("ztbGetFirstDBDVPy", status,
                         [&](void** result) { return ztbGetFirstDBDV(handle, result); });
}

int ztbGetFirstDVInSymbol(ztbRec* handle, void* sym, void** dvHandle) {
  return operation(handle, "ztbGetFirstDVInSymbol",
                   [&](ZTB& db) { return firstInSymbol(db, requireSymbol(sym), dvHandle); });
}

void* ztbGetFirstDVInSymbolPy(ztbRec* handle, void* sym, int* status) {
  return handleFromPlain("ztbGetFirstDVInSymbolPy", status,
                         [&](void** result) { return ztbGetFirstDVInSymbol(handle, sym, result); });
}

int ztbGetFirstDVInNextSymbol(ztbRec* handle, void* dvHandle, int* found) {
  return operation(handle, "ztbGetFirstDVInNextSymbol", [&](ZTB& db) {
    return firstInNextSymbol(handle, db, requireRecord(dvHandle), found);
  });
}

int ztbMoveNextDVInSymbol(ztbRec* handle, void* dvHandle, int* hasNext) {
  return operation(handle, "ztbMoveNextDVInSymbol", [&](ZTB&) {
    AbstractZTBSymbolIterator& record = requireRecord(dvHandle);
    *hasNext = record.symbol()->toNextDomainViolation(record) ? 1 : 0;
    return success;
  });
}

int ztbFreeDVHandle(ztbRec* handle, void* dvHandle) {
  return operation(handle, "ztbFreeDVHandle", [&](ZTB& db) {
    const RecordHandle record(recordOf(dvHandle));
    if (record != nullptr) {
      endSymbolCheck(db, *record->symbol());
    }
    return success;
  });
}

int ztbDomainCheckDone(ztbRec* handle) {
  return operation(handle, "ztbDomainCheckDone", [&](ZTB& db) {
    if (db.dvState == 0) {
      return success;
    }
    freeDatabase(db);
    db.dvState = 0;
    return success;
  });
}

int ztbGetDVSymbol(ztbRec* handle, void* dvHandle, void** symPtr) {
  return operation(handle, "ztbGetDVSymbol",
                   [&](ZTB& db) { return violationSymbol(db, dvHandle, symPtr); });
}

void* ztbGetDVSymbolPy(ztbRec* handle, void* dvHandle, int* status) {
  return handleOperation(
      handle, {"ztbGetDVSymbolPy", "ztbGetDVSymbol"}, status,
      [&](ZTB& db, void** result) { return violationSymbol(db, dvHandle, result); });
}

int ztbGetDVSymbolRecord(ztbRec* handle, void* dvHandle, void** recPtr) {
  return operation(handle, "ztbGetDVSymbolRecord",
                   [&](ZTB& db) { return violationRecord(db, dvHandle, recPtr); });
}

void* ztbGetDVSymbolRecordPy(ztbRec* handle, void* dvHandle, int* status) {
  return handleOperation(
      handle, {"ztbGetDVSymbolRecordPy", "ztbGetDVSymbolRecord"}, status,
      [&](ZTB& db, void** result) { return violationRecord(db, dvHandle, result); });
}

int ztbGetDVIndicator(ztbRec* handle, void* dvHandle, int* indicator) {
  return operation(handle, "ztbGetDVIndicator", [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = violationOf(db, dvHandle);
    if (record == nullptr) {
      return failure;
    }
    const AbstractZTBSymbol& symbol = *record->symbol();
    std::fill_n(indicator, std::max(symbol.dim, 0), 0);
    const int* keys = record->keys();
    for (std::size_t d = 0; d < symbol.domainSymbols.size(); ++d) {
      indicator[d] = symbol.violatesDomainAt(d, keys[d]) ? 1 : 0;
    }
    return success;
  });
}

}  // namespace ztb
