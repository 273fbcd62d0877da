#include "formats/tables_database.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

constexpr const char* labelsTable = "_labels";

// Tables one behind the other, with the header of the first.
class JoinedTables : public TableReader {
 public:
  JoinedTables(TablesFile file, std::vector<std::string> names)
      : TableReader(file.path), file_(std::move(file)), names_(std::move(names)) {}

  bool next(ProblemList& problems) override {
    while (reader_ == nullptr || !reader_->next(problems)) {
      if (at_ == names_.size()) return false;
      reader_ = file_.open({.path = file_.path, .part = names_[at_], .exact = true});
      path_ = reader_->path();
      const bool first = at_++ == 0;
      if (!first && !reader_->next(problems)) return false;
    }
    fields_ = reader_->fields();
    return true;
  }
  [[nodiscard]] TextPosition position() const override {
    return reader_ == nullptr ? TextPosition{} : reader_->position();
  }
  [[nodiscard]] std::string place(TextPosition at) const override {
    return reader_ == nullptr ? path_ : reader_->place(at);
  }
  [[nodiscard]] std::string shortPlace(TextPosition at) const override {
    return reader_ == nullptr ? path_ : reader_->shortPlace(at);
  }

 private:
  TablesFile file_;
  std::vector<std::string> names_;
  std::unique_ptr<TableReader> reader_;
  std::size_t at_ = 0;
};

class TablesDatabase : public DatabaseReader {
 public:
  explicit TablesDatabase(TablesFile file) : file_(std::move(file)) {}

  std::vector<ManifestEntry> symbols(ProblemList& problems) override {
    catalogue_ = open(symbolsTable);
    std::vector<ManifestEntry> entries = readManifest(*catalogue_, problems);
    std::erase_if(entries, [&](const ManifestEntry& entry) {
      const bool missing =
          !isUniverse(entry) &&
          ((entry.tables.empty() && entry.type != ztb::Type::alias) ||
           !std::ranges::all_of(entry.tables, [&](const auto& table) { return has(table); }));
      if (missing) {
        problems.add(place(entry),
                     fmt::format("tables: {} has no table {}", entry.name,
                                 tool::inQuotes(fmt::format("{}", fmt::join(entry.tables, "/")))));
      }
      return missing;
    });
    return entries;
  }
  [[nodiscard]] std::string place(const ManifestEntry& entry) const override {
    return catalogue_->place(entry.at);
  }
  std::unique_ptr<TableReader> labels() override {
    if (!has(labelsTable)) return nullptr;
    std::vector<std::string> names{labelsTable};
    for (int number = 2; has(fmt::format("{} ({})", labelsTable, number)); ++number) {
      names.push_back(fmt::format("{} ({})", labelsTable, number));
    }
    return std::make_unique<JoinedTables>(file_, std::move(names));
  }
  std::unique_ptr<TableReader> records(const ManifestEntry& entry) override {
    if (entry.tables.size() == 1) return open(entry.tables.front());
    return std::make_unique<JoinedTables>(file_, entry.tables);
  }

 private:
  [[nodiscard]] bool has(const std::string& table) const {
    return std::ranges::find(file_.tables, table) != file_.tables.end();
  }
  std::unique_ptr<TableReader> open(const std::string& table) const {
    return file_.open({.path = file_.path, .part = table, .exact = true});
  }

  TablesFile file_;
  std::unique_ptr<TableReader> catalogue_;
};

}  // namespace

OwnTables::OwnTables(TableReader& catalogue) {
  ProblemList ignored(0);
  ignored.attempt([&] {
    for (ManifestEntry& entry : readManifest(catalogue, ignored)) {
      if (isUniverse(entry)) {
        hasLabels_ = true;
      } else if (!entry.tables.empty()) {
        symbols_.push_back(std::move(entry.tables));
      }
    }
  });
}

bool OwnTables::has(const std::string& table) const {
  if (table == labelsTable && hasLabels_) return true;
  return std::ranges::any_of(symbols_, [&](const std::vector<std::string>& tables) {
    return std::ranges::find(tables, table) != tables.end();
  });
}

std::vector<std::string> OwnTables::partsOf(const std::string& table) const {
  for (const std::vector<std::string>& tables : symbols_) {
    if (tables.front() == table) return tables;
  }
  return {table};
}

std::optional<std::string> OwnTables::only() const {
  if (symbols_.size() != 1) return std::nullopt;
  return symbols_.front().front();
}

std::unique_ptr<TableReader> openParts(TablesFile file, std::vector<std::string> parts) {
  return std::make_unique<JoinedTables>(std::move(file), std::move(parts));
}

std::unique_ptr<DatabaseReader> openTablesDatabase(TablesFile file) {
  if (std::ranges::find(file.tables, symbolsTable) == file.tables.end()) {
    throw tool::UsageError(fmt::format(
        "{}: no whole database was written to it; give --from {}#TABLE with --set, --parameter or "
        "--variable. Its tables are {}",
        file.path, file.path, tool::shortened(fmt::format("{}", fmt::join(file.tables, ", ")))));
  }
  return std::make_unique<TablesDatabase>(std::move(file));
}

}  // namespace formats
