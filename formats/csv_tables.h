// Tables whose fields are parted by a char: CSV and TSV.
#ifndef ZTB_FORMATS_CSV_TABLES_H_
#define ZTB_FORMATS_CSV_TABLES_H_

#include <memory>

#include "formats/table_source.h"
#include "formats/tables/table_reader.h"
#include "formats/tables/table_writer.h"

namespace formats {

std::unique_ptr<TableReader> openCsv(const TableSource& source);
std::unique_ptr<TableReader> openTsv(const TableSource& source);
// "-" is standard output.
std::unique_ptr<TableWriter> makeCsv(const TableTarget& target);
std::unique_ptr<TableWriter> makeTsv(const TableTarget& target);

}  // namespace formats

#endif  // ZTB_FORMATS_CSV_TABLES_H_
