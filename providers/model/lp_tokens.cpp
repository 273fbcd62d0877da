#include "providers/model/lp_tokens.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <utility>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>

#include "providers/model/file_signs.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

constexpr std::size_t kMaxShown = 60;
constexpr std::string_view kNameSigns = "!\"#$%&/,.;?@_`'{}|~";

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isLetter(char c) {
  return ztb::isAsciiLetter(c) || static_cast<unsigned char>(c) >= 0x80;
}
bool isOpen(char c) {
  return c == '[' || c == '(';
}
bool isClose(char c) {
  return c == ']' || c == ')';
}

bool continuesName(char c) {
  return isLetter(c) || isDigit(c) || kNameSigns.find(c) != std::string_view::npos;
}
bool beginsName(char c) {
  return continuesName(c) && !isDigit(c) && c != '.' && c != '/';
}

}  // namespace

std::string shown(std::string_view text) {
  std::string result = "\"";
  for (const char c : text.substr(0, kMaxShown)) {
    result += isControl(c) ? '?' : c;
  }
  if (text.size() > kMaxShown) result += "...";
  return result + '"';
}

LpTokens::LpTokens(std::string file, std::string_view text) : file_(std::move(file)), text_(text) {
  if (text_.starts_with(kByteOrderMark)) text_.remove_prefix(kByteOrderMark.size());
  next_ = scan();
  second_ = scan();
}

LpToken LpTokens::take() {
  const LpToken taken = next_;
  next_ = second_;
  if (second_.kind != LpTokenKind::end) second_ = scan();
  return taken;
}

bool LpTokens::takeIf(LpTokenKind kind) {
  if (next_.kind != kind) return false;
  take();
  return true;
}

void LpTokens::fail(LpPosition position, const std::string& text) const {
  throw ModelError(file_ + ":" + std::to_string(position.line) + ":" +
                       std::to_string(position.column) + ": " + text,
                   ZTB_ERROR_DAMAGED_FILE);
}

void LpTokens::failExpecting(const std::string& what) const {
  const bool over = next_.kind == LpTokenKind::end;
  fail(next_.position,
       "found " + (over ? "the end of the file" : shown(next_.text)) + ", expected " + what);
}

void LpTokens::skipBlanks() {
  for (; more(); ++position_) {
    if (at() == '\n') {
      ++line_;
      lineBegin_ = position_ + 1;
      startsLine_ = true;
    } else if (at() == '\\') {
      while (at(1) != '\n') ++position_;
    } else if (!isBlank(at())) {
      return;
    }
  }
}

LpToken LpTokens::scan() {
  skipBlanks();
  LpToken token;
  token.position = here();
  token.startsLine = std::exchange(startsLine_, false);
  if (!more()) return token;
  const std::size_t begin = position_;
  if (isDigit(at()) || at() == '.') {
    token.kind = LpTokenKind::number;
    token.number = scanNumber();
  } else if (beginsName(at())) {
    token.kind = LpTokenKind::name;
    scanName();
  } else {
    token.kind = scanOperator();
  }
  token.text = text_.substr(begin, position_ - begin);
  if (token.startsLine && ztb::sameFolded(token.text, "end")) endHere();
  return token;
}

// Cuts off the text behind the word just scanned, unless that is a label.
void LpTokens::endHere() {
  const std::size_t end = position_;
  const LpPosition place = here();
  const std::size_t lineBegin = lineBegin_;
  skipBlanks();
  if (more() && at() != ':') behindEnd_ = here();
  if (!more() || at() != ':') text_ = text_.substr(0, end);
  position_ = end;
  line_ = place.line;
  lineBegin_ = lineBegin;
  startsLine_ = false;
}

LpTokenKind LpTokens::scanOperator() {
  const char c = at();
  const char after = at(1);
  const LpPosition place = here();
  ++position_;
  switch (c) {
    case '+':
      return LpTokenKind::plus;
    case '-':
      if (after == '>') fail(place, "\"->\": rows under a condition are not supported");
      return LpTokenKind::minus;
    case '*':
      return LpTokenKind::times;
    case '^':
      return LpTokenKind::power;
    case '/':
      return LpTokenKind::divide;
    case ':':
      return LpTokenKind::colon;
    case '[':
      return LpTokenKind::openBracket;
    case ']':
      return LpTokenKind::closeBracket;
    case '<':
    case '>':
      if (after == '=') ++position_;
      return c == '<' ? LpTokenKind::lessOrEqual : LpTokenKind::greaterOrEqual;
    case '=':
      if (after != '<' && after != '>') return LpTokenKind::equal;
      ++position_;
      return after == '<' ? LpTokenKind::lessOrEqual : LpTokenKind::greaterOrEqual;
    default:
      break;
  }
  if (isOpen(c) || isClose(c)) {
    fail(place, shown({&c, 1}) + " without a name right before it, expected a name or a number");
  }
  if (isControl(c)) fail(place, "a byte of value " + std::to_string(+c) + ", expected text");
  fail(place, shown({&c, 1}) + " cannot stand here, expected a name, a number or an operator");
}

double LpTokens::scanNumber() {
  double value = 0;
  const char* const begin = text_.data() + position_;
  const auto [end, error] = std::from_chars(begin, text_.data() + text_.size(), value);
  if (error == std::errc::invalid_argument) {
    fail(here(), "a point without digits, expected a number");
  }
  const auto length = static_cast<std::size_t>(end - begin);
  if (error == std::errc::result_out_of_range) {
    fail(here(), "the number " + std::string(text_.substr(position_, std::min(length, kMaxShown))) +
                     " is out of range, expected a size from 2.3e-308 to 1.7e308");
  }
  position_ += length;
  return value;
}

void LpTokens::scanName() {
  const std::size_t begin = position_;
  const LpPosition place = here();
  while (more()) {
    if (isOpen(at())) {
      scanNameBracket(begin);
    } else if (continuesName(at())) {
      ++position_;
    } else {
      break;
    }
  }
  const std::string_view name = text_.substr(begin, position_ - begin);
  if (name.size() > kMaxFileName) {
    fail(place, "the name " + shown(name) + " has " + std::to_string(name.size()) +
                    " characters, expected at most " + std::to_string(kMaxFileName));
  }
}

void LpTokens::scanNameBracket(std::size_t begin) {
  const char closing = at() == '[' ? ']' : ')';
  ztb::LabelScanner labels;
  for (++position_;; ++position_) {
    const char c = at();
    const std::string_view name = text_.substr(begin, position_ - begin);
    if (labels.inQuotes()) {
      if (isControl(c)) {
        fail(here(), "the quote in the name " + shown(name) +
                         " is not closed, expected it closed on the same line");
      }
    } else if (c == '\n') {
      fail(here(), "the bracket in the name " + shown(name) + " is not closed, expected \"" +
                       closing + "\" on the same line");
    } else if (c == ' ' || isControl(c)) {
      fail(here(), "a blank in the name " + shown(name) +
                       ", expected none but between quotes in its bracket");
    }
    if (labels.take(c) != ztb::LabelScanner::Char::end) continue;
    if (c != closing) {
      fail(here(), "the name " + shown(name) + " ends with " + shown({&c, 1}) + ", expected \"" +
                       closing + "\"");
    }
    ++position_;
    return;
  }
}

}  // namespace lomu
