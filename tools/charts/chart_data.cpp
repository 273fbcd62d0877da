#include "tools/charts/chart_data.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <vector>
#include <ztb/column_names.hpp>

#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr std::size_t kMostSeries = 26;
constexpr std::size_t kMostPoints = 100'000;

// What is drawn of a value: itself, 0 for eps, and NaN for what is no number.
double drawn(double value) {
  constexpr double undefined = 1e300;
  if (value == std::numeric_limits<double>::denorm_min()) return 0;
  return std::isfinite(value) && value != undefined ? value
                                                    : std::numeric_limits<double>::quiet_NaN();
}

std::string titleOf(const FileSymbol& symbol, ztb::Field field) {
  std::string title = fmt::format("{} {}", typeWord(symbol.type), signature(symbol));
  if (field != ztb::Field::level) {
    title += fmt::format(", {}", ztb::fieldNames.at(static_cast<std::size_t>(field)));
  }
  return symbol.text.empty() ? title : title + ": " + printable(symbol.text);
}

// The labels of a position that occur, in ascending order of their numbers.
class Occurring {
 public:
  explicit Occurring(std::size_t labelCount) : places_(labelCount + 1, kNowhere) {}

  void see(int label) { places_[static_cast<std::size_t>(label)] = 0; }
  // Numbers them, and gives them in their order.
  std::vector<int> finish() {
    std::vector<int> labels;
    for (std::size_t label = 0; label < places_.size(); ++label) {
      if (places_[label] == kNowhere) continue;
      places_[label] = labels.size();
      labels.push_back(static_cast<int>(label));
    }
    return labels;
  }
  [[nodiscard]] std::size_t operator[](int label) const {
    return places_[static_cast<std::size_t>(label)];
  }

 private:
  static constexpr std::size_t kNowhere = std::numeric_limits<std::size_t>::max();
  std::vector<std::size_t> places_;
};

// The numbers that the labels are, or none when one is no number.
std::vector<double> numbersOf(const ExchangeFile& file, const std::vector<int>& labels) {
  std::vector<double> numbers;
  for (const int label : labels) {
    std::string problem;
    const double number = parseNumber(file.label(label), problem);
    if (!problem.empty() || !std::isfinite(number)) return {};
    numbers.push_back(number);
  }
  return numbers;
}

struct Point {
  int x;
  int by;
  double value;
};

[[noreturn]] void refuseMeeting(const ChartSource& source, const Point& point) {
  std::string at(printable(source.file.label(point.x)));
  if (source.by) at += fmt::format(", {}", printable(source.file.label(point.by)));
  throw UsageError(
      fmt::format("{} has several records at ({}); choose one of them with --slice, or sum them up "
                  "with ztb aggregate first",
                  signature(source.symbol), at));
}

// Puts the labels of x in the order of the numbers that they are.
void sortByPlace(Chart& chart) {
  std::vector<std::size_t> order(chart.places.size());
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t index) { return chart.places[index]; });
  const auto inOrder = [&](auto& items) {
    auto sorted = items;
    for (std::size_t index = 0; index < order.size(); ++index) sorted[index] = items[order[index]];
    items = std::move(sorted);
  };
  inOrder(chart.labels);
  inOrder(chart.places);
  for (ChartSeries& series : chart.series) inOrder(series.values);
}

}  // namespace

ReadChart readChart(const ChartSource& source) {
  const auto labelCount = static_cast<std::size_t>(source.file.labelCount());
  Occurring xs(labelCount);
  Occurring bys(labelCount);
  std::vector<Point> points;
  ReadChart read;
  for (RecordWalk record(source.file, source.symbol); record.next();) {
    if (!source.filter.matches(record.keys())) continue;
    if (points.size() == kMostPoints) {
      throw UsageError(fmt::format("{} has more than {} records to draw; choose with --slice",
                                   signature(source.symbol), kMostPoints));
    }
    const double value = drawn(record.values()[static_cast<std::size_t>(source.field)]);
    read.leftOut += std::isnan(value) ? 1 : 0;
    points.push_back({.x = record.keys()[source.x],
                      .by = source.by ? record.keys()[*source.by] : 0,
                      .value = value});
    xs.see(points.back().x);
    bys.see(points.back().by);
  }
  const std::vector<int> xLabels = xs.finish();
  const std::vector<int> byLabels = bys.finish();
  if (byLabels.size() > kMostSeries) {
    throw UsageError(
        fmt::format("--by: {} are too many to tell apart, {} are allowed; choose with "
                    "--slice",
                    counted(byLabels.size(), "label"), kMostSeries));
  }
  Chart& chart = read.chart;
  chart.title = titleOf(source.symbol, source.field);
  chart.xName =
      ztb::keyColumns(source.symbol.name, source.symbol.type, domainNames(source.symbol))[source.x];
  for (const int label : xLabels) chart.labels.push_back(printable(source.file.label(label)));
  for (const int label : byLabels) {
    chart.series.push_back(
        {.name = source.by ? printable(source.file.label(label)) : "",
         .values = std::vector<double>(xLabels.size(), std::numeric_limits<double>::quiet_NaN())});
  }
  std::vector<bool> taken(xLabels.size() * byLabels.size());
  for (const Point& point : points) {
    const std::size_t series = bys[point.by];
    const std::size_t place = series * xLabels.size() + xs[point.x];
    if (taken[place]) refuseMeeting(source, point);
    taken[place] = true;
    chart.series[series].values[xs[point.x]] = point.value;
  }
  chart.places = numbersOf(source.file, xLabels);
  chart.isNumeric = !chart.places.empty();
  if (chart.isNumeric) {
    sortByPlace(chart);
  } else {
    chart.places.resize(xLabels.size());
    std::iota(chart.places.begin(), chart.places.end(), 0.0);
  }
  return read;
}

ReadChart readHistogram(const ChartSource& source, std::size_t bins) {
  ReadChart read;
  double low = std::numeric_limits<double>::infinity();
  double high = -low;
  RecordWalk record(source.file, source.symbol);
  const auto eachValue = [&](const auto& use) {
    while (record.next()) {
      if (!source.filter.matches(record.keys())) continue;
      use(drawn(record.values()[static_cast<std::size_t>(source.field)]));
    }
  };
  eachValue([&](double value) {
    if (std::isnan(value)) {
      ++read.leftOut;
      return;
    }
    low = std::min(low, value);
    high = std::max(high, value);
  });
  const std::string title = titleOf(source.symbol, source.field);
  if (low > high) {
    read.chart.title = title;
    return read;
  }
  Histogram histogram(low, high, bins);
  record.rewind();
  eachValue([&](double value) {
    if (!std::isnan(value)) histogram.add(value);
  });
  read.chart = histogram.chart(title);
  return read;
}

}  // namespace tool
