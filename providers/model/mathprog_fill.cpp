#include "providers/model/mathprog_fill.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>

#include "providers/model/lp_tokens.h"
#include "providers/model/mathprog_text.h"
#include "providers/model/model_error.h"
#include "providers/model/text_source.h"

namespace lomu {

namespace {

std::string shortestText(double number) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

// A label as MathProg has it: a number where it is spelled as one, else a text in quotes.
std::string labelText(std::string_view label) {
  double number = 0;
  const auto [end, error] = std::from_chars(label.data(), label.data() + label.size(), number);
  const bool isNumber = error == std::errc() && end == label.data() + label.size() &&
                        std::isfinite(number) && shortestText(number) == label;
  if (isNumber) return std::string(label);
  std::string text = "'";
  for (const char c : label) {
    if (c == '\'') text += c;
    text += c;
  }
  return text + "'";
}

std::string statementOf(const ztbModelFill& fill, const MathProgSymbol& symbol,
                        const std::string& file) {
  std::string text = (symbol.isSet ? "set " : "param ") + symbol.name + " :=";
  const auto dimension = static_cast<long long>(fill.dimension);
  for (long long record = 0; record < fill.count; ++record) {
    text += symbol.isSet && dimension > 1 ? "\n (" : "\n";
    for (long long k = 0; k < dimension; ++k) {
      text += k == 0 ? " " : symbol.isSet ? ", " : " ";
      text += labelText(fill.labels[record * dimension + k]);
    }
    if (symbol.isSet && dimension > 1) text += ")";
    if (symbol.isSet) continue;
    const double value = fill.values[record];
    if (!std::isfinite(value)) {
      throw ModelError(file + ": parameter " + shown(symbol.name) +
                       " is to be filled with a value that is no finite number, expected one");
    }
    text += " " + shortestText(value);
  }
  return text + ";\n";
}

}  // namespace

std::string filledData(const std::string& file, const std::string& dataFile,
                       std::span<ztbModelFill> fills) {
  const std::string text = readText(file);
  const MathProgText model(text);
  std::vector<std::string> names;
  std::string added;
  for (ztbModelFill& fill : fills) {
    fill.taken = 0;
    const auto& symbols = model.symbols();
    const auto symbol = std::find_if(symbols.begin(), symbols.end(), [&](const MathProgSymbol& s) {
      return ztb::sameFolded(s.name, fill.name);
    });
    if (symbol == symbols.end()) continue;
    if (symbol->isSet != (fill.isSet != 0)) {
      throw ModelError(file + ": " + (symbol->isSet ? "set " : "parameter ") + shown(symbol->name) +
                       " cannot be filled by a " +
                       (symbol->isSet ? "parameter, expected a set" : "set, expected a parameter"));
    }
    if (symbol->isComputed) {
      throw ModelError(
          file + ": " + (symbol->isSet ? "set " : "parameter ") + shown(symbol->name) +
          " is computed by the model and cannot be filled, expected one without \":=\"");
    }
    added += statementOf(fill, *symbol, file);
    names.push_back(symbol->name);
    fill.taken = 1;
  }
  if (names.empty()) return {};
  if (dataFile.empty()) return replacedData(file, text, false, names, added);
  return replacedData(dataFile, readText(dataFile), true, names, added);
}

}  // namespace lomu
