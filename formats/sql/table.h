// A symbol as a table of SQL: its columns, and what the planner of a query asks of it. The records
// are read from their source when they are first counted or walked over.
#ifndef ZTB_FORMATS_SQL_TABLE_H_
#define ZTB_FORMATS_SQL_TABLE_H_

#include <cstdint>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/sql/estimates.h"
#include "formats/sql/labels.h"

namespace formats {

// A database whose symbols are tables; the caller's, or one of its own that was opened for it.
struct SqlDatabase {
  explicit SqlDatabase(ztbRec* database) : handle(database), labels(database) {}
  explicit SqlDatabase(ztb::Database database)
      : owned(std::move(database)), handle(owned->handle()), labels(handle) {}
  SqlDatabase(const SqlDatabase&) = delete;
  SqlDatabase& operator=(const SqlDatabase&) = delete;
  ~SqlDatabase() = default;

  // Counts what may have changed records.
  [[nodiscard]] unsigned changes() const { return ztbRecordChanges(handle); }

  std::optional<ztb::Database> owned;
  ztbRec* handle;
  SqlLabels labels;
};

class SqlTable {
 public:
  static constexpr int universe = -1;

  // The symbol at a position among all of the database, or its universe. An alias shows its set.
  SqlTable(SqlDatabase& database, int position);

  [[nodiscard]] SqlDatabase& database() const { return *database_; }
  // The symbol whose records are walked over: also after it went to another store.
  [[nodiscard]] const ztb::Symbol& symbol();
  [[nodiscard]] bool isUniverse() const { return position_ == universe || overUniverse_; }
  [[nodiscard]] bool isSet() const { return type_ == ztb::Type::set; }
  [[nodiscard]] int dimension() const { return dimension_; }
  // Names of the columns: keys, then the text of a set, the value of a parameter, or five fields.
  [[nodiscard]] const std::vector<std::string>& columns() const { return columns_; }

  // Records; read now, if they were not yet.
  [[nodiscard]] int recordCount();
  // REQUIRES: one position or more, and not the universe.
  [[nodiscard]] SqlEstimates& estimates();
  // Whether records with ascending labels' numbers at a position have ascending texts there.
  [[nodiscard]] bool ascends(int position);
  // A number for a key that no other key of the symbol has, as long as this object lives.
  std::int64_t rowNumber(const int* keys);

 private:
  void renew();
  void findOrder();

  SqlDatabase* database_;
  int position_;
  std::optional<ztb::Symbol> symbol_;
  ztb::Type type_ = ztb::Type::set;
  bool overUniverse_ = false;
  int dimension_ = 0;
  std::vector<std::string> columns_;
  std::optional<unsigned> seen_;  // changes, when what follows was found out
  std::optional<SqlEstimates> estimates_;
  std::vector<bool> ascends_;
  std::unordered_map<std::string, std::int64_t> rowNumbers_;  // of keys too long for a number
};

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_TABLE_H_
