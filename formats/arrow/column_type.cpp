#include "formats/arrow/column_type.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <string_view>
#include <utility>
#include <vector>

namespace formats {

namespace {

struct PlainType {
  std::string_view format;
  ColumnType type;
};

constexpr std::array plainTypes{
    PlainType{"n", {.kind = ColumnClass::null}},
    PlainType{"b", {.kind = ColumnClass::truth}},
    PlainType{"c", {.kind = ColumnClass::integer, .width = 1}},
    PlainType{"s", {.kind = ColumnClass::integer, .width = 2}},
    PlainType{"i", {.kind = ColumnClass::integer, .width = 4}},
    PlainType{"l", {.kind = ColumnClass::integer, .width = 8}},
    PlainType{"C", {.kind = ColumnClass::unsignedInteger, .width = 1}},
    PlainType{"S", {.kind = ColumnClass::unsignedInteger, .width = 2}},
    PlainType{"I", {.kind = ColumnClass::unsignedInteger, .width = 4}},
    PlainType{"L", {.kind = ColumnClass::unsignedInteger, .width = 8}},
    PlainType{"e", {.kind = ColumnClass::real, .width = 2}},
    PlainType{"f", {.kind = ColumnClass::real, .width = 4}},
    PlainType{"g", {.kind = ColumnClass::real, .width = 8}},
    PlainType{"u", {.kind = ColumnClass::text, .width = 4}},
    PlainType{"U", {.kind = ColumnClass::text, .width = 8}},
    PlainType{"vu", {.kind = ColumnClass::text}},
    PlainType{"tdD", {.kind = ColumnClass::date, .width = 4}},
    PlainType{"tdm", {.kind = ColumnClass::date, .width = 8, .unitsOfSecond = 1000}},
    PlainType{"tts", {.kind = ColumnClass::time, .width = 4, .unitsOfSecond = 1}},
    PlainType{"ttm", {.kind = ColumnClass::time, .width = 4, .unitsOfSecond = 1000}},
    PlainType{"ttu", {.kind = ColumnClass::time, .width = 8, .unitsOfSecond = 1000000}},
    PlainType{"ttn", {.kind = ColumnClass::time, .width = 8, .unitsOfSecond = 1000000000}},
};

// "tss:" to "tsn:", with the time zone behind.
std::optional<ColumnType> timestampOf(std::string_view format) {
  constexpr std::array<std::pair<char, std::int64_t>, 4> units{
      {{'s', 1}, {'m', 1000}, {'u', 1000000}, {'n', 1000000000}}};
  for (const auto& [letter, count] : units) {
    if (format.size() >= 4 && format.starts_with("ts") && format[2] == letter && format[3] == ':') {
      const std::string_view zone = format.substr(4);
      if (zone.empty()) {
        return ColumnType{.kind = ColumnClass::date, .width = 8, .unitsOfSecond = count};
      }
      if (zone == "UTC" || zone == "+00:00" || zone == "Etc/UTC") {
        return ColumnType{
            .kind = ColumnClass::date, .width = 8, .unitsOfSecond = count, .zone = "+00:00"};
      }
    }
  }
  return std::nullopt;
}

// "d:19,10": digits, those behind the point, and bits, where these are not 128.
std::optional<ColumnType> decimalOf(std::string_view format) {
  if (!format.starts_with("d:")) return std::nullopt;
  std::vector<int> numbers;
  bool more = true;
  for (format.remove_prefix(2); more;) {
    const auto [end, error] =
        std::from_chars(format.data(), format.data() + format.size(), numbers.emplace_back());
    if (error != std::errc()) return std::nullopt;
    format.remove_prefix(static_cast<std::size_t>(end - format.data()));
    more = format.starts_with(',');
    format.remove_prefix(more ? 1 : 0);
  }
  constexpr int mostDigits = 256;  // more than decimals of any width have
  const int bits = numbers.size() == 3 ? numbers[2] : 128;
  const bool isKnown = bits == 32 || bits == 64 || bits == 128 || bits == 256;
  if (!format.empty() || numbers.size() < 2 || numbers.size() > 3 || !isKnown ||
      std::abs(numbers[1]) > mostDigits) {
    return std::nullopt;
  }
  return ColumnType{.kind = ColumnClass::decimal, .width = bits / 8, .scale = numbers[1]};
}

std::string_view wordOf(std::string_view format) {
  constexpr std::array<std::pair<std::string_view, std::string_view>, 14> words{{
      {"+s", "a struct"},
      {"+l", "a list"},
      {"+L", "a large list"},
      {"+v", "a list view"},
      {"+w", "a list of fixed length"},
      {"+m", "a map"},
      {"+u", "a union"},
      {"+r", "a run-end encoded column"},
      {"z", "bytes"},
      {"Z", "bytes"},
      {"vz", "bytes"},
      {"w:", "bytes of fixed length"},
      {"d:", "decimal numbers"},
      {"ts", "times with a time zone other than UTC"},
  }};
  for (const auto& [start, word] : words) {
    if (format.starts_with(start)) return word;
  }
  return {};
}

}  // namespace

std::optional<ColumnType> columnTypeOf(const char* format) {
  for (const PlainType& plain : plainTypes) {
    if (plain.format == format) return plain.type;
  }
  const std::optional<ColumnType> decimal = decimalOf(format);
  return decimal ? decimal : timestampOf(format);
}

std::string columnTypeText(const ArrowSchema& schema) {
  const std::string format = schema.format;
  const std::optional<ColumnType> type = columnTypeOf(schema.format);
  if (!type) {
    const std::string_view word = wordOf(format);
    return word.empty() ? "of Arrow's type '" + format + "'" : std::string(word);
  }
  switch (type->kind) {
    case ColumnClass::null:
      return "nulls alone";
    case ColumnClass::truth:
      return "truth values";
    case ColumnClass::integer:
    case ColumnClass::unsignedInteger:
      return "whole numbers";
    case ColumnClass::real:
      return "numbers";
    case ColumnClass::decimal:
      return "decimal numbers";
    case ColumnClass::text:
      return "texts";
    case ColumnClass::time:
      return "times of day";
    default:
      return "dates";
  }
}

}  // namespace formats
