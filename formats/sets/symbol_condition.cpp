#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <span>
#include <ztb/column_names.hpp>

#include "formats/sets/condition.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

// A node with its fields and positions found.
struct SymbolCondition::Bound {
  ConditionNode::Kind kind = ConditionNode::Kind::all;
  std::vector<Bound> parts;
  int slot = -1;
  Comparison comparison = Comparison::equal;
  std::vector<double> numbers;
  int position = -1;
  // Whether a label number, or a text number of a set, is among those that are asked for.
  std::vector<bool> allowed;
};

namespace {

constexpr double undefinedValue = 1e300;

// Numbers that stand for no amount come in no order.
bool hasOrder(double value) {
  return !std::isnan(value) && !tool::sameBits(value, undefinedValue);
}

bool isEqual(double value, double other) {
  return tool::isSpecial(value) || tool::isSpecial(other) ? tool::sameBits(value, other)
                                                          : value == other;
}

bool fulfils(double value, Comparison comparison, double other) {
  if (comparison == Comparison::equal) return isEqual(value, other);
  if (comparison == Comparison::notEqual) return !isEqual(value, other);
  if (!hasOrder(value) || !hasOrder(other)) return false;
  switch (comparison) {
    case Comparison::less:
      return value < other;
    case Comparison::lessOrEqual:
      return value <= other;
    case Comparison::greater:
      return value > other;
    default:
      return value >= other;
  }
}

int conditionSlot(const std::string& name, const tool::FileSymbol& symbol) {
  const bool hasFields = symbol.valueCount == static_cast<int>(ztb::fieldCount);
  if (tool::sameFolded(name, "value")) {
    return symbol.type == ztb::Type::parameter || hasFields ? 0 : -1;
  }
  const auto* field = std::ranges::find_if(
      ztb::fieldNames, [&](std::string_view known) { return tool::sameFolded(known, name); });
  return hasFields ? static_cast<int>(field - ztb::fieldNames.begin()) : -1;
}

int conditionPosition(const std::string& name, const std::vector<std::string>& columns) {
  for (std::size_t position = 0; position < columns.size(); ++position) {
    if (tool::sameFolded(columns[position], name)) return static_cast<int>(position);
  }
  int number = 0;
  const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), number);
  const bool isNumber = error == std::errc{} && end == name.data() + name.size();
  return isNumber && number >= 1 && number <= static_cast<int>(columns.size()) ? number - 1 : -1;
}

// Whether a label is among those that a comparison with labels asks for.
bool isAskedFor(const ConditionNode& node, std::string_view label) {
  if (node.isLabelNumber) {
    std::string problem;
    const double value = tool::parseNumber(label, problem);
    return problem.empty() && fulfils(value, node.comparison, node.numbers.front());
  }
  const bool found = std::ranges::any_of(
      node.patterns, [&](const LabelPattern& pattern) { return pattern.matches(label); });
  return found == (node.comparison != Comparison::notEqual);
}

}  // namespace

SymbolCondition::SymbolCondition(const ConditionNode& condition, const tool::ExchangeFile& file,
                                 const tool::FileSymbol& symbol)
    : keyColumns_(ztb::keyColumns(symbol.name, symbol.type, tool::domainNames(symbol))),
      root_(std::make_unique<Bound>()) {
  bind(condition, file, symbol, *root_);
}

SymbolCondition::~SymbolCondition() = default;

void SymbolCondition::bind(const ConditionNode& node, const tool::ExchangeFile& file,
                           const tool::FileSymbol& symbol, Bound& bound) {
  bound.kind = node.kind;
  bound.comparison = node.comparison;
  bound.numbers = node.numbers;
  for (const ConditionNode& part : node.parts) {
    bind(part, file, symbol, bound.parts.emplace_back());
  }
  if (node.kind == ConditionNode::Kind::numbers) {
    bound.slot = conditionSlot(node.name, symbol);
    if (bound.slot < 0) missing_ = node.name;
  } else if (node.kind == ConditionNode::Kind::labels) {
    bound.position = conditionPosition(node.name, keyColumns_);
    const bool isText =
        bound.position < 0 && symbol.type == ztb::Type::set && tool::sameFolded(node.name, "text");
    if (bound.position < 0 && !isText) {
      missing_ = node.name;
      return;
    }
    const int count = isText ? file.file().textCount() : file.labelCount();
    bound.allowed.push_back(isText && isAskedFor(node, ""));
    for (int number = 1; number <= count; ++number) {
      bound.allowed.push_back(
          isAskedFor(node, isText ? file.file().text(number) : file.label(number)));
    }
  }
}

void SymbolCondition::evaluate(const ztb::RxfRecords& block,
                               std::vector<std::uint8_t>& chosen) const {
  evaluate(*root_, block, chosen);
}

void SymbolCondition::evaluate(const Bound& bound, const ztb::RxfRecords& block,
                               std::vector<std::uint8_t>& chosen) {
  const std::size_t count = block.size();
  chosen.resize(count);
  if (bound.kind == ConditionNode::Kind::numbers) {
    const std::span<const double> values = block.values(bound.slot);
    for (std::size_t record = 0; record < count; ++record) {
      chosen[record] = std::ranges::any_of(bound.numbers, [&](double number) {
        return fulfils(values[record], bound.comparison, number);
      });
    }
  } else if (bound.kind == ConditionNode::Kind::labels) {
    if (bound.position < 0) {
      const std::span<const double> texts = block.values(0);
      for (std::size_t record = 0; record < count; ++record) {
        chosen[record] = bound.allowed[static_cast<std::size_t>(texts[record])];
      }
      return;
    }
    const std::span<const int> labels = block.keys(bound.position);
    for (std::size_t record = 0; record < count; ++record) {
      chosen[record] = bound.allowed[static_cast<std::size_t>(labels[record])];
    }
  } else {
    const bool isAny = bound.kind == ConditionNode::Kind::any;
    evaluate(bound.parts.front(), block, chosen);
    std::vector<std::uint8_t> further;
    for (std::size_t part = 1; part < bound.parts.size(); ++part) {
      evaluate(bound.parts[part], block, further);
      for (std::size_t record = 0; record < count; ++record) {
        chosen[record] =
            isAny ? chosen[record] | further[record] : chosen[record] & further[record];
      }
    }
    if (bound.kind == ConditionNode::Kind::none) {
      for (std::uint8_t& choice : chosen) choice ^= 1U;
    }
  }
}

}  // namespace formats
