#include <array>
#include <cstdio>
#include <cstdlib>

#include "formats/excel/xlsx_tables.h"

namespace formats {

double roundedAsWorkbook(double value) {
  std::array<char, 32> digits{};
  std::snprintf(digits.data(), digits.size(), "%.16G", value);
  return std::strtod(digits.data(), nullptr);
}

}  // namespace formats
