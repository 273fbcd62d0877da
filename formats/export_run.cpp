#include "formats/export_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

#include "formats/csv_folder.h"
#include "formats/database_export.h"
#include "formats/field_chars.h"
#include "formats/file_name.h"
#include "formats/source_name.h"
#include "formats/spooled_stream.h"
#include "formats/table_source.h"
#include "formats/wide_export.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

using tool::UsageError;

}  // namespace

bool ExportRun::option(const std::string& name, const std::string& value) {
  if (name == "symbol") {
    symbols_.push_back(value);
  } else if (name == "all") {
    all_ = true;
  } else if (name == "to" || name == "csv") {
    if (!target_.empty() && targetOption_ != name) {
      throw UsageError("--csv and --to exclude each other");
    }
    target_ = value;
    targetOption_ = name;
  } else if (name == "format") {
    format_ = value;
  } else if (name == "wide") {
    wide_ = value;
  } else if (name == "separator") {
    separator_ = value;
  } else if (name == "decimal") {
    decimal_ = value;
  } else {
    return false;
  }
  return true;
}

void ExportRun::checkUsage() const {
  if (target_.empty()) {
    throw UsageError("nothing to write to: give --to TARGET, or --csv DIR");
  }
  if (all_ == !symbols_.empty()) {
    throw UsageError("give the names of symbols, or --all");
  }
}

// The chosen symbols in the order of the file. An alias needs the set that it stands for.
std::vector<const tool::FileSymbol*> ExportRun::chosenSymbols(
    const tool::ExchangeFile& file) const {
  std::vector<const tool::FileSymbol*> chosen;
  for (const std::string& name : symbols_) {
    if (name == "*") {
      throw UsageError("*: the universe is no symbol to export; every export has all labels");
    }
    chosen.push_back(&file.symbol(name));
  }
  const auto isChosen = [&](const tool::FileSymbol& symbol) {
    return all_ || std::ranges::find(chosen, &symbol) != chosen.end();
  };
  for (const tool::FileSymbol* symbol : chosen) {
    const tool::FileSymbol& target = file.resolved(*symbol);
    if (!target.isUniverse() && !isChosen(target)) {
      throw UsageError(fmt::format("{} is an alias of {}: export {} too", symbol->name, target.name,
                                   target.name));
    }
  }
  std::vector<const tool::FileSymbol*> symbols;
  for (const tool::FileSymbol& symbol : file.symbols()) {
    if (isChosen(symbol)) {
      symbols.push_back(&symbol);
    }
  }
  return symbols;
}

// Writes the table of the one symbol that is chosen.
void ExportRun::writeTable(const Format& format, const tool::ExchangeFile& file,
                           const std::vector<const tool::FileSymbol*>& symbols,
                           const std::string& path, tool::Progress& progress,
                           RunResult& result) const {
  if (symbols.size() != 1 || symbols.front()->isAlias()) {
    throw UsageError(fmt::format(
        "--{} {}: {} takes the table of one symbol, {} chosen", targetOption_, target_,
        target_ == "-" ? "standard output" : fmt::format("a {} file", format.name),
        tool::counted(symbols.size(), "symbol") + (symbols.size() == 1 ? " is" : " are")));
  }
  if (wide_.empty() && format.writeSymbol != nullptr) {
    std::vector<std::string> notes;
    format.writeSymbol({.file = file,
                        .symbols = symbols,
                        .path = path,
                        .progress = progress,
                        .records = result.records,
                        .notes = notes});
    return;
  }
  const tool::FileSymbol& symbol = *symbols.front();
  const std::unique_ptr<TableWriter> writer = format.makeTables(
      {.path = path, .separator = separatorOf(separator_), .decimal = decimalOf(decimal_)});
  if (wide_.empty()) {
    writer->begin(headOf(symbol));
    result.records = writeRecords(*writer, file, symbol, progress);
    endTable(*writer, symbol.name, progress);
  } else {
    result.records = writeWide(*writer, file, symbol, wide_, progress);
  }
  finishTables(*writer, target_, progress);
}

// A name without an ending that tells a format is that of a folder only if it surely is one.
void ExportRun::requireKnownEnding() const {
  if (targetOption_ != "to" || target_ == "-" || !format_.empty() || endsAsFolder(target_) ||
      formatOfFile(target_) != nullptr || isFolder(target_)) {
    return;
  }
  std::string endings;
  for (const Format& format : formatTable()) {
    if (*format.endings != '\0')
      endings += fmt::format("{}{}", endings.empty() ? "" : " ", format.endings);
  }
  throw UsageError(
      fmt::format("--to {}: its ending tells no format, which {} do; give --format, or "
                  "for a folder a / at its end",
                  target_, endings));
}

void ExportRun::write(const std::string& source, bool shows, RunResult& result) {
  checkUsage();
  requireKnownEnding();
  const Format& format = targetOption_ == "csv" ? *formatNamed("csv") : formatFor(target_, format_);
  requireWritable(format);
  const bool isFile = formatOfFile(target_) != nullptr;
  const bool byComma = format.name == std::string_view("csv");
  if (byComma) {
    requireDifferent(separatorOf(separator_), decimalOf(decimal_));
  }
  if (isSameFile(source, target_)) {
    throw UsageError(
        fmt::format("{}: would be replaced by what is made of it; name another file", target_));
  }
  tool::Progress progress(shows);
  progress.step("opening " + source);
  const tool::ExchangeFile file(source);
  const std::vector<const tool::FileSymbol*> symbols = chosenSymbols(file);
  result.symbols = symbols.size();
  result.labels = static_cast<std::size_t>(file.labelCount());
  const bool toStream = target_ == "-";
  std::optional<SpooledOutput> spooled;
  if (toStream && format.inPlaces) {
    spooled.emplace(fmt::format("--{} -", targetOption_), format.name);
    result.names.add(spooled->path(), "standard output");
  }
  const std::string path = spooled ? spooled->path() : target_;
  const bool folderOnly = format.ownsFolder != nullptr && targetOption_ != "csv" && isFile;
  const bool ofFolder = toStream && format.ownsFolder != nullptr;
  if (!wide_.empty() || format.writeDatabase == nullptr || folderOnly || ofFolder ||
      (!all_ && symbols.size() == 1 && format.oneTableAlone)) {
    progress.step("writing " + target_);
    writeTable(format, file, symbols, path, progress, result);
  } else {
    std::vector<std::string> notes;
    format.writeDatabase({.file = file,
                          .symbols = symbols,
                          .path = path,
                          .progress = progress,
                          .records = result.records,
                          .notes = notes});
    for (const std::string& note : notes) {
      result.warnings += "ztb: " + ztb::displayText(note) + '\n';
    }
  }
  if (spooled) spooled->finish();
}

}  // namespace formats
