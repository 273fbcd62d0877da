#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>

#include "formats/excel/xlsx_tables.h"

namespace formats {

double roundedAsWorkbook(double value) {
  constexpr int digits = 16;
  std::array<char, 32> text{};
  char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                  std::chars_format::general, digits)
                        .ptr;
  double rounded = 0;
  // What is rounded up beyond the largest number is no number.
  if (std::from_chars(text.data(), end, rounded).ec == std::errc::result_out_of_range) {
    return std::copysign(std::numeric_limits<double>::infinity(), value);
  }
  return rounded;
}

}  // namespace formats
