// Writes the records of a symbol as comma-separated values with all processors.
//
// Each thread takes the next block of the file, makes it into text and, when its turn comes, writes
// it: rows stand in the order of the records, and a block a thread is held in memory.
#ifndef ZTB_FORMATS_CSV_RECORDS_H_
#define ZTB_FORMATS_CSV_RECORDS_H_

#include <cstddef>

#include "formats/tables/csv_writer.h"
#include "tools/files/exchange_file.h"
#include "tools/text/progress.h"

namespace formats {

// Whether a symbol is big enough for it.
bool writesInBlocks(const CsvWriter& writer, const tool::FileSymbol& symbol);

// Writes the rows below the header and gives their number. What fails in a thread is thrown here.
std::size_t writeCsvRecords(CsvWriter& writer, const tool::ExchangeFile& file,
                            const tool::FileSymbol& symbol, tool::Progress& progress);

}  // namespace formats

#endif  // ZTB_FORMATS_CSV_RECORDS_H_
