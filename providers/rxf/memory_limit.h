// How much memory the records of a file that is being loaded may take.
//
// Each thread has a limit, which files take over when they are opened for reading there; 0 is none.
// What a symbol needs is estimated before any of it is delivered, for the tree map, and stays
// counted until the file is closed. Records that a thread reads while it writes a symbol go on into
// that file and are not held in memory, so they are not counted: copies from file to file have no
// limit.
#ifndef ZTB_PROVIDERS_RXF_MEMORY_LIMIT_H_
#define ZTB_PROVIDERS_RXF_MEMORY_LIMIT_H_

#include <cstdint>
#include <vector>

#include "providers/rxf/symbol_entry.h"

namespace rxffile {

class MemoryLimit {
 public:
  // Sets the limit of the calling thread for files that it opens afterwards, and gives the limit
  // that it had.
  static std::uint64_t setForThread(std::uint64_t bytes);
  // The limit of the calling thread, for a file that it opens.
  static MemoryLimit takeFromThread();
  // How many files have taken the limit of the calling thread since it was set.
  static int takenByThread();

  // While an object of this kind is there, its thread writes a symbol.
  class SymbolWriting {
   public:
    SymbolWriting();
    SymbolWriting(const SymbolWriting&) = delete;
    SymbolWriting& operator=(const SymbolWriting&) = delete;
    ~SymbolWriting();
  };

  MemoryLimit() = default;

  // Counts a symbol's records, once for each symbol. Throws Failure with limitExceeded, and counts
  // nothing, when they go beyond the limit.
  void count(std::uint32_t number, const SymbolEntry& entry);

 private:
  std::uint64_t limit_ = 0;
  std::uint64_t used_ = 0;
  std::vector<bool> counted_;  // by symbol number
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_MEMORY_LIMIT_H_
