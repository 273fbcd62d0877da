#include "formats/excel/cell_range.h"

#include <algorithm>

namespace formats {

namespace {

constexpr std::size_t letters = 26;

}  // namespace

std::string columnLetters(std::size_t column) {
  std::string text;
  for (; column > 0; column = (column - 1) / letters) {
    text.insert(text.begin(), static_cast<char>('A' + (column - 1) % letters));
  }
  return text;
}

std::optional<CellPlace> parsePlace(std::string_view text) {
  CellPlace place;
  std::size_t at = 0;
  const auto skipDollar = [&] { at += at < text.size() && text[at] == '$' ? 1 : 0; };
  skipDollar();
  for (; at < text.size() && place.column <= mostSheetColumns; ++at) {
    const char upper =
        text[at] >= 'a' && text[at] <= 'z' ? static_cast<char>(text[at] - 32) : text[at];
    if (upper < 'A' || upper > 'Z') break;
    place.column = place.column * letters + static_cast<std::size_t>(upper - 'A') + 1;
  }
  skipDollar();
  for (; at < text.size() && text[at] >= '0' && text[at] <= '9' && place.row <= mostSheetRows;
       ++at) {
    place.row = place.row * 10 + static_cast<std::size_t>(text[at] - '0');
  }
  if (at != text.size() || place.row == 0 || place.row > mostSheetRows || place.column == 0 ||
      place.column > mostSheetColumns) {
    return std::nullopt;
  }
  return place;
}

std::optional<CellRange> parseRange(std::string_view text) {
  const std::size_t colon = text.find(':');
  const std::optional<CellPlace> first = parsePlace(text.substr(0, colon));
  const std::optional<CellPlace> last =
      colon == std::string_view::npos ? first : parsePlace(text.substr(colon + 1));
  if (!first || !last || last->row < first->row || last->column < first->column) {
    return std::nullopt;
  }
  return CellRange{*first, *last};
}

}  // namespace formats
