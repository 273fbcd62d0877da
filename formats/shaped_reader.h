// A table in the shape that an import wants: columns renamed, dates as ISO labels, numbers in
// another unit, and columns of a wide table turned into rows.
#ifndef ZTB_FORMATS_SHAPED_READER_H_
#define ZTB_FORMATS_SHAPED_READER_H_

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "formats/tables/table_reader.h"

namespace formats {

// In which order day, month and year stand in a date.
enum class DateOrder { dayFirst, monthFirst, yearFirst };

// How the numbers of a column become those of another unit: times one number, by another.
struct UnitChange {
  std::string column;
  double factor = 1;
  double divisor = 1;
};

struct TableShape {
  // Old and new names of columns.
  std::vector<std::pair<std::string, std::string>> renames;
  std::optional<DateOrder> dates;
  // The name of the column that the titles of the spread columns are labels of; empty where no
  // column is spread. Their cells are then in the column "value".
  std::string wide;
  // The spread columns; empty for all that `kept` does not name.
  std::vector<std::string> spread;
  std::vector<std::string> kept;
  // Of columns by their new names, and of the values of spread ones.
  std::vector<UnitChange> units;
  // Where the fraction of a number begins.
  char decimal = '.';

  [[nodiscard]] bool plain() const {
    return renames.empty() && !dates && wide.empty() && units.empty();
  }
};

// The name of the column of the values that a wide table gives.
inline constexpr const char* spreadValues = "value";

// "year" or "year: 2020, 2021" and "OLD = NEW" into the shape. Throws UsageError, which names the
// option, for anything else.
void parseWide(const std::string& argument, TableShape& shape);
void parseRename(const std::string& argument, TableShape& shape);
// "COLUMN = 1000" or "COLUMN = 1/100".
void parseUnits(const std::string& argument, TableShape& shape);
// "dmy", "mdy" or "ymd".
void parseDates(const std::string& argument, TableShape& shape);

// A date as its ISO form, "2024-03-01": three numbers parted by points, slashes or hyphens; nothing
// for any other text, and for a day that there is not.
std::optional<std::string> isoDate(std::string_view text, DateOrder order);

// The table in this shape. Cells of spread columns that are empty are left out.
std::unique_ptr<TableReader> shaped(std::unique_ptr<TableReader> reader, const TableShape& shape);

}  // namespace formats

#endif  // ZTB_FORMATS_SHAPED_READER_H_
