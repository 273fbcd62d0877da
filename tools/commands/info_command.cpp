#include <fmt/format.h>
#include <fmt/ranges.h>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/exchange_file.h"
#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/json_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct InfoOptions {
  std::string file;
  bool json = false;
  TableOptions table;
};

// What holds the records of a file once a database reads them, unless it was told otherwise.
constexpr ztb::Store defaultStore = ztb::Store::map;

struct Totals {
  std::array<std::size_t, 5> ofType{};
  std::size_t symbols = 0;
  std::size_t records = 0;
};

Totals totalsOf(const ExchangeFile& file) {
  Totals totals;
  for (const FileSymbol& symbol : file.symbols()) {
    ++totals.ofType.at(static_cast<std::size_t>(symbol.type));
    ++totals.symbols;
    totals.records += symbol.isAlias() ? 0 : symbol.recordCount;
  }
  return totals;
}

// Bytes that the records take in a database, about.
unsigned long long memoryOf(const ExchangeFile& file, const FileSymbol& symbol) {
  return ztbRxfMemory(file.file().handle(), symbol.number, static_cast<int>(defaultStore));
}

void printJson(const ExchangeFile& file) {
  const Totals totals = totalsOf(file);
  Json json;
  json["file"] = file.path();
  json["symbol_count"] = totals.symbols;
  json["label_count"] = file.labelCount();
  json["record_count"] = totals.records;
  json["symbols"] = Json::array();
  for (const FileSymbol& symbol : file.symbols()) {
    Json entry = jsonSymbol(file, symbol, defaultStore);
    if (!symbol.isAlias()) {
      entry["records"] = symbol.recordCount;
      entry["memory"] = memoryOf(file, symbol);
    }
    json["symbols"].push_back(std::move(entry));
  }
  print(jsonText(json, 2) + "\n");
}

// Whether a text is that of sweep_inputs in the result of a sweep.
bool isOfSweepInputs(const std::string& text) {
  return text.starts_with("model=") && text.find(" scenarios=") != std::string::npos;
}

std::array<std::string, 7> cellsOf(const ExchangeFile& file, const FileSymbol& symbol) {
  const bool alias = symbol.isAlias();
  return {
      symbol.name,
      std::string(typeWord(symbol.type)),
      std::to_string(symbol.dimension),
      alias ? fmt::format("= {}", file.resolved(symbol).name)
            : fmt::format("{}", fmt::join(domainNames(symbol), ", ")),
      alias ? std::string() : std::to_string(symbol.recordCount),
      alias ? std::string() : std::string(storeWord(defaultStore)),
      isOfSweepInputs(symbol.text) ? "(checksums of what the sweep was made from)" : symbol.text};
}

void printTable(const ExchangeFile& file, const TableOptions& options) {
  using Align = TablePrinter::Align;
  TablePrinter table(options.style());
  table.addColumn("Symbol", Align::left);
  table.addColumn("Type", Align::left);
  table.addColumn("Dim", Align::right);
  table.addColumn("Domains", Align::left);
  table.addColumn("Records", Align::right);
  table.addColumn("Store", Align::left);
  table.addColumn("Text", Align::left);
  std::vector<std::array<std::string, 7>> rows;
  for (const FileSymbol& symbol : file.symbols()) {
    rows.push_back(cellsOf(file, symbol));
    const std::array<std::string, 7>& row = rows.back();
    table.measure(std::vector<std::string_view>(row.begin(), row.end()));
  }
  table.printHeader(stdout);
  for (const std::array<std::string, 7>& row : rows) {
    table.printRow(stdout, std::vector<std::string_view>(row.begin(), row.end()));
  }
}

void printTotals(const ExchangeFile& file, const Totals& totals, const TableOptions& options) {
  std::vector<std::string> kinds;
  for (std::size_t type = 0; type < totals.ofType.size(); ++type) {
    const std::size_t count = totals.ofType[type];
    if (count > 0 && static_cast<ztb::Type>(type) == ztb::Type::alias) {
      kinds.push_back(fmt::format("{} alias{}", count, count == 1 ? "" : "es"));
    } else if (count > 0) {
      kinds.push_back(counted(count, typeWord(static_cast<ztb::Type>(type))));
    }
  }
  const std::string ofKinds = kinds.empty() ? "" : fmt::format(" ({})", fmt::join(kinds, ", "));
  print(options.line(fmt::format("{}: {}{}, {}, {}", ztb::displayText(file.path()),
                                 counted(totals.symbols, "symbol"), ofKinds,
                                 counted(static_cast<std::size_t>(file.labelCount()), "label"),
                                 counted(totals.records, "record"))));
}

void runInfo(const InfoOptions& options) {
  std::optional<Progress> progress(std::in_place);
  progress->step("opening " + inputName(options.file));
  const ExchangeFile file(options.file);
  progress.reset();
  if (options.json) {
    printJson(file);
    return;
  }
  if (!file.symbols().empty()) {
    printTable(file, options.table);
    print("\n");
  }
  printTotals(file, totalsOf(file), options.table);
}

}  // namespace

void addInfoCommand(CommandLine& line) {
  Command command = line.add("info", "Show what is in a file");
  auto options = std::make_shared<InfoOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.flag("--json", options->json, "Print JSON");
  addWidthOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "Lists the symbols with type, dimension, domains, record count, record store in memory and\n"
      "text, then the totals.\n"
      "Records are counted, not read.\n\n"
      "Examples:\n"
      "  ztb info diet.rxf\n"
      "  ztb info diet.rxf --json");
  command.action([options] {
    runInfo(*options);
    return exitFine;
  });
}

}  // namespace tool
