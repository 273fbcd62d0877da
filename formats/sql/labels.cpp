#include "formats/sql/labels.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>
#include <ztb/case_folding.hpp>
#include <ztb/error.hpp>
#include <ztb/text.hpp>

namespace formats {

namespace {

constexpr std::size_t blockSize = 1 << 16;

// So many doubles further SQLite, whose powers of ten are not exact, may read a number.
constexpr int mostSteps = 16;

// What is left of a text of which SQLite makes a number; empty where it does not.
std::string_view digitsOf(std::string_view text) {
  constexpr std::string_view blanks = " \t\n\v\f\r";
  const std::size_t begin = text.find_first_not_of(blanks);
  if (begin == std::string_view::npos) {
    return {};
  }
  text = text.substr(begin, text.find_last_not_of(blanks) + 1 - begin);
  if (text.front() == '+') {
    text.remove_prefix(1);
  }
  const std::size_t digit = text.starts_with('-') ? 1 : 0;
  const bool isNumber = digit < text.size() && text.find_first_of("0123456789.", digit) == digit;
  return isNumber ? text : std::string_view();
}

// About the number that SQLite makes of a text when it compares it with one.
std::optional<double> numberOf(std::string_view text) {
  const std::string_view digits = digitsOf(text);
  const char* end = digits.data() + digits.size();
  double value = 0;
  const auto [read, error] = std::from_chars(digits.data(), end, value);
  if (digits.empty() || read != end || error == std::errc::invalid_argument) {
    return std::nullopt;
  }
  if (error == std::errc::result_out_of_range) {
    // In the few chars of a label the exponent alone can make it so.
    const bool isSmall = digits[digits.find_first_of("eE") + 1] == '-';
    value = isSmall ? 0 : std::numeric_limits<double>::infinity();
    return digits.front() == '-' ? -value : value;
  }
  return value;
}

}  // namespace

int compareFolded(std::string_view left, std::string_view right) {
  const std::size_t common = std::min(left.size(), right.size());
  for (std::size_t at = 0; at < common; ++at) {
    const int difference = static_cast<unsigned char>(ztb::foldedChar(left[at])) -
                           static_cast<unsigned char>(ztb::foldedChar(right[at]));
    if (difference != 0) {
      return difference;
    }
  }
  return left.size() == right.size() ? 0 : left.size() < right.size() ? -1 : 1;
}

int SqlLabels::count() const {
  int count = 0;
  ztb::detail::require(c__ztbinfo(database_, ZTB_INFO_UEL_COUNT, &count, nullptr, nullptr),
                       database_, "ztbInfo");
  return count;
}

void SqlLabels::read(std::size_t number) {
  if (number >= texts_.size()) {
    texts_.resize(std::max(number, static_cast<std::size_t>(count())) + 1);
  }
  ztb::Text text;
  ztb::detail::require(c__ztbgetuelbyindex(database_, static_cast<int>(number), text.buffer()),
                       database_, "ztbGetUelByIndex");
  const std::size_t size = text.view().size();
  if (room_ < size + 1) {
    blocks_.push_back(std::make_unique<char[]>(blockSize));
    room_ = blockSize;
  }
  char* to = blocks_.back().get() + (blockSize - room_);
  std::memcpy(to, text.c_str(), size + 1);
  room_ -= size + 1;
  texts_[number] = {to, size};
}

int SqlLabels::find(std::string_view text) {
  const bool blank = text.empty() || text.find_first_not_of(' ') == std::string_view::npos;
  if (text.size() > ZTB_MAX_NAME_LENGTH || blank || text.find('\0') != std::string_view::npos) {
    return 0;
  }
  int number = 0;
  // What no label can be is refused, which is the same here.
  if (c__ztbfinduel(database_, text.data(), &number) == 0 || number < 1) {
    return 0;
  }
  // Blanks at the end are cut in finding.
  return compareFolded(this->text(number), text) == 0 ? number : 0;
}

void SqlLabels::readNumbers() {
  for (const int end = count(); numbered_ < end; ++numbered_) {
    const int number = numbered_ + 1;
    if (const std::optional<double> value = numberOf(text(number))) {
      numbers_.emplace(*value, number);
    }
  }
}

std::vector<int> SqlLabels::near(double value) {
  readNumbers();
  constexpr double infinity = std::numeric_limits<double>::infinity();
  double lower = value;
  double upper = value;
  for (int step = 0; step < mostSteps; ++step) {
    lower = std::nextafter(lower, -infinity);
    upper = std::nextafter(upper, infinity);
  }
  std::vector<int> labels;
  const auto end = numbers_.upper_bound(upper);
  for (auto at = numbers_.lower_bound(lower); at != end; ++at) labels.push_back(at->second);
  return labels;
}

void SqlLabels::sortTexts() {
  const auto end = static_cast<std::size_t>(count());
  if (sorted_.size() == end) {
    return;
  }
  sorted_.clear();
  for (std::size_t number = 1; number <= end; ++number) {
    text(static_cast<int>(number));
    sorted_.push_back(static_cast<int>(number));
  }
  std::ranges::sort(sorted_, [this](int left, int right) {
    return compareFolded(texts_[static_cast<std::size_t>(left)],
                         texts_[static_cast<std::size_t>(right)]) < 0;
  });
}

std::vector<int> SqlLabels::between(const std::optional<LabelBound>& lower,
                                    const std::optional<LabelBound>& upper) {
  sortTexts();
  // The first label behind a bound, which itself counts as behind or before.
  const auto behind = [&](std::string_view bound, bool itself) {
    return std::ranges::partition_point(sorted_, [&](int number) {
      const int order = compareFolded(text(number), bound);
      return order < 0 || (order == 0 && !itself);
    });
  };
  const auto first = lower ? behind(lower->text, lower->inclusive) : sorted_.begin();
  const auto last = upper ? behind(upper->text, !upper->inclusive) : sorted_.end();
  std::vector<int> numbers;
  if (first < last) {
    numbers.assign(first, last);
    std::ranges::sort(numbers);
  }
  return numbers;
}

}  // namespace formats
