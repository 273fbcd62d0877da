#include "providers/model/lp_expression.h"

#include <string>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/file_bounds.h"
#include "providers/model/lp_sections.h"

namespace lomu {

int LpColumns::findOrAdd(std::string_view name) {
  const auto [entry, isNew] = numbers_.try_emplace(name, static_cast<int>(columns_.size()));
  if (isNew) columns_.push_back(ColumnData{std::string(name)});
  return entry->second;
}

std::optional<int> LpColumns::find(std::string_view name) const {
  const auto entry = numbers_.find(name);
  if (entry == numbers_.end()) return std::nullopt;
  return entry->second;
}

void LpExpression::add(const LpExpression& other, double factor) {
  for (Term term : other.terms) {
    term.value *= factor;
    terms.push_back(term);
  }
  for (Product product : other.products) {
    product.value *= factor;
    products.push_back(product);
  }
  constant += other.constant * factor;
}

bool isInfinityWord(const LpToken& token) {
  return token.kind == LpTokenKind::name &&
         (ztb::sameFolded(token.text, "inf") || ztb::sameFolded(token.text, "infinity"));
}

namespace {

class ExpressionReader {
 public:
  ExpressionReader(LpTokens& tokens, LpColumns& columns, LpPlace place)
      : tokens_(tokens), columns_(columns), place_(place) {}

  LpExpression read() {
    for (bool first = true; !ends(first); first = false) {
      const bool isSign = is(LpTokenKind::plus) || is(LpTokenKind::minus);
      if (!isSign && !first) tokens_.failExpecting(R"("+", "-" or the end of the sum)");
      readTerm(readSigns());
    }
    return std::move(result_);
  }

 private:
  [[nodiscard]] bool is(LpTokenKind kind) const { return tokens_.next().kind == kind; }

  // Whether the next token is a name that stands for a column.
  [[nodiscard]] bool isColumn() const {
    return is(LpTokenKind::name) && !isInfinityWord(tokens_.next()) && !isLabel() &&
           !lpSection(tokens_);
  }
  [[nodiscard]] bool isLabel() const {
    return is(LpTokenKind::name) && tokens_.second().kind == LpTokenKind::colon;
  }

  // On a right side a new line starts a new row, but for a sign that goes on with a sum of
  // variables.
  [[nodiscard]] bool rowEndsBefore(const LpToken& token) const {
    if (place_ != LpPlace::rightSide || !token.startsLine) return false;
    const bool isSign = token.kind == LpTokenKind::plus || token.kind == LpTokenKind::minus;
    return !isSign || result_.isConstant();
  }

  [[nodiscard]] bool ends(bool first) const {
    if (!first && rowEndsBefore(tokens_.next())) return true;
    switch (tokens_.next().kind) {
      case LpTokenKind::plus:
      case LpTokenKind::minus:
      case LpTokenKind::number:
      case LpTokenKind::openBracket:
        return false;
      case LpTokenKind::name:
        return isLabel() || lpSection(tokens_).has_value();
      default:
        return true;
    }
  }

  double readSigns() {
    double sign = 1;
    while (is(LpTokenKind::plus) || is(LpTokenKind::minus)) {
      if (tokens_.take().kind == LpTokenKind::minus) sign = -sign;
    }
    return sign;
  }

  void readTerm(double sign) {
    if (is(LpTokenKind::openBracket)) {
      readBracket(sign);
    } else if (isInfinityWord(tokens_.next())) {
      tokens_.take();
      addConstant(sign * kInfinity);
    } else if (isColumn()) {
      addTerm(sign);
    } else if (is(LpTokenKind::number)) {
      const LpToken number = tokens_.take();
      const double value = sign * number.number;
      if (tokens_.takeIf(LpTokenKind::times)) {
        if (!isColumn()) tokens_.failExpecting("the name of a variable after \"*\"");
      } else if (is(LpTokenKind::openBracket)) {
        tokens_.failExpecting(R"("+", "-" or a name; a bracket takes no coefficient)");
      } else if (!isColumn() || rowEndsBefore(tokens_.next())) {
        return addConstant(fromFile(value));
      }
      checkCoefficient(number);
      addTerm(value);
    } else {
      tokens_.failExpecting("a number, a name or a bracket after the sign");
    }
  }

  void checkCoefficient(const LpToken& number) const {
    if (number.number < kFileInfinity) return;
    tokens_.fail(number.position, "the coefficient " + std::string(number.text.substr(0, 40)) +
                                      " is out of range, expected a size below 1e30");
  }

  void addTerm(double value) {
    const LpToken name = tokens_.take();
    if (is(LpTokenKind::power) || is(LpTokenKind::times)) {
      tokens_.failExpecting("products and squares within a bracket only, as in [ x ^ 2 ]");
    }
    result_.terms.push_back({0, columns_.findOrAdd(name.text), value});
  }

  void addConstant(double value) { result_.constant += value; }

  void readBracket(double sign) {
    const std::size_t line = tokens_.take().position.line;
    const std::size_t begin = result_.products.size();
    do {
      const double termSign = readSigns();
      readProduct(sign * termSign);
    } while (is(LpTokenKind::plus) || is(LpTokenKind::minus));
    if (!tokens_.takeIf(LpTokenKind::closeBracket)) {
      tokens_.failExpecting(R"("+", "-" or the "]" of the bracket opened in line )" +
                            std::to_string(line));
    }
    if (place_ != LpPlace::objective) {
      if (is(LpTokenKind::divide)) {
        tokens_.failExpecting("no \"/\": brackets are halved in the objective only");
      }
      return;
    }
    if (!tokens_.takeIf(LpTokenKind::divide)) {
      tokens_.failExpecting("\"/ 2\" after a bracket of the objective");
    }
    if (!is(LpTokenKind::number) || tokens_.next().number != 2) {
      tokens_.failExpecting("2 after the \"/\"");
    }
    tokens_.take();
    for (std::size_t i = begin; i < result_.products.size(); ++i) result_.products[i].value /= 2;
  }

  void readProduct(double value) {
    if (is(LpTokenKind::number)) {
      const LpToken number = tokens_.take();
      checkCoefficient(number);
      value *= number.number;
      tokens_.takeIf(LpTokenKind::times);
    }
    const int first = readFactor();
    if (tokens_.takeIf(LpTokenKind::power)) {
      if (!is(LpTokenKind::number) || tokens_.next().number != 2) {
        tokens_.failExpecting("2, the only power there is");
      }
      tokens_.take();
      result_.products.push_back({0, first, first, value});
    } else if (tokens_.takeIf(LpTokenKind::times)) {
      result_.products.push_back({0, first, readFactor(), value});
    } else {
      tokens_.failExpecting(R"("^ 2" or "*": within a bracket stand squares and products)");
    }
  }

  int readFactor() {
    if (!isColumn()) tokens_.failExpecting("the name of a variable");
    return columns_.findOrAdd(tokens_.take().text);
  }

  LpTokens& tokens_;
  LpColumns& columns_;
  LpPlace place_;
  LpExpression result_;
};

}  // namespace

LpExpression readLpExpression(LpTokens& tokens, LpColumns& columns, LpPlace place) {
  return ExpressionReader(tokens, columns, place).read();
}

}  // namespace lomu
