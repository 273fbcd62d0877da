// The records of a symbol of a file as a chart.
#ifndef ZTB_TOOLS_CHARTS_CHART_DATA_H_
#define ZTB_TOOLS_CHARTS_CHART_DATA_H_

#include <cstddef>
#include <optional>
#include <string>

#include "tools/charts/chart.h"
#include "tools/files/exchange_file.h"
#include "tools/files/slice_filter.h"

namespace tool {

// What of a symbol a chart shows.
struct ChartSource {
  const ExchangeFile& file;
  const FileSymbol& symbol;
  const SliceFilter& filter;
  ztb::Field field;
  std::size_t x = 0;              // position
  std::optional<std::size_t> by;  // position of which each label is a series
};

// A chart, and how many records have a value that is no number and is left out: undef, na, inf and
// other NaNs. eps is 0.
struct ReadChart {
  Chart chart;
  std::size_t leftOut = 0;
};

// Labels stand in the order of the file. Throws UsageError where two records meet at one place of a
// series, where there are more series than marks, or more points than can be drawn.
ReadChart readChart(const ChartSource& source);

// How the values are distributed, in about so many bins; x and by do not count. Records are walked
// over twice, in the memory of a block.
ReadChart readHistogram(const ChartSource& source, std::size_t bins);

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_CHART_DATA_H_
