#include "tools/charts/terminal_canvas.h"

#include <algorithm>
#include <cmath>

namespace tool {

void TerminalCanvas::dot(Place place, std::size_t series) {
  // The bits of a braille character: two columns of three, and a last line below.
  static constexpr std::uint8_t kBits[2][4] = {{0x01, 0x02, 0x04, 0x40}, {0x08, 0x10, 0x20, 0x80}};
  Cell& cell = cells_[lineOf(place.y) * columns_ + columnOf(place.x)];
  if (cell.dots != 0 && cell.series != series && dotsAcross_ == 1) return;
  cell.dots |= kBits[place.x % dotsAcross_][place.y % dotsDown_];
  cell.series = series;
}

void TerminalCanvas::line(Place from, Place to, std::size_t series) {
  const auto distance = [](std::size_t left, std::size_t right) {
    return static_cast<double>(right) - static_cast<double>(left);
  };
  const double across = distance(from.x, to.x);
  const double down = distance(from.y, to.y);
  const double steps = std::max(std::abs(across), std::abs(down));
  for (double step = 0; step <= steps; ++step) {
    const double share = steps == 0 ? 0 : step / steps;
    dot({.x = from.x + static_cast<std::size_t>(std::lround(across * share)),
         .y = from.y + static_cast<std::size_t>(std::lround(down * share))},
        series);
  }
}

std::string TerminalCanvas::braille(std::uint8_t dots) {
  // U+2800 and on, in UTF-8.
  return {static_cast<char>(0xE2), static_cast<char>(0xA0 | (dots >> 6)),
          static_cast<char>(0x80 | (dots & 0x3F))};
}

}  // namespace tool
