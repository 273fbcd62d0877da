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
// `firsts` at the first position where there is such a list.
struct SqlSelection {
  std::array<int, ZTB_MAX_DIMENSION> labels{};  // 0 for any
  std::optional<std::vector<int>> firsts;       // ascending
  bool nothing = false;
};

class SqlWalk {
 public:
  explicit SqlWalk(SqlTable& table) : table_(&table) {}

  // Stands on the first of them, or at the end. text() can be asked for only if that is told here.
  void begin(SqlSelection selection, bool withTexts);
  [[nodiscard]] bool atEnd() const { return at_ == filled_; }
  // Throws when records were changed since begin(), as all that follows does.
  void next() {
    requireUnchanged();
    if (++at_ == filled_) {
      fill();
    }
  }

  // Of the record that it stands on.
  [[nodiscard]] int key(int position) const {
    requireUnchanged();
    return keys_[static_cast<std::size_t>(position)][at_];
  }
  // Special values as SQL has them: infinities, and no number (a NaN) for what has no value.
  [[nodiscard]] double value(int slot) const {
    requireUnchanged();
    return ordinary(values_[static_cast<std::size_t>(slot)][at_]);
  }
  [[nodiscard]] ztb::Text text() const;

 private:
  enum class Kind { all, slices, numbers };

  void requireUnchanged() const {
    if (table_->database().changes() != changes_) {
      failChanged();
    }
  }
  [[noreturn]] void failChanged() const;
  [[nodiscard]] double ordinary(double value) const {
    const bool isSpecial =
        value == special_[ZTB_UNDEFINED] || value == special_[ZTB_NOT_AVAILABLE] ||
        value == special_[ZTB_PLUS_INFINITY] || value == special_[ZTB_MINUS_INFINITY];
    return isSpecial ? spelled(value) : value;
  }
  [[nodiscard]] double spelled(double value) const;
  void fill();
  bool toRecords();
  void readBlock();
  void readNumbers();
  void keepFirsts();
  bool toFirst();

  SqlTable* table_;
  SqlSelection selection_;
  Kind kind_ = Kind::all;
  ztb::detail::OwnedRecord record_;
  unsigned changes_ = 0;
  std::size_t blockSize_ = 1;
  std::size_t most_ = 1;
  std::size_t left_ = 0;       // records behind the block, in a walk over all
  bool isOne_ = false;         // a single record is wanted, by all its labels
  bool mayGoOn_ = false;       // the handle stands on the last record of the block, not on the next
  std::size_t place_ = 0;      // in the list of first labels, or of numbers
  std::vector<bool> isFirst_;  // by label number, where all records are looked at for a list
  // The block: an array for each position and slot, the place in it, and its records.
  std::vector<std::vector<int>> keys_;
  std::vector<std::vector<double>> values_;
  std::size_t at_ = 0;
  std::size_t filled_ = 0;
  ztb::SpecialValues special_{};
};

}  // namespace formats

#endif  // ZTB_FORMATS_SQL_WALK_H_
