#include "formats/import_run.h"

#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <system_error>
#include <utility>

#include "formats/csv_folder.h"
#include "formats/database_import.h"
#include "formats/database_merge.h"
#include "formats/field_chars.h"
#include "formats/file_name.h"
#include "formats/source_name.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

using tool::Failure;
using tool::UsageError;

std::size_t countOf(const std::string& option, const std::string& text) {
  std::size_t count = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
  if (error != std::errc{} || end != text.data() + text.size()) {
    throw UsageError(fmt::format("--{} {}: expected a whole number", option, text));
  }
  return count;
}

// Whether a folder is no whole database in the format.
bool lacksSymbols(const Format& format, const std::string& path) {
  return format.ownsFolder != nullptr && isFolder(path) && !format.ownsFolder(path);
}

[[noreturn]] void failLacking(const Format& format, const std::string& folder, bool either) {
  throw tool::Failure(
      fmt::format("{}: the folder has no _symbols.{}{}, so that it holds no whole database; give "
                  "its files one by one, as in --from {}, with --set, --parameter or --variable",
                  folder, format.name, either ? " or _symbols.parquet" : "",
                  nameIn(folder, fmt::format("NAME.{}", format.name))),
      ZTB_ERROR_NO_FILE);
}

// A source that is a file which can be opened, or a folder that is a whole database.
void requireThere(const Format& format, const std::string& path, bool isTable) {
  if (path == "-") return;
  if (!isThere(path)) throw tool::systemFailure(path, "cannot be read", ENOENT);
  if (!isFolder(path)) return;
  // A folder whose format nothing tells is looked at as one of CSV.
  const bool isCsv = format.name == std::string_view("csv");
  if (lacksSymbols(format, path) && !isTable) failLacking(format, path, isCsv);
  if (format.ownsFolder == nullptr) {
    throw tool::Failure(fmt::format("{}: is a folder, expected a file", path));
  }
  if (isTable) {
    throw tool::Failure(
        fmt::format("{}: is a folder, and a table is one file of it, as in --from {}", path,
                    nameIn(path, fmt::format("NAME.{}", format.name))),
        ZTB_ERROR_REFUSED);
  }
}

std::optional<SpecKind> kindOf(const std::string& option) {
  for (const SpecKind kind :
       {SpecKind::set, SpecKind::distinctSet, SpecKind::parameter, SpecKind::variable}) {
    if (optionOf(kind) == "--" + option) return kind;
  }
  return std::nullopt;
}

// Takes the file that was just written into another store and writes it from there. Records of an
// import come in the order of its tables, which only the tree map takes, and a symbol that is moved
// within a database would lose its domains.
void rewriteFrom(ztb::Store store, const std::string& path, bool checkDomains) {
  ztb::Database database;
  database.selectStore(store);
  database.openFile(path);
  database.closeFile(true);
  database.write(path, checkDomains);
}

}  // namespace

void ImportRun::requireOnce(const std::string& option, const std::string& value,
                            bool isThere) const {
  if (!isThere) return;
  throw UsageError(fmt::format("--{} {}: --{} is given twice for --from {}", option, value, option,
                               sources_.back().argument));
}

ImportRun::Source& ImportRun::lastSource(const std::string& option) {
  if (sources_.empty()) {
    throw UsageError(fmt::format("{}: a --from FILE must stand before it", option));
  }
  return sources_.back();
}

bool ImportRun::option(const std::string& name, const std::string& value) {
  if (name == "from") {
    Source source{.argument = value, .format = nullptr, .tables = {}};
    source.tables.table = parseSource(value);
    sources_.push_back(std::move(source));
  } else if (name == "format") {
    Source& source = lastSource("--format " + value);
    requireOnce(name, value, source.format != nullptr);
    source.format = &formatFor(source.tables.table.path, value);
    if (!source.format->hasParts) source.tables.table = {.path = source.argument, .part = {}};
  } else if (const std::optional<SpecKind> kind = kindOf(name)) {
    lastSource("--" + name + " " + value).tables.symbols.push_back(parseSymbolSpec(*kind, value));
  } else if (name == "wide") {
    TableShape& shape = lastSource("--wide " + value).tables.shape;
    requireOnce(name, value, !shape.wide.empty());
    parseWide(value, shape);
  } else if (name == "rename") {
    parseRename(value, lastSource("--rename " + value).tables.shape);
  } else if (name == "units") {
    parseUnits(value, lastSource("--units " + value).tables.shape);
  } else if (name == "dates") {
    TableShape& shape = lastSource("--dates " + value).tables.shape;
    requireOnce(name, value, shape.dates.has_value());
    parseDates(value, shape);
  } else if (name == "dir") {
    folder_ = value;
  } else if (name == "separator") {
    separator_ = value;
  } else if (name == "decimal") {
    decimal_ = value;
  } else if (name == "store") {
    const std::optional<ztb::Store> store = tool::storeOfWord(value);
    if (!store) throw UsageError(fmt::format("--store {}: expected map, vector or trie", value));
    store_ = *store;
  } else if (name == "check-domains") {
    checkDomains_ = true;
  } else if (name == "skip-empty") {
    skipEmpty_ = true;
  } else if (name == "max-errors") {
    maxErrors_ = countOf(name, value);
  } else if (name == "chunk-bytes") {
    chunkBytes_ = std::max<std::size_t>(countOf(name, value), 1);
  } else if (name == "shown-name") {
    shownName_ = value;
  } else {
    return false;
  }
  return true;
}

void ImportRun::resolve(Source& source) {
  if (source.format == nullptr) source.format = &formatFor(source.tables.table.path, "");
  const TableSource& table = source.tables.table;
  if (!source.format->hasParts && !table.part.empty()) {
    throw UsageError(fmt::format("--from {}: {} is a table as a whole, and has no part {}",
                                 source.argument, table.path, tool::inQuotes(table.part)));
  }
  source.tables.open = [format = source.format](const TableSource& opened) {
    requireReadable(*format);
    requireThere(*format, opened.path, true);
    return format->openTable(opened);
  };
}

void ImportRun::spool(RunResult& result) {
  for (Source& source : sources_) {
    std::string& path = source.tables.table.path;
    if (path != "-" || !source.format->inPlaces || *source.format->missingToRead != '\0') continue;
    spooled_.emplace();
    path = spooled_->path();
    result.names.add(path, "standard input");
  }
}

void ImportRun::checkUsage() const {
  if (folder_ && !sources_.empty()) {
    throw UsageError("--dir and --from exclude each other");
  }
  if (!folder_ && sources_.empty()) {
    throw UsageError(
        "nothing to import: give --from FILE with --set, --parameter or --variable, or --dir DIR");
  }
  if (std::ranges::count(sources_, "-",
                         [](const Source& source) { return source.tables.table.path; }) > 1) {
    throw UsageError("-: standard input can be read once, so - can stand once");
  }
  for (const Source& source : sources_) {
    // What no library is there for is told as such, and what a folder lacks.
    if (*source.format->missingToRead != '\0' ||
        (sources_.size() == 1 && lacksSymbols(*source.format, source.tables.table.path))) {
      continue;
    }
    const bool isTable = source.format->openDatabase == nullptr ||
                         !source.tables.table.part.empty() ||
                         (source.format->ownsFolder != nullptr &&
                          !source.format->ownsFolder(source.tables.table.path));
    if (source.tables.symbols.empty() && (isTable || sources_.size() > 1)) {
      throw UsageError(
          fmt::format("--from {}: no --set, --parameter or --variable behind it reads from it",
                      source.argument));
    }
  }
}

void ImportRun::fill(ztb::Database& database, RecordImport& records, ProblemList& problems,
                     ProblemList& warnings, RunResult& result) {
  for (Source& source : sources_) resolve(source);
  checkUsage();
  const char separator = separatorOf(separator_);
  const char decimal = decimalOf(decimal_);
  if (sources_.empty() || std::ranges::any_of(sources_, [](const Source& source) {
        return source.format->name == std::string_view("csv");
      })) {
    requireDifferent(separator, decimal);
  }
  spool(result);
  if (checkDomains_) {
    records.checkDomains();
  }
  if (chunkBytes_) {
    records.setChunkBytes(*chunkBytes_);
  }
  std::vector<std::string> lostRoles;
  if (folder_) {
    problems.attempt([&] {
      const Format& csv = *formatNamed("csv");
      if (lacksSymbols(csv, *folder_)) failLacking(csv, *folder_, false);
      importDatabase(database, *openCsvFolder(*folder_), records, problems);
    });
  } else if (sources_.front().tables.symbols.empty()) {
    const Source& source = sources_.front();
    problems.attempt([&] {
      requireReadable(*source.format);
      requireThere(*source.format, source.tables.table.path, false);
      importDatabase(database, *source.format->openDatabase(source.tables.table.path), records,
                     problems);
    });
  } else {
    records.setDecimalChar(decimal);
    std::vector<ImportSource> tables;
    for (const Source& source : sources_) {
      tables.push_back(source.tables);
      tables.back().table.separator = separator;
      tables.back().shape.decimal = decimal;
    }
    const TableImportOptions options{.skipEmpty = skipEmpty_, .namesAlone = !checkDomains_};
    lostRoles = importTables(database, tables, options, records, problems);
  }
  if (problems.empty()) {
    for (const std::string& lost : lostRoles) {
      result.warnings += "ztb: warning: " + ztb::displayText(lost) + '\n';
    }
  }
  result.warnings += warnings.report();
  if (const std::optional<Failure> failure = problems.onlyFailure()) throw *failure;
  result.problems = problems.report();
  result.problemCount = problems.count();
  result.symbols = static_cast<std::size_t>(database.symbolCount());
  result.labels = static_cast<std::size_t>(database.labelCount());
  result.records = records.recordCount();
}

void ImportRun::write(const std::string& path, bool shows, RunResult& result) {
  const std::string name = shownName_.empty() ? path : shownName_;
  for (const Source& source : sources_) {
    if (!isSameFile(source.tables.table.path, path)) continue;
    throw UsageError(
        fmt::format("{}: would be replaced by what is made of it; name another file", name));
  }
  tool::Progress progress(shows);
  ProblemList problems(maxErrors_);
  ProblemList warnings(maxErrors_);
  ztb::Database database;
  RecordImport records(database, problems, warnings, progress);
  fill(database, records, problems, warnings, result);
  if (result.problemCount > 0) {
    throw Failure(fmt::format("{}: not written: {} in the input", name,
                              tool::counted(result.problemCount, "problem")),
                  problems.kind());
  }
  progress.step("writing " + name);
  try {
    database.write(path, checkDomains_);
    if (store_ != ztb::Store::map) {
      rewriteFrom(store_, path, checkDomains_);
    }
  } catch (const ztb::Error& error) {
    throw tool::failureOf(name, error);
  }
}

void ImportRun::addTo(ztbRec* target, bool shows, RunResult& result) {
  tool::Progress progress(shows);
  ProblemList problems(maxErrors_);
  ProblemList warnings(maxErrors_);
  ztb::Database database;
  RecordImport records(database, problems, warnings, progress);
  lendSets(target, database, records, checkDomains_);
  const int lent = database.symbolCount();
  const int lentLabels = database.labelCount();
  fill(database, records, problems, warnings, result);
  if (result.problemCount > 0) {
    throw Failure(fmt::format("nothing is imported: {} in the input",
                              tool::counted(result.problemCount, "problem")),
                  problems.kind());
  }
  addSymbols(target, database, lent, lentLabels + 1);
  result.symbols -= static_cast<std::size_t>(lent);
  result.labels -= static_cast<std::size_t>(lentLabels);
}

}  // namespace formats
