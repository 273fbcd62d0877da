#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cmath>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/column_names.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/files/database_diff.h"
#include "tools/files/exchange_file.h"
#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/json_text.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct DiffArguments {
  std::string before;
  std::string after;
  std::optional<double> tolerance;
  std::size_t head = 20;
  bool json = false;
};

char signOf(Change change) {
  switch (change) {
    case Change::gone:
      return '-';
    case Change::added:
      return '+';
    default:
      return '~';
  }
}

const char* wordOf(Change change) {
  switch (change) {
    case Change::gone:
      return "gone";
    case Change::added:
      return "added";
    default:
      return "changed";
  }
}

// The values that differ, or all where there is only one record, as "level 1 -> 2, upper inf".
std::string contentText(const SymbolDifference& symbol, const RecordDifference& record) {
  const RecordContent& one = record.change == Change::added ? record.after : record.before;
  if (symbol.type == ztb::Type::set) {
    const std::string text = fmt::format("'{}'", printable(one.text));
    if (record.change == Change::changed) {
      return fmt::format("{} -> '{}'", text, printable(record.after.text));
    }
    return one.text.empty() ? "" : text;
  }
  std::vector<std::string> parts;
  for (std::size_t field = 0; field < one.values.size(); ++field) {
    const bool changed = record.change == Change::changed;
    if (changed && sameBits(record.before.values[field], record.after.values[field])) {
      continue;
    }
    std::string part = one.values.size() > 1 ? fmt::format("{} ", ztb::fieldNames[field]) : "";
    part += NumberText(one.values[field]).view();
    if (changed) {
      part += fmt::format(" -> {}", NumberText(record.after.values[field]).view());
    }
    parts.push_back(std::move(part));
  }
  return fmt::format("{}", fmt::join(parts, ", "));
}

void printSymbol(const SymbolDifference& symbol) {
  print(fmt::format("{} {} {}\n", signOf(symbol.change), typeWord(symbol.type), symbol.signature));
  for (const AttributeDifference& attribute : symbol.attributes) {
    print(fmt::format("    {}: '{}' -> '{}'\n", attribute.name, printable(attribute.before),
                      printable(attribute.after)));
  }
  const std::size_t count = symbol.goneRecords + symbol.addedRecords + symbol.changedRecords;
  if (count == 0) {
    return;
  }
  print(fmt::format("    records: {} gone, {} added, {} changed\n", symbol.goneRecords,
                    symbol.addedRecords, symbol.changedRecords));
  for (const RecordDifference& record : symbol.records) {
    std::string keys;
    for (const std::string& key : record.keys) {
      keys += fmt::format("{}\"{}\"", keys.empty() ? "" : ",", printable(key));
    }
    const std::string content = contentText(symbol, record);
    print(fmt::format("    {} ({}){}{}\n", signOf(record.change), keys, content.empty() ? "" : " ",
                      content));
  }
  if (count > symbol.records.size()) {
    print(fmt::format("    ... and {} more\n", counted(count - symbol.records.size(), "record")));
  }
}

void printText(const DiffArguments& arguments, const DatabaseDifference& difference) {
  for (const SymbolDifference& symbol : difference.symbols) {
    printSymbol(symbol);
  }
  if (difference.symbols.empty()) {
    print(fmt::format("no difference: {}, {}\n", counted(difference.comparedSymbols, "symbol"),
                      counted(difference.comparedRecords, "record")));
  } else {
    print(fmt::format("{} and {} differ in {}\n", printable(inputName(arguments.before)),
                      printable(inputName(arguments.after)),
                      counted(difference.symbols.size(), "symbol")));
  }
}

Json jsonContent(ztb::Type type, const RecordContent& content) {
  Json json = Json::object();
  const std::vector<std::string> columns = ztb::contentColumns(type);
  if (type == ztb::Type::set) {
    json[columns.front()] = content.text;
  }
  for (std::size_t field = 0; field < content.values.size(); ++field) {
    json[columns[field]] = jsonNumber(content.values[field]);
  }
  return json;
}

Json jsonSymbolDifference(const SymbolDifference& symbol) {
  Json json;
  json["name"] = symbol.name;
  json["type"] = typeWord(symbol.type);
  json["change"] = wordOf(symbol.change);
  json["attributes"] = Json::array();
  for (const AttributeDifference& attribute : symbol.attributes) {
    json["attributes"].push_back(
        {{"name", attribute.name}, {"before", attribute.before}, {"after", attribute.after}});
  }
  json["records_gone"] = symbol.goneRecords;
  json["records_added"] = symbol.addedRecords;
  json["records_changed"] = symbol.changedRecords;
  json["records"] = Json::array();
  for (const RecordDifference& record : symbol.records) {
    Json entry;
    entry["change"] = wordOf(record.change);
    entry["keys"] = record.keys;
    if (record.change != Change::added) {
      entry["before"] = jsonContent(symbol.type, record.before);
    }
    if (record.change != Change::gone) {
      entry["after"] = jsonContent(symbol.type, record.after);
    }
    json["records"].push_back(std::move(entry));
  }
  return json;
}

void printJson(const DiffArguments& arguments, const DatabaseDifference& difference) {
  Json json;
  json["before"] = inputName(arguments.before);
  json["after"] = inputName(arguments.after);
  json["same"] = difference.symbols.empty();
  json["symbols"] = Json::array();
  for (const SymbolDifference& symbol : difference.symbols) {
    json["symbols"].push_back(jsonSymbolDifference(symbol));
  }
  print(jsonText(json, 2) + "\n");
}

int runDiff(const DiffArguments& arguments) {
  if (arguments.tolerance && !(*arguments.tolerance >= 0)) {
    throw UsageError("--tolerance: expected a number of at least 0");
  }
  if (arguments.before == "-" && arguments.after == "-") {
    throw UsageError("diff - -: - can stand once, standard input has one file");
  }
  std::optional<Progress> progress(std::in_place);
  progress->step("opening files");
  const ExchangeFile before(arguments.before);
  const ExchangeFile after(arguments.after);
  const DiffOptions options{.tolerance = arguments.tolerance, .keptRecords = arguments.head};
  const DatabaseDifference difference = compare(before, after, options, *progress);
  progress.reset();
  if (arguments.json) {
    printJson(arguments, difference);
  } else {
    printText(arguments, difference);
  }
  return difference.symbols.empty() ? exitFine : exitFailed;
}

}  // namespace

void addDiffCommand(CommandLine& line) {
  Command command = line.add("diff", "Compare two files");
  auto arguments = std::make_shared<DiffArguments>();
  command.text("A", arguments->before, "RXF file, - for standard input").required();
  command.text("B", arguments->after, "RXF file, - for standard input").required();
  command.real("--tolerance", arguments->tolerance,
               "Largest absolute difference of two numbers that counts as none");
  command.number("--head", arguments->head, "Differing records to print for each symbol")
      .defaultText("20");
  command.flag("--json", arguments->json, "Print JSON");
  addMemoryOption(command);
  command.footer(
      "Symbols are matched by name and records by labels; their order and numbers do not matter.\n"
      "Lines begin with - for what only A has, + for what only B has, ~ for what changed.\n"
      "Without --tolerance numbers must agree to the bit. Special values must be of one kind.\n"
      "The exit code is 0 when nothing differs and 1 when something does.\n\n"
      "Examples:\n"
      "  ztb diff diet.rxf copy.rxf\n"
      "  ztb diff old.rxf new.rxf --tolerance 1e-9 --head 100");
  command.action([arguments] { return runDiff(*arguments); });
}

}  // namespace tool
