// A whole database in a file of many tables, as formats/database_export.h writes it: _symbols,
// _labels, and the tables that _symbols names.
#ifndef ZTB_FORMATS_TABLES_DATABASE_H_
#define ZTB_FORMATS_TABLES_DATABASE_H_

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

// How the tables of such a file are found and opened.
struct TablesFile {
  std::string path;
  std::vector<std::string> tables;
  std::unique_ptr<TableReader> (*open)(const TableSource& source) = nullptr;
};

// Throws UsageError, with the tables that there are, where none is _symbols.
std::unique_ptr<DatabaseReader> openTablesDatabase(TablesFile file);

// The table of symbols that such a file has.
inline constexpr const char* symbolsTable = "_symbols";

// What the table of symbols of a file tells of its tables, so that one that is read alone is read
// like the whole database: spelled as TableHead::exact tells, with all parts that it was split
// into. Of a file that has tables of its owner too, these are none of ours.
class OwnTables {
 public:
  // Nothing is ours.
  OwnTables() = default;
  // What cannot be read is left out.
  explicit OwnTables(TableReader& catalogue);

  [[nodiscard]] bool has(const std::string& table) const;
  // The table, and where it is the first one of a symbol all that hold the others of its records.
  [[nodiscard]] std::vector<std::string> partsOf(const std::string& table) const;
  // The table of the only symbol that has one; nothing where there are more.
  [[nodiscard]] std::optional<std::string> only() const;

 private:
  std::vector<std::vector<std::string>> symbols_;
  bool hasLabels_ = false;
};

// Opens tables of a file as one, with the header of the first, each as part of a whole database.
std::unique_ptr<TableReader> openParts(TablesFile file, std::vector<std::string> parts);

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_DATABASE_H_
