// Writes records of an exchange file as tables.
#ifndef ZTB_FORMATS_DATABASE_EXPORT_H_
#define ZTB_FORMATS_DATABASE_EXPORT_H_

#include <cstddef>
#include <string>
#include <vector>

#include "formats/tables/manifest.h"
#include "formats/tables/table_writer.h"
#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace formats {

// What is written, and how far it came.
struct DatabaseExport {
  const tool::ExchangeFile& file;
  std::vector<const tool::FileSymbol*> symbols;
  std::string path;
  tool::Progress& progress;
  std::size_t& records;
  // What is worth a word.
  std::vector<std::string>& notes;
};

// The columns of a symbol's table.
TableHead headOf(const tool::FileSymbol& symbol);
// The files of a folder that records go to, whose names `pathOf` tells by folder and symbol.
std::vector<FolderFile> filesOf(const DatabaseExport& database,
                                std::string (*pathOf)(const std::string& folder,
                                                      const std::string& symbol));

// Writes the records of a symbol into the table that was begun; gives their number.
std::size_t writeRecords(TableWriter& writer, const tool::ExchangeFile& file,
                         const tool::FileSymbol& symbol, tool::Progress& progress);

// Ends the table of a symbol, and all of them, as the progress tells.
void endTable(TableWriter& writer, const std::string& name, tool::Progress& progress);
void finishTables(TableWriter& writer, const std::string& path, tool::Progress& progress);

// Writes a database into a file of many tables: _symbols, _labels and one for each symbol.
void writeTables(TableWriter& writer, const DatabaseExport& database);

}  // namespace formats

#endif  // ZTB_FORMATS_DATABASE_EXPORT_H_
