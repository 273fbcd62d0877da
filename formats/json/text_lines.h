// The lines of a text file, as long as a program would write them.
#ifndef ZTB_FORMATS_JSON_TEXT_LINES_H_
#define ZTB_FORMATS_JSON_TEXT_LINES_H_

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

#include "formats/tables/byte_source.h"

namespace formats {

// Those that are not empty, without their ends and a byte order mark.
class TextLines {
 public:
  // "-" is standard input. Throws Failure, as next() does, where the file cannot be read.
  explicit TextLines(const std::string& path);

  // Goes to the next line; false at the end.
  bool next();

  [[nodiscard]] std::string_view line() const { return line_; }
  [[nodiscard]] std::size_t number() const { return number_; }

 private:
  bool fillLine();

  std::string name_;
  std::unique_ptr<ByteSource> bytes_;
  std::string buffer_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  std::string line_;
  std::size_t number_ = 0;
};

}  // namespace formats

#endif  // ZTB_FORMATS_JSON_TEXT_LINES_H_
