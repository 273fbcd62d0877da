// Reads a big CSV file with all processors: columns of labels and of numbers, chunk by chunk.
//
// It reads what is in order and nothing else. At anything that is to be told, or is unusual, it
// gives up, and CsvReader reads the file from its beginning: so there is one place that says what
// is wrong, and where.
#ifndef ZTB_FORMATS_TABLES_CSV_BULK_H_
#define ZTB_FORMATS_TABLES_CSV_BULK_H_

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/text/progress.h"

namespace formats {

struct CsvBulkForm {
  char separator = ',';
  char decimal = '.';
  std::size_t columnCount = 0;
  // Columns whose fields are labels, in the order in which a row's labels are numbered, and those
  // whose fields are numbers.
  std::vector<std::size_t> labelColumns;
  std::vector<std::size_t> numberColumns;
  // Bytes of a chunk, about, and how many threads read them.
  std::size_t chunkBytes = std::size_t{4} << 20U;
  unsigned threads = 1;
};

class CsvBulk {
 public:
  CsvBulk();
  CsvBulk(const CsvBulk&) = delete;
  CsvBulk& operator=(const CsvBulk&) = delete;
  ~CsvBulk();

  // Reads a file that is no link to a pipe or the like, and not packed; false where it gives up.
  bool read(const std::string& path, const CsvBulkForm& form, tool::Progress& progress);

  // A bound of how many labels there are.
  [[nodiscard]] std::size_t mostLabels() const;
  // Asks for the number of each label, in the order in which the rows have them; for one that
  // several threads met more than once.
  void numberLabels(const std::function<int(const std::string& label)>& number);

  // A piece of the rows, in their order: by the order of the form's columns, numbers of labels once
  // they were numbered, and numbers.
  struct Piece {
    std::size_t rows = 0;
    std::vector<std::vector<int>> labels;
    std::vector<std::vector<double>> numbers;
  };
  [[nodiscard]] std::size_t pieceCount() const;
  [[nodiscard]] const Piece& piece(std::size_t number) const;

 private:
  class File;
  class Dictionary;
  class Reading;
  struct Chunk;

  unsigned threads_ = 1;
  std::vector<std::unique_ptr<Dictionary>> dictionaries_;
  std::vector<std::unique_ptr<Chunk>> chunks_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_BULK_H_
