#include "tools/charts/chart.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "tools/text/number_text.h"

namespace tool {

namespace {

// The least of 1, 2, 5, 10, 20, ... and their like below 1 that is no less than `least`.
double roundStep(double least) {
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double factor : {1.0, 2.0, 5.0}) {
    // The logarithm is rounded, and so is the power.
    if (factor * power >= least * (1 - 1e-12)) return factor * power;
  }
  return 10 * power;
}

}  // namespace

Chart::Range Chart::range(ChartType type) const {
  const bool fromZero = type == ChartType::bar || type == ChartType::area;
  constexpr double infinity = std::numeric_limits<double>::infinity();
  Range range = fromZero ? Range{} : Range{.low = infinity, .high = -infinity};
  std::vector<double> piles(type == ChartType::area ? labels.size() : 0);
  for (const ChartSeries& one : series) {
    for (std::size_t index = 0; index < one.values.size(); ++index) {
      double value = one.values[index];
      if (std::isnan(value)) continue;
      if (!piles.empty()) value = piles[index] += value;
      range.low = std::min(range.low, value);
      range.high = std::max(range.high, value);
    }
  }
  return range.low <= range.high ? range : Range{};
}

ChartAxis::ChartAxis(double low, double high, std::size_t ticks) {
  if (low == high) {
    low = std::min(low, 0.0);
    high = low == high ? low + 1 : std::max(high, 0.0);
  }
  const auto parts = static_cast<double>(std::max<std::size_t>(ticks, 1));
  // Steps that differ in the last digits of the ends alone could not be told apart.
  const double finest = std::max({std::abs(low) * 1e-9, std::abs(high) * 1e-9, 1e-290});
  step_ = roundStep(std::max(high / parts - low / parts, finest));
  constexpr double most = std::numeric_limits<double>::max();
  low_ = std::max(std::floor(low / step_ + 1e-9) * step_, -most);
  high_ = std::min(std::ceil(high / step_ - 1e-9) * step_, most);
  if (high_ <= low_) high_ = low_ + step_;
}

std::vector<double> ChartAxis::ticks() const {
  std::vector<double> ticks;
  const double first = std::round(low_ / step_);
  const double last = std::round(high_ / step_);
  for (double tick = first; tick <= last; ++tick) {
    ticks.push_back(std::clamp(tick * step_, low_, high_));
  }
  return ticks;
}

double ChartAxis::share(double value) const {
  // Halves, since the difference of the ends of all doubles is none.
  return (value / 2 - low_ / 2) / (high_ / 2 - low_ / 2);
}

Histogram::Histogram(double low, double high, std::size_t bins)
    : axis_(low, high, bins), counts_(axis_.ticks().size() - 1) {}

void Histogram::add(double value) {
  const auto count = static_cast<double>(counts_.size());
  // An edge that is a rounded product may stand a little off the value.
  const double bin = std::floor(axis_.share(value) * count + 1e-9);
  ++counts_[static_cast<std::size_t>(std::clamp(bin, 0.0, count - 1))];
}

Chart Histogram::chart(std::string title) const {
  Chart chart{.title = std::move(title), .xName = "", .labels = {}, .places = {}, .series = {{}}};
  const std::vector<double> edges = axis_.ticks();
  for (std::size_t bin = 0; bin < counts_.size(); ++bin) {
    const bool isLast = bin + 1 == counts_.size();
    chart.labels.push_back(fmt::format("{} to {}{}", axisText(edges[bin]), isLast ? "" : "below ",
                                       axisText(edges[bin + 1])));
    chart.places.push_back(static_cast<double>(bin));
    chart.series.front().values.push_back(static_cast<double>(counts_[bin]));
  }
  return chart;
}

std::string axisText(double value) {
  // No tick stands at minus zero.
  return std::string(NumberText(value == 0 ? 0.0 : value, 10).view());
}

}  // namespace tool
