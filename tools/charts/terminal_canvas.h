// A grid of characters that is drawn on with dots: eight in a braille character, otherwise one.
#ifndef ZTB_TOOLS_CHARTS_TERMINAL_CANVAS_H_
#define ZTB_TOOLS_CHARTS_TERMINAL_CANVAS_H_

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace tool {

class TerminalCanvas {
 public:
  TerminalCanvas(std::size_t columns, std::size_t lines, bool braille)
      : columns_(columns),
        dotsAcross_(braille ? 2 : 1),
        dotsDown_(braille ? 4 : 1),
        lines_(lines),
        cells_(columns * lines) {}

  [[nodiscard]] std::size_t width() const { return columns_ * dotsAcross_; }
  [[nodiscard]] std::size_t height() const { return lines_ * dotsDown_; }
  [[nodiscard]] std::size_t columnOf(std::size_t x) const { return x / dotsAcross_; }
  [[nodiscard]] std::size_t lineOf(std::size_t y) const { return y / dotsDown_; }

  struct Place {
    std::size_t x = 0;
    std::size_t y = 0;  // downwards
  };
  void dot(Place place, std::size_t series);
  void line(Place from, Place to, std::size_t series);

  struct Cell {
    std::uint8_t dots = 0;
    std::size_t series = 0;  // that drew last
  };
  [[nodiscard]] const Cell& cell(std::size_t column, std::size_t line) const {
    return cells_[line * columns_ + column];
  }
  // The braille character of some dots.
  static std::string braille(std::uint8_t dots);

 private:
  std::size_t columns_;
  std::size_t dotsAcross_;
  std::size_t dotsDown_;
  std::size_t lines_;
  std::vector<Cell> cells_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_TERMINAL_CANVAS_H_
