// Reads comma-separated values (RFC 4180) record by record, in constant memory.
#ifndef ZTB_FORMATS_TABLES_CSV_READER_H_
#define ZTB_FORMATS_TABLES_CSV_READER_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "formats/tables/byte_source.h"
#include "formats/tables/table_reader.h"

namespace formats {

// Reads a file or standard input, packed or not. A byte order mark of UTF-8 is skipped; lines end
// in LF or CRLF, the last one also at the end of the file; a line with nothing on it is no record.
// A quoted field keeps all that it holds, line ends too, with doubled quotes halved. A quote inside
// a field that does not begin with one is an ordinary char. Bytes of 128 and above are passed on as
// they are.
class CsvReader : public TableReader {
 public:
  // Opens path, "-" being standard input; names that end in .gz or .zst are unpacked. Throws
  // Failure if that cannot be done.
  CsvReader(const std::string& path, char separator);

  // Reads the next record; false at the end of the file. A record with a char behind a closing
  // quote is reported to problems and passed over; one with a quote that nothing closes is
  // reported, and the file ends with it. Throws Failure if the file cannot be read.
  bool next(ProblemList& problems) override;

  [[nodiscard]] std::optional<PartedFile> partedFile() const override;

  [[nodiscard]] TextPosition position() const override {
    return {.line = recordLine_, .column = 1};
  }

 private:
  struct FieldBounds {
    std::size_t begin;
    std::size_t end;
    bool quoted;
    TextPosition at;
  };
  enum class RecordState { good, damaged, unterminated };

  static constexpr int endOfFile = -1;

  int peek();
  int take();
  bool fill();
  void checkLength() const;
  void skipByteOrderMark();
  bool atLineEnd();
  void takeLineEnd();
  RecordState readRecord(ProblemList& problems);
  RecordState readQuoted(ProblemList& problems);
  void readPlain();
  void skipRestOfField();

  char separator_;
  std::unique_ptr<ByteSource> bytes_;
  std::unique_ptr<char[]> buffer_;
  std::size_t bufferBegin_ = 0;
  std::size_t bufferEnd_ = 0;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
  std::size_t recordLine_ = 1;
  bool finished_ = false;
  std::string chars_;
  std::vector<FieldBounds> bounds_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_READER_H_
