// The records of a symbol of an exchange file, as a stream and the columns that it is written by.
#ifndef ZTB_FORMATS_PARQUET_SYMBOL_STREAM_H_
#define ZTB_FORMATS_PARQUET_SYMBOL_STREAM_H_

#include <ztb/arrow.h>

#include <string>

#include "formats/database_export.h"

namespace formats {

// A stream that is released when it goes.
class OwnedStream {
 public:
  OwnedStream() = default;
  OwnedStream(const OwnedStream&) = delete;
  OwnedStream& operator=(const OwnedStream&) = delete;
  ~OwnedStream() {
    if (stream_.release != nullptr) stream_.release(&stream_);
  }
  [[nodiscard]] ArrowArrayStream& stream() { return stream_; }

 private:
  ArrowArrayStream stream_{};
};

// Fills *stream and gives the select list of what is written. With `exact` labels and texts are
// spelled out where they have to be, and values that DuckDB does not keep stand in columns of their
// own.
std::string makeSymbolStream(const DatabaseExport& database, const tool::FileSymbol& symbol,
                             bool exact, ArrowArrayStream* stream);

// The same of all labels, as a column of texts.
std::string makeLabelStream(const tool::ExchangeFile& file, ArrowArrayStream* stream);

}  // namespace formats

#endif  // ZTB_FORMATS_PARQUET_SYMBOL_STREAM_H_
