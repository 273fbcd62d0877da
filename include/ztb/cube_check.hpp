// Whether an array fits a symbol, asked before the library gives up what the symbol holds. Sizes
// are counted in 64 bits.
#ifndef ZTB_CUBE_CHECK_HPP_
#define ZTB_CUBE_CHECK_HPP_

#include <ztb/ztb.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <string>
#include <vector>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/store_guard.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client::detail {

// The library counts records, and the cells of most cubes, in 32 bits.
inline constexpr std::uint64_t mostCells = std::numeric_limits<int>::max();

// The library fills and reads arrays of whole numbers for a set.
inline void refuseSet(const SymbolPlace& place, const char* operation) {
  if (place.type == ZTB_SET) {
    throw Error(operation, "Symbol " + place.name() + " is a set, which holds no numbers");
  }
}
inline void requireParameter(const SymbolPlace& place, const char* operation) {
  if (place.type != ZTB_PARAMETER) {
    throw Error(operation, "Symbol " + place.name() + " is no parameter");
  }
}

// A number of cells as the library takes it; one that no symbol can fill does not match.
inline int cellCount(const SymbolPlace& place, const char* operation, std::size_t cells) {
  if (cells > mostCells) {
    throw Error(operation, "Size of cube " + std::to_string(cells) + " and number of record " +
                               std::to_string(place.recordCount()) + " in " + place.name() +
                               " do not match");
  }
  return static_cast<int>(cells);
}

// Throws unless a set can lay out a position of a cube for a symbol, in the library's words.
inline void requireDomain(const SymbolPlace& place, const char* operation,
                          const SymbolPlace& domain) {
  if (domain.info(ZTB_SYMBOL_INFO_NUMBER) == -1 && domain.name() == "*") {
    throw Error(operation, "Cannot use universe as domain symbol " + place.name(),
                ErrorKind::domain);
  }
  if (domain.database != place.database) {
    throw Error(operation,
                "Symbol " + place.name() + " and domain symbol " + domain.name() +
                    " in different databases",
                ErrorKind::domain);
  }
  if (domain.dimension != 1) {
    throw Error(operation,
                "Domain symbol " + domain.name() + " has dimension " +
                    std::to_string(domain.dimension) + ", needs to be 1",
                ErrorKind::domain);
  }
}

// The cells that the product of the sizes gives, in words where a symbol could not hold them.
inline std::uint64_t productOf(std::span<const int> sizes, const char* operation) {
  std::uint64_t product = 1;
  bool tooMany = false;
  std::string text;
  for (const int size : sizes) {
    product *= static_cast<std::uint64_t>(size);
    tooMany = tooMany || product > mostCells;
    product = tooMany ? mostCells + 1 : product;
    text += (text.empty() ? "" : ",") + std::to_string(size);
  }
  if (tooMany) {
    throw Error(operation, "a cube of [" + text + "] has more than " + std::to_string(mostCells) +
                               " cells, which the library cannot count");
  }
  return product;
}

// The sizes of the positions of a cube over these domains, which becomes the records of a symbol.
// Throws for what the library would refuse after it had emptied the symbol.
inline std::vector<int> cubeSizes(const SymbolPlace& place, const char* operation,
                                  std::span<const SymbolPlace> domains, std::size_t cells) {
  if (place.dimension == 0) {
    throw Error(operation, "Can't map scalars");
  }
  std::vector<int> sizes;
  for (const SymbolPlace& domain : domains) {
    requireDomain(place, operation, domain);
    sizes.push_back(domain.recordCount());
    if (sizes.back() == 0) {
      throw Error(operation, "Zero sized dimension " + std::to_string(sizes.size()));
    }
  }
  const std::uint64_t spanned = productOf(sizes, operation);
  if (spanned != cells) {
    throw Error(operation, std::to_string(cells) + " cells given, the domains span " +
                               std::to_string(spanned));
  }
  return sizes;
}

}  // namespace ztb::inline client::detail

#endif  // ZTB_CPP20

#endif  // ZTB_CUBE_CHECK_HPP_
