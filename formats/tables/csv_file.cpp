// What CsvWriter needs the libraries of packed files for stands here, so that a program which
// writes to its standard output alone does without them.

#include "formats/tables/byte_sink.h"
#include "formats/tables/csv_writer.h"

namespace formats {

CsvWriter::CsvWriter(const std::string& path, CsvForm form)
    : name_(path), owned_(makeBytes(path)), rows_(form) {}

}  // namespace formats
