// Where the rows of a table stand in a file, so that a window of them is found without reading what
// comes before.
#ifndef ZTB_VIEW_ROW_INDEX_H_
#define ZTB_VIEW_ROW_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "formats/json/json_text.h"

namespace view {

class RecordScan;
struct Question;

// By what rows are sorted.
struct RowSort {
  // A position, or behind these a value, or the text of a set; behind the values of a variable or
  // equation its slack.
  std::size_t column = 0;
  bool descending = false;
};

// In the order of the file, how many rows stand before each block; sorted, the number of each
// record, for which there is a limit.
struct RowIndex {
  std::size_t total = 0;
  std::vector<std::size_t> before;
  std::vector<std::uint32_t> order;

  [[nodiscard]] std::size_t bytes() const {
    return before.size() * sizeof(std::size_t) + order.size() * sizeof(std::uint32_t);
  }
};

// Records that can be sorted, in the memory that this takes.
inline constexpr std::size_t mostSorted = std::size_t{1} << 24U;

// Of a table of all records in the order of the file.
RowIndex wholeIndex(std::size_t records);

// Reads all records that the scan asks for. Throws RequestError beyond mostSorted.
RowIndex makeRowIndex(RecordScan& scan, const std::optional<RowSort>& sort);

// What the parameter "sort" names. Throws RequestError.
std::optional<RowSort> rowSortOf(const Question& question, const RecordScan& scan);

// The index for a scan, made or kept. The scan stands before its first block.
std::shared_ptr<const RowIndex> rowIndexOf(Question& question, RecordScan& scan,
                                           const std::optional<RowSort>& sort);

}  // namespace view

#endif  // ZTB_VIEW_ROW_INDEX_H_
