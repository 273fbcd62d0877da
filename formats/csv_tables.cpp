#include "formats/csv_tables.h"

#include <cstdio>
#include <string>

#include "formats/tables/csv_reader.h"
#include "formats/tables/csv_writer.h"

namespace formats {

namespace {

std::unique_ptr<TableWriter> make(const std::string& path, CsvForm form) {
  if (path == "-") {
    return std::make_unique<CsvWriter>(stdout, "standard output", form);
  }
  return std::make_unique<CsvWriter>(path, form);
}

}  // namespace

std::unique_ptr<TableReader> openCsv(const TableSource& source) {
  return std::make_unique<CsvReader>(source.path, source.separator);
}

std::unique_ptr<TableReader> openTsv(const TableSource& source) {
  return std::make_unique<CsvReader>(source.path, '\t');
}

std::unique_ptr<TableWriter> makeCsv(const TableTarget& target) {
  return make(target.path, {.separator = target.separator, .decimal = target.decimal});
}

std::unique_ptr<TableWriter> makeTsv(const TableTarget& target) {
  return make(target.path, {.separator = '\t', .decimal = target.decimal});
}

}  // namespace formats
