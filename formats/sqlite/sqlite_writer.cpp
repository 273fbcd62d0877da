#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <map>
#include <set>

#include "formats/sqlite/sqlite_file.h"
#include "formats/sqlite/sqlite_tables.h"
#include "tools/files/new_file.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

constexpr std::uint64_t notAvailable = 0x7FF8000000000000;

const char* typeOf(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::number:
      // A value may be a text; and a column of reals would not keep the sign of a zero.
      return "any";
    case ColumnKind::integer:
      return "integer not null";
    default:
      return "text not null";
  }
}

class SqliteWriter : public TableWriter {
 public:
  explicit SqliteWriter(const std::string& path)
      : published_(path), file_(SqliteFile::forWriting(published_.temporary(), path)) {
    requireReplaceableSqlite(path);
    file_.run("begin");
  }

  std::vector<std::string> namesFor(const std::string& name, std::size_t rows) override {
    (void)rows;
    const std::string table = freeName(name);
    taken_.insert(tool::folded(table));
    names_[name] = table;
    return {table};
  }

  void begin(const TableHead& head) override {
    const auto named = names_.find(head.name);
    const std::string name = named == names_.end() ? head.name : named->second;
    keys_.clear();
    std::string columns;
    std::string marks;
    for (std::size_t at = 0; at < head.columns.size(); ++at) {
      const TableColumn& column = head.columns[at];
      const std::string quoted = quotedName(column.name);
      columns += fmt::format("{}{} {}", at == 0 ? "" : ", ", quoted, typeOf(column.kind));
      marks += at == 0 ? "?" : ", ?";
      if (at < head.keys) keys_ += (at == 0 ? "" : ", ") + quoted;
    }
    table_ = name;
    hasGaps_ = head.hasGaps;
    kinds_.clear();
    for (const TableColumn& column : head.columns) kinds_.push_back(column.kind);
    file_.run(
        fmt::format("create table {} /*{}*/ ({}) strict", quotedName(name), exportMark, columns));
    insert_ = file_.prepare(fmt::format("insert into {} values ({})", quotedName(name), marks));
    at_ = 0;
  }

  void label(std::string_view text) override { bindText(text); }
  void text(std::string_view text) override { bindText(text); }
  void number(double value) override {
    ++at_;
    if (std::isnan(value)) {
      if (!hasGaps_ && std::bit_cast<std::uint64_t>(value) == notAvailable) {
        sqlite3_bind_null(insert_.get(), at_);
      } else {
        const tool::NumberText spelled(value);
        sqlite3_bind_text(insert_.get(), at_, spelled.view().data(),
                          static_cast<int>(spelled.view().size()), SQLITE_TRANSIENT);
      }
    } else if (kinds_[static_cast<std::size_t>(at_) - 1] == ColumnKind::integer) {
      sqlite3_bind_int64(insert_.get(), at_, static_cast<sqlite3_int64>(value));
    } else {
      sqlite3_bind_double(insert_.get(), at_, value);
    }
  }
  void missing() override { sqlite3_bind_null(insert_.get(), ++at_); }

  void endRow() override {
    if (sqlite3_step(insert_.get()) != SQLITE_DONE || sqlite3_reset(insert_.get()) != SQLITE_OK) {
      file_.fail();
    }
    at_ = 0;
  }

  [[nodiscard]] std::string_view ending() const override {
    return keys_.empty() ? std::string_view() : "indexing";
  }

  void end() override {
    insert_.reset();
    if (keys_.empty()) return;
    std::string name = freeName(table_ + " keys");
    taken_.insert(tool::folded(name));
    file_.run(fmt::format("create unique index {} on {} ({})", quotedName(name), quotedName(table_),
                          keys_));
  }

  void finish() override {
    file_.run("commit");
    file_.close();
    published_.publish();
  }

 private:
  // The name of a table as SQLite takes it: not one of its own, and none that there is already.
  [[nodiscard]] std::string freeName(const std::string& name) const {
    constexpr std::string_view reserved = "sqlite_";
    const bool isReserved = tool::sameFolded(name.substr(0, reserved.size()), reserved);
    std::string base = isReserved ? "table_" + name : name;
    // Slashes part the names of tables in _symbols.
    std::ranges::replace(base, '/', '_');
    std::string result = base;
    for (int number = 2; taken_.contains(tool::folded(result)); ++number) {
      result = fmt::format("{}_{}", base, number);
    }
    return result;
  }

  void bindText(std::string_view text) {
    sqlite3_bind_text(insert_.get(), ++at_, text.data() == nullptr ? "" : text.data(),
                      static_cast<int>(text.size()), SQLITE_STATIC);
  }

  tool::NewFile published_;
  SqliteFile file_;
  SqliteStatement insert_;
  std::string table_;
  std::string keys_;
  std::vector<ColumnKind> kinds_;
  bool hasGaps_ = false;
  // The tables of symbols, and all names that are taken, in folded letters.
  std::map<std::string, std::string> names_;
  std::set<std::string> taken_{"_symbols", "_labels"};
  int at_ = 0;
};

}  // namespace

std::unique_ptr<TableWriter> makeSqlite(const TableTarget& target) {
  return std::make_unique<SqliteWriter>(target.path);
}

void writeSqliteDatabase(const DatabaseExport& database) {
  SqliteWriter writer(database.path);
  writeTables(writer, database);
}

}  // namespace formats
