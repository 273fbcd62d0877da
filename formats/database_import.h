// Makes a database from a whole one that a file of another program has.
#ifndef ZTB_FORMATS_DATABASE_IMPORT_H_
#define ZTB_FORMATS_DATABASE_IMPORT_H_

#include <ztb/ztb.hpp>

#include "formats/database_reader.h"
#include "formats/tables/record_import.h"

namespace formats {

// Adds all symbols in their order, and reads labels and records. Without a table of labels they are
// numbered as they come. What is wrong goes to problems; throws Failure for what cannot be read at
// all.
void importDatabase(ztb::Database& database, DatabaseReader& reader, RecordImport& records,
                    ProblemList& problems);

}  // namespace formats

#endif  // ZTB_FORMATS_DATABASE_IMPORT_H_
