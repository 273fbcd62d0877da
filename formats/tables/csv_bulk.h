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

#include "formats/tables/bulk_rows.h"
#include "formats/tables/label_dictionary.h"
#include "tools/text/progress.h"

namespace formats {

struct CsvBulkForm {
  char separator = ',';
  char decimal = '.';
  std::size_t columnCount = 0;
  BulkColumnPlaces columns;
  // Bytes of a chunk, about, and how many threads read them.
  std::size_t chunkBytes = std::size_t{4} << 20U;
  unsigned threads = 1;
};

class CsvBulk : public BulkRows {
 public:
  CsvBulk();
  ~CsvBulk() override;

  // Reads a file that is no link to a pipe or the like, and not packed; false where it gives up.
  bool read(const std::string& path, const CsvBulkForm& form, tool::Progress& progress);

  // For one that several threads met more than once.
  void numberLabels(const std::function<int(const std::string& label)>& number) override;
  [[nodiscard]] std::size_t pieceCount() const override;
  [[nodiscard]] const Piece& piece(std::size_t number) const override;

 private:
  class File;
  class Reading;
  struct Chunk;

  unsigned threads_ = 1;
  std::vector<std::unique_ptr<LabelDictionary>> dictionaries_;
  std::vector<std::unique_ptr<Chunk>> chunks_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_BULK_H_
