#include "formats/format_table.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ztb/case_folding.hpp>

#include "formats/csv_folder.h"
#include "formats/csv_tables.h"
#include "formats/excel/xlsx_tables.h"
#include "formats/json/json_lines.h"
#include "formats/parquet/parquet_tables.h"
#include "formats/sqlite/sqlite_tables.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

using ztb::sameFolded;

#ifdef ZTB_HAS_SQLITE
constexpr Format sqliteFormat{.name = "sqlite",
                              .endings = ".db .sqlite .sqlite3",
                              .inPlaces = true,
                              .hasParts = true,
                              .openTable = openSqlite,
                              .makeTables = makeSqlite,
                              .openDatabase = openSqliteDatabase,
                              .writeDatabase = writeSqliteDatabase};
#else
constexpr Format sqliteFormat{.name = "sqlite",
                              .endings = ".db .sqlite .sqlite3",
                              .missingToRead = "SQLite (Debian package libsqlite3-dev)",
                              .missingToWrite = "SQLite (Debian package libsqlite3-dev)",
                              .inPlaces = true,
                              .hasParts = true};
#endif

constexpr Format excelFormat{
    .name = "xlsx",
    .endings = ".xlsx .xlsm",
#ifndef ZTB_READS_EXCEL
    .missingToRead = "minizip and expat (Debian packages libminizip-dev and libexpat1-dev)",
#endif
#ifndef ZTB_WRITES_EXCEL
    .missingToWrite = "libxlsxwriter (Debian package libxlsxwriter-dev)",
#endif
    .inPlaces = true,
    .hasParts = true,
#ifdef ZTB_READS_EXCEL
    .openTable = openXlsx,
#endif
#ifdef ZTB_WRITES_EXCEL
    .makeTables = makeXlsx,
#endif
#ifdef ZTB_READS_EXCEL
    .openDatabase = openXlsxDatabase,
#endif
#ifdef ZTB_WRITES_EXCEL
    .writeDatabase = writeXlsxDatabase,
#endif
};

constexpr std::array allFormats{
    Format{.name = "csv",
           .endings = ".csv .csv.gz .csv.zst",
           .openTable = openCsv,
           .makeTables = makeCsv,
           .openDatabase = openCsvFolder,
           .writeDatabase = writeCsvFolder,
           .ownsFolder = isCsvFolder},
    Format{.name = "tsv",
           .endings = ".tsv .tab .tsv.gz .tsv.zst",
           .openTable = openTsv,
           .makeTables = makeTsv},
    sqliteFormat,
    excelFormat,
    Format{.name = "jsonl",
           .endings = ".jsonl .ndjson .jsonl.gz .ndjson.gz .jsonl.zst .ndjson.zst",
           .openTable = openJsonLines,
           .makeTables = makeJsonLines,
           .openDatabase = openJsonDatabase,
           .writeDatabase = writeJsonDatabase,
           .oneTableAlone = true},
    Format{.name = "parquet",
           .endings = ".parquet",
           .inPlaces = true,
           .openTable = openParquet,
           .makeTables = makeParquet,
           .writeSymbol = writeParquetSymbol,
           .openDatabase = openParquetFolder,
           .writeDatabase = writeParquetFolder,
           .ownsFolder = isParquetFolder},
};

// The longest ending of a format that the name of a file has, as its length; 0 for none.
std::size_t endingOf(const Format& format, std::string_view path) {
  std::size_t longest = 0;
  for (std::string_view rest = format.endings; !rest.empty();) {
    const std::size_t blank = std::min(rest.find(' '), rest.size());
    const std::string_view ending = rest.substr(0, blank);
    if (path.size() > ending.size() &&
        sameFolded(path.substr(path.size() - ending.size()), ending)) {
      longest = std::max(longest, ending.size());
    }
    rest.remove_prefix(std::min(blank + 1, rest.size()));
  }
  return longest;
}

}  // namespace

std::span<const Format> formatTable() {
  return allFormats;
}

void requireReadable(const Format& format) {
  if (*format.missingToRead != '\0') {
    throw tool::Failure(fmt::format("{} files cannot be read: ztb was built without {}",
                                    format.name, format.missingToRead),
                        ZTB_ERROR_NO_LIBRARY);
  }
}

void requireWritable(const Format& format) {
  if (*format.missingToWrite != '\0') {
    throw tool::Failure(fmt::format("{} files cannot be written: ztb was built without {}",
                                    format.name, format.missingToWrite),
                        ZTB_ERROR_NO_LIBRARY);
  }
}

const Format* formatNamed(std::string_view name) {
  for (const Format& format : formatTable()) {
    if (sameFolded(format.name, name)) return &format;
  }
  return nullptr;
}

const Format* formatOfFile(std::string_view path) {
  const Format* found = nullptr;
  std::size_t longest = 0;
  for (const Format& format : formatTable()) {
    if (const std::size_t length = endingOf(format, path); length > longest) {
      longest = length;
      found = &format;
    }
  }
  return found;
}

}  // namespace formats
