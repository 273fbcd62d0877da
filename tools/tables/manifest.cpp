#include "tools/tables/manifest.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

#include "tools/tables/csv_reader.h"
#include "tools/tables/csv_writer.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

enum Column : std::size_t {
  nameColumn,
  typeColumn,
  dimensionColumn,
  domainsColumn,
  userInfoColumn,
  aliasColumn,
  textColumn,
  columnCount
};

constexpr std::array<std::string_view, columnCount> columnNames{
    "symbol", "type", "dimension", "domains", "user_info", "alias_of", "text"};

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

class ManifestReader {
 public:
  ManifestReader(const std::string& path, ProblemList& problems)
      : reader_(path, ','), problems_(problems) {}

  std::vector<ManifestEntry> read() {
    if (!reader_.next(problems_) ||
        !std::ranges::equal(reader_.fields(), columnNames, {}, &CsvField::text)) {
      problems_.add(reader_.path(), {.line = 1, .column = 1},
                    fmt::format("the header is not {}", fmt::join(columnNames, ",")));
      return {};
    }
    std::vector<ManifestEntry> entries;
    while (reader_.next(problems_)) {
      const std::size_t before = problems_.count();
      ManifestEntry entry = readEntry();
      if (problems_.count() == before) {
        entries.push_back(std::move(entry));
      }
    }
    return entries;
  }

 private:
  ManifestEntry readEntry() {
    ManifestEntry entry;
    entry.at = reader_.position();
    if (reader_.fields().size() != columnCount) {
      problems_.add(
          reader_.path(), reader_.position(),
          fmt::format("has {}, the header has {}", counted(reader_.fields().size(), "field"),
                      static_cast<std::size_t>(columnCount)));
      return entry;
    }
    entry.name = text(nameColumn);
    entry.aliasOf = text(aliasColumn);
    entry.text = text(textColumn);
    entry.domains = splitDomains(text(domainsColumn));
    if (const std::optional<ztb::Type> type = typeOfWord(text(typeColumn))) {
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
    for (const Column column : {nameColumn, aliasColumn, textColumn}) {
      if (text(column).find('\0') != std::string_view::npos) {
        problem(column, "holds a zero byte");
      }
    }
    return entry;
  }

  [[nodiscard]] std::string_view text(Column column) const { return reader_.fields()[column].text; }
  void problem(Column column, const std::string& reason) {
    problems_.add(reader_.path(), reader_.fields()[column].at,
                  fmt::format("{}: {} {}", columnNames[column], inQuotes(text(column)), reason));
  }

  CsvReader reader_;
  ProblemList& problems_;
};

}  // namespace

std::filesystem::path manifestPath(const std::filesystem::path& folder) {
  return folder / "_symbols.csv";
}

std::filesystem::path labelsPath(const std::filesystem::path& folder) {
  return folder / "_labels.csv";
}

std::filesystem::path recordsPath(const std::filesystem::path& folder, const std::string& symbol) {
  return folder / (symbol + ".csv");
}

ManifestEntry describe(const ExchangeFile& file, const FileSymbol& symbol) {
  ManifestEntry entry;
  entry.name = symbol.name;
  entry.type = symbol.type;
  entry.domains = domainNames(symbol);
  entry.text = symbol.text;
  entry.userInfo = symbol.userInfo;
  if (symbol.isAlias()) {
    entry.aliasOf = file.resolved(symbol).name;
  }
  return entry;
}

void writeManifest(const std::filesystem::path& folder, const std::vector<ManifestEntry>& entries) {
  CsvWriter csv(manifestPath(folder).string());
  for (const std::string_view column : columnNames) {
    csv.field(column);
  }
  csv.endRecord();
  for (const ManifestEntry& entry : entries) {
    csv.field(entry.name);
    csv.field(typeWord(entry.type));
    csv.field(std::to_string(entry.domains.size()));
    csv.field(joinDomains(entry.domains));
    csv.field(std::to_string(entry.userInfo));
    csv.field(entry.aliasOf);
    csv.field(entry.text);
    csv.endRecord();
  }
  csv.close();
}

std::vector<ManifestEntry> readManifest(const std::filesystem::path& folder,
                                        ProblemList& problems) {
  return ManifestReader(manifestPath(folder).string(), problems).read();
}

}  // namespace tool
