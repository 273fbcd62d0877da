// Writes comma-separated values (RFC 4180, lines end in LF) so that CsvReader reads back the same
// bytes.
#ifndef ZTB_FORMATS_TABLES_CSV_WRITER_H_
#define ZTB_FORMATS_TABLES_CSV_WRITER_H_

#include <cstdio>
#include <memory>
#include <string>
#include <string_view>

#include "formats/tables/byte_sink.h"
#include "formats/tables/table_writer.h"

namespace formats {

struct CsvForm {
  char separator = ',';
  char decimal = '.';
};

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
  // Adds a field to the record, quoted where it has to be.
  void text(std::string_view text) override;
  // The same; an empty one is written as "", which tells an empty label from a missing one.
  void label(std::string_view text) override;
  void number(double value) override;
  void missing() override { separate(); }
  void endRow() override;
  void end() override {}
  // Writes what is still held back. Throws Failure if not all could be written.
  void finish() override;

 private:
  void separate();
  void quoted(std::string_view text);
  void flush();

  [[nodiscard]] bool needsQuotes(std::string_view text) const;

  std::string name_;
  CsvForm form_;
  std::unique_ptr<ByteSink> owned_;
  std::FILE* file_ = nullptr;
  bool spellsOut_ = false;
  bool recordEmpty_ = true;
  std::string pending_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_WRITER_H_
