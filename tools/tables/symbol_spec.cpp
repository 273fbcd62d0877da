#include "tools/tables/symbol_spec.h"

#include <fmt/format.h>

#include <string_view>

#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr std::string_view delimiters = "(),:='\"";

class SpecParser {
 public:
  SpecParser(SpecKind kind, const std::string& argument) : argument_(argument) {
    spec_.kind = kind;
    spec_.source = fmt::format("{} {}", optionOf(kind), argument);
  }

  SymbolSpec parse() {
    spec_.name = plainWords();
    if (spec_.name.empty()) {
      fail("the name of a symbol is expected");
    }
    if (accept('(')) {
      parseKeys();
    } else if (spec_.kind == SpecKind::parameter) {
      fail("'(' and the key columns are expected; a scalar is written with ()");
    } else {
      spec_.keys.push_back({.column = spec_.name, .domain = std::nullopt});
    }
    parseContent();
    if (atQuote()) {
      spec_.text = quotedText();
    }
    if (at_ < argument_.size()) {
      fail(spec_.kind == SpecKind::parameter ? "'=' and the value column are expected"
                                             : "':' and the text column are expected");
    }
    return spec_;
  }

 private:
  void parseKeys() {
    if (accept(')')) {
      return;
    }
    do {
      spec_.keys.push_back(parseKey());
    } while (accept(','));
    if (!accept(')')) {
      fail("',' or ')' is expected");
    }
  }

  KeySpec parseKey() {
    KeySpec key;
    if (atQuote()) {
      key.column = quotedText();
      const std::string rest = plainWords();
      if (!rest.empty()) {
        splitDomain(" " + rest, key.domain);
      }
    } else {
      const std::string words = plainWords();
      key.column = splitDomain(words, key.domain);
    }
    if (key.column.empty()) {
      fail("the name of a key column is expected");
    }
    return key;
  }

  // Takes a trailing "in SET" off words and gives what stands before it.
  std::string splitDomain(const std::string& words, std::optional<std::string>& domain) {
    constexpr std::string_view separator = " in ";
    const std::size_t found = words.rfind(separator);
    if (found == std::string::npos) {
      if (words.starts_with(' ')) {
        fail("',', ')' or \"in SET\" is expected");
      }
      return words;
    }
    domain = words.substr(found + separator.size());
    return words.substr(0, found);
  }

  void parseContent() {
    const bool parameter = spec_.kind == SpecKind::parameter;
    if (!accept(parameter ? '=' : ':')) {
      spec_.contentColumn = parameter ? spec_.name : "";
      return;
    }
    spec_.contentColumn = atQuote() ? quotedText() : plainWords();
    if (spec_.contentColumn.empty()) {
      fail("the name of a column is expected");
    }
  }

  // The chars up to a delimiter, without the blanks around them.
  std::string plainWords() {
    skipBlanks();
    const std::size_t end = std::min(argument_.find_first_of(delimiters, at_), argument_.size());
    std::string words = argument_.substr(at_, end - at_);
    words.resize(words.find_last_not_of(' ') + 1);
    at_ = end;
    return words;
  }

  bool atQuote() {
    skipBlanks();
    return at_ < argument_.size() && (argument_[at_] == '"' || argument_[at_] == '\'');
  }

  // A quoted text, in which the quote itself is written twice.
  std::string quotedText() {
    const char quote = argument_[at_];
    std::string text;
    for (++at_; at_ < argument_.size(); ++at_) {
      if (argument_[at_] == quote) {
        if (at_ + 1 == argument_.size() || argument_[at_ + 1] != quote) {
          ++at_;
          skipBlanks();
          return text;
        }
        ++at_;
      }
      text += argument_[at_];
    }
    fail("a quote is not closed");
  }

  bool accept(char c) {
    skipBlanks();
    if (at_ == argument_.size() || argument_[at_] != c) {
      return false;
    }
    ++at_;
    skipBlanks();
    return true;
  }

  void skipBlanks() {
    while (at_ < argument_.size() && argument_[at_] == ' ') {
      ++at_;
    }
  }

  [[noreturn]] void fail(const std::string& reason) const {
    throw UsageError(fmt::format("{}: {} at char {}", spec_.source, reason, at_ + 1));
  }

  const std::string& argument_;
  std::size_t at_ = 0;
  SymbolSpec spec_;
};

}  // namespace

const char* optionOf(SpecKind kind) {
  switch (kind) {
    case SpecKind::set:
      return "--set";
    case SpecKind::distinctSet:
      return "--distinct-set";
    default:
      return "--parameter";
  }
}

SymbolSpec parseSymbolSpec(SpecKind kind, const std::string& argument) {
  return SpecParser(kind, argument).parse();
}

}  // namespace tool
