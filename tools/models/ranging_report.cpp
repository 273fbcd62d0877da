#include "tools/models/ranging_report.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <optional>
#include <string_view>
#include <ztb/column_names.hpp>

#include "formats/tables/csv_writer.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

using Ranging = ztb::Model::Ranging;

void addSymbols(ModelSession& session, const std::vector<Ranging::Range>& ranges,
                std::string_view what) {
  ztb::Database& database = session.database();
  for (const Ranging::Range& range : ranges) {
    const std::vector<ztb::DomainArgument> anyLabel(range.labels.size(), "*");
    std::vector<const char*> keys;
    for (const std::string& label : range.labels) keys.push_back(label.c_str());
    for (const bool isUpper : {false, true}) {
      const std::string name =
          fmt::format("{}_{}_{}", range.symbol, what, isUpper ? "upper" : "lower");
      const std::optional<ztb::Symbol> known = database.findSymbol(name);
      ztb::Symbol symbol =
          known ? *known : database.addSymbol(name, ztb::Type::parameter, anyLabel);
      if (symbol.type() != ztb::Type::parameter) {
        throw Failure(withFile(
            session.file(), fmt::format("--ranging: the model has a symbol {} of its own", name)));
      }
      symbol.merge(ztb::Keys(keys)).setLevel(isUpper ? range.upper : range.lower);
    }
  }
}

bool isShown(const std::vector<std::string>& shown, const Ranging::Range& range) {
  const auto isIt = [&](const std::string& name) { return sameFolded(name, range.symbol); };
  return shown.empty() || std::ranges::any_of(shown, isIt);
}

std::string elementText(const Ranging::Range& range) {
  std::string text = range.symbol;
  for (std::size_t k = 0; k < range.labels.size(); ++k) {
    text += (k == 0 ? "(" : ", ") + range.labels[k];
  }
  return range.labels.empty() ? text : text + ")";
}

void printRanges(const std::vector<Ranging::Range>& ranges, std::string_view what,
                 const std::vector<std::string>& shown, TableStyle style, int digits) {
  std::vector<std::vector<std::string>> rows;
  for (const Ranging::Range& range : ranges) {
    if (!isShown(shown, range)) continue;
    rows.push_back({printable(elementText(range)),
                    std::string(NumberText(range.lower, digits).view()),
                    std::string(NumberText(range.upper, digits).view())});
  }
  if (rows.empty()) return;
  TablePrinter table(style);
  table.addColumn(what, TablePrinter::Align::left);
  table.addColumn("from", TablePrinter::Align::right);
  table.addColumn("to", TablePrinter::Align::right);
  const auto viewsOf = [](const std::vector<std::string>& cells) {
    return std::vector<std::string_view>(cells.begin(), cells.end());
  };
  for (const auto& row : rows) table.measure(viewsOf(row));
  print("\n");
  table.printHeader(stdout);
  for (const auto& row : rows) table.printRow(stdout, viewsOf(row));
}

}  // namespace

Ranging rangingOf(ModelSession& session) {
  try {
    return session.model().ranging();
  } catch (const ztb::Error& error) {
    throw Failure(withFile(session.file(), fmt::format("--ranging: {}", error.what())));
  }
}

void addRangeSymbols(ModelSession& session, const Ranging& ranging) {
  try {
    addSymbols(session, ranging.costs, "cost");
    addSymbols(session, ranging.sides, "rhs");
  } catch (const ztb::Error& error) {
    throw Failure(withFile(session.file(), fmt::format("--ranging: {}", error.what())));
  }
}

void printRanging(const Ranging& ranging, const std::vector<std::string>& shown, TableStyle style,
                  int digits) {
  printRanges(ranging.costs, "cost of", shown, style, digits);
  printRanges(ranging.sides, "rhs of", shown, style, digits);
}

void printRangingCsv(const Ranging& ranging, const std::vector<std::string>& shown) {
  struct Line {
    std::string_view what;
    const Ranging::Range* range;
  };
  std::vector<Line> lines;
  for (const Ranging::Range& range : ranging.costs) {
    if (isShown(shown, range)) lines.push_back({"cost", &range});
  }
  for (const Ranging::Range& range : ranging.sides) {
    if (isShown(shown, range)) lines.push_back({"rhs", &range});
  }
  std::size_t dimension = 0;
  for (const Line& line : lines) dimension = std::max(dimension, line.range->labels.size());

  formats::CsvWriter csv(stdout, "standard output");
  csv.text("range");
  csv.text("symbol");
  const std::vector<std::string> domains(dimension, "*");
  for (const std::string& column : ztb::keyColumns("", ztb::Type::variable, domains)) {
    csv.text(column);
  }
  csv.text("from");
  csv.text("to");
  csv.endRow();
  for (const Line& line : lines) {
    csv.text(line.what);
    csv.text(line.range->symbol);
    for (const std::string& label : line.range->labels) csv.label(label);
    for (std::size_t k = line.range->labels.size(); k < dimension; ++k) csv.text("");
    csv.text(NumberText(line.range->lower).view());
    csv.text(NumberText(line.range->upper).view());
    csv.endRow();
  }
  csv.finish();
}

}  // namespace tool
