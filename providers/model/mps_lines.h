// The lines of an MPS file, taken apart into fields.
//
// Comments (a '*' in the first column) and empty lines are passed over. A line that begins in the
// first column is a header, which opens a section; others are data. Free format has blanks between
// fields; fixed format has a field at 2-3, 5-12, 15-22, 25-36, 40-47 and 50-61, with blanks
// elsewhere, and leaves blanks within names out.
#ifndef ZTB_PROVIDERS_MODEL_MPS_LINES_H_
#define ZTB_PROVIDERS_MODEL_MPS_LINES_H_

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

#include "providers/model/model_error.h"
#include "providers/model/text_source.h"

namespace lomu {

enum class MpsFormat { free, fixed };

// A refusal that knows how far the reading had come.
class MpsError : public ModelError {
 public:
  MpsError(const std::string& text, std::size_t line)
      : ModelError(text, ZTB_ERROR_DAMAGED_FILE), line_(line) {}
  [[nodiscard]] std::size_t line() const noexcept { return line_; }

 private:
  std::size_t line_;
};

class MpsLines {
 public:
  // Throws ModelError when the file cannot be opened; the functions below when it cannot be read,
  // and MpsError "file:line:column: text".
  MpsLines(const std::string& file, MpsFormat format);

  // Goes to the next header or line of data; false at the end of the file.
  bool next();
  // Goes to the next line that is neither empty nor a comment, whatever is in it.
  bool skipToText();
  [[nodiscard]] bool isHeader() const { return isHeader_; }
  // Whether the first field of data says what the line is, as in ROWS and BOUNDS: fixed format has
  // a place for it.
  void expectTypes(bool expected) { typesExpected_ = expected; }

  // The fields of the line, valid until next(). There is at least one in a line of a free file; a
  // fixed one has an empty first field where only the name of a vector is missing.
  [[nodiscard]] std::size_t count() const { return count_; }
  [[nodiscard]] std::string_view operator[](std::size_t field) const { return fields_.at(field); }
  // Drops the fields from this one on: they are a comment.
  void dropFrom(std::size_t field) { count_ = field; }
  // The field as a number; 1e30 and beyond stands for infinity. REQUIRES: field < count().
  [[nodiscard]] double number(std::size_t field) const;

  [[nodiscard]] const std::string& file() const { return source_.file(); }
  [[nodiscard]] std::size_t fileSize() const { return source_.fileSize(); }
  [[nodiscard]] std::size_t line() const { return lineNumber_; }
  // Where a field begins; behind the line for a field that is not there.
  [[nodiscard]] std::size_t columnOf(std::size_t field) const;
  [[noreturn]] void fail(std::size_t field, const std::string& text) const;
  // "found <field>, expected <what>".
  [[noreturn]] void failExpecting(std::size_t field, const std::string& what) const;

 private:
  static constexpr std::size_t kMaxFields = 8;

  bool readLine();
  void makeRoom();
  [[noreturn]] void failLength() const;
  void splitFree();
  void splitFixed();
  [[nodiscard]] bool hasComment() const;
  [[nodiscard]] std::string_view fixedField(std::size_t begin, std::size_t end);
  // Leaves the blanks within a name out. Names that differ by these alone are refused.
  void squeeze(std::size_t field);

  TextSource source_;
  MpsFormat format_;
  std::size_t size_;
  std::unique_ptr<char[]> buffer_;  // never filled beforehand: short files touch little of it
  std::size_t begin_ = 0;           // of what is in the buffer and not yet taken
  std::size_t end_ = 0;
  bool over_ = false;  // no more to read into the buffer

  char* lineBegin_ = nullptr;
  std::size_t lineLength_ = 0;
  std::size_t lineNumber_ = 0;
  bool isHeader_ = false;
  bool typesExpected_ = false;
  std::array<std::string_view, kMaxFields> fields_;
  std::size_t count_ = 0;
  std::unordered_map<std::string, std::string> spelled_;  // names of fixed format, by the squeezed
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_LINES_H_
