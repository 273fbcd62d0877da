// How the columns and rows of a model are named.
//
// A name is an element of a symbol, as people write it too: demand[oslo], ship('new york',7),
// budget. The labels stand behind the symbol in [] or (), with commas between them. Blanks around a
// label fall off unless it is quoted, in single or double quotes; a quote doubled inside stands for
// itself. Brackets inside a label that is not quoted have to be balanced; which kind closes which
// is only looked at for the outer ones.
#ifndef ZTB_MODEL_NAMES_HPP_
#define ZTB_MODEL_NAMES_HPP_

#include <ztb/types.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/cpp20.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// What stands behind a parameter's name in the variable that carries the parameter into a model.
inline constexpr const char* parameterSuffix = "_var";

// Walks the chars behind the bracket that opens the labels, and tells what each one is.
class LabelScanner {
 public:
  enum class Char {
    ofLabel,    // belongs to the label
    aside,      // a quote around a label, or a blank before or behind one
    separator,  // the comma behind a label
    end,        // the bracket that closes the labels, of either kind; the walk is over
  };

  Char take(char c) {
    switch (state_) {
      case State::begin:
        if (c == ' ') return Char::aside;
        if (c == '\'' || c == '"') {
          quote_ = c;
          state_ = State::quoted;
          return Char::aside;
        }
        return takePlain(c);
      case State::quoted:
        if (c != quote_) return Char::ofLabel;
        state_ = State::behindQuote;
        return Char::aside;
      case State::behindQuote:
        if (c == quote_) {
          state_ = State::quoted;
          return Char::ofLabel;
        }
        state_ = State::behindLabel;
        [[fallthrough]];
      case State::behindLabel:
        if (c == ' ') return Char::aside;
        quotesWell_ = quotesWell_ && (c == ',' || isClosing(c));
        return takePlain(c);
      case State::plain:
        break;
    }
    return takePlain(c);
  }

  // Whether the chars to come are inside quotes, where blanks, commas and brackets are the label's.
  [[nodiscard]] bool inQuotes() const { return state_ == State::quoted; }
  // Whether the label at hand is quoted.
  [[nodiscard]] bool isQuoted() const { return state_ != State::begin && state_ != State::plain; }
  // Whether nothing but blanks stood between each quoted label and what follows it.
  [[nodiscard]] bool quotesWell() const { return quotesWell_; }

 private:
  enum class State { begin, plain, quoted, behindQuote, behindLabel };

  static constexpr bool isClosing(char c) { return c == ']' || c == ')'; }

  Char takePlain(char c) {
    if (depth_ == 0 && c == ',') {
      state_ = State::begin;
      return Char::separator;
    }
    if (depth_ == 0 && isClosing(c)) return Char::end;
    if (c == '[' || c == '(') ++depth_;
    if (isClosing(c)) --depth_;
    state_ = State::plain;
    return Char::ofLabel;
  }

  State state_ = State::begin;
  char quote_ = 0;
  std::size_t depth_ = 0;  // of brackets inside the label
  bool quotesWell_ = true;
};

struct ElementText {
  std::string symbol;
  std::vector<std::string> labels;  // none: a scalar
};

// Reads an element. On failure `problem` says what is wrong, else it stays empty.
inline ElementText readElement(std::string_view text, std::string& problem) {
  problem.clear();
  const std::size_t open = text.find_first_of("[(");
  ElementText element{.symbol = std::string(text.substr(0, open)), .labels = {}};
  if (element.symbol.empty()) problem = "the name of a symbol is missing";
  if (open == std::string_view::npos || !problem.empty()) return element;
  const char close = text[open] == '[' ? ']' : ')';
  if (text.back() != close) {
    problem = "the labels have to end with ";
    problem += close;
    return element;
  }

  LabelScanner scanner;
  LabelScanner::Char last = LabelScanner::Char::separator;
  std::string label;
  std::size_t at = open + 1;
  for (; at < text.size() && last != LabelScanner::Char::end; ++at) {
    const bool wasQuoted = scanner.isQuoted();
    last = scanner.take(text[at]);
    if (!scanner.quotesWell()) {
      problem = "a comma has to follow a quoted label";
      return element;
    }
    if (last == LabelScanner::Char::ofLabel) label += text[at];
    if (last != LabelScanner::Char::separator && last != LabelScanner::Char::end) continue;
    if (!wasQuoted) label.erase(label.find_last_not_of(' ') + 1);
    if (label.empty()) {
      problem = "a label is empty";
      return element;
    }
    element.labels.push_back(std::move(label));
    label.clear();
  }
  if (scanner.inQuotes()) {
    problem = "a quote is left open";
  } else if (last != LabelScanner::Char::end || at != text.size()) {
    problem = "brackets in a label have to be balanced";
  } else if (element.labels.size() > ZTB_MAX_DIMENSION) {
    problem = "there are more than 20 labels";
  }
  return element;
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_MODEL_NAMES_HPP_
