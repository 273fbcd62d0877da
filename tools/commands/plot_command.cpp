#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>
#include <ztb/column_names.hpp>

#include "tools/charts/chart.h"
#include "tools/charts/chart_data.h"
#include "tools/charts/png_picture.h"
#include "tools/charts/svg_chart.h"
#include "tools/charts/terminal_chart.h"
#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/field_option.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/position_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/exchange_file.h"
#include "tools/files/new_file.h"
#include "tools/files/slice_filter.h"
#include "tools/files/standard_streams.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/screen.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct PlotOptions {
  std::string file;
  std::string symbol;
  std::string x;
  std::string by;
  std::string type;
  std::optional<std::string> slice;
  std::optional<std::string> field;
  std::size_t bins = 10;
  std::size_t height = 16;
  bool ascii = false;
  std::string out;
  TableOptions table;
};

constexpr std::size_t kMostLines = 200;
constexpr std::size_t kMostBins = 1000;

// What is to be drawn; none for a histogram.
std::optional<ChartType> typeOf(const PlotOptions& options) {
  if (options.type.empty()) {
    return options.x.empty() ? std::nullopt : std::optional(ChartType::line);
  }
  if (options.type == "histogram") return std::nullopt;
  constexpr std::pair<const char*, ChartType> types[] = {{"line", ChartType::line},
                                                         {"bar", ChartType::bar},
                                                         {"area", ChartType::area},
                                                         {"scatter", ChartType::scatter}};
  for (const auto& [word, type] : types) {
    if (options.type == word) return type;
  }
  throw UsageError(fmt::format(
      "--type: '{}' is no type, expected line, bar, area, scatter or histogram", options.type));
}

bool endsWith(const std::string& text, const std::string& end) {
  return text.size() > end.size() && sameFolded(text.substr(text.size() - end.size()), end);
}

void requireWhatPlotTakes(const PlotOptions& options, const std::optional<ChartType>& type) {
  if (!type && !options.x.empty()) {
    throw UsageError("--type histogram: it is of values alone; leave out --x");
  }
  if (type && options.x.empty()) {
    throw UsageError(fmt::format("--type {}: --x is missing, a position", options.type));
  }
  if (!options.by.empty() && options.x.empty()) {
    throw UsageError("--by: --x is missing, a position");
  }
  if (options.bins < 1 || options.bins > kMostBins) {
    throw UsageError(fmt::format("--bins {}: 1 to {} are allowed", options.bins, kMostBins));
  }
  if (options.height < 2 || options.height > kMostLines) {
    throw UsageError(fmt::format("--height {}: 2 to {} are allowed", options.height, kMostLines));
  }
  if (!options.out.empty() && !endsWith(options.out, ".svg") && !endsWith(options.out, ".png")) {
    throw UsageError(fmt::format("--out {}: a name that ends in .svg or .png is expected",
                                 inQuotes(options.out)));
  }
}

ReadChart readPlot(const PlotOptions& options, const std::optional<ChartType>& type) {
  const ExchangeFile file(options.file);
  const FileSymbol& symbol = file.resolved(file.symbol(options.symbol));
  if (symbol.type == ztb::Type::set) {
    throw UsageError(
        fmt::format("{} is a set; a parameter, variable or equation is drawn", signature(symbol)));
  }
  const std::vector<std::string> keyColumns =
      ztb::keyColumns(symbol.name, symbol.type, domainNames(symbol));
  const SliceFilter filter =
      options.slice ? SliceFilter(*options.slice, file, symbol) : SliceFilter();
  ChartSource source{.file = file,
                     .symbol = symbol,
                     .filter = filter,
                     .field = oneFieldOf(options.field, symbol),
                     .by = {}};
  if (!type) return readHistogram(source, options.bins);
  source.x = positionOf(options.x, "--x", symbol, keyColumns);
  if (!options.by.empty()) {
    source.by = positionOf(options.by, "--by", symbol, keyColumns);
    if (*source.by == source.x) {
      throw UsageError(
          fmt::format("--by: position {} ({}) is named twice", source.x + 1, keyColumns[source.x]));
    }
  }
  return readChart(source);
}

void requirePiles(const Chart& chart) {
  for (const ChartSeries& series : chart.series) {
    if (std::ranges::any_of(series.values, [](double value) { return value < 0; })) {
      throw UsageError("--type area: values below zero make no pile");
    }
  }
}

void writePicture(const std::string& svg, const std::string& out) {
  NewFile file(out);
  if (endsWith(out, ".png")) {
    writePng(svg, file.temporary());
  } else {
    std::fwrite(svg.data(), 1, svg.size(), file.stream());
  }
  file.publish();
}

void runPlot(const PlotOptions& options) {
  const std::optional<ChartType> type = typeOf(options);
  requireWhatPlotTakes(options, type);
  std::optional<Progress> progress(std::in_place);
  progress->step("reading " + inputName(options.file));
  const ReadChart read = readPlot(options, type);
  progress.reset();
  const ChartType drawn = type.value_or(ChartType::bar);
  if (drawn == ChartType::area) requirePiles(read.chart);
  const std::string leftOut = read.leftOut == 0 ? ""
                                                : fmt::format("{} without a number, not drawn",
                                                              counted(read.leftOut, "record"));
  if (!options.out.empty()) {
    writePicture(svgOf(read.chart, drawn), options.out);
    if (!leftOut.empty()) print(options.table.line(leftOut));
    return;
  }
  print(options.table.line(read.chart.title) + '\n');
  if (read.chart.labels.empty()) {
    print("nothing to draw\n");
  } else {
    const std::size_t width = tableWidth(options.table.width);
    const std::string lines = drawInTerminal(read.chart, drawn,
                                             {.width = width == 0 ? TerminalStyle{}.width : width,
                                              .height = options.height,
                                              .ascii = options.ascii || !localeTakesUtf8(),
                                              .colour = takesColour(1)});
    std::fwrite(lines.data(), 1, lines.size(), stdout);
  }
  if (!leftOut.empty()) print('\n' + options.table.line(leftOut));
}

}  // namespace

void addPlotCommand(CommandLine& line) {
  Command command = line.add("plot", "Draw a symbol as a chart");
  auto options = std::make_shared<PlotOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.text("SYMBOL", options->symbol, "A parameter, variable or equation").required();
  command
      .text("--x", options->x,
            "Position that goes across; without it the distribution of the values is drawn")
      .typeName("POSITION")
      .notEmpty();
  command.text("--by", options->by, "Position of which each label is a series")
      .typeName("POSITION")
      .notEmpty();
  command.text("--type", options->type, "What is drawn; line with --x, otherwise histogram")
      .typeName("line|bar|area|scatter|histogram")
      .notEmpty();
  command.text("--slice", options->slice, "A pattern for each position, as for show")
      .typeName("PATTERNS");
  command.text("--field", options->field, "Field of a variable or equation; level")
      .typeName("FIELD");
  command.number("--bins", options->bins, "About so many bins of a histogram; 10");
  command.number("--height", options->height, "Lines of a chart but for bars; 16");
  command.flag("--ascii", options->ascii,
               "Draw with ASCII characters, as where the locale is not UTF-8");
  command.text("--out", options->out, "Picture to make, by its ending .svg or .png")
      .typeName("FILE")
      .notEmpty();
  addWidthOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "A position is its number, from 1, or the name of its column in ztb show. A position that "
      "is\n"
      "neither --x nor --by has to be cut down to one label with --slice. Labels that are all "
      "numbers\n"
      "stand where their numbers do, others side by side in the order of the file.\n\n"
      "Examples:\n"
      "  ztb plot diet.rxf price --x food --type bar\n"
      "  ztb plot diet.rxf nutrition --by nutrient --x food --slice '*beans*,*' --out beans.svg");
  command.action([options] {
    runPlot(*options);
    return exitFine;
  });
}

}  // namespace tool
