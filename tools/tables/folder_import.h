// Makes a database from a folder that an export left.
#ifndef ZTB_TOOLS_TABLES_FOLDER_IMPORT_H_
#define ZTB_TOOLS_TABLES_FOLDER_IMPORT_H_

#include <string>
#include <ztb/ztb.hpp>

#include "tools/tables/record_import.h"

namespace tool {

// Adds all symbols of the folder, in their order, and reads labels and records (see manifest.h for
// the files). Without a file of labels they are numbered as they come. What is wrong with a file
// goes to problems; throws Failure for a file that cannot be read at all.
void importFolder(ztb::Database& database, const std::string& folder, RecordImport& records,
                  ProblemList& problems);

}  // namespace tool

#endif  // ZTB_TOOLS_TABLES_FOLDER_IMPORT_H_
