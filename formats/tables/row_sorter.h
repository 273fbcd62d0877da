// Sorts more rows than memory holds: in runs, which go to a temporary file and are merged.
//
// A row is a fixed number of words, the first ones its key. Rows come back in ascending order of
// their keys, those with one key in the order in which they were added.
#ifndef ZTB_FORMATS_TABLES_ROW_SORTER_H_
#define ZTB_FORMATS_TABLES_ROW_SORTER_H_

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace formats {

class RowSorter {
 public:
  struct Limits {
    // What rows may take in memory while they are added, about.
    std::size_t bytes = std::size_t{128} << 20U;
    // Only so many rows, the first in the order, are asked for.
    std::size_t rows = std::numeric_limits<std::size_t>::max();
  };

  // `folder` is where the temporary file is made, if one is needed; it has no name there.
  RowSorter(std::size_t keyWords, std::size_t words, std::string folder);
  RowSorter(std::size_t keyWords, std::size_t words, std::string folder, Limits limits);
  RowSorter(const RowSorter&) = delete;
  RowSorter& operator=(const RowSorter&) = delete;
  ~RowSorter();

  // Takes a row in; none is added once next() was called. Throws Failure when the temporary file
  // cannot be written.
  void add(const std::uint64_t* row);

  // Goes to the next row in order; false behind the last. Throws Failure when the temporary file
  // cannot be read.
  bool next();
  // Valid until next() is called again.
  [[nodiscard]] const std::uint64_t* row() const { return row_; }

 private:
  // A part of the temporary file with rows in order, and a piece of it that was read.
  struct Run {
    std::uint64_t offset = 0;
    std::size_t rowsLeft = 0;
    std::vector<std::uint64_t> buffer;
    std::size_t at = 0;
    std::size_t end = 0;
  };

  [[nodiscard]] bool less(const std::uint64_t* left, const std::uint64_t* right) const;
  // Puts the rows in memory in order; with `most`, only so many of them stay.
  void sortRows(std::size_t most);
  void spill();
  void begin();
  // Makes the row behind the present one of a run present; false behind its last.
  bool advance(Run& run);
  [[nodiscard]] bool runLess(std::size_t left, std::size_t right) const;
  void sink(std::size_t at);
  [[noreturn]] void fail(const char* what) const;

  std::size_t keyWords_;
  std::size_t words_;
  std::string folder_;
  Limits limits_;
  std::size_t capacity_;
  std::vector<std::uint64_t> rows_;
  std::size_t count_ = 0;
  bool ordered_ = true;
  // The last row that is asked for, as far as that is known.
  std::vector<std::uint64_t> bound_;
  int file_ = -1;
  std::uint64_t fileSize_ = 0;
  std::vector<Run> runs_;
  // Numbers of runs as a heap, the one with the least present row on top.
  std::vector<std::size_t> heap_;
  bool begun_ = false;
  std::size_t at_ = 0;
  std::size_t given_ = 0;
  const std::uint64_t* row_ = nullptr;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_ROW_SORTER_H_
