#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <optional>

#include "formats/sets/condition.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// As deep as parentheses and not may be within each other.
constexpr int deepest = 200;

constexpr std::array<std::string_view, 6> numberFields{"value", "level", "marginal",
                                                       "lower", "upper", "scale"};

bool isNumberField(std::string_view name) {
  return std::ranges::any_of(numberFields,
                             [&](std::string_view field) { return tool::sameFolded(field, name); });
}

struct ConditionToken {
  enum class Kind { end, word, quoted, sign };
  Kind kind = Kind::end;
  std::string text;
  std::size_t column = 0;
};

class ConditionParser {
 public:
  explicit ConditionParser(const std::string& text) : text_(text) { take(); }

  ConditionNode parse() {
    ConditionNode node = any(0);
    if (token_.kind != ConditionToken::Kind::end) fail("expected and, or, or the end");
    return node;
  }

 private:
  [[noreturn]] void fail(const std::string& what) const { fail(what, token_.column); }
  [[noreturn]] void fail(const std::string& what, std::size_t column) const {
    throw tool::UsageError(
        fmt::format("--where {}: column {}: {}", tool::shortened(text_), column, what));
  }

  static bool isWordChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '.' || c == '+' ||
           c == '-' || c == ':' || c == '*' || static_cast<unsigned char>(c) >= 0x80U;
  }

  void take() {
    while (at_ < text_.size() && std::isspace(static_cast<unsigned char>(text_[at_])) != 0) ++at_;
    token_ = {.kind = ConditionToken::Kind::end, .text = {}, .column = at_ + 1};
    if (at_ == text_.size()) return;
    const char c = text_[at_];
    if (c == '"' || c == '\'') {
      takeQuoted(c);
    } else if (isWordChar(c)) {
      token_.kind = ConditionToken::Kind::word;
      while (at_ < text_.size() && isWordChar(text_[at_])) token_.text += text_[at_++];
    } else {
      token_.kind = ConditionToken::Kind::sign;
      token_.text = text_[at_++];
      const bool two = at_ < text_.size() && (text_[at_] == '=' || (c == '<' && text_[at_] == '>'));
      if (two && std::string_view("=!<>").find(c) != std::string_view::npos) {
        token_.text += text_[at_++];
      }
    }
  }

  void takeQuoted(char quote) {
    token_.kind = ConditionToken::Kind::quoted;
    for (++at_;; ++at_) {
      if (at_ == text_.size()) fail("the quote that opens here is never closed");
      if (text_[at_] == quote) {
        ++at_;
        if (at_ == text_.size() || text_[at_] != quote) return;
      }
      token_.text += text_[at_];
    }
  }

  [[nodiscard]] bool isWord(std::string_view word) const {
    return token_.kind == ConditionToken::Kind::word && tool::sameFolded(token_.text, word);
  }
  [[nodiscard]] bool isSign(std::string_view sign) const {
    return token_.kind == ConditionToken::Kind::sign && token_.text == sign;
  }
  bool takeWord(std::string_view word) {
    if (!isWord(word)) return false;
    take();
    return true;
  }
  void requireSign(std::string_view sign) {
    if (!isSign(sign)) fail(fmt::format("expected {}", sign));
    take();
  }

  ConditionNode any(int depth) {
    ConditionNode node{.kind = ConditionNode::Kind::any};
    do {
      node.parts.push_back(all(depth));
    } while (takeWord("or"));
    return node;
  }

  ConditionNode all(int depth) {
    ConditionNode node{.kind = ConditionNode::Kind::all};
    do {
      node.parts.push_back(term(depth));
    } while (takeWord("and"));
    return node;
  }

  ConditionNode term(int depth) {
    if (depth > deepest) fail("is too deep within parentheses");
    if (takeWord("not")) {
      ConditionNode node{.kind = ConditionNode::Kind::none};
      node.parts.push_back(term(depth + 1));
      return node;
    }
    if (isSign("(")) {
      take();
      ConditionNode node = any(depth + 1);
      requireSign(")");
      return node;
    }
    return comparison();
  }

  ConditionNode comparison() {
    if (token_.kind != ConditionToken::Kind::word && token_.kind != ConditionToken::Kind::quoted) {
      fail("expected a field, the name or number of a position, not or (");
    }
    ConditionNode node;
    const bool quoted = token_.kind == ConditionToken::Kind::quoted;
    node.name = token_.text;
    node.column = token_.column;
    node.kind = !quoted && isNumberField(node.name) ? ConditionNode::Kind::numbers
                                                    : ConditionNode::Kind::labels;
    take();
    const bool negated = takeWord("not");
    if (takeWord("in")) {
      list(node);
    } else if (negated) {
      fail("expected in");
    } else {
      single(node);
    }
    if (!negated) return node;
    ConditionNode outside{.kind = ConditionNode::Kind::none};
    outside.parts.push_back(std::move(node));
    return outside;
  }

  void list(ConditionNode& node) {
    requireSign("(");
    do {
      if (isSign(",")) take();
      value(node);
    } while (isSign(","));
    requireSign(")");
  }

  void single(ConditionNode& node) {
    struct Sign {
      std::string_view text;
      Comparison comparison;
    };
    constexpr std::array<Sign, 8> signs{{{"=", Comparison::equal},
                                         {"==", Comparison::equal},
                                         {"!=", Comparison::notEqual},
                                         {"<>", Comparison::notEqual},
                                         {"<", Comparison::less},
                                         {"<=", Comparison::lessOrEqual},
                                         {">", Comparison::greater},
                                         {">=", Comparison::greaterOrEqual}}};
    const auto* sign =
        std::ranges::find_if(signs, [this](const Sign& known) { return isSign(known.text); });
    if (sign == signs.end()) fail("expected a comparison or in");
    node.comparison = sign->comparison;
    take();
    const bool orders =
        node.comparison != Comparison::equal && node.comparison != Comparison::notEqual;
    if (orders && node.kind == ConditionNode::Kind::labels) {
      node.isLabelNumber = true;
      number(node);
    } else {
      value(node);
    }
  }

  void value(ConditionNode& node) {
    if (node.kind == ConditionNode::Kind::numbers) return number(node);
    if (token_.kind != ConditionToken::Kind::word && token_.kind != ConditionToken::Kind::quoted) {
      fail("expected a label");
    }
    const std::size_t other = token_.text.find_last_not_of('\\');
    if ((token_.text.size() - (other + 1)) % 2 != 0)
      fail("ends in a backslash, which takes a char behind it");
    node.patterns.emplace_back(token_.text);
    take();
  }

  void number(ConditionNode& node) {
    if (token_.kind != ConditionToken::Kind::word) fail("expected a number");
    std::string problem;
    node.numbers.push_back(tool::parseNumber(token_.text, problem));
    if (!problem.empty()) fail(problem);
    take();
  }

  const std::string& text_;
  std::size_t at_ = 0;
  ConditionToken token_;
};

}  // namespace

ConditionNode parseCondition(const std::string& text) {
  return ConditionParser(text).parse();
}

LabelPattern::LabelPattern(std::string_view text) : pieces_(1) {
  for (std::size_t at = 0; at < text.size(); ++at) {
    if (text[at] == '*') {
      pieces_.emplace_back();
    } else {
      at += text[at] == '\\' && at + 1 < text.size() ? 1 : 0;
      pieces_.back() += ztb::foldedChar(text[at]);
    }
  }
}

bool LabelPattern::matches(std::string_view label) const {
  const std::string folded = tool::folded(label);
  std::string_view rest = folded;
  if (pieces_.size() == 1) return rest == pieces_.front();
  if (!rest.starts_with(pieces_.front())) return false;
  rest.remove_prefix(pieces_.front().size());
  if (!rest.ends_with(pieces_.back())) return false;
  rest.remove_suffix(pieces_.back().size());
  for (std::size_t piece = 1; piece + 1 < pieces_.size(); ++piece) {
    const std::size_t found = rest.find(pieces_[piece]);
    if (found == std::string_view::npos) return false;
    rest.remove_prefix(found + pieces_[piece].size());
  }
  return true;
}

}  // namespace formats
