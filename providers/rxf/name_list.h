// A numbered list of names, labels or texts that are distinct under ASCII case folding, with
// lookup.
#ifndef ZTB_PROVIDERS_RXF_NAME_LIST_H_
#define ZTB_PROVIDERS_RXF_NAME_LIST_H_

#include <cstdint>
#include <string_view>
#include <vector>

#include "providers/rxf/string_table.h"

namespace rxffile {

// Names are at most 255 bytes. Numbers count from 1. Lookup and adding take constant time.
class NameList {
 public:
  [[nodiscard]] std::uint32_t size() const { return names_.size(); }

  // Name of a number. REQUIRES: 1 <= number <= size().
  [[nodiscard]] std::string_view at(std::uint32_t number) const { return names_.at(number); }

  // Number of a name, 0 when the list does not hold it.
  [[nodiscard]] std::uint32_t find(std::string_view name) const;

  // Adds a name and returns its number; 0, with nothing added, when the list holds it already.
  // REQUIRES: at most 255 bytes.
  std::uint32_t add(std::string_view name);

 private:
  // The hash stands beside the number, so that growing and most failed comparisons look at no name.
  struct Slot {
    std::uint32_t hash;
    std::uint32_t number;
  };

  static std::uint32_t hashOf(std::string_view name);
  [[nodiscard]] std::size_t slotFor(std::string_view name, std::uint32_t hash) const;
  void grow();

  StringTable names_;
  std::vector<Slot> slots_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_NAME_LIST_H_
