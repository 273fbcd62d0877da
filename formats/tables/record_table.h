// Records of one symbol in flat arrays, to be sorted, compared or put into a database.
#ifndef ZTB_FORMATS_TABLES_RECORD_TABLE_H_
#define ZTB_FORMATS_TABLES_RECORD_TABLE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "formats/tables/problem_list.h"

namespace formats {

// Every record has keyCount label numbers, valueCount values and a text. Records are known by the
// position at which they were added; order() sorts positions, not records.
class RecordTable {
 public:
  RecordTable(std::size_t keyCount, std::size_t valueCount);

  // Where a record stands in its file: a line, and a column for each key.
  struct Place {
    std::size_t line = 0;
    std::span<const std::size_t> columns;
  };

  // Adds a record. Places are kept only if every record has one.
  void add(std::span<const int> keys, std::span<const double> values, std::string_view text);
  void add(std::span<const int> keys, std::span<const double> values, std::string_view text,
           const Place& place);

  [[nodiscard]] std::size_t size() const { return textEnds_.size(); }
  [[nodiscard]] std::size_t keyCount() const { return keyCount_; }
  [[nodiscard]] std::span<const int> keys(std::size_t record) const {
    return {keys_.data() + record * keyCount_, keyCount_};
  }
  [[nodiscard]] std::span<const double> values(std::size_t record) const {
    return {values_.data() + record * valueCount_, valueCount_};
  }
  // The text is followed by a zero char.
  [[nodiscard]] std::string_view text(std::size_t record) const;
  // Place of the key at a position, or of a record without keys. Lines and columns beyond 2^32 - 1
  // are shown as such.
  [[nodiscard]] TextPosition place(std::size_t record, std::size_t position) const;

  // All records in ascending order of their keys, the first position most significant; records with
  // equal keys in the order in which they were added.
  [[nodiscard]] std::vector<std::size_t> order() const;

 private:
  [[nodiscard]] bool less(std::size_t left, std::size_t right) const;

  std::size_t keyCount_;
  std::size_t valueCount_;
  std::vector<int> keys_;
  std::vector<double> values_;
  std::string texts_;
  std::vector<std::size_t> textEnds_;
  // A line and keyCount_ columns a record.
  std::vector<std::uint32_t> places_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_RECORD_TABLE_H_
