// An exchange file that is open for reading: its labels, texts and symbols in memory, its records
// on the disk.
#ifndef ZTB_PROVIDERS_RXF_RXF_READER_H_
#define ZTB_PROVIDERS_RXF_RXF_READER_H_

#include <cstdint>
#include <string>
#include <string_view>

#include "providers/rxf/file_header.h"
#include "providers/rxf/input_file.h"
#include "providers/rxf/name_list.h"
#include "providers/rxf/symbol_directory.h"

namespace rxffile {

class RxfReader {
 public:
  // Opens a file and verifies everything but the records. Failures: those of InputFile and of
  // FileHeader::read, damaged with the place, limitExceeded.
  RxfReader(SystemCalls& calls, const std::string& path);

  [[nodiscard]] const InputFile& file() const { return file_; }
  [[nodiscard]] const std::string& producer() const { return producer_; }
  [[nodiscard]] const NameList& labels() const { return labels_; }
  [[nodiscard]] const NameList& texts() const { return texts_; }
  [[nodiscard]] const SymbolDirectory& symbols() const { return symbols_; }

 private:
  void readTables();

  InputFile file_;
  FileHeader header_;
  std::string producer_;
  NameList labels_;
  NameList texts_;
  SymbolDirectory symbols_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_RXF_READER_H_
