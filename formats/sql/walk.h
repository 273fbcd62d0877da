// A walk over records of a table, from the one that a query asks for to all of them, in the order
// of label numbers. It reads blocks of records and holds a record handle, so each step first looks
// whether records have changed.
#ifndef ZTB_FORMATS_SQL_WALK_H_
#define ZTB_FORMATS_SQL_WALK_H_

#include <array>
#include <optional>
#include <vector>
#include <ztb/ztb.hpp>

#include "formats/sql/table.h"

namespace formats {

// Which records: those with these labels at the positions where one is given, and with one of
// `listed` at one more position where there is such a list.
struct SqlSelection {
  std::array<int, ZTB_MAX_DIMENSION> labels{};  // 0 for any
  std::optional<std::vector<int>> listed;       // ascending
  std::size_t listPosition = 0;
  bool nothing = false;
};

class SqlWalk {
 public:
  explicit SqlWalk(SqlTable& table) : table_(&table), database_(table.database().handle) {}

  // Stands on the first of them, or at the end. Of columns whose bit is not set no values are asked
  // for, nor texts.
  void begin(SqlSelection selection, unsigned columns);
  // Lets go of the records; the memory stays for the next walk.
  void end() {
    record_ = {};
    at_ = filled_ = 0;
  }
  [[nodiscard]] bool atEnd() const { return at_ == filled_; }
  // False when records were changed since begin(); then next() and text() throw.
  [[nodiscard]] bool isUnchanged() const { return ztbRecordChanges(database_) == changes_; }
  void requireUnchanged() const {
    if (!isUnchanged()) failChanged();
  }
  // Steps within a block; false, where it stood, at the end of one and when records were changed.
  [[nodiscard]] bool stepped() {
    const bool steps = at_ + 1 < filled_ && isUnchanged();
    at_ += steps ? 1 : 0;
    return steps;
  }
  void next() {
    requireUnchanged();
    if (++at_ == filled_) {
      fill();
    }
  }

  // Whether a column can be read: it was asked for, and records were not changed.
  [[nodiscard]] bool shows(int column) const {
    return (columns_ >> static_cast<unsigned>(column) & 1U) != 0 && isUnchanged();
  }
  // Throws when records were changed; asks for a column that was not, which is slow the first time.
  void show(int column);
  // Of the record that it stands on. REQUIRES: shows() its column.
  [[nodiscard]] int key(int position) const {
    return keys_[static_cast<std::size_t>(position)][at_];
  }
  // Special values as SQL has them: infinities, and no number (a NaN) for what has no value.
  [[nodiscard]] double value(int slot) const {
    return values_[static_cast<std::size_t>(slot)][at_];
  }
  [[nodiscard]] ztb::Text text() const;
  // All keys, whatever columns were asked for.
  const std::array<int, ZTB_MAX_DIMENSION>& keys();

 private:
  enum class Kind { all, slices, numbers };

  [[noreturn]] void failChanged() const;
  // Gives special values of the block as SQL has them.
  void spell(std::vector<double>& column) const;
  void readSpecialValues();
  void fill();
  bool toRecords();
  void readBlock();
  void readNumbers();
  [[nodiscard]] std::size_t mostSlices(std::size_t count) const;
  void keepListed();
  bool toFirst();
  [[nodiscard]] bool isAsked(std::size_t column) const { return (columns_ >> column & 1U) != 0; }
  void askFor(unsigned columns);

  SqlTable* table_;
  ztbRec* database_;
  SqlSelection asked_;      // as it was given
  SqlSelection selection_;  // what is left of it
  unsigned columns_ = 0;
  Kind kind_ = Kind::all;
  ztb::detail::OwnedRecord record_;
  unsigned changes_ = 0;
  std::size_t blockSize_ = 1;
  std::size_t most_ = 1;
  std::size_t left_ = 0;   // records behind the block, in a walk over all
  bool isOne_ = false;     // a single record is wanted, by all its labels
  bool mayGoOn_ = false;   // the handle stands on the last record of the block, not on the next
  std::size_t place_ = 0;  // in the list of labels, or of numbers
  std::vector<bool> isListed_;  // by label number, where all records are looked at for a list
  // The block: an array for each position and slot, the place in it, and its records.
  std::vector<std::vector<int>> keys_;
  std::vector<std::vector<double>> values_;
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  std::size_t passed_ = 0;  // records before the block
  std::array<int, ZTB_MAX_DIMENSION> allKeys_{};
  ztb::SpecialValues special_{};
  double epsilon_ = 0;       // as SQL has it
  double leastSpecial_ = 0;  // the least magnitude of those that SQL has otherwise
};

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_WALK_H_
