// Where the rows of a table stand in a file, so that a window of them is found without reading what
// comes before.
#ifndef ZTB_VIEW_ROW_INDEX_H_
#define ZTB_VIEW_ROW_INDEX_H_

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace view {

class RecordScan;

// By what rows are sorted; in the order of the file without it.
struct RowSort {
  // A position, or behind these a value, or the text of a set.
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

// Reads all records that the scan asks for. Throws RequestError beyond mostSorted.
RowIndex makeRowIndex(RecordScan& scan, const std::optional<RowSort>& sort);

// Of a table of all records in the order of the file.
RowIndex wholeIndex(std::size_t records);

// The indexes that were used last, as far as they fit.
class RowIndexCache {
 public:
  // What `make` gives, or what it gave before under this name.
  template <class Make>
  std::shared_ptr<const RowIndex> get(const std::string& name, const Make& make) {
    if (std::shared_ptr<const RowIndex> found = find(name)) return found;
    auto made = std::make_shared<const RowIndex>(make());
    keep(name, made);
    return made;
  }

 private:
  static constexpr std::size_t mostBytes = std::size_t{256} << 20U;
  static constexpr std::size_t mostIndexes = 64;

  std::shared_ptr<const RowIndex> find(const std::string& name);
  void keep(const std::string& name, std::shared_ptr<const RowIndex> index);

  std::mutex mutex_;
  // The one that was used last stands first.
  std::list<std::pair<std::string, std::shared_ptr<const RowIndex>>> indexes_;
};

}  // namespace view

#endif  // ZTB_VIEW_ROW_INDEX_H_
