// Holds what a command keeps of a file's records in memory against --max-memory.
#ifndef ZTB_TOOLS_FILES_MEMORY_ROOM_H_
#define ZTB_TOOLS_FILES_MEMORY_ROOM_H_

#include "tools/files/exchange_file.h"

namespace tool {

class MemoryRoom {
 public:
  explicit MemoryRoom(const ExchangeFile& file) : file_(file) {}

  // To be asked before the records of a symbol are taken in. Throws Failure that names file,
  // symbol, what is needed, about, and the limit, when they and those taken before would go beyond
  // it.
  void take(const FileSymbol& symbol) { take(symbol, symbol.recordCount); }
  // The same for some of its records.
  void take(const FileSymbol& symbol, std::size_t records);

 private:
  const ExchangeFile& file_;
  unsigned long long used_ = 0;
};

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_MEMORY_ROOM_H_
