// Writes comma-separated values (RFC 4180, lines end in LF) so that CsvReader reads back the same
// bytes.
#ifndef ZTB_FORMATS_TABLES_CSV_WRITER_H_
#define ZTB_FORMATS_TABLES_CSV_WRITER_H_

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "formats/tables/byte_sink.h"
#include "formats/tables/csv_text.h"
#include "formats/tables/table_writer.h"

namespace formats {

// Writes one table to a file of its own or to a stream of the caller. What was written is complete
// only when finish() has returned.
class CsvWriter : public TableWriter {
 public:
  // Makes a new file that gets the name path, and replaces a file of that name, by finish(); a name
  // that ends in .gz or .zst is packed. Throws Failure if that cannot be done, and where the name
  // is that of a link, pipe or device.
  explicit CsvWriter(const std::string& path, CsvForm form = {});
  // Writes to a stream that stays the caller's; name is shown in messages. To a terminal, fields
  // come with control characters spelled out.
  CsvWriter(std::FILE* stream, std::string name, CsvForm form = {});

  // Writes the header.
  void begin(const TableHead& head) override;
  void text(std::string_view text) override { rows_.text(text); }
  void label(std::string_view text) override { rows_.label(text); }
  void number(double value) override { rows_.number(value); }
  void missing() override { rows_.missing(); }
  void endRow() override;
  void end() override {}
  // Writes what is still held back. Throws Failure if not all could be written.
  void finish() override;

  // How rows are written, for rows that are made elsewhere and added whole.
  [[nodiscard]] const CsvText& rows() const { return rows_; }
  void addRows(std::string_view rows);
  CsvWriter* csv() override { return this; }

 private:
  void flush();
  void write(std::string_view chars);

  std::string name_;
  std::unique_ptr<ByteSink> owned_;
  std::FILE* file_ = nullptr;
  CsvText rows_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_WRITER_H_
