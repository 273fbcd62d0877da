// Reads comma-separated values (RFC 4180) record by record, in constant memory.
#ifndef ZTB_TOOLS_TABLES_CSV_READER_H_
#define ZTB_TOOLS_TABLES_CSV_READER_H_

#include <cstddef>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/tables/problem_list.h"

namespace tool {

// One field of a record. A zero char stands behind the text, so that text.data() is a C string as
// far as the text itself holds no zero.
struct CsvField {
  std::string_view text;
  bool quoted = false;
  TextPosition at;
};

// Reads a file or standard input. A byte order mark of UTF-8 is skipped; lines end in LF or CRLF,
// the last one also at the end of the file; a line with nothing on it is no record. A quoted field
// keeps all that it holds, line ends too, with doubled quotes halved. A quote inside a field that
// does not begin with one is an ordinary char. Bytes of 128 and above are passed on as they are.
class CsvReader {
 public:
  // Opens path, "-" being standard input. Throws Failure if that cannot be done.
  CsvReader(const std::string& path, char separator);
  CsvReader(const CsvReader&) = delete;
  CsvReader& operator=(const CsvReader&) = delete;
  ~CsvReader();

  // Reads the next record; false at the end of the file. A record with a char behind a closing
  // quote is reported to problems and passed over; one with a quote that nothing closes is
  // reported, and the file ends with it. Throws Failure if the file cannot be read.
  bool next(ProblemList& problems);

  // The record that next() read; valid until the next call.
  [[nodiscard]] const std::vector<CsvField>& fields() const { return fields_; }
  // Where it begins.
  [[nodiscard]] TextPosition position() const { return {.line = recordLine_, .column = 1}; }
  // The name to show in messages.
  [[nodiscard]] const std::string& path() const { return path_; }

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
  void skipByteOrderMark();
  bool atLineEnd();
  void takeLineEnd();
  RecordState readRecord(ProblemList& problems);
  RecordState readQuoted(ProblemList& problems);
  void readPlain();
  void skipRestOfField();

  std::string path_;
  char separator_;
  std::FILE* file_;
  std::unique_ptr<char[]> buffer_;
  std::size_t bufferBegin_ = 0;
  std::size_t bufferEnd_ = 0;
  std::size_t line_ = 1;
  std::size_t column_ = 1;
  std::size_t recordLine_ = 1;
  bool finished_ = false;
  std::string chars_;
  std::vector<FieldBounds> bounds_;
  std::vector<CsvField> fields_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_CSV_READER_H_
