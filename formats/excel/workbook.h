// What a workbook says of its sheets: names, texts that they share, formats that make dates.
#ifndef ZTB_FORMATS_EXCEL_WORKBOOK_H_
#define ZTB_FORMATS_EXCEL_WORKBOOK_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "formats/excel/xlsx_file.h"

namespace formats {

struct SheetEntry {
  std::string name;
  std::string part;  // empty where the file has none for it
};

// What a format shows a number as: itself, a date or time of day, a time that goes on beyond a day
// ("[h]:mm:ss"), or a truth value, as LibreOffice writes those of formulas.
enum class NumberKind : std::uint8_t { plain, date, duration, truth };

class Workbook {
 public:
  // Reads everything but the sheets. Throws Failure for a file that is no workbook.
  explicit Workbook(const std::string& path);

  [[nodiscard]] const std::vector<SheetEntry>& sheets() const { return sheets_; }
  [[nodiscard]] XlsxFile& file() { return file_; }
  // A shared text, followed by a zero char. Throws Failure for one that there is not.
  [[nodiscard]] std::string_view sharedText(std::string_view number) const;
  // What numbers in cells of a style are.
  [[nodiscard]] NumberKind kindOf(std::string_view style) const;
  [[nodiscard]] bool from1904() const { return from1904_; }

 private:
  // From a part to another one, whatever that is called.
  struct Relation {
    std::string id;
    std::string type;  // a long name, the end of which tells
    std::string part;
  };

  std::vector<Relation> relationsOf(const std::string& part);
  void readSheets(const std::string& part);
  void readTexts();
  void readStyles();

  XlsxFile file_;
  std::vector<SheetEntry> sheets_;
  std::string textsPart_;
  std::string stylesPart_;
  std::string texts_;
  std::vector<std::size_t> textEnds_;
  std::vector<NumberKind> styles_;
  bool from1904_ = false;
};

// A text with _x000D_ and the like turned into the chars that they stand for.
std::string withoutEscapes(std::string_view text);

// A day number as "2024-03-01", with the time behind it where there is one, to the millisecond;
// empty for a number that no date is.
std::string dateText(double serial, bool from1904);

// A number of days as "48:00:00"; empty for one beyond reason.
std::string durationText(double days);

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_WORKBOOK_H_
