// Brings what an import read into a database that is there already.
//
// The import fills a database of its own first, so that one with problems leaves nothing behind. It
// is lent the sets that its symbols may be over.
#ifndef ZTB_FORMATS_DATABASE_MERGE_H_
#define ZTB_FORMATS_DATABASE_MERGE_H_

#include <ztb/ztb.hpp>

#include "formats/tables/record_import.h"

namespace formats {

// Adds the sets of one position of `target`, and aliases of them, to an empty database, with their
// elements if those are asked for, which `records` then knows.
void lendSets(ztbRec* target, ztb::Database& database, RecordImport& records, bool withElements);

// Adds all symbols of `database` from the position `first` on to `target`, which has the ones
// before under the same names. Throws ztb::Error, with nothing added, where one of the names is
// taken.
void addSymbols(ztbRec* target, const ztb::Database& database, int first, int firstLabel);

}  // namespace formats

#endif  // ZTB_FORMATS_DATABASE_MERGE_H_
