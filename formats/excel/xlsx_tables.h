// Tables of Excel workbooks, and whole databases in them.
//
// A database has a sheet for each symbol, one for _symbols and one for _labels, each with a head
// that stays on the screen. Special values are the words of NumberText; what a workbook cannot hold
// of a label or text is spelled as exact_text.h tells. A number that the file would round, or whose
// sign other programs drop, has its bits in the hidden last column of any sheet that is written,
// which count as long as the cell is left alone.
#ifndef ZTB_FORMATS_EXCEL_XLSX_TABLES_H_
#define ZTB_FORMATS_EXCEL_XLSX_TABLES_H_

#include <cstddef>
#include <memory>
#include <span>
#include <string>

#include "formats/database_export.h"
#include "formats/database_reader.h"
#include "formats/table_source.h"

namespace formats {

// The title of the column of bits.
inline constexpr const char* exactColumn = "_exact";

// The part is a sheet, a sheet with a range ("Prices!B3:F90") or a range of the first sheet; empty
// for all of the first sheet. The first row is the header.
std::unique_ptr<TableReader> openXlsx(const TableSource& source);
std::unique_ptr<DatabaseReader> openXlsxDatabase(const std::string& path);
std::unique_ptr<TableWriter> makeXlsx(const TableTarget& target);
void writeXlsxDatabase(const DatabaseExport& database);

// Reads a workbook that was written: each sheet has to end with the row of this number. The library
// that writes workbooks looks at no error of its temporary files, so that what a full disk has cut
// would go unnoticed. Throws Failure with the name that is to be shown.
void requireWholeWorkbook(const std::string& path, const std::string& shown,
                          std::span<const std::size_t> rows);

// The number that a workbook keeps of a value: 16 digits.
double roundedAsWorkbook(double value);

}  // namespace formats

#endif  // ZTB_FORMATS_EXCEL_XLSX_TABLES_H_
