// The columns under which the records of a symbol are shown, exported and read back: the same words
// in the ztb command, in the frames of the Python package and in programs of your own.
#ifndef ZTB_COLUMN_NAMES_HPP_
#define ZTB_COLUMN_NAMES_HPP_

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>
#include <ztb/cpp20.hpp>
#include <ztb/symbol.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// The names of the fields of a variable or equation, at the places of their values.
inline constexpr std::array<std::string_view, fieldCount> fieldNames{"level", "marginal", "lower",
                                                                     "upper", "scale"};

// Names of the columns behind the keys: "text" for a set or alias, "value" for a parameter, the
// five of fieldNames for a variable or equation.
inline std::vector<std::string> contentColumns(Type type) {
  switch (type) {
    case Type::set:
    case Type::alias:
      return {"text"};
    case Type::parameter:
      return {"value"};
    default:
      return {fieldNames.begin(), fieldNames.end()};
  }
}

// A name for the column of each position of a symbol, whose domains have these names: that of its
// domain. Over the universe it is the symbol's own name for a one-dimensional set, "label" for the
// only position of any other symbol and for the universe, "*", itself, and "dim_1", "dim_2", ... by
// their place for positions among several. All differ from each other and from contentColumns(type)
// under case folding: one that is taken gets the first free number behind it, from 2 on.
inline std::vector<std::string> keyColumns(std::string_view symbol, Type type,
                                           std::span<const std::string> domains) {
  const bool plainSet = type == Type::set && domains.size() == 1;
  std::vector<std::string> taken = contentColumns(type);
  const auto isTaken = [&](const std::string& name) {
    return std::ranges::any_of(taken,
                               [&](const std::string& other) { return sameFolded(other, name); });
  };
  std::vector<std::string> result;
  for (std::size_t position = 0; position < domains.size(); ++position) {
    std::string base = domains[position];
    if (symbol == "*" || (base == "*" && domains.size() == 1 && !plainSet)) {
      base = "label";
    } else if (base == "*") {
      base = plainSet ? std::string(symbol) : "dim_" + std::to_string(position + 1);
    }
    std::string name = base;
    for (int number = 2; isTaken(name); ++number) {
      name = base + '_' + std::to_string(number);
    }
    taken.push_back(name);
    result.push_back(name);
  }
  return result;
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_COLUMN_NAMES_HPP_
