// Places and ranges of a sheet, as they are written: "C7", "B3:F90".
#ifndef ZTB_FORMATS_EXCEL_CELL_RANGE_H_
#define ZTB_FORMATS_EXCEL_CELL_RANGE_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace formats {

inline constexpr std::size_t mostSheetRows = 1048576;
inline constexpr std::size_t mostSheetColumns = 16384;

// Counted from 1.
struct CellPlace {
  std::size_t row = 0;
  std::size_t column = 0;
};

struct CellRange {
  CellPlace first{1, 1};
  CellPlace last{mostSheetRows, mostSheetColumns};

  [[nodiscard]] bool contains(CellPlace place) const {
    return place.row >= first.row && place.row <= last.row && place.column >= first.column &&
           place.column <= last.column;
  }
  [[nodiscard]] std::size_t cells() const {
    return (last.row - first.row + 1) * (last.column - first.column + 1);
  }
};

// "A", "Z", "AA" and so on.
std::string columnLetters(std::size_t column);

// Nothing for a text that is no place within a sheet; dollar signs are passed over.
std::optional<CellPlace> parsePlace(std::string_view text);
// One place is a range of a single cell.
std::optional<CellRange> parseRange(std::string_view text);

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_CELL_RANGE_H_
