// A whole database as a folder of CSV files; formats/tables/manifest.h tells what it holds.
#ifndef ZTB_FORMATS_CSV_FOLDER_H_
#define ZTB_FORMATS_CSV_FOLDER_H_

#include <memory>
#include <string>

#include "formats/database_export.h"
#include "formats/database_reader.h"

namespace formats {

// Whether a path is that of a folder with such files.
bool isCsvFolder(const std::string& path);

std::unique_ptr<DatabaseReader> openCsvFolder(const std::string& path);

// Makes the folder if it is not there. The table of symbols comes last, so that a folder without it
// is not complete.
void writeCsvFolder(const DatabaseExport& database);

}  // namespace formats

#endif  // ZTB_FORMATS_CSV_FOLDER_H_
