// The rows of a Parquet file.
#ifndef ZTB_FORMATS_PARQUET_PARQUET_READER_H_
#define ZTB_FORMATS_PARQUET_PARQUET_READER_H_

#include <memory>
#include <string>
#include <vector>

#include "formats/parquet/duckdb_session.h"
#include "formats/tables/table_reader.h"

namespace formats {

// A column of a file, and how it is read.
struct ParquetColumn {
  // Whole numbers and long decimals are read as texts: as labels they have to keep each digit.
  enum class Kind { text, whole, decimal, number, unfit };
  std::string name;
  Kind kind = Kind::text;
  std::string expression;
};

// The columns of a file; throws Failure for one that is no Parquet file, or there is not.
std::vector<ParquetColumn> parquetColumns(const DuckdbSession& session, const std::string& path);
// A query of columns, in their order.
std::string parquetQuery(const std::vector<ParquetColumn>& columns, const std::string& path);

class ParquetReader : public TableReader {
 public:
  // All columns of the file, or the first `most`. With `exact`, texts are taken as they were
  // spelled out, and values from columns of exact ones, which are no fields.
  ParquetReader(std::shared_ptr<const DuckdbSession> session, const std::string& path, bool exact,
                std::size_t most);

  bool next(ProblemList& problems) override;
  std::unique_ptr<BulkRows> columns(const BulkColumnPlaces& wanted,
                                    tool::Progress& progress) override;
  [[nodiscard]] TextPosition position() const override { return {.line = row_, .column = 1}; }
  [[nodiscard]] std::string place(TextPosition at) const override;
  [[nodiscard]] std::string shortPlace(TextPosition at) const override;
  // Rows that were read.
  [[nodiscard]] std::size_t rowCount() const { return row_; }

 private:
  void splitExact();
  [[nodiscard]] TableField fieldAt(std::size_t column);
  std::string_view kept(std::size_t column, std::string_view text);

  std::shared_ptr<const DuckdbSession> session_;
  bool exact_;
  std::vector<ParquetColumn> columns_;
  // By column, that of its exact values, or 0.
  std::vector<std::size_t> exactOf_;
  std::size_t fieldCount_ = 0;
  // Begun with the first row.
  std::unique_ptr<DuckdbQuery> query_;
  DuckdbRows rows_;
  std::size_t at_ = 0;
  std::size_t row_ = 0;
  bool headed_ = false;
  // Texts of the row at hand, with a zero char behind each.
  std::vector<std::string> texts_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_PARQUET_READER_H_
