// Columns of a Parquet file that become records as they are.
#ifndef ZTB_FORMATS_PARQUET_PARQUET_COLUMNS_H_
#define ZTB_FORMATS_PARQUET_PARQUET_COLUMNS_H_

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "formats/parquet/parquet_reader.h"
#include "formats/tables/label_dictionary.h"

namespace formats {

// The columns of a file, and whether texts are taken as they were spelled out.
struct ParquetForm {
  const std::vector<ParquetColumn>& columns;
  bool exact = false;
};

class ParquetColumns : public BulkRows {
 public:
  explicit ParquetColumns(bool exact) : exact_(exact) {}

  // Null where something is to be told of a row, such as a missing value, a label that can be none
  // or a whole number that no double holds, and where a column is of another type.
  static std::unique_ptr<ParquetColumns> read(const DuckdbSession& session, const std::string& path,
                                              const ParquetForm& form,
                                              const BulkColumnPlaces& wanted,
                                              tool::Progress& progress);

  void numberLabels(const std::function<int(const std::string& label)>& number) override;
  [[nodiscard]] std::size_t pieceCount() const override { return 1; }
  [[nodiscard]] const Piece& piece(std::size_t /*number*/) const override { return rows_; }

 private:
  bool add(const DuckdbRows& rows, const std::vector<bool>& whole);
  bool addLabels(const DuckdbRows& rows);

  bool exact_;
  LabelDictionary dictionary_;
  // The label that each column had last, which often comes again.
  std::vector<int> latest_;
  Piece rows_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_PARQUET_COLUMNS_H_
