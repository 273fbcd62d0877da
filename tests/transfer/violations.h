// Violation handles for tests.
#ifndef ZTB_TESTS_TRANSFER_VIOLATIONS_H_
#define ZTB_TESTS_TRANSFER_VIOLATIONS_H_

#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

// A violating record: its symbol, its labels, and for each position 1 where it violates.
struct Violating {
  std::string symbol;
  Labels labels;
  std::vector<int> positions;

  bool operator==(const Violating&) const = default;
};

// A violation handle that is freed at the end of its scope.
class Violation {
 public:
  Violation(Database& database, void* handle) : database_(&database), handle_(handle) {}
  Violation(Violation&& other) noexcept
      : database_(other.database_), handle_(std::exchange(other.handle_, nullptr)) {}
  Violation(const Violation&) = delete;
  Violation& operator=(const Violation&) = delete;
  Violation& operator=(Violation&&) = delete;
  ~Violation() { free(); }

  operator void*() const { return handle_; }
  void free() { lib().c__ztbfreedvhandle(*database_, std::exchange(handle_, nullptr)); }

  Violating described() const {
    void* symbol = nullptr;
    require(lib().c__ztbgetdvsymbol(*database_, handle_, &symbol));
    const int dim = database_->symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION);
    Violating result;
    result.symbol = database_->symbolText(symbol, ZTB_SYMBOL_INFO_NAME);
    result.positions.assign(static_cast<std::size_t>(dim), 77);
    void* record = nullptr;
    require(lib().c__ztbgetdvsymbolrecord(*database_, handle_, &record));
    result.labels = database_->labels(Record(*database_, record), dim);
    require(lib().c__ztbgetdvindicator(*database_, handle_, result.positions.data()));
    return result;
  }

  // Moves on in the symbol, or to a later symbol.
  bool moveNext() {
    int more = 77;
    require(lib().c__ztbmovenextdvinsymbol(*database_, handle_, &more));
    return more == 1;
  }
  bool moveToNextSymbol() {
    int found = 77;
    require(lib().c__ztbgetfirstdvinnextsymbol(*database_, handle_, &found));
    return found == 1;
  }

 private:
  void require(int result) const {
    if (result != 1) {
      throw std::runtime_error("violation: " + database_->lastError());
    }
  }

  Database* database_;
  void* handle_;
};

inline Violation firstIn(Database& db, void* symbol) {
  void* handle = nullptr;
  if (lib().c__ztbgetfirstdvinsymbol(db, symbol, &handle) != 1) {
    throw std::runtime_error("violation: " + db.lastError());
  }
  return {db, handle};
}

inline Violation firstInDatabase(Database& db) {
  void* handle = nullptr;
  if (lib().c__ztbgetfirstdbdv(db, &handle) != 1) {
    throw std::runtime_error("violation: " + db.lastError());
  }
  return {db, handle};
}

inline std::vector<Violating> violationsOf(Database& db, void* symbol) {
  std::vector<Violating> result;
  Violation violation = firstIn(db, symbol);
  if (violation != nullptr) {
    do {
      result.push_back(violation.described());
    } while (violation.moveNext());
  }
  return result;
}

// What a check of the whole database reports.
inline std::vector<Violating> violationsOf(Database& db) {
  std::vector<Violating> result;
  {
    Violation violation = firstInDatabase(db);
    bool more = violation != nullptr;
    while (more) {
      result.push_back(violation.described());
      if (!violation.moveNext()) {
        // Moving past the end leaves the handle on its symbol.
        more = violation.moveToNextSymbol();
      }
    }
  }
  lib().c__ztbdomaincheckdone(db);
  return result;
}

inline bool violates(Database& db, void* symbol) {
  int result = 77;
  if (lib().c__ztbchecksymboldv(db, symbol, &result) != 1) {
    throw std::runtime_error("check: " + db.lastError());
  }
  return result == 1;
}

inline bool violates(Database& db) {
  int result = 77;
  if (lib().c__ztbcheckdbdv(db, &result) != 1) {
    throw std::runtime_error("check: " + db.lastError());
  }
  return result == 1;
}

}  // namespace ztbtest

#endif  // ZTB_TESTS_TRANSFER_VIOLATIONS_H_
