#include "formats/csv_folder.h"

#include <vector>

#include "formats/file_name.h"
#include "formats/tables/csv_reader.h"
#include "formats/tables/csv_writer.h"

namespace formats {

namespace {

class CsvFolderReader : public DatabaseReader {
 public:
  explicit CsvFolderReader(std::string folder) : folder_(std::move(folder)) {}

  std::vector<ManifestEntry> symbols(ProblemList& problems) override {
    CsvReader reader(manifestPath(folder_), ',');
    return readManifest(reader, problems);
  }
  [[nodiscard]] std::string place(const ManifestEntry& entry) const override {
    return placeText(manifestPath(folder_), entry.at);
  }
  std::unique_ptr<TableReader> labels() override {
    const std::string path = labelsPath(folder_);
    if (!isThere(path)) {
      return nullptr;
    }
    return std::make_unique<CsvReader>(path, ',');
  }
  std::unique_ptr<TableReader> records(const ManifestEntry& entry) override {
    return std::make_unique<CsvReader>(recordsPath(folder_, entry.name), ',');
  }

 private:
  std::string folder_;
};

void writeLabelFile(const std::string& folder, const tool::ExchangeFile& file) {
  CsvWriter csv(labelsPath(folder));
  csv.text("label");
  csv.endRow();
  for (int number = 1; number <= file.labelCount(); ++number) {
    csv.label(file.label(number));
    csv.endRow();
  }
  csv.finish();
}

}  // namespace

bool isCsvFolder(const std::string& path) {
  return isThere(manifestPath(path));
}

std::unique_ptr<DatabaseReader> openCsvFolder(const std::string& path) {
  return std::make_unique<CsvFolderReader>(path);
}

void writeCsvFolder(const DatabaseExport& database) {
  const std::string& folder = database.path;
  beginFolder(manifestPath(folder), filesOf(database, recordsPath),
              [](const std::string& path) { return std::make_unique<CsvReader>(path, ','); });
  writeLabelFile(folder, database.file);
  std::vector<ManifestEntry> entries;
  for (const tool::FileSymbol* symbol : database.symbols) {
    entries.push_back(describe(database.file, *symbol));
    if (!symbol->isAlias()) {
      const std::string path = recordsPath(folder, symbol->name);
      database.progress.step("writing " + path);
      CsvWriter csv(path);
      csv.begin(headOf(*symbol));
      database.records += writeRecords(csv, database.file, *symbol, database.progress);
      csv.finish();
    }
  }
  entries.push_back(universeEntry(database.file));
  writeManifest(folder, entries);
}

}  // namespace formats
