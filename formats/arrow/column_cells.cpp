#include "formats/arrow/column_cells.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <cstring>
#include <limits>
#include <ztb/error.hpp>

namespace formats {

namespace {

// IEEE numbers of 16 bits.
double halfOf(std::uint16_t bits) {
  constexpr unsigned fractionBits = 10;
  constexpr int bias = 15;
  const unsigned exponent = bits >> fractionBits & 0x1FU;
  const unsigned fraction = bits & 0x3FFU;
  double value = 0;
  if (exponent == 0x1FU) {
    value = fraction == 0 ? std::numeric_limits<double>::infinity()
                          : std::numeric_limits<double>::quiet_NaN();
  } else if (exponent == 0) {
    value = std::ldexp(fraction, 1 - bias - static_cast<int>(fractionBits));
  } else {
    value = std::ldexp(fraction + 0x400U,
                       static_cast<int>(exponent) - bias - static_cast<int>(fractionBits));
  }
  return (bits & 0x8000U) != 0 ? -value : value;
}

// The nearest double to a decimal: a whole number of so many bytes, least ones first, over ten to
// the power of the scale.
double decimalOf(const std::uint8_t* bytes, std::size_t count, int scale) {
  constexpr std::size_t mostWords = 8;
  constexpr std::uint64_t billion = 1000000000;
  std::array<std::uint32_t, mostWords> words{};
  std::memcpy(words.data(), bytes, count);
  const bool isNegative = (bytes[count - 1] & 0x80U) != 0;
  const std::size_t used = count / sizeof words[0];
  for (std::size_t word = 0, carry = 1; isNegative && word < used; ++word) {
    words[word] = ~words[word] + static_cast<std::uint32_t>(carry);
    carry = carry != 0 && words[word] == 0 ? 1 : 0;
  }
  std::string digits;  // those of each billion in front of the ones before
  for (bool more = true; more;) {
    std::uint64_t rest = 0;
    more = false;
    for (std::size_t word = used; word-- > 0;) {
      rest = rest << 32U | words[word];
      words[word] = static_cast<std::uint32_t>(rest / billion);
      rest %= billion;
      more = more || words[word] != 0;
    }
    digits.insert(0, fmt::format("{:09}", rest));
  }
  const std::string text = fmt::format("{}{}e{}", isNegative ? "-" : "", digits, -scale);
  double value = 0;
  std::from_chars(text.data(), text.data() + text.size(), value);
  return value;
}

// A time of day as ISO has it, with six or nine digits behind the second where there are some.
std::string timeTextOf(std::int64_t units, std::int64_t unitsOfSecond) {
  const std::int64_t seconds = units / unitsOfSecond;
  const std::int64_t nanoseconds = units % unitsOfSecond * (1000000000 / unitsOfSecond);
  std::string text =
      fmt::format("{:02}:{:02}:{:02}", seconds / 3600, seconds / 60 % 60, seconds % 60);
  if (nanoseconds % 1000 != 0) {
    text += fmt::format(".{:09}", nanoseconds);
  } else if (nanoseconds != 0) {
    text += fmt::format(".{:06}", nanoseconds / 1000);
  }
  return text;
}

// The days and time of day that a date tells, as labels have them: the ISO date at midnight without
// a time zone, else with the time. Empty for what no calendar or clock has.
std::string isoTextOf(std::int64_t value, const ColumnType& type) {
  constexpr std::int64_t secondsOfDay = 86400;
  if (type.kind == ColumnClass::time) {
    const bool isOfDay = value >= 0 && value <= secondsOfDay * type.unitsOfSecond;
    return isOfDay ? timeTextOf(value, type.unitsOfSecond) : std::string();
  }
  const std::int64_t units = type.unitsOfSecond == 0 ? 1 : secondsOfDay * type.unitsOfSecond;
  std::int64_t day = value / units;
  std::int64_t rest = value % units;
  if (rest < 0) {
    rest += units;
    --day;
  }
  // Years that the calendar of the standard library holds.
  constexpr std::int64_t mostDays = 11000000;
  if (day < -mostDays || day > mostDays) return {};
  const std::chrono::year_month_day date{
      std::chrono::sys_days(std::chrono::days(static_cast<int>(day)))};
  std::string text =
      fmt::format("{:04}-{:02}-{:02}", static_cast<int>(date.year()),
                  static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  if (rest == 0 && type.zone.empty()) return text;
  return text + 'T' + timeTextOf(rest, type.unitsOfSecond) + std::string(type.zone);
}

}  // namespace

ColumnCells::ColumnCells(const ColumnType& type, const ArrowArray& array, std::int64_t first,
                         std::size_t count, const Place& place)
    : type_(type), place_(place), count_(count), array_(&array) {
  const bool isView = type.kind == ColumnClass::text && type.width == 0;
  const std::int64_t expected = type.kind == ColumnClass::null              ? 0
                                : type.kind == ColumnClass::text && !isView ? 3
                                                                            : 2;
  const bool enough = isView ? array.n_buffers >= 3 : array.n_buffers == expected;
  if (array.length < 0 || array.offset < 0 || first < 0 ||
      array.length - first < static_cast<std::int64_t>(count) || !enough) {
    fail("is damaged: its length or buffers are not those of its type");
  }
  first_ = static_cast<std::size_t>(first + array.offset);
  if (expected == 0) return;
  if (array.null_count != 0) marks_ = static_cast<const std::uint8_t*>(array.buffers[0]);
  data_ = array.buffers[1];
  if (count > 0 && data_ == nullptr) {
    fail("is damaged: it has no values");
  }
}

void ColumnCells::fail(const std::string& reason) const {
  throw ztb::Error("ztbArrowFill", fmt::format("column {}: {}", place_.column, reason),
                   ztb::ErrorKind::damagedFile);
}

void ColumnCells::failCell(std::size_t cell, const std::string& reason) const {
  throw ztb::Error("ztbArrowFill",
                   fmt::format("column {}, row {}: {}", place_.column, place_.row + cell, reason),
                   ztb::ErrorKind::damagedFile);
}

std::int64_t ColumnCells::whole(std::size_t cell) const {
  switch (type_.width) {
    case 1:
      return read<std::int8_t>(cell);
    case 2:
      return read<std::int16_t>(cell);
    case 4:
      return read<std::int32_t>(cell);
    default:
      return read<std::int64_t>(cell);
  }
}

std::uint64_t ColumnCells::unsignedWhole(std::size_t cell) const {
  switch (type_.width) {
    case 1:
      return read<std::uint8_t>(cell);
    case 2:
      return read<std::uint16_t>(cell);
    case 4:
      return read<std::uint32_t>(cell);
    default:
      return read<std::uint64_t>(cell);
  }
}

std::string_view ColumnCells::label(std::size_t cell, std::string& room) const {
  switch (type_.kind) {
    case ColumnClass::integer:
      room = std::to_string(whole(cell));
      return room;
    case ColumnClass::unsignedInteger:
      room = std::to_string(unsignedWhole(cell));
      return room;
    case ColumnClass::date:
    case ColumnClass::time:
      room = isoTextOf(whole(cell), type_);
      if (room.empty()) {
        failCell(cell, type_.kind == ColumnClass::time ? "a time that no day has"
                                                       : "a date beyond all calendars");
      }
      return room;
    default:
      return type_.width == 0 ? view(cell) : text(cell);
  }
}

std::string_view ColumnCells::text(std::size_t cell) const {
  const auto offset = [&](std::size_t place) {
    return type_.width == 4 ? std::int64_t{static_cast<const std::int32_t*>(data_)[place]}
                            : static_cast<const std::int64_t*>(data_)[place];
  };
  const std::int64_t begin = offset(at(cell));
  const std::int64_t end = offset(at(cell) + 1);
  if (begin < 0 || end < begin) {
    failCell(cell, "is damaged: the text ends before it begins");
  }
  const auto* chars = static_cast<const char*>(array_->buffers[2]);
  return begin == end ? std::string_view("")
                      : std::string_view(chars + begin, static_cast<std::size_t>(end - begin));
}

// A view has 16 bytes: a length, then the text itself, or four bytes of it, a buffer and an offset.
std::string_view ColumnCells::view(std::size_t cell) const {
  constexpr std::size_t size = 16;
  constexpr std::int32_t longestInside = 12;
  const char* const view = static_cast<const char*>(data_) + at(cell) * size;
  std::array<std::int32_t, 4> words{};
  std::memcpy(words.data(), view, size);
  const std::int32_t length = words[0];
  if (length >= 0 && length <= longestInside) {
    return {view + sizeof length, static_cast<std::size_t>(length)};
  }
  // The last buffer tells the lengths of those between.
  const std::int64_t buffers = array_->n_buffers - 3;
  const auto* lengths = static_cast<const std::int64_t*>(array_->buffers[array_->n_buffers - 1]);
  const std::int64_t buffer = words[2];
  const std::int64_t offset = words[3];
  if (length < 0 || buffer < 0 || buffer >= buffers || offset < 0 ||
      offset + length > lengths[buffer]) {
    failCell(cell, "is damaged: the text lies outside");
  }
  return {static_cast<const char*>(array_->buffers[2 + buffer]) + offset,
          static_cast<std::size_t>(length)};
}

double ColumnCells::number(std::size_t cell) const {
  switch (type_.kind) {
    case ColumnClass::truth:
      return bitOf(static_cast<const std::uint8_t*>(data_), at(cell)) ? 1 : 0;
    case ColumnClass::integer: {
      const std::int64_t value = whole(cell);
      const auto result = static_cast<double>(value);
      // 2^63 as a double is no 64-bit number any more.
      if (result >= 0x1p63 || static_cast<std::int64_t>(result) != value) {
        failCell(cell, fmt::format("no double is {}", value));
      }
      return result;
    }
    case ColumnClass::unsignedInteger: {
      const std::uint64_t value = unsignedWhole(cell);
      const auto result = static_cast<double>(value);
      if (result >= 0x1p64 || static_cast<std::uint64_t>(result) != value) {
        failCell(cell, fmt::format("no double is {}", value));
      }
      return result;
    }
    case ColumnClass::decimal: {
      const auto width = static_cast<std::size_t>(type_.width);
      return decimalOf(static_cast<const std::uint8_t*>(data_) + at(cell) * width, width,
                       type_.scale);
    }
    default:
      return type_.width == 2   ? halfOf(read<std::uint16_t>(cell))
             : type_.width == 4 ? read<float>(cell)
                                : read<double>(cell);
  }
}

std::size_t ColumnCells::index(std::size_t cell, std::size_t entries) const {
  const std::uint64_t value = type_.kind == ColumnClass::integer
                                  ? static_cast<std::uint64_t>(whole(cell))
                                  : unsignedWhole(cell);
  if (value >= entries) {
    failCell(cell, "is damaged: its entry lies beyond the dictionary");
  }
  return static_cast<std::size_t>(value);
}

const double* ColumnCells::doubles() const {
  return type_.kind == ColumnClass::real && type_.width == 8
             ? static_cast<const double*>(data_) + first_
             : nullptr;
}

}  // namespace formats
