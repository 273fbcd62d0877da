#include "tools/charts/terminal_chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <optional>
#include <string_view>
#include <vector>

#include "tools/charts/terminal_canvas.h"
#include "tools/text/display_width.h"

namespace tool {

namespace {

constexpr std::array<const char*, 6> kInks{"36", "33", "35", "32", "34", "31"};
constexpr std::size_t kLongestWord = 24;

std::string paddedTo(std::string_view text, std::size_t width, bool right = false) {
  const std::size_t own = displayWidth(text);
  const std::string blanks(width > own ? width - own : 0, ' ');
  return right ? blanks + std::string(text) : std::string(text) + blanks;
}

void endLine(std::string& lines, std::string line) {
  line.erase(line.find_last_not_of(' ') + 1);
  lines += line + '\n';
}

class Drawing {
 public:
  Drawing(const Chart& chart, ChartType type, const TerminalStyle& style)
      : chart_(chart),
        type_(type),
        style_(style),
        range_(chart.range(type)),
        hasColours_(style.colour && chart.series.size() <= kInks.size()),
        hasLetters_(chart.series.size() > 1 && !hasColours_) {}

  std::string lines() {
    if (type_ == ChartType::bar) {
      drawBars();
    } else {
      drawField();
    }
    return lines_;
  }

 private:
  [[nodiscard]] std::string mark(std::size_t series) const {
    if (hasLetters_) return {static_cast<char>('a' + series)};
    return style_.ascii ? "*" : "\u2588";
  }
  [[nodiscard]] std::string coloured(const std::string& text, std::size_t series) const {
    if (!hasColours_ || chart_.series.size() < 2) return text;
    return std::string("\x1b[") + kInks.at(series) + 'm' + text + "\x1b[0m";
  }
  [[nodiscard]] const char* sign(const char* block, const char* ascii) const {
    return style_.ascii ? ascii : block;
  }

  // A line a bar, with the value behind it.
  void drawBars() {
    std::size_t labelWidth = 0;
    std::size_t nameWidth = 0;
    std::size_t valueWidth = 0;
    for (const std::string& label : chart_.labels) {
      labelWidth = std::max(labelWidth, displayWidth(cutToWidth(label, kLongestWord)));
    }
    for (const ChartSeries& series : chart_.series) {
      nameWidth = std::max(nameWidth, displayWidth(cutToWidth(series.name, kLongestWord)));
      for (const double value : series.values) {
        if (!std::isnan(value)) valueWidth = std::max(valueWidth, axisText(value).size());
      }
    }
    const std::size_t around = labelWidth + (nameWidth > 0 ? nameWidth + 2 : 0) + valueWidth + 4;
    const std::size_t room = style_.width > around + 8 ? style_.width - around : 8;
    // Where zero stands, when some bars go to the left of it.
    const double all = range_.high / 2 - range_.low / 2;
    const auto left = static_cast<std::size_t>(
        all == 0 ? 0 : std::ceil(-range_.low / 2 / all * static_cast<double>(room) - 1e-9));
    for (std::size_t index = 0; index < chart_.labels.size(); ++index) {
      bool isFirst = true;
      for (std::size_t series = 0; series < chart_.series.size(); ++series) {
        const double value = chart_.series[series].values[index];
        if (std::isnan(value)) continue;
        std::string line =
            paddedTo(isFirst ? cutToWidth(chart_.labels[index], kLongestWord) : "", labelWidth);
        if (nameWidth > 0) {
          line += "  " + paddedTo(cutToWidth(chart_.series[series].name, kLongestWord), nameWidth);
        }
        const double width = all == 0 ? 0 : std::abs(value / 2) / all * static_cast<double>(room);
        endLine(lines_, line + "  " + bar(value, width, left, series));
        isFirst = false;
      }
    }
  }

  // A bar and its value behind it; `left` places are kept for those below zero.
  [[nodiscard]] std::string bar(double value, double width, std::size_t left,
                                std::size_t series) const {
    static constexpr std::array<const char*, 8> kParts{"",       "\u258F", "\u258E", "\u258D",
                                                       "\u258C", "\u258B", "\u258A", "\u2589"};
    const auto whole = static_cast<std::size_t>(
        style_.ascii || value < 0 ? std::lround(width) : std::floor(width + 1e-9));
    std::string signs;
    for (std::size_t place = 0; place < whole; ++place) signs += sign("\u2588", "#");
    const std::size_t fill = value < 0 ? whole : 0;
    const std::string blanks(left - std::min(left, fill), ' ');
    if (value < 0) return blanks + coloured(signs, series) + sign("\u2502", "|") + axisText(value);
    if (!style_.ascii) {
      const auto eighths =
          static_cast<std::size_t>((width - static_cast<double>(whole)) * 8 + 1e-9);
      signs += kParts.at(std::min<std::size_t>(eighths, 7));
    }
    return blanks + sign("\u2502", "|") + coloured(signs, series) + ' ' + axisText(value);
  }

  // Lines, points and areas between two axes.
  void drawField() {
    const ChartAxis axis(range_.low, range_.high, std::max<std::size_t>(style_.height / 4, 1));
    std::vector<std::string> ticks;
    std::size_t tickWidth = 0;
    for (const double tick : axis.ticks()) {
      ticks.push_back(axisText(tick));
      tickWidth = std::max(tickWidth, ticks.back().size());
    }
    const std::size_t columns = style_.width > tickWidth + 12 ? style_.width - tickWidth - 2 : 10;
    const bool braille = !style_.ascii && !hasLetters_ && type_ != ChartType::area;
    TerminalCanvas canvas(columns, style_.height, braille);
    if (type_ == ChartType::area) {
      drawArea(canvas, axis);
    } else {
      drawPoints(canvas, axis);
    }
    std::vector<std::string> tickOf(style_.height);
    for (std::size_t tick = 0; tick < ticks.size(); ++tick) {
      tickOf[canvas.lineOf(down(canvas, axis, axis.ticks()[tick]))] = ticks[tick];
    }
    for (std::size_t line = 0; line < style_.height; ++line) {
      std::string text = paddedTo(tickOf[line], tickWidth, true) + ' ' +
                         (tickOf[line].empty() ? sign("\u2502", "|") : sign("\u2524", "+"));
      for (std::size_t column = 0; column < columns; ++column) {
        text += signOf(canvas.cell(column, line), braille);
      }
      endLine(lines_, text);
    }
    std::string foot = std::string(tickWidth + 1, ' ') + sign("\u2514", "+");
    for (std::size_t column = 0; column < columns; ++column) foot += sign("\u2500", "-");
    endLine(lines_, foot);
    drawLabels(canvas, tickWidth + 2, columns);
    drawLegend();
  }

  [[nodiscard]] std::string signOf(const TerminalCanvas::Cell& cell, bool braille) const {
    if (cell.dots == 0) return " ";
    return coloured(braille ? TerminalCanvas::braille(cell.dots) : mark(cell.series), cell.series);
  }

  [[nodiscard]] static std::size_t down(const TerminalCanvas& canvas, const ChartAxis& axis,
                                        double value) {
    const auto most = static_cast<double>(canvas.height() - 1);
    return static_cast<std::size_t>(std::lround((1 - axis.share(value)) * most));
  }
  [[nodiscard]] std::size_t across(const TerminalCanvas& canvas, double place) const {
    const double first = chart_.places.front();
    const double all = chart_.places.back() / 2 - first / 2;
    const double share = all == 0 ? 0.5 : (place / 2 - first / 2) / all;
    return static_cast<std::size_t>(std::lround(share * static_cast<double>(canvas.width() - 1)));
  }

  void drawPoints(TerminalCanvas& canvas, const ChartAxis& axis) const {
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      std::optional<TerminalCanvas::Place> last;
      for (std::size_t index = 0; index < chart_.places.size(); ++index) {
        const double value = chart_.series[series].values[index];
        if (std::isnan(value)) {
          last.reset();
          continue;
        }
        const TerminalCanvas::Place place{.x = across(canvas, chart_.places[index]),
                                          .y = down(canvas, axis, value)};
        canvas.line(last && type_ == ChartType::line ? *last : place, place, series);
        last = place;
      }
    }
  }

  // The height of a pile below and with a series at a column, between the labels beside it.
  [[nodiscard]] double pile(std::size_t series, double place) const {
    const auto right = std::ranges::lower_bound(chart_.places, place);
    const auto after = static_cast<std::size_t>(right - chart_.places.begin());
    const auto at = [&](std::size_t index) {
      double height = 0;
      for (std::size_t below = 0; below <= series; ++below) {
        const double value = chart_.series[below].values[index];
        if (!std::isnan(value)) height += value;
      }
      return height;
    };
    if (after == chart_.places.size()) return at(after - 1);
    if (after == 0) return at(0);
    const double before = chart_.places[after - 1];
    const double share = (place - before) / (*right - before);
    return at(after - 1) * (1 - share) + at(after) * share;
  }

  void drawArea(TerminalCanvas& canvas, const ChartAxis& axis) const {
    if (chart_.places.empty()) return;
    const double first = chart_.places.front();
    const double all = chart_.places.back() - first;
    const auto most = static_cast<double>(std::max<std::size_t>(1, canvas.width() - 1));
    for (std::size_t x = 0; x < canvas.width(); ++x) {
      const double place = first + all * static_cast<double>(x) / most;
      std::size_t filled = 0;
      for (std::size_t series = 0; series < chart_.series.size(); ++series) {
        const double top = axis.share(pile(series, place)) * static_cast<double>(canvas.height());
        for (; filled < static_cast<std::size_t>(std::lround(top)); ++filled) {
          canvas.dot({.x = x, .y = canvas.height() - 1 - filled}, series);
        }
      }
    }
  }

  // As many labels of x below the axis as there is room for.
  void drawLabels(const TerminalCanvas& canvas, std::size_t margin, std::size_t columns) {
    std::string line(margin, ' ');
    std::size_t end = 0;
    for (std::size_t index = 0; index < chart_.labels.size(); ++index) {
      const std::string label = cutToWidth(chart_.labels[index], kLongestWord);
      const std::size_t width = displayWidth(label);
      const std::size_t column = canvas.columnOf(across(canvas, chart_.places[index]));
      if (width > columns) continue;
      const std::size_t begin = std::min(column - std::min(column, width / 2), columns - width);
      if (end > 0 && begin < end + 1) continue;
      line += std::string(begin - end, ' ') + label;
      end = begin + width;
    }
    endLine(lines_, line);
  }

  void drawLegend() {
    if (chart_.series.size() < 2) return;
    std::string line;
    std::size_t width = 0;
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      const std::string name = (hasLetters_ ? mark(series) : std::string(sign("\u2588", "*"))) +
                               ' ' + cutToWidth(chart_.series[series].name, kLongestWord);
      const std::size_t own = displayWidth(name);
      if (width > 0 && width + 2 + own > style_.width) {
        endLine(lines_, line);
        line.clear();
        width = 0;
      }
      line += (width > 0 ? "  " : "") + coloured(name, series);
      width += (width > 0 ? 2 : 0) + own;
    }
    endLine(lines_, line);
  }

  const Chart& chart_;
  ChartType type_;
  const TerminalStyle& style_;
  Chart::Range range_;
  bool hasColours_;
  bool hasLetters_;
  std::string lines_;
};

}  // namespace

std::string drawInTerminal(const Chart& chart, ChartType type, const TerminalStyle& style) {
  return Drawing(chart, type, style).lines();
}

}  // namespace tool
