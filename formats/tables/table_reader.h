// Reads the rows of a table, whatever its file is.
#ifndef ZTB_FORMATS_TABLES_TABLE_READER_H_
#define ZTB_FORMATS_TABLES_TABLE_READER_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/tables/bulk_rows.h"
#include "formats/tables/problem_list.h"
#include "tools/text/progress.h"

namespace formats {

// One field of a row. A zero char stands behind the text, so that text.data() is a C string as far
// as the text itself holds no zero.
struct TableField {
  std::string_view text;
  // The text is there, though it may be empty; an empty field that is not is a missing one.
  bool quoted = false;
  TextPosition at{};
  // The field is this number. The text shows it, or is empty, and then its digits are the text.
  bool isNumber = false;
  double number = 0;
  // The whole number that the number is the nearest double to, where it is none itself.
  std::string_view rounded{};
  // Why nothing can be made of the field.
  const char* fault = nullptr;
};

// A file of fields that are parted by a char.
struct PartedFile {
  std::string path;
  char separator = ',';
};

// The first row is the header. Used from front to back, once.
class TableReader {
 public:
  // The name of the table in messages.
  explicit TableReader(std::string path) : path_(std::move(path)) {}
  TableReader(const TableReader&) = delete;
  TableReader& operator=(const TableReader&) = delete;
  virtual ~TableReader() = default;

  // Reads the next row; false behind the last. What is wrong with a row goes to problems, and the
  // row is passed over. Throws Failure if the table cannot be read on.
  virtual bool next(ProblemList& problems) = 0;

  // The file whose rows these are, as they stand in it; nothing where there is no such one.
  [[nodiscard]] virtual std::optional<PartedFile> partedFile() const { return std::nullopt; }

  // Columns of the rows behind the header, which was read and nothing else; null where they have to
  // be looked at one by one, which next() goes on with then.
  virtual std::unique_ptr<BulkRows> columns(const BulkColumnPlaces& wanted,
                                            tool::Progress& progress) {
    static_cast<void>(wanted);
    static_cast<void>(progress);
    return nullptr;
  }

  // What part of the rows was read, from 0 to 1; 0 where that is not known.
  [[nodiscard]] virtual double share() const { return 0; }

  // The row that next() read; valid until the next call.
  [[nodiscard]] const std::vector<TableField>& fields() const { return fields_; }
  // Where it begins.
  [[nodiscard]] virtual TextPosition position() const = 0;
  [[nodiscard]] const std::string& path() const { return path_; }
  // A place of the table as messages name it: "FILE:LINE:COLUMN", without what is 0, unless places
  // of the format have names of their own.
  [[nodiscard]] virtual std::string place(TextPosition at) const { return placeText(path_, at); }
  // Of a record that stands twice: the first place, seen from the second, as "line 3".
  [[nodiscard]] virtual std::string shortPlace(TextPosition at) const {
    return "line " + std::to_string(at.line);
  }

 protected:
  std::string path_;
  std::vector<TableField> fields_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_TABLE_READER_H_
