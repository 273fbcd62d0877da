// What files and columns of a database in Parquet files are called.
#ifndef ZTB_FORMATS_PARQUET_PARQUET_NAMES_H_
#define ZTB_FORMATS_PARQUET_PARQUET_NAMES_H_

#include <string>
#include <string_view>

#include "formats/file_name.h"

namespace formats {

inline std::string parquetFile(const std::string& folder, const std::string& name) {
  return nameIn(folder, name + ".parquet");
}
inline constexpr const char* parquetSymbols = "_symbols";
inline constexpr const char* parquetLabels = "_labels";

// Behind the name of a column of numbers: that of the texts of those which are not the same as
// doubles that compare equal.
inline constexpr std::string_view exactEnding = " (exact)";
// The name of a column of keys: that of its domain, spelled out where no column can be called so.
std::string keyColumnName(std::string_view domain);
// In the table of symbols, how many records each has; and under this key in the metadata of its
// file, how many labels there are.
inline constexpr const char* recordsColumn = "records";
inline constexpr const char* labelCountKey = "ztb_labels";

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_PARQUET_NAMES_H_
