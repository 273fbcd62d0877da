#include "formats/arrow/column_type.h"

#include <array>
#include <string_view>
#include <utility>

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
  return timestampOf(format);
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
    case ColumnClass::text:
      return "texts";
    default:
      return "dates";
  }
}

}  // namespace formats
