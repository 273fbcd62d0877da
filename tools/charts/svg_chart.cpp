#include "tools/charts/svg_chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string_view>
#include <vector>

#include "tools/text/display_width.h"

namespace tool {

namespace {

// Told apart by those who see no red or no green too.
constexpr std::array<const char*, 10> kColours{"#0072b2", "#d55e00", "#009e73", "#cc79a7",
                                               "#e69f00", "#56b4e9", "#7a5195", "#4d4d4d",
                                               "#8c564b", "#b2182b"};
constexpr double kWidth = 800;
constexpr double kTop = 48;
constexpr double kFieldHeight = 330;
constexpr double kRight = kWidth - 24;
constexpr double kCharacter = 7;  // about the width of one
constexpr std::size_t kLongestLabel = 24;

std::string escaped(std::string_view text) {
  std::string escaped;
  for (const char sign : text) {
    switch (sign) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += sign;
    }
  }
  return escaped;
}

class Picture {
 public:
  Picture(const Chart& chart, ChartType type)
      : chart_(chart),
        type_(type),
        axis_(chart.range(type).low, chart.range(type).high, 6),
        left_(leftOf(axis_)) {}

  std::string document() {
    drawAxis();
    switch (type_) {
      case ChartType::bar:
        drawBars();
        break;
      case ChartType::area:
        drawAreas();
        break;
      default:
        drawLines();
    }
    drawLabels();
    const double bottom = drawLegend();
    return fmt::format(
               "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 {0} {1:g}\" width=\"{0}\" "
               "height=\"{1:g}\" role=\"img\" aria-label=\"{2}\" font-family=\"'DejaVu Sans',"
               "Verdana,sans-serif\" font-size=\"12\" fill=\"#222222\">\n"
               "<title>{2}</title>\n"
               "<rect width=\"{0}\" height=\"{1:g}\" fill=\"#ffffff\"/>\n"
               "<text x=\"24\" y=\"26\" font-size=\"15\">{3}</text>\n",
               kWidth, bottom + 20, escaped(chart_.title), escaped(cutToWidth(chart_.title, 84))) +
           body_ + "</svg>\n";
  }

 private:
  static double leftOf(const ChartAxis& axis) {
    std::size_t longest = 0;
    for (const double tick : axis.ticks()) longest = std::max(longest, axisText(tick).size());
    return 32 + kCharacter * static_cast<double>(longest);
  }
  [[nodiscard]] double down(double value) const {
    return kTop + (1 - axis_.share(value)) * kFieldHeight;
  }
  // Bars have room beside the first and the last place.
  [[nodiscard]] double across(std::size_t index) const {
    const auto count = static_cast<double>(chart_.places.size());
    if (type_ == ChartType::bar) {
      return left_ + (static_cast<double>(index) + 0.5) * (kRight - left_) / count;
    }
    const double first = chart_.places.front();
    const double all = chart_.places.back() / 2 - first / 2;
    const double share = all == 0 ? 0.5 : (chart_.places[index] / 2 - first / 2) / all;
    return left_ + 8 + share * (kRight - left_ - 16);
  }
  static const char* colour(std::size_t series) { return kColours.at(series % kColours.size()); }
  void text(double x, double y, const char* anchor, std::string_view words) {
    body_ += fmt::format("<text x=\"{:.1f}\" y=\"{:.1f}\" text-anchor=\"{}\">{}</text>\n", x, y,
                         anchor, escaped(words));
  }

  void drawAxis() {
    for (const double tick : axis_.ticks()) {
      body_ += fmt::format("<path d=\"M{:.1f} {:.1f}H{:.1f}\" stroke=\"{}\" fill=\"none\"/>\n",
                           left_, down(tick), kRight, tick == 0 ? "#777777" : "#dddddd");
      text(left_ - 8, down(tick) + 4, "end", axisText(tick));
    }
  }

  void drawBars() {
    const double room =
        (kRight - left_) / static_cast<double>(std::max<std::size_t>(1, chart_.labels.size()));
    const auto count = static_cast<double>(chart_.series.size());
    const double width = room * 0.8 / std::max(1.0, count);
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      for (std::size_t index = 0; index < chart_.labels.size(); ++index) {
        const double value = chart_.series[series].values[index];
        if (std::isnan(value)) continue;
        const double x = across(index) - room * 0.4 + width * static_cast<double>(series);
        const double top = down(std::max(value, 0.0));
        body_ += fmt::format(
            "<rect x=\"{:.2f}\" y=\"{:.2f}\" width=\"{:.2f}\" height=\"{:.2f}\" fill=\"{}\">"
            "<title>{}</title></rect>\n",
            x, top, width, down(std::min(value, 0.0)) - top, colour(series),
            escaped(pointName(series, index)));
      }
    }
  }

  [[nodiscard]] std::string pointName(std::size_t series, std::size_t index) const {
    const std::string& name = chart_.series[series].name;
    return fmt::format("{}{}{}: {}", chart_.labels[index], name.empty() ? "" : ", ", name,
                       axisText(chart_.series[series].values[index]));
  }

  void drawLines() {
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      std::string path;
      std::string points;
      const std::vector<double>& values = chart_.series[series].values;
      for (std::size_t index = 0; index < values.size(); ++index) {
        if (std::isnan(values[index])) continue;
        const bool begins = index == 0 || std::isnan(values[index - 1]);
        path +=
            fmt::format("{}{:.1f} {:.1f}", begins ? "M" : "L", across(index), down(values[index]));
        const bool alone = begins && (index + 1 == values.size() || std::isnan(values[index + 1]));
        if (type_ == ChartType::scatter || alone) {
          points += fmt::format(
              "<circle cx=\"{:.1f}\" cy=\"{:.1f}\" r=\"3\" "
              "fill=\"{}\"><title>{}</title></circle>\n",
              across(index), down(values[index]), colour(series),
              escaped(pointName(series, index)));
        }
      }
      if (type_ == ChartType::line && !path.empty()) {
        body_ += fmt::format(
            "<path d=\"{}\" stroke=\"{}\" stroke-width=\"2\" stroke-linejoin=\"round\" "
            "fill=\"none\"/>\n",
            path, colour(series));
      }
      body_ += points;
    }
  }

  void drawAreas() {
    std::vector<double> below(chart_.labels.size());
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      std::string path;
      std::string back;
      for (std::size_t index = 0; index < below.size(); ++index) {
        const double value = chart_.series[series].values[index];
        const double top = below[index] + (std::isnan(value) ? 0 : value);
        path += fmt::format("{}{:.1f} {:.1f}", index == 0 ? "M" : "L", across(index), down(top));
        back = fmt::format("L{:.1f} {:.1f}", across(index), down(below[index])) + back;
        below[index] = top;
      }
      if (path.empty()) continue;
      body_ += fmt::format("<path d=\"{}{}Z\" fill=\"{}\" fill-opacity=\"0.85\"/>\n", path, back,
                           colour(series));
    }
  }

  // As many labels as there is room for.
  void drawLabels() {
    double end = 0;
    for (std::size_t index = 0; index < chart_.labels.size(); ++index) {
      const std::string label = cutToWidth(chart_.labels[index], kLongestLabel);
      const double half = kCharacter / 2 * static_cast<double>(displayWidth(label));
      const double x = std::clamp(across(index), std::min(half + 4, kWidth / 2), kWidth - 4 - half);
      if (x - half < end) continue;
      text(x, kTop + kFieldHeight + 18, "middle", label);
      end = x + half + 10;
    }
    text((left_ + kRight) / 2, kTop + kFieldHeight + 40, "middle", chart_.xName);
  }

  // Gives the place of its last line.
  double drawLegend() {
    double y = kTop + kFieldHeight + 44;
    if (chart_.series.size() < 2) return y;
    y += 18;
    double x = left_;
    for (std::size_t series = 0; series < chart_.series.size(); ++series) {
      const std::string name = cutToWidth(chart_.series[series].name, kLongestLabel);
      const double width = 32 + kCharacter * static_cast<double>(displayWidth(name));
      if (x > left_ && x + width > kRight) {
        x = left_;
        y += 20;
      }
      body_ +=
          fmt::format("<rect x=\"{:.1f}\" y=\"{:.1f}\" width=\"12\" height=\"12\" fill=\"{}\"/>\n",
                      x, y - 10, colour(series));
      text(x + 18, y, "start", name);
      x += width;
    }
    return y;
  }

  const Chart& chart_;
  ChartType type_;
  ChartAxis axis_;
  double left_;
  std::string body_;
};

}  // namespace

std::string svgOf(const Chart& chart, ChartType type) {
  return Picture(chart, type).document();
}

}  // namespace tool
