// Records in the form of comma-separated values (RFC 4180, lines end in LF), as text in memory.
#ifndef ZTB_FORMATS_TABLES_CSV_TEXT_H_
#define ZTB_FORMATS_TABLES_CSV_TEXT_H_

#include <string>
#include <string_view>

namespace formats {

struct CsvForm {
  char separator = ',';
  char decimal = '.';
};

class CsvText {
 public:
  // With spellsOut, fields come with control characters spelled out.
  explicit CsvText(CsvForm form, bool spellsOut = false);

  // Adds a field to the record, quoted where it has to be.
  void text(std::string_view text);
  // The same; an empty one is written as "", which tells an empty label from a missing one.
  void label(std::string_view text);
  void number(double value);
  void missing() { separate(); }
  // Adds a field as it stands.
  void field(std::string_view chars) {
    separate();
    chars_ += chars;
  }
  void endRow() {
    chars_ += '\n';
    rowEmpty_ = true;
  }

  [[nodiscard]] CsvForm form() const { return form_; }
  [[nodiscard]] bool spellsOut() const { return spellsOut_; }
  // What was added since clear(). Rows are cleared whole.
  [[nodiscard]] std::string_view chars() const { return chars_; }
  void clear() { chars_.clear(); }

 private:
  void separate() {
    if (!rowEmpty_) chars_ += form_.separator;
    rowEmpty_ = false;
  }
  void quoted(std::string_view text);
  [[nodiscard]] bool needsQuotes(std::string_view text) const;

  CsvForm form_;
  bool spellsOut_;
  // No number has the separator in it.
  bool plainNumbers_;
  bool rowEmpty_ = true;
  std::string chars_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_CSV_TEXT_H_
