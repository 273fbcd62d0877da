#include "providers/model/mathprog_fill.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>

#include "providers/model/lp_tokens.h"
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

// Labels of a record from the position `first` on, with `between` between them.
std::string labelsText(const ztbModelFill& fill, long long record, int first, int end,
                       const char* between) {
  std::string text;
  for (int k = first; k < end; ++k) {
    if (k > first) text += between;
    text += labelText(fill.labels[record * fill.dimension + k]);
  }
  return text;
}

std::string elementText(const ztbModelFill& fill, long long record, int first) {
  const std::string text = labelsText(fill, record, first, fill.dimension, ", ");
  return fill.dimension - first > 1 ? "\n (" + text + ")" : "\n " + text;
}

std::string setText(const ztbModelFill& fill, const MathProgSymbol& symbol) {
  std::string text = "set " + symbol.name + " :=";
  for (long long record = 0; record < fill.count; ++record) text += elementText(fill, record, 0);
  return text + ";\n";
}

// A statement for each element of the index that has records: its labels stand in front of those of
// the set's elements.
std::string indexedSetText(const ztbModelFill& fill, const MathProgSymbol& symbol,
                           const std::string& file) {
  const std::string name = file + ": set " + shown(symbol.name);
  if (symbol.elementPositions == 0) {
    throw ModelError(name +
                     " is indexed and within others, so that nobody knows how many positions its "
                     "elements have; expected \"dimen\" with their number in its declaration");
  }
  const int index = fill.dimension - symbol.elementPositions;
  if (index < 1) {
    throw ModelError(name + " is indexed, with elements of " +
                     std::to_string(symbol.elementPositions) +
                     (symbol.elementPositions == 1 ? " position" : " positions") +
                     "; expected data with more, for the index in front, not with " +
                     std::to_string(fill.dimension));
  }
  std::map<std::string, std::string> members;
  for (long long record = 0; record < fill.count; ++record) {
    members[labelsText(fill, record, 0, index, ",")] += elementText(fill, record, index);
  }
  std::string text;
  for (const auto& [labels, elements] : members) {
    text += "set " + symbol.name + "[" + labels + "] :=" + elements + ";\n";
  }
  return text;
}

std::string parameterText(const ztbModelFill& fill, const MathProgSymbol& symbol,
                          const std::string& file) {
  std::string text = "param " + symbol.name + " :=";
  for (long long record = 0; record < fill.count; ++record) {
    const double value = fill.values[record];
    if (!std::isfinite(value)) {
      const std::string labels = labelsText(fill, record, 0, fill.dimension, ", ");
      throw ModelError(file + ": parameter " + shown(symbol.name) +
                       " is to be filled with a value that is no finite number" +
                       (labels.empty() ? "" : " for (" + labels + ")") + ", expected one");
    }
    text += "\n " + labelsText(fill, record, 0, fill.dimension, " ") + " " + shortestText(value);
  }
  return text + ";\n";
}

std::string statementOf(const ztbModelFill& fill, const MathProgSymbol& symbol,
                        const std::string& file) {
  if (!symbol.isSet) return parameterText(fill, symbol, file);
  return symbol.isIndexed ? indexedSetText(fill, symbol, file) : setText(fill, symbol);
}

// The symbol of this name as the model spells it, else the one that differs in case alone; null
// where there is none.
const MathProgSymbol* symbolOf(const MathProgText& model, std::string_view name,
                               const std::string& file) {
  const MathProgSymbol* found = nullptr;
  const MathProgSymbol* other = nullptr;
  for (const MathProgSymbol& symbol : model.symbols()) {
    if (symbol.name == name) return &symbol;
    if (!ztb::sameFolded(symbol.name, name)) continue;
    other = found;
    found = &symbol;
  }
  if (other != nullptr) {
    throw ModelError(file + ": " + shown(name) + " may fill " + shown(other->name) + " and " +
                     shown(found->name) + ", expected it as the model spells one of them");
  }
  return found;
}

}  // namespace

MathProgData filledData(const std::string& file, const std::string& dataFile,
                        std::span<ztbModelFill> fills) {
  const std::string text = readText(file);
  const MathProgText model(text);
  std::vector<MathProgFilled> filled;
  std::string added;
  for (ztbModelFill& fill : fills) {
    fill.taken = 0;
    const MathProgSymbol* const symbol = symbolOf(model, fill.name, file);
    if (symbol == nullptr) continue;
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
    filled.push_back({symbol->name, fill.dimension});
    fill.taken = 1;
  }
  if (filled.empty()) return {};
  if (dataFile.empty()) return replacedData(file, text, false, filled, added);
  return replacedData(dataFile, readText(dataFile), true, filled, added);
}

}  // namespace lomu
