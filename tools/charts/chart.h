// What a chart shows, whatever it is drawn on: places along x, and for each series a value at each.
#ifndef ZTB_TOOLS_CHARTS_CHART_H_
#define ZTB_TOOLS_CHARTS_CHART_H_

#include <cstddef>
#include <string>
#include <vector>

namespace tool {

enum class ChartType { line, bar, area, scatter };

struct ChartSeries {
  std::string name;            // fit for a terminal
  std::vector<double> values;  // finite, or NaN where there is none; one for each label of x
};

struct Chart {
  std::string title;  // this and all names and labels are fit for a terminal
  std::string xName;
  std::vector<std::string> labels;
  // Where the labels stand, ascending: their numbers where all are numbers, otherwise 0, 1, 2, ...
  std::vector<double> places;
  bool isNumeric = false;
  std::vector<ChartSeries> series;

  struct Range {
    double low = 0;
    double high = 0;
  };
  // The least and the greatest value; those of the piles for an area. Zero counts for bars and
  // areas, which begin there.
  [[nodiscard]] Range range(ChartType type) const;
};

// An axis with ticks at multiples of 1, 2 or 5 times a power of ten.
class ChartAxis {
 public:
  // From a tick at or below `low` to one at or above `high`, with about so many ticks.
  ChartAxis(double low, double high, std::size_t ticks);

  [[nodiscard]] double low() const { return low_; }
  [[nodiscard]] double high() const { return high_; }
  [[nodiscard]] double step() const { return step_; }
  [[nodiscard]] std::vector<double> ticks() const;
  // Where a value stands, from 0 at low() to 1 at high().
  [[nodiscard]] double share(double value) const;

 private:
  double low_;
  double high_;
  double step_;
};

// The numbers of values that fall between ticks, as bars.
class Histogram {
 public:
  // For finite values from `low` to `high`, in about so many bins. A bin has its lower edge, and
  // the last one its upper edge too.
  Histogram(double low, double high, std::size_t bins);

  void add(double value);
  [[nodiscard]] Chart chart(std::string title) const;

 private:
  ChartAxis axis_;
  std::vector<std::size_t> counts_;
};

// A value as it stands at an axis or bar: 10 digits tell it.
std::string axisText(double value);

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_CHART_H_
