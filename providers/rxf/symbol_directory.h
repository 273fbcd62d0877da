// The symbols of a file in order of their numbers, which count from 1, with lookup by name.
#ifndef ZTB_PROVIDERS_RXF_SYMBOL_DIRECTORY_H_
#define ZTB_PROVIDERS_RXF_SYMBOL_DIRECTORY_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "providers/rxf/bytes.h"
#include "providers/rxf/file_header.h"
#include "providers/rxf/name_list.h"
#include "providers/rxf/symbol_entry.h"

namespace rxffile {

class SymbolDirectory {
 public:
  [[nodiscard]] std::uint32_t size() const { return names_.size(); }
  [[nodiscard]] bool holds(std::int64_t number) const { return number >= 1 && number <= size(); }

  // REQUIRES of the following: holds(number).
  [[nodiscard]] std::string_view name(std::uint32_t number) const { return names_.at(number); }
  [[nodiscard]] const SymbolEntry& at(std::uint32_t number) const { return entries_[number - 1]; }
  [[nodiscard]] SymbolEntry& at(std::uint32_t number) { return entries_[number - 1]; }

  // Number of a symbol, ASCII letters compared without case; 0 when there is none.
  [[nodiscard]] std::uint32_t find(std::string_view name) const { return names_.find(name); }

  // Adds a symbol and returns its number; 0, with nothing added, when the name is taken.
  std::uint32_t add(std::string_view name, SymbolEntry entry);

  // Bytes of a symbol in the table of the file.
  void encode(std::uint32_t number, Bytes& out) const;

  // Adds the symbol whose bytes stand at the front of `in`. Throws Malformed when they are not a
  // symbol that may stand next in a file with this header.
  void decodeNext(ByteReader& in, const FileHeader& header);

 private:
  void checkAlias(SymbolEntry& entry) const;

  NameList names_;
  std::vector<SymbolEntry> entries_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_SYMBOL_DIRECTORY_H_
