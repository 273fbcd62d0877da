#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/display_text.hpp>
#include <ztb/model.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/table_options.h"
#include "tools/models/model_session.h"
#include "tools/text/failure.h"
#include "tools/text/json_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct ModelOptions {
  std::string file;
  std::string dataFile;
  std::string fills;
  std::string write;
  bool json = false;
  bool all = false;
  TableOptions table;
};

// What a model of many plain names has too many of to look at.
constexpr int mostFamilies = 60;

std::string_view kindWord(const ztbModelFamily& family) {
  static constexpr std::array<std::string_view, 3> kinds{"continuous", "integer", "binary"};
  static constexpr std::array<std::string_view, 4> types{"=", ">=", "<=", "free"};
  if (family.kind < 0) return "mixed";
  const auto kind = static_cast<std::size_t>(family.kind);
  return family.isRow != 0 ? types.at(kind) : kinds.at(kind);
}

std::string rangeText(double smallest, double largest) {
  if (largest == 0) return "";
  if (smallest == largest) return fmt::format("{:.6g}", largest);
  return fmt::format("{:.6g} to {:.6g}", smallest, largest);
}

Json jsonRange(double smallest, double largest) {
  if (largest == 0) return nullptr;
  return Json::array({smallest, largest});
}

void printJson(ztb::Model& model, const std::string& file) {
  const ztbModelSize size = model.size();
  Json json;
  json["file"] = file;
  json["sense"] = size.maximize != 0 ? "maximize" : "minimize";
  json["objective_constant"] = size.constant;
  json["columns"] = size.columns;
  json["integers"] = size.integers;
  json["binaries"] = size.binaries;
  json["semi_continuous"] = size.semiContinuous;
  json["rows"] = size.rows;
  json["terms"] = size.terms;
  json["products"] = size.products;
  json["ordered_sets"] = size.sets;
  json["coefficients"] = jsonRange(size.smallest, size.largest);
  json["notes"] = Json::array();
  for (int n = 0; n < model.noteCount(); ++n) json["notes"].push_back(model.note(n));
  json["families"] = Json::array();
  for (int f = 0; f < size.families; ++f) {
    const ztbModelFamily family = model.family(f);
    Json entry;
    entry["name"] = family.name;
    entry["of"] = family.isRow != 0 ? "rows" : "columns";
    entry["dimension"] = family.dimension;
    entry["count"] = family.count;
    entry["kind"] = std::string(kindWord(family));
    entry["entries"] = family.entries;
    entry["coefficients"] = jsonRange(family.smallest, family.largest);
    entry["sides"] = jsonRange(family.smallestSide, family.largestSide);
    json["families"].push_back(std::move(entry));
  }
  print(jsonText(json, 2) + "\n");
}

std::array<std::string, 8> cellsOf(const ztbModelFamily& family) {
  return {family.name,
          family.isRow != 0 ? "rows" : "columns",
          std::to_string(family.dimension),
          std::to_string(family.count),
          std::string(kindWord(family)),
          std::to_string(family.entries),
          rangeText(family.smallest, family.largest),
          rangeText(family.smallestSide, family.largestSide)};
}

void printFamilies(ztb::Model& model, int count, const TableOptions& options) {
  using Align = TablePrinter::Align;
  TablePrinter table(options.style());
  table.addColumn("Family", Align::left);
  table.addColumn("Of", Align::left);
  table.addColumn("Dim", Align::right);
  table.addColumn("Count", Align::right);
  table.addColumn("Kind", Align::left);
  table.addColumn("Entries", Align::right);
  table.addColumn("Coefficients", Align::left);
  table.addColumn("Bounds, sides", Align::left);
  std::vector<std::array<std::string, 8>> rows;
  for (int f = 0; f < count; ++f) {
    rows.push_back(cellsOf(model.family(f)));
    table.measure(std::vector<std::string_view>(rows.back().begin(), rows.back().end()));
  }
  table.printHeader(stdout);
  for (const std::array<std::string, 8>& row : rows) {
    table.printRow(stdout, std::vector<std::string_view>(row.begin(), row.end()));
  }
}

void printTotals(const ztbModelSize& size, const std::string& file, const TableOptions& options) {
  const auto number = [](long long count, std::string_view word) {
    return counted(static_cast<std::size_t>(count), word);
  };
  std::string text =
      fmt::format("{}: {}, {}", ztb::displayText(file),
                  size.maximize != 0 ? "maximize" : "minimize", number(size.columns, "column"));
  if (size.integers > 0) text += fmt::format(", {} integer", size.integers);
  if (size.binaries > 0) text += fmt::format(", {} binary", size.binaries);
  if (size.semiContinuous > 0) text += fmt::format(", {} semi-continuous", size.semiContinuous);
  text += fmt::format(", {}, {}", number(size.rows, "row"), number(size.terms, "term"));
  if (size.products > 0) text += ", " + number(size.products, "product");
  if (size.sets > 0) text += ", " + number(size.sets, "ordered set");
  if (size.largest > 0) {
    text += fmt::format(", coefficients {}", rangeText(size.smallest, size.largest));
  }
  print(options.line(text));
}

void runModel(const ModelOptions& options) {
  auto progress = std::make_unique<Progress>();
  progress->step("reading " + options.file);
  std::optional<ModelFills> fills = fillsOf(options.fills, options.file);
  ztb::Model model = openModel(options.file, options.dataFile, fills ? &*fills : nullptr);
  if (!options.write.empty()) {
    progress->step("writing " + options.write);
    try {
      model.write(options.write);
    } catch (const ztb::Error& error) {
      throw Failure(withFile(options.write, error.what()));
    }
  }
  progress.reset();
  if (fills) {
    for (const std::string& note : fills->notes()) printError("ztb: " + note);
  }
  for (int n = 0; n < model.noteCount(); ++n) printError("ztb: " + model.note(n));
  if (options.json) return printJson(model, options.file);
  const ztbModelSize size = model.size();
  const int shown = options.all ? size.families : std::min(size.families, mostFamilies);
  printFamilies(model, shown, options.table);
  if (shown < size.families) {
    print(options.table.line(
        fmt::format("... and {} more families (--all shows them)", size.families - shown)));
  }
  print("\n");
  printTotals(size, options.file, options.table);
}

}  // namespace

void addModelCommand(CommandLine& line) {
  Command command = line.add("model", "Show what a model consists of, or write it as another file");
  auto options = std::make_shared<ModelOptions>();
  command.text("MODEL", options->file, "Model file: .lp, .mps, both also with .gz, or .mod")
      .typeName("FILE")
      .required();
  command.text("--model-data", options->dataFile, "Data file of a .mod model")
      .typeName("FILE")
      .notEmpty();
  command
      .text("--data", options->fills,
            "RXF file that fills the sets and parameters of the same names of a .mod model")
      .typeName("FILE")
      .notEmpty();
  command.text("--write", options->write, "Write the model as this .lp or .mps file")
      .typeName("FILE")
      .notEmpty();
  command.flag("--json", options->json, "Print JSON");
  command.flag("--all", options->all, "All families, however many");
  addWidthOption(command, options->table);
  command.footer(
      "Lists the families of columns and rows, which share the name in front of their labels, "
      "with\n"
      "how many there are, their kind, the entries that they have, and the ranges of the sizes of\n"
      "coefficients and of bounds or right-hand sides; then the totals.\n"
      "A file that is written reads back as the same model.\n\n"
      "Examples:\n"
      "  ztb model diet.lp\n"
      "  ztb model diet.lp --write diet.mps");
  command.action([options] {
    runModel(*options);
    return exitFine;
  });
}

}  // namespace tool
