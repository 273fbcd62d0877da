#include "providers/model/options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <ztb/case_folding.hpp>

#include "providers/model/model_error.h"

namespace lomu {

namespace {

// What a caller of snvGetStrOpt has room for, less the final zero.
constexpr std::size_t kMaxTextLength = 255;

constexpr std::array<OptionInfo, kOptionCount> kTable{{
    {"NameSysDir", OptionKind::text, 0, 0, "",
     "directory of the solver catalogue, ending in \"/\""},
    {"LogFile", OptionKind::text, 0, 0, "", "file that log lines are appended to"},
    {"LogScreen", OptionKind::whole, 0, 1, "0", "1: log lines go to standard output"},
    {"TimeLimit", OptionKind::real, 1e-9, 1e10, "1e10", "seconds that a solve may take"},
    {"IterationLimit", OptionKind::whole, 0, 2147483647, "2147483647",
     "iterations that a solve may take"},
    {"RelativeGap", OptionKind::real, 0, 1, "1e-9",
     "relative distance from the best bound at which a search over integers may stop"},
    {"UseStart", OptionKind::whole, 0, 1, "0",
     "1: a search over integers begins with the levels of the columns as a solution"},
}};

std::string quoted(std::string_view text) {
  return "\"" + std::string(text) + "\"";
}

std::size_t indexOf(std::string_view name) {
  const auto found = std::find_if(kTable.begin(), kTable.end(), [&](const OptionInfo& option) {
    return ztb::sameFolded(option.name, name);
  });
  if (found != kTable.end()) return static_cast<std::size_t>(found - kTable.begin());
  std::string known;
  for (const OptionInfo& option : kTable) {
    known += (known.empty() ? "" : ", ") + std::string(option.name);
  }
  throw ModelError("there is no option " + quoted(name) + "; options are " + known);
}

bool parseNumber(std::string_view text, double& number) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  return error == std::errc() && end == text.data() + text.size();
}

std::string shortNumber(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return {text.data(), end};
}

double checkedNumber(const OptionInfo& option, std::string_view value) {
  double number = 0;
  const bool fine = parseNumber(value, number) && number >= option.smallest &&
                    number <= option.largest &&
                    (option.kind == OptionKind::real || number == std::floor(number));
  if (fine) return number;
  throw ModelError("option " + quoted(option.name) + " takes a " +
                   (option.kind == OptionKind::whole ? "whole number" : "number") + " from " +
                   shortNumber(option.smallest) + " to " + shortNumber(option.largest) + ", not " +
                   quoted(value));
}

}  // namespace

const std::array<OptionInfo, kOptionCount>& optionTable() {
  return kTable;
}

Options::Options() {
  std::transform(kTable.begin(), kTable.end(), values_.begin(),
                 [](const OptionInfo& option) { return std::string(option.standard); });
  for (std::size_t k = 0; k < kTable.size(); ++k) parseNumber(values_.at(k), numbers_.at(k));
}

void Options::set(std::string_view name, std::string_view value) {
  const std::size_t index = indexOf(name);
  const OptionInfo& option = kTable.at(index);
  const double number = option.kind == OptionKind::text ? 0 : checkedNumber(option, value);
  if (value.size() > kMaxTextLength) {
    throw ModelError("the value of option " + quoted(option.name) + " has " +
                     std::to_string(value.size()) + " bytes, at most " +
                     std::to_string(kMaxTextLength) + " are allowed");
  }
  values_.at(index) = value;
  numbers_.at(index) = number;
}

const std::string& Options::get(std::string_view name) const {
  return values_.at(indexOf(name));
}

const std::string& Options::text(OptionId id) const {
  return values_.at(static_cast<std::size_t>(id));
}

double Options::number(OptionId id) const {
  return numbers_.at(static_cast<std::size_t>(id));
}

}  // namespace lomu
