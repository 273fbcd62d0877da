// How a file is packed, as the ending of its name tells in letters of either case.
#ifndef ZTB_FORMATS_TABLES_PACKING_H_
#define ZTB_FORMATS_TABLES_PACKING_H_

#include <cstdint>
#include <string_view>

#include "tools/text/words.h"

namespace formats {

enum class Packing : std::uint8_t { none, gzip, zstd };

inline Packing packingOf(std::string_view path) {
  const std::size_t dot = path.rfind('.');
  if (dot == std::string_view::npos) return Packing::none;
  const std::string_view ending = path.substr(dot);
  if (tool::sameFolded(ending, ".gz")) return Packing::gzip;
  return tool::sameFolded(ending, ".zst") ? Packing::zstd : Packing::none;
}

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_PACKING_H_
