#include "tools/text/number_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>

#include "tools/text/words.h"

namespace tool {

namespace {

struct SpecialWord {
  std::string_view word;
  std::uint64_t bits;
};

constexpr std::uint64_t undefinedBits = 0x7E37E43C8800759C;
constexpr std::uint64_t notAvailableBits = 0x7FF8000000000000;
constexpr std::uint64_t plusInfinityBits = 0x7FF0000000000000;
constexpr std::uint64_t minusInfinityBits = 0xFFF0000000000000;
constexpr std::uint64_t epsilonBits = 0x0000000000000001;

// The first word of a value is the one that is written.
constexpr std::array<SpecialWord, 8> specialWords{{{"undef", undefinedBits},
                                                   {"na", notAvailableBits},
                                                   {"inf", plusInfinityBits},
                                                   {"-inf", minusInfinityBits},
                                                   {"eps", epsilonBits},
                                                   {"nan", notAvailableBits},
                                                   {"infinity", plusInfinityBits},
                                                   {"-infinity", minusInfinityBits}}};

constexpr std::string_view patternPrefix = "nan:0x";

// With these any double is told from any other.
constexpr int mostDigits = std::numeric_limits<double>::max_digits10;

const SpecialWord* findSpecial(std::uint64_t bits) {
  const auto* found = std::ranges::find(specialWords, bits, &SpecialWord::bits);
  return found == specialWords.end() ? nullptr : found;
}

std::string_view trimBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) {
    return {};
  }
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

// The NaN whose pattern stands behind patternPrefix.
double parsePattern(std::string_view digits, std::string& problem) {
  std::uint64_t bits = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), bits, 16);
  const auto value = std::bit_cast<double>(bits);
  if (error != std::errc{} || end != digits.data() + digits.size() || !std::isnan(value)) {
    problem = fmt::format("'{}{}' is not the bit pattern of a NaN", patternPrefix, digits);
    return 0;
  }
  return value;
}

// Numbers from here on are written with an exponent where they are rounded.
constexpr double leastWithExponent = 1e15;
constexpr double leastWithoutExponent = 1e-5;

bool isWrittenOut(double value) {
  const double size = std::abs(value);
  return size == 0 || (size >= leastWithoutExponent && size < leastWithExponent);
}

// The double nearest to a value with so many significant digits; 0 for all of them. A whole number
// that is written out keeps them: they are no longer than the rounded one's zeros.
double rounded(double value, int digits) {
  const bool isWhole = std::trunc(value) == value && std::abs(value) < leastWithExponent;
  if (digits == 0 || isWhole) {
    return value;
  }
  std::array<char, 32> text{};
  char* const end = std::to_chars(text.data(), text.data() + text.size(), value,
                                  std::chars_format::scientific, std::min(digits, mostDigits) - 1)
                        .ptr;
  double result = value;
  std::from_chars(text.data(), end, result);
  return result;
}

// Whether a decimal number that no double holds is too small for one rather than too large: its
// first digit that is no zero then stands behind the point by more places than the exponent moves.
bool isNearZero(std::string_view number) {
  const std::size_t mark = std::min(number.find_first_of("eE"), number.size());
  const std::string_view digits = number.substr(0, mark);
  std::string_view exponentText = number.substr(std::min(mark + 1, number.size()));
  const bool negative = exponentText.starts_with('-');
  exponentText.remove_prefix(negative || exponentText.starts_with('+') ? 1 : 0);
  long long exponent = 0;
  if (std::from_chars(exponentText.data(), exponentText.data() + exponentText.size(), exponent)
          .ec == std::errc::result_out_of_range) {
    return negative;
  }
  const std::size_t point = std::min(digits.find('.'), digits.size());
  const std::size_t first = digits.find_first_of("123456789");
  return static_cast<long long>(point) - static_cast<long long>(first) +
             (negative ? -exponent : exponent) <
         0;
}

}  // namespace

NumberText::NumberText(double value, int digits) {
  const auto bits = std::bit_cast<std::uint64_t>(value);
  const SpecialWord* special = findSpecial(bits);
  if (special != nullptr) {
    std::ranges::copy(special->word, chars_.begin());
    size_ = special->word.size();
  } else if (std::isnan(value)) {
    char* end = fmt::format_to_n(chars_.data(), chars_.size(), "nan:0x{:016x}", bits).out;
    size_ = static_cast<std::size_t>(end - chars_.data());
  } else {
    char* const room = chars_.data() + chars_.size();
    const double shown = rounded(value, digits);
    char* const end = digits == 0 || !isWrittenOut(shown)
                          ? std::to_chars(chars_.data(), room, shown).ptr
                          : std::to_chars(chars_.data(), room, shown, std::chars_format::fixed).ptr;
    size_ = static_cast<std::size_t>(end - chars_.data());
  }
}

bool isSpecial(double value) {
  return std::isnan(value) || findSpecial(std::bit_cast<std::uint64_t>(value)) != nullptr;
}

bool sameBits(double left, double right) {
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

double parseNumber(std::string_view text, std::string& problem, char decimal) {
  std::string_view number = trimBlanks(text);
  if (number.empty()) {
    problem = "is empty, expected a number";
    return 0;
  }
  if (number.size() > 1 && number.front() == '+' && number[1] != '-' && number[1] != '+') {
    number.remove_prefix(1);
  }
  for (const SpecialWord& special : specialWords) {
    if (sameFolded(number, special.word)) {
      return std::bit_cast<double>(special.bits);
    }
  }
  if (startsFolded(number, patternPrefix)) {
    return parsePattern(number.substr(patternPrefix.size()), problem);
  }
  std::string withPoint;
  if (decimal != '.') {
    withPoint = number;
    for (char& c : withPoint) {
      c = c == decimal ? '.' : c == '.' ? decimal : c;
    }
    number = withPoint;
  }
  double value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range && isNearZero(number)) {
    value = number.front() == '-' ? -0.0 : 0.0;
  } else if (error == std::errc::result_out_of_range) {
    problem = fmt::format("{} is outside the range of a double", inQuotes(text));
  } else if (error != std::errc{} || end != number.data() + number.size() ||
             !std::isfinite(value)) {
    problem = fmt::format("{} is not a number", inQuotes(text));
  }
  return value;
}

}  // namespace tool
