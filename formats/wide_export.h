// Writes a symbol as a wide table: the labels of one position as columns.
#ifndef ZTB_FORMATS_WIDE_EXPORT_H_
#define ZTB_FORMATS_WIDE_EXPORT_H_

#include <cstddef>
#include <string>

#include "formats/tables/table_writer.h"
#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace formats {

// Writes the table whole. `position` is the name of a key column, or its number from 1; the values
// are those of a parameter, or the levels of a variable or equation. Columns stand in the order of
// the labels, rows in that of theirs. Throws UsageError for a position that there is
// not, and for a set. Gives the number of records.
std::size_t writeWide(TableWriter& writer, const tool::ExchangeFile& file,
                      const tool::FileSymbol& symbol, const std::string& position,
                      tool::Progress& progress);

}  // namespace formats

#endif  // ZTB_FORMATS_WIDE_EXPORT_H_
