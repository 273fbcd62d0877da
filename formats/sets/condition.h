// Conditions on records, as in  value > 3 and food = "Milk*"
//
//   condition  := conjunct { or conjunct }
//   conjunct   := term { and term }
//   term       := not term | ( condition ) | comparison
//   comparison := field    OP number      | field    [not] in ( number, ... )
//               | position OP label       | position [not] in ( label, ... )
//   OP         := = == != <> < <= > >=
//
// Fields are value, level, marginal, lower, upper, scale, and text of a set. A position is a name
// or a number. The case of letters does not matter in words, names and labels.
#ifndef ZTB_FORMATS_SETS_CONDITION_H_
#define ZTB_FORMATS_SETS_CONDITION_H_

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tools/files/exchange_file.h"

namespace formats {

// A label or text in which a star stands for any run of chars.
class LabelPattern {
 public:
  // A backslash takes the char behind it as it stands.
  explicit LabelPattern(std::string_view text);
  [[nodiscard]] bool matches(std::string_view label) const;

 private:
  // What stands between the stars, with letters folded.
  std::vector<std::string> pieces_;
};

enum class Comparison { equal, notEqual, less, lessOrEqual, greater, greaterOrEqual };

struct ConditionNode {
  enum class Kind { any, all, none, numbers, labels };
  Kind kind = Kind::all;
  // Of any and all, several; of none, one.
  std::vector<ConditionNode> parts{};
  // Of a comparison: a field or position, as it was written and where, from 1.
  std::string name{};
  std::size_t column = 0;
  Comparison comparison = Comparison::equal;
  std::vector<double> numbers{};
  std::vector<LabelPattern> patterns{};
  // A position is compared with a number.
  bool isLabelNumber = false;
};

// Throws UsageError that names the column of the text where it is wrong.
ConditionNode parseCondition(const std::string& text);

// A condition on the records of one symbol.
class SymbolCondition {
 public:
  // Finds fields and positions. Where the symbol has one of them not, missing() names it.
  SymbolCondition(const ConditionNode& condition, const tool::ExchangeFile& file,
                  const tool::FileSymbol& symbol);
  ~SymbolCondition();

  [[nodiscard]] const std::string& missing() const { return missing_; }
  // Which records of a block fulfil it, as 1; only without anything missing.
  void evaluate(const ztb::RxfRecords& block, std::vector<std::uint8_t>& chosen) const;

 private:
  struct Bound;

  void bind(const ConditionNode& node, const tool::ExchangeFile& file,
            const tool::FileSymbol& symbol, Bound& bound);
  static void evaluate(const Bound& bound, const ztb::RxfRecords& block,
                       std::vector<std::uint8_t>& chosen);

  std::string missing_;
  std::vector<std::string> keyColumns_;
  std::unique_ptr<Bound> root_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_CONDITION_H_
