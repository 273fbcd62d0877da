// Tables and whole databases as JSON lines: an object on each line.
//
// Of a table each object is a row, whose keys are the columns. Of a database the first
// line is {"symbols":3,"labels":12}, which follow: a line for each symbol, {"symbol":...,
// "type":..., "domains":[...], "user_info":..., "records":..., "alias_of":..., "text":...}; then
// one for each label, {"label":...}; then the records,
// {"of":"price","keys":["Milk"],"value":11}, with "text" for a set and the five fields for a
// variable or equation. Special values are the words of NumberText, as strings; what is no UTF-8 is
// spelled as exact_text.h tells.
#ifndef ZTB_FORMATS_JSON_JSON_LINES_H_
#define ZTB_FORMATS_JSON_JSON_LINES_H_

#include <memory>
#include <string>

#include "formats/database_export.h"
#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

// The columns are the keys of all objects, or those of the first one where they have all that are
// used; a key that an object lacks is missing there.
std::unique_ptr<TableReader> openJsonLines(const TableSource& source);
std::unique_ptr<TableWriter> makeJsonLines(const TableTarget& target);
std::unique_ptr<DatabaseReader> openJsonDatabase(const std::string& path);
void writeJsonDatabase(const DatabaseExport& database);

}  // namespace formats

#endif  // ZTB_FORMATS_JSON_JSON_LINES_H_
