#include <fmt/format.h>

#include <algorithm>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <utility>
#include <ztb/column_names.hpp>

#include "formats/file_name.h"
#include "formats/parquet/parquet_names.h"
#include "formats/parquet/parquet_reader.h"
#include "formats/parquet/parquet_tables.h"
#include "formats/parquet/parquet_writer.h"
#include "formats/parquet/symbol_stream.h"
#include "formats/tables/exact_text.h"
#include "formats/tables_database.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// The columns of the table of symbols that the manifest has.
constexpr std::size_t manifestColumns = 8;
constexpr std::size_t everyColumn = ZTB_MAX_DIMENSION + 2 * ztb::fieldCount;

// Rows whose number was noted when they were written: a file that was cut or replaced is told.
class CountedReader : public ParquetReader {
 public:
  CountedReader(std::shared_ptr<const DuckdbSession> session, const std::string& path,
                std::size_t expected)
      : ParquetReader(std::move(session), path, true, everyColumn), expected_(expected) {}

  bool next(ProblemList& problems) override {
    if (ParquetReader::next(problems)) return true;
    if (rowCount() != expected_) {
      problems.add(path(), fmt::format("has {}, and {} were written to it",
                                       tool::counted(rowCount(), "row"), expected_));
    }
    return false;
  }
  // Columns of another number of rows are told by next().
  std::unique_ptr<BulkRows> columns(const BulkColumnPlaces& wanted,
                                    tool::Progress& progress) override {
    std::unique_ptr<BulkRows> rows = ParquetReader::columns(wanted, progress);
    return rows && rows->piece(0).rows == expected_ ? std::move(rows) : nullptr;
  }

 private:
  std::size_t expected_;
};

class ParquetFolderReader : public DatabaseReader {
 public:
  explicit ParquetFolderReader(std::string folder) : folder_(std::move(folder)) {}

  std::vector<ManifestEntry> symbols(ProblemList& problems) override {
    const std::string path = pathOf(parquetSymbols);
    readCounts(path);
    ParquetReader reader(session_, path, true, manifestColumns);
    return readManifest(reader, problems);
  }
  [[nodiscard]] std::string place(const ManifestEntry& entry) const override {
    return fmt::format("{}: row {}", pathOf(parquetSymbols), entry.at.line);
  }
  std::unique_ptr<TableReader> labels() override {
    return std::make_unique<CountedReader>(session_, pathOf(parquetLabels), labelCount_);
  }
  std::unique_ptr<TableReader> records(const ManifestEntry& entry) override {
    return std::make_unique<CountedReader>(session_, pathOf(entry.name), countOf(entry.name));
  }

 private:
  [[nodiscard]] std::string pathOf(const std::string& name) const {
    return parquetFile(folder_, name);
  }
  [[nodiscard]] std::size_t countOf(const std::string& symbol) const {
    const auto found = counts_.find(symbol);
    return found == counts_.end() ? 0 : found->second;
  }

  void readCounts(const std::string& path) {
    static_cast<void>(parquetColumns(*session_, path));
    const auto counts = session_->query(fmt::format("select symbol::varchar, {}::double from {}",
                                                    recordsColumn, parquetSource(path)),
                                        path);
    for (DuckdbRows rows = counts->next(); rows.count() > 0; rows = counts->next()) {
      for (std::size_t row = 0; row < rows.count(); ++row) {
        const bool isThere = !rows.isNull(0, row) && !rows.isNull(1, row);
        if (isThere) {
          counts_[std::string(rows.text(0, row))] =
              static_cast<std::size_t>(std::max(rows.doubles(1)[row], 0.0));
        }
      }
    }
    const auto labels = session_->query(
        fmt::format("select decode(value)::bigint::double from parquet_kv_metadata({}) "
                    "where key = '{}'",
                    parquetName(path), labelCountKey),
        path);
    const DuckdbRows rows = labels->next();
    if (rows.count() != 1 || rows.isNull(0, 0)) {
      throw tool::Failure(fmt::format("{}: does not tell how many labels there are", path),
                          ZTB_ERROR_DAMAGED_FILE);
    }
    labelCount_ = static_cast<std::size_t>(std::max(rows.doubles(0)[0], 0.0));
  }

  std::string folder_;
  std::shared_ptr<const DuckdbSession> session_ = std::make_shared<DuckdbSession>();
  std::map<std::string, std::size_t> counts_;
  std::size_t labelCount_ = 0;
};

}  // namespace

std::unique_ptr<TableReader> openParquet(const TableSource& source) {
  auto session = std::make_shared<DuckdbSession>();
  OwnTables own;
  const std::string symbols = parquetFile(folderOf(source.path), parquetSymbols);
  if (isThere(symbols)) {
    ProblemList ignored(0);
    ignored.attempt([&] {
      ParquetReader catalogue(session, symbols, true, manifestColumns);
      own = OwnTables(catalogue);
    });
  }
  const std::string name = tool::nameOf(tool::pathOf(source.path).stem());
  return std::make_unique<ParquetReader>(std::move(session), source.path,
                                         source.exact || own.has(name),
                                         std::numeric_limits<std::size_t>::max());
}

bool isParquetFolder(const std::string& path) {
  return isThere(parquetFile(path, parquetSymbols));
}

std::unique_ptr<DatabaseReader> openParquetFolder(const std::string& path) {
  return std::make_unique<ParquetFolderReader>(path);
}

void writeParquetFolder(const DatabaseExport& database) {
  // Without DuckDB nothing is touched.
  const auto opened = std::make_shared<DuckdbSession>();
  DuckdbSession& session = *opened;
  const std::string& folder = database.path;
  beginFolder(parquetFile(folder, parquetSymbols), filesOf(database, parquetFile),
              [&](const std::string& path) {
                return std::make_unique<ParquetReader>(opened, path, true, everyColumn);
              });
  ParquetWriter manifest(session, parquetFile(folder, parquetSymbols));
  // Numbers of records are a column of its own.
  TableHead head = manifestHead(database.symbols.size());
  head.columns.pop_back();
  manifest.begin(head);
  std::vector<double> counts;
  for (const tool::FileSymbol* symbol : database.symbols) {
    ManifestEntry entry = describe(database.file, *symbol);
    if (!symbol->isAlias()) entry.tables = {symbol->name};
    counts.push_back(symbol->isAlias() ? 0 : static_cast<double>(symbol->recordCount));
    entry.records.reset();
    writeEntry(manifest, entry, true);
  }
  manifest.addColumn(recordsColumn, std::move(counts));
  database.progress.step("writing labels");
  OwnedStream labels;
  const std::string label = makeLabelStream(database.file, &labels.stream());
  session.writeParquet(labels.stream(), label, parquetFile(folder, parquetLabels));
  for (const tool::FileSymbol* symbol : database.symbols) {
    if (symbol->isAlias()) continue;
    const std::string path = parquetFile(folder, symbol->name);
    database.progress.step("writing " + path);
    OwnedStream stream;
    const std::string list = makeSymbolStream(database, *symbol, true, &stream.stream());
    session.writeParquet(stream.stream(), list, path);
    database.records += symbol->recordCount;
  }
  manifest.finish(
      fmt::format(", kv_metadata {{{}: '{}'}}", labelCountKey, database.file.labelCount()));
}

}  // namespace formats
