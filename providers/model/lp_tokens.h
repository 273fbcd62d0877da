// The tokens of an LP file.
//
// A comment goes from a backslash to the end of its line. A name takes in a bracket that follows it
// at once, up to the closing one: x[seville,oslo], buy('Wheat Flour (Enriched)'). A bracket after a
// blank or an operator is a token of its own. Tokens end with an "End" that starts a line and that
// no colon follows: what stands behind it is not looked at. The text stays the caller's and has to
// outlive the tokens.
#ifndef ZTB_PROVIDERS_MODEL_LP_TOKENS_H_
#define ZTB_PROVIDERS_MODEL_LP_TOKENS_H_

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace lomu {

enum class LpTokenKind {
  name,
  number,
  plus,
  minus,
  times,
  power,
  divide,
  colon,
  lessOrEqual,
  greaterOrEqual,
  equal,
  openBracket,
  closeBracket,
  end
};

// A place in the file; both count from 1, columns in bytes.
struct LpPosition {
  std::size_t line = 1;
  std::size_t column = 1;
};

struct LpToken {
  LpTokenKind kind = LpTokenKind::end;
  std::string_view text;
  double number = 0;
  LpPosition position;
  bool startsLine = false;
};

class LpTokens {
 public:
  // `file` is what errors begin with.
  LpTokens(std::string file, std::string_view text);

  // The next token and the one after it; of kind `end` when the text is used up. Here and in take()
  // ModelError is thrown for what is no token.
  [[nodiscard]] const LpToken& next() const { return next_; }
  [[nodiscard]] const LpToken& second() const { return second_; }
  LpToken take();
  bool takeIf(LpTokenKind kind);

  // Where something but blanks and comments stands behind End.
  [[nodiscard]] const std::optional<LpPosition>& behindEnd() const { return behindEnd_; }

  // Throws ModelError "file:line:column: text".
  [[noreturn]] void fail(LpPosition position, const std::string& text) const;
  // Throws ModelError "file:line:column: found <next token>, expected <what>".
  [[noreturn]] void failExpecting(const std::string& what) const;

 private:
  [[nodiscard]] bool more() const { return position_ < text_.size(); }
  [[nodiscard]] char at(std::size_t ahead = 0) const {
    return position_ + ahead < text_.size() ? text_[position_ + ahead] : '\n';
  }
  [[nodiscard]] LpPosition here() const { return {line_, position_ - lineBegin_ + 1}; }
  void skipBlanks();
  LpToken scan();
  void endHere();
  LpTokenKind scanOperator();
  double scanNumber();
  void scanName();
  void scanNameBracket(std::size_t begin);

  std::string file_;
  std::string_view text_;
  std::size_t position_ = 0;
  std::size_t line_ = 1;
  std::size_t lineBegin_ = 0;
  bool startsLine_ = true;
  std::optional<LpPosition> behindEnd_;
  LpToken next_;
  LpToken second_;
};

// The text in double quotes, long ones cut, bytes that do not print as '?'.
std::string shown(std::string_view text);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_TOKENS_H_
