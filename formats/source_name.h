// The name of a source, with the part of its file behind '#'.
#ifndef ZTB_FORMATS_SOURCE_NAME_H_
#define ZTB_FORMATS_SOURCE_NAME_H_

#include <string>

#include "formats/format_table.h"
#include "formats/table_source.h"

namespace formats {

// Parts "plan.xlsx#Prices!B3:F90": behind the first '#' in front of which a file or folder has its
// name; else behind the first one in front of which the ending is that of a format with parts. A
// name without is a path as it stands.
TableSource parseSource(const std::string& argument);

// The format of a file or folder: the one that is named, or else the one that its ending tells; a
// folder is that of CSV or Parquet files by what lies in it. A name that tells nothing is CSV.
// Throws UsageError for a name that is no format.
const Format& formatFor(const std::string& path, const std::string& named);

}  // namespace formats

#endif  // ZTB_FORMATS_SOURCE_NAME_H_
