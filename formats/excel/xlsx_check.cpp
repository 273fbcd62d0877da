#include <fmt/format.h>

#include <string>

#include "formats/excel/workbook.h"
#include "formats/excel/xlsx_tables.h"
#include "tools/text/failure.h"

namespace formats {

void requireWholeWorkbook(const std::string& path, const std::string& shown,
                          std::span<const std::size_t> rows) {
  try {
    Workbook workbook(path);
    bool whole = workbook.sheets().size() == rows.size();
    for (std::size_t sheet = 0; whole && sheet < rows.size(); ++sheet) {
      std::string last;
      workbook.file().read(workbook.sheets()[sheet].part,
                           {.begin =
                                [&](std::string_view name, const XmlAttributes& attributes) {
                                  if (name == "row") last = attributes["r"];
                                },
                            .end = {},
                            .text = {}});
      whole = last == std::to_string(rows[sheet]);
    }
    if (whole) return;
  } catch (const tool::Failure&) {
    // What is damaged has the name that the file has for now.
  }
  throw tool::Failure(fmt::format(
      "{}: cannot be written whole: parts of the workbook were cut short, as on a full disk",
      shown));
}

}  // namespace formats
