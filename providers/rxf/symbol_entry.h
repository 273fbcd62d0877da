// What the symbol table of a file says of one symbol.
#ifndef ZTB_PROVIDERS_RXF_SYMBOL_ENTRY_H_
#define ZTB_PROVIDERS_RXF_SYMBOL_ENTRY_H_

#include <cstdint>
#include <string>
#include <vector>

#include "providers/rxf/limits.h"

namespace rxffile {

// How a symbol's domain is known.
enum class DomainKind : std::uint8_t {
  none = 0,
  relaxed = 2,  // names only
  strict = 3,   // every record was held against the sets
};

struct SymbolEntry {
  std::string text;
  int type = kTypeSet;
  int dim = 0;
  // As the writer gave it; of an alias the number of the aliased set, 0 for the universe.
  std::int32_t userInfo = 0;
  std::uint32_t recordCount = 0;
  std::uint64_t dataOffset = 0;
  std::uint64_t dataLength = 0;
  DomainKind domainKind = DomainKind::none;
  std::vector<std::string> domains;

  [[nodiscard]] bool isAlias() const { return type == kTypeAlias; }

  [[nodiscard]] std::uint32_t blockCount() const {
    return (recordCount + (kBlockRecords - 1)) / kBlockRecords;
  }
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_SYMBOL_ENTRY_H_
