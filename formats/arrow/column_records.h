// Records of a symbol from rows by columns: all checked before the first is stored.
#ifndef ZTB_FORMATS_ARROW_COLUMN_RECORDS_H_
#define ZTB_FORMATS_ARROW_COLUMN_RECORDS_H_

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/arrow/column_table.h"
#include "formats/tables/record_table.h"

namespace formats {

using FieldValues = std::array<double, ztb::fieldCount>;

// The values of a new record of such a symbol, as the caller spells them.
FieldValues newRecordOf(ztbRec* database, ztb::Type type, int subtype);

// Numbers of labels, new ones as the database would give them; they are added by add() alone.
class NewLabels {
 public:
  explicit NewLabels(ztbRec* database);
  // Throws ztb::Error for a label that no record may get.
  int number(const std::string& label);
  void add() const;

 private:
  ztbRec* database_;
  int known_ = 0;
  std::vector<std::string> labels_;
  std::unordered_map<std::string, int> numbers_;
};

// How numbers of a table become values of records.
struct NumberPlan {
  // By column of numbers, the slot that it fills and the name by which it is told.
  std::vector<std::size_t> fields;
  std::vector<std::string> names;
  // What a record holds in other slots, and where a null is left out.
  FieldValues others{};
  // A ZTB_ARROW_NULLS_ code.
  int nulls = 0;
};

class ColumnRecords {
 public:
  // Throws ztb::Error that names column and row for what no record can hold, and for two rows with
  // the same labels.
  ColumnRecords(ztbRec* database, ztb::Type type, const ColumnTable& table, const NumberPlan& plan);

  // Replaces the records of the symbol.
  void storeIn(ztb::Symbol symbol) const;
  [[nodiscard]] std::size_t count() const { return rows_.size(); }

 private:
  std::vector<std::vector<int>> numbersOf(const ColumnTable& table);
  void refuseDuplicates(const ColumnTable& table) const;

  NewLabels labels_;
  RecordTable table_;
  std::vector<std::size_t> rows_;
  std::vector<std::size_t> order_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_ARROW_COLUMN_RECORDS_H_
