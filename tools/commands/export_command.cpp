#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <vector>
#include <ztb/column_names.hpp>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/files/exchange_file.h"
#include "tools/files/record_walk.h"
#include "tools/tables/csv_writer.h"
#include "tools/tables/manifest.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct ExportOptions {
  std::string file;
  std::vector<std::string> symbols;
  bool all = false;
  std::string folder;
};

// The chosen symbols in the order of the file. An alias needs the set that it stands for.
std::vector<const FileSymbol*> chosenSymbols(const ExchangeFile& file,
                                             const ExportOptions& options) {
  std::vector<const FileSymbol*> chosen;
  for (const std::string& name : options.symbols) {
    if (name == "*") {
      throw UsageError("*: the universe is no symbol to export; every export has all labels");
    }
    chosen.push_back(&file.symbol(name));
  }
  const auto isChosen = [&](const FileSymbol& symbol) {
    return options.all || std::ranges::find(chosen, &symbol) != chosen.end();
  };
  for (const FileSymbol* symbol : chosen) {
    const FileSymbol& target = file.resolved(*symbol);
    if (!target.isUniverse() && !isChosen(target)) {
      throw UsageError(fmt::format("{} is an alias of {}: export {} too", symbol->name, target.name,
                                   target.name));
    }
  }
  std::vector<const FileSymbol*> symbols;
  for (const FileSymbol& symbol : file.symbols()) {
    if (isChosen(symbol)) {
      symbols.push_back(&symbol);
    }
  }
  return symbols;
}

// Makes the folder, and takes the table of symbols of an older export away: it is there again only
// when everything is.
void prepareFolder(const std::filesystem::path& folder) {
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) {
    std::filesystem::remove(manifestPath(folder), error);
  }
  if (error) {
    throw Failure(fmt::format("{}: cannot be written: {}", folder.string(), error.message()));
  }
}

void writeLabels(const std::filesystem::path& folder, const ExchangeFile& file) {
  CsvWriter csv(labelsPath(folder).string());
  csv.field("label");
  csv.endRecord();
  for (int number = 1; number <= file.labelCount(); ++number) {
    csv.label(file.label(number));
    csv.endRecord();
  }
  csv.close();
}

std::size_t writeRecords(CsvWriter& csv, const ExchangeFile& file, const FileSymbol& symbol,
                         Progress& progress) {
  for (const std::string& column : ztb::keyColumns(symbol.name, symbol.type, domainNames(symbol))) {
    csv.field(column);
  }
  for (const std::string& column : ztb::contentColumns(symbol.type)) {
    csv.field(column);
  }
  csv.endRecord();
  std::size_t records = 0;
  for (RecordWalk record(file, symbol); record.next();) {
    for (const int key : record.keys()) {
      csv.label(file.label(key));
    }
    if (symbol.type == ztb::Type::set) {
      csv.field(record.text());
    } else {
      for (const double value : record.values()) {
        csv.field(NumberText(value).view());
      }
    }
    csv.endRecord();
    progress.count(++records);
  }
  csv.close();
  return records;
}

// Writes the table of the one symbol that is chosen to standard output.
void writeTable(const ExchangeFile& file, const std::vector<const FileSymbol*>& symbols,
                Progress& progress) {
  if (symbols.size() != 1 || symbols.front()->isAlias()) {
    throw UsageError(
        fmt::format("--csv -: standard output takes the table of one symbol, {} chosen",
                    counted(symbols.size(), "symbol") + (symbols.size() == 1 ? " is" : " are")));
  }
  CsvWriter csv(stdout, "standard output");
  writeRecords(csv, file, *symbols.front(), progress);
}

void runExport(const ExportOptions& options) {
  if (options.all == !options.symbols.empty()) {
    throw UsageError("give the names of symbols, or --all");
  }
  Progress progress;
  progress.step("opening " + options.file);
  const ExchangeFile file(options.file);
  const std::vector<const FileSymbol*> symbols = chosenSymbols(file, options);
  if (options.folder == "-") {
    progress.step("writing");
    writeTable(file, symbols, progress);
    return;
  }
  const std::filesystem::path folder = options.folder;
  prepareFolder(folder);
  writeLabels(folder, file);
  std::vector<ManifestEntry> entries;
  std::size_t records = 0;
  for (const FileSymbol* symbol : symbols) {
    entries.push_back(describe(file, *symbol));
    if (!symbol->isAlias()) {
      const std::string path = recordsPath(folder, symbol->name).string();
      progress.step("writing " + path);
      CsvWriter csv(path);
      records += writeRecords(csv, file, *symbol, progress);
    }
  }
  writeManifest(folder, entries);
  print(fmt::format(
      "{}: {}, {}, {}\n", ztb::displayText(options.folder), counted(symbols.size(), "symbol"),
      counted(static_cast<std::size_t>(file.labelCount()), "label"), counted(records, "record")));
}

}  // namespace

void addExportCommand(CommandLine& line) {
  Command command = line.add("export", "Write symbols out as CSV");
  auto options = std::make_shared<ExportOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.texts("SYMBOL", options->symbols, "Symbols to export");
  command.flag("--all", options->all, "Export all symbols");
  command
      .text("--csv", options->folder,
            "Folder to write to, made if it is not there; - for one table to standard output")
      .typeName("DIR")
      .required();
  addMemoryOption(command);
  command.footer(
      "Writes NAME.csv for each symbol, _labels.csv with all labels in the order of their "
      "numbers,\n"
      "and _symbols.csv. ztb import --dir reads the folder back, every value bit for bit.\n\n"
      "Examples:\n"
      "  ztb export diet.rxf --all --csv exported\n"
      "  ztb export diet.rxf food price --csv exported\n"
      "  ztb import copy.rxf --dir exported");
  command.action([options] {
    runExport(*options);
    return exitFine;
  });
}

}  // namespace tool
