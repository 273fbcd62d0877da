// Writes tables, whatever their file is.
#ifndef ZTB_FORMATS_TABLES_TABLE_WRITER_H_
#define ZTB_FORMATS_TABLES_TABLE_WRITER_H_

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace formats {

class CsvWriter;

enum class ColumnKind { label, text, number, integer };

struct TableColumn {
  std::string name;
  ColumnKind kind = ColumnKind::label;
};

struct TableHead {
  std::string name;
  std::vector<TableColumn> columns;
  // Rows that follow, as far as that is known; columns that no two rows have alike stand first.
  std::size_t rows = 0;
  std::size_t keys = 0;
  // The table is part of a whole database, which is read back bit for bit: formats that cannot hold
  // each byte and value as it is spell it out.
  bool exact = false;
  // Rows may have missing() numbers, which are to be told from values that are not available.
  bool hasGaps = false;
};

// One table after the other, each begun, filled row by row and ended. What was written is complete
// only when finish() has returned; until then nothing stands under the name of the file. Throws
// Failure where something cannot be written.
class TableWriter {
 public:
  TableWriter() = default;
  TableWriter(const TableWriter&) = delete;
  TableWriter& operator=(const TableWriter&) = delete;
  virtual ~TableWriter() = default;

  // The names that the tables of so many rows get; more than one where a table has to be parted.
  // Asked for all tables of records, in their order, before the first is begun.
  virtual std::vector<std::string> namesFor(const std::string& name, std::size_t rows) {
    (void)rows;
    return {name};
  }
  virtual void begin(const TableHead& head) = 0;
  // The fields of a row in their order. Views need to live until endRow().
  virtual void label(std::string_view text) = 0;
  virtual void text(std::string_view text) = 0;
  virtual void number(double value) = 0;
  // Nothing stands at this place.
  virtual void missing() = 0;
  virtual void endRow() = 0;
  // What end() does, where that may take long, as "indexing"; empty where it takes no time.
  [[nodiscard]] virtual std::string_view ending() const { return {}; }
  virtual void end() = 0;
  // The file that grows as finish() works, where that may take long; empty where it takes no time.
  [[nodiscard]] virtual std::string growingFile() const { return {}; }
  virtual void finish() = 0;
  // The writer as one that takes rows that were made elsewhere; null for all but one of CSV.
  virtual CsvWriter* csv() { return nullptr; }
  // What is worth a word about the file.
  [[nodiscard]] virtual std::vector<std::string> notes() const { return {}; }
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_TABLE_WRITER_H_
