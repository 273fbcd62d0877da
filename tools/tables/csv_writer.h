// Writes comma-separated values (RFC 4180, lines end in LF) so that CsvReader reads back the same
// bytes.
#ifndef ZTB_TOOLS_TABLES_CSV_WRITER_H_
#define ZTB_TOOLS_TABLES_CSV_WRITER_H_

#include <cstdio>
#include <optional>
#include <string>
#include <string_view>

#include "tools/files/new_file.h"

namespace tool {

// Writes to a file of its own or to a stream of the caller. What was written is complete only when
// close() has returned.
class CsvWriter {
 public:
  // Makes a new file that gets the name path, and replaces a file of that name, by close(). Throws
  // Failure if that cannot be done, and where the name is that of a link, pipe or device.
  explicit CsvWriter(const std::string& path);
  // Writes to a stream that stays the caller's; name is shown in messages. To a terminal, fields
  // come with control characters spelled out.
  CsvWriter(std::FILE* stream, std::string name);
  CsvWriter(const CsvWriter&) = delete;
  CsvWriter& operator=(const CsvWriter&) = delete;

  // Adds a field to the record, quoted where it has to be.
  void field(std::string_view text);
  // The same; an empty one is written as "", which tells an empty label from a missing one.
  void label(std::string_view text);
  void endRecord();

  // Writes what is still held back. Throws Failure if not all could be written.
  void close();

 private:
  void separate();
  void quoted(std::string_view text);
  void flush();

  std::string name_;
  std::optional<NewFile> owned_;
  std::FILE* file_;
  bool spellsOut_ = false;
  bool recordEmpty_ = true;
  std::string pending_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_CSV_WRITER_H_
