// A table that is made row by row and goes into a Parquet file by columns.
#ifndef ZTB_FORMATS_PARQUET_PARQUET_WRITER_H_
#define ZTB_FORMATS_PARQUET_PARQUET_WRITER_H_

#include <string>
#include <unordered_map>
#include <vector>

#include "formats/parquet/duckdb_session.h"
#include "formats/tables/table_writer.h"

namespace formats {

// Of texts each is kept once. For one table.
class ParquetWriter : public TableWriter {
 public:
  ParquetWriter(DuckdbSession& session, std::string path)
      : session_(session), path_(std::move(path)) {}

  void begin(const TableHead& head) override;
  void label(std::string_view text) override { addText(text); }
  void text(std::string_view text) override;
  void number(double value) override;
  void missing() override;
  void endRow() override { at_ = 0; }
  void end() override {}
  void finish() override { finish(""); }
  // The same with further options of "copy".
  void finish(const std::string& options);

  // A column of whole numbers behind all others, whose rows are there already.
  void addColumn(const std::string& name, std::vector<double> values);

 private:
  struct Column {
    std::string name;
    ColumnKind kind;
    std::vector<int> texts;
    std::vector<double> numbers;
  };

  void addText(std::string_view text);
  [[nodiscard]] std::string list() const;

  DuckdbSession& session_;
  std::string path_;
  std::vector<Column> columns_;
  std::size_t at_ = 0;
  bool exact_ = false;
  std::string room_;
  std::vector<std::string> texts_;
  std::unordered_map<std::string, int> places_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_PARQUET_WRITER_H_
