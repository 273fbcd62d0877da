#include "formats/tables/manifest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>
#include <span>
#include <system_error>

#include "formats/file_name.h"
#include "formats/tables/csv_writer.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

enum Column : std::size_t {
  nameColumn,
  typeColumn,
  dimensionColumn,
  domainsColumn,
  userInfoColumn,
  aliasColumn,
  textColumn,
  tablesColumn,
  recordsColumn,
  columnCount
};

constexpr std::array<std::string_view, columnCount> columnNames{
    "symbol", "type", "dimension", "domains", "user_info", "alias_of", "text", "tables", "records"};

// The columns that a table of symbols has in a folder, or had in an older one.
constexpr auto oldFolderColumns = std::span(columnNames).first<tablesColumn>();
constexpr auto oldColumns = std::span(columnNames).first<recordsColumn>();
constexpr std::array<std::string_view, columnCount - 1> folderColumns{
    "symbol", "type", "dimension", "domains", "user_info", "alias_of", "text", "records"};

std::optional<int> parseInteger(std::string_view text) {
  int value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc{} || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

// Domain names stand with commas between them. A name that is empty or has a comma or a quote in it
// stands in double quotes, its own doubled.
std::string joinDomains(const std::vector<std::string>& names) {
  std::string joined;
  for (const std::string& name : names) {
    joined += joined.empty() ? "" : ",";
    if (!name.empty() && name.find_first_of(",\"") == std::string::npos) {
      joined += name;
      continue;
    }
    joined += '"';
    for (const char c : name) {
      joined += c == '"' ? std::string(2, c) : std::string(1, c);
    }
    joined += '"';
  }
  return joined;
}

// Takes the name in quotes from the front of text. One that is not closed goes to the end.
std::string takeQuoted(std::string_view& text) {
  std::string name;
  text.remove_prefix(1);
  for (; !text.empty(); text.remove_prefix(1)) {
    if (text.front() == '"') {
      text.remove_prefix(1);
      if (!text.starts_with('"')) {
        break;
      }
    }
    name += text.front();
  }
  return name;
}

std::vector<std::string> splitDomains(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    std::string name = text.starts_with('"') ? takeQuoted(text) : std::string();
    const std::size_t end = std::min(text.find(','), text.size());
    name += text.substr(0, end);
    names.push_back(std::move(name));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return names;
}

std::vector<std::string> splitTables(std::string_view text) {
  std::vector<std::string> names;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('/'), text.size());
    names.emplace_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return names;
}

class ManifestReader {
 public:
  ManifestReader(TableReader& reader, ProblemList& problems)
      : reader_(reader), problems_(problems) {}

  std::vector<ManifestEntry> read() {
    const auto isHeader = [&](std::span<const std::string_view> names) {
      return std::ranges::equal(reader_.fields(), names, {}, &TableField::text);
    };
    if (!reader_.next(problems_) || (!isHeader(folderColumns) && !isHeader(columnNames) &&
                                     !isHeader(oldFolderColumns) && !isHeader(oldColumns))) {
      problems_.add(reader_.place({.line = 1, .column = 1}),
                    fmt::format("the header is not {}", fmt::join(folderColumns, ",")));
      return {};
    }
    columns_ = reader_.fields().size();
    hasTables_ = isHeader(oldColumns) || isHeader(columnNames);
    hasRecords_ = isHeader(folderColumns) || isHeader(columnNames);
    std::vector<ManifestEntry> entries;
    while (reader_.next(problems_)) {
      const std::size_t before = problems_.count();
      ManifestEntry entry = readEntry();
      if (problems_.count() == before) {
        entries.push_back(std::move(entry));
      }
    }
    if (hasRecords_ && problems_.empty() && (entries.empty() || !isUniverse(entries.back()))) {
      problems_.add(reader_.path(), "is cut short: its last line is not that of all labels, *");
    }
    return entries;
  }

 private:
  ManifestEntry readEntry() {
    ManifestEntry entry;
    entry.at = reader_.position();
    if (reader_.fields().size() != columns_) {
      problems_.add(reader_.place(reader_.position()),
                    fmt::format("has {}, the header has {}",
                                tool::counted(reader_.fields().size(), "field"), columns_));
      return entry;
    }
    if (hasTables_) {
      entry.tables = splitTables(text(tablesColumn));
    }
    entry.name = text(nameColumn);
    entry.aliasOf = text(aliasColumn);
    entry.text = text(textColumn);
    entry.domains = splitDomains(text(domainsColumn));
    if (const std::optional<ztb::Type> type = tool::typeOfWord(text(typeColumn))) {
      entry.type = *type;
    } else {
      problem(typeColumn, "is no type, expected set, parameter, variable, equation or alias");
    }
    const std::optional<int> dimension = parseInteger(text(dimensionColumn));
    if (!dimension || static_cast<std::size_t>(*dimension) != entry.domains.size()) {
      problem(dimensionColumn,
              fmt::format("is not the number of domains, which is {}", entry.domains.size()));
    }
    if (const std::optional<int> userInfo = parseInteger(text(userInfoColumn))) {
      entry.userInfo = *userInfo;
    } else {
      problem(userInfoColumn, "is no whole number");
    }
    if (hasRecords_) readCount(entry);
    for (const Column column : {nameColumn, aliasColumn, textColumn}) {
      if (text(column).find('\0') != std::string_view::npos) {
        problem(column, "holds a zero byte");
      }
    }
    return entry;
  }

  void readCount(ManifestEntry& entry) {
    const TableField& field = fieldOf(recordsColumn);
    if (field.text.empty() && !field.isNumber) return;
    const std::optional<int> count =
        field.isNumber ? static_cast<int>(field.number) : parseInteger(field.text);
    if (count && *count >= 0) {
      entry.records = static_cast<std::size_t>(*count);
    } else {
      problem(recordsColumn, "is no number of records");
    }
  }

  [[nodiscard]] const TableField& fieldOf(Column column) const {
    return reader_.fields()[column == recordsColumn ? columns_ - 1 : column];
  }
  [[nodiscard]] std::string_view text(Column column) const { return fieldOf(column).text; }
  void problem(Column column, const std::string& reason) {
    problems_.add(
        reader_.place(fieldOf(column).at),
        fmt::format("{}: {} {}", columnNames[column], tool::inQuotes(text(column)), reason));
  }

  TableReader& reader_;
  ProblemList& problems_;
  std::size_t columns_ = 0;
  bool hasTables_ = false;
  bool hasRecords_ = false;
};

// Whether there is a file that has no such columns, or none that can be read.
bool isOfOthers(const FolderFile& file,
                const std::function<std::unique_ptr<TableReader>(const std::string&)>& open) {
  std::error_code error;
  const std::filesystem::path path = tool::pathOf(file.path);
  if (!std::filesystem::is_regular_file(std::filesystem::symlink_status(path, error)) ||
      std::filesystem::file_size(path, error) == 0) {
    return false;
  }
  bool isOurs = false;
  ProblemList ignored(0);
  ignored.attempt([&] {
    const std::unique_ptr<TableReader> reader = open(file.path);
    isOurs = reader->next(ignored) &&
             std::ranges::equal(reader->fields(), file.columns, {}, &TableField::text);
  });
  return !isOurs;
}

}  // namespace

std::string manifestPath(const std::string& folder) {
  return nameIn(folder, "_symbols.csv");
}

std::string labelsPath(const std::string& folder) {
  return nameIn(folder, "_labels.csv");
}

std::string recordsPath(const std::string& folder, const std::string& symbol) {
  return nameIn(folder, symbol + ".csv");
}

void beginFolder(const std::string& manifest, const std::vector<FolderFile>& files,
                 const std::function<std::unique_ptr<TableReader>(const std::string&)>& open) {
  const std::filesystem::path file = tool::pathOf(manifest);
  const std::filesystem::path folder = file.parent_path();
  std::string others;
  if (!isThere(manifest)) {
    for (const FolderFile& records : files) {
      if (isOfOthers(records, open)) others += (others.empty() ? "" : ", ") + records.path;
    }
  }
  if (!others.empty()) {
    throw tool::Failure(
        fmt::format("{}: has no {}, and files with other columns that would be lost: {}; give "
                    "another folder",
                    tool::nameOf(folder), tool::nameOf(file.filename()), tool::shortened(others)),
        ZTB_ERROR_REFUSED);
  }
  std::error_code error;
  std::filesystem::create_directories(folder, error);
  if (!error) {
    std::filesystem::remove(file, error);
  }
  if (error) {
    throw tool::systemFailure(tool::nameOf(folder), "cannot be written", error.value());
  }
}

ManifestEntry describe(const tool::ExchangeFile& file, const tool::FileSymbol& symbol) {
  ManifestEntry entry;
  entry.name = symbol.name;
  entry.type = symbol.type;
  entry.domains = tool::domainNames(symbol);
  entry.text = symbol.text;
  entry.userInfo = symbol.userInfo;
  if (symbol.isAlias()) {
    entry.aliasOf = file.resolved(symbol).name;
  }
  entry.records = symbol.recordCount;
  return entry;
}

ManifestEntry universeEntry(const tool::ExchangeFile& file) {
  ManifestEntry entry;
  entry.name = "*";
  entry.domains = {"*"};
  entry.text = "All labels";
  entry.records = static_cast<std::size_t>(file.labelCount());
  return entry;
}

TableHead manifestHead(std::size_t symbols) {
  TableHead head{.name = "_symbols", .columns = {}, .rows = symbols, .keys = 1, .exact = true};
  for (const std::string_view name : columnNames) {
    const bool isNumber = name == columnNames[dimensionColumn] ||
                          name == columnNames[userInfoColumn] || name == columnNames[recordsColumn];
    head.columns.push_back(
        {.name = std::string(name), .kind = isNumber ? ColumnKind::integer : ColumnKind::text});
  }
  return head;
}

void writeEntry(TableWriter& writer, const ManifestEntry& entry, bool withTables) {
  // Views of these are held until the row ends.
  const std::string domains = joinDomains(entry.domains);
  const std::string tables = fmt::format("{}", fmt::join(entry.tables, "/"));
  writer.text(entry.name);
  writer.text(tool::typeWord(entry.type));
  writer.number(static_cast<double>(entry.domains.size()));
  writer.text(domains);
  writer.number(entry.userInfo);
  writer.text(entry.aliasOf);
  writer.text(entry.text);
  if (withTables) {
    writer.text(tables);
  }
  if (entry.records) {
    writer.number(static_cast<double>(*entry.records));
  }
  writer.endRow();
}

void writeManifest(const std::string& folder, const std::vector<ManifestEntry>& entries) {
  CsvWriter csv(manifestPath(folder));
  TableHead head = manifestHead(entries.size());
  head.columns.erase(head.columns.begin() + tablesColumn);
  csv.begin(head);
  for (const ManifestEntry& entry : entries) {
    writeEntry(csv, entry, false);
  }
  csv.finish();
}

std::vector<ManifestEntry> readManifest(TableReader& reader, ProblemList& problems) {
  return ManifestReader(reader, problems).read();
}

}  // namespace formats
