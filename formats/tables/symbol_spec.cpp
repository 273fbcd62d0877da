#include "formats/tables/symbol_spec.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <ztb/column_names.hpp>

#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

namespace {

constexpr std::string_view delimiters = "(),:='\"";

struct VariableKind {
  std::string_view word;
  int subtype;
};

constexpr std::array<VariableKind, 5> variableKinds{
    {{"free", 5}, {"positive", 3}, {"negative", 4}, {"binary", 1}, {"integer", 2}}};

class SpecParser {
 public:
  SpecParser(SpecKind kind, const std::string& argument, const char* option) : argument_(argument) {
    spec_.kind = kind;
    spec_.source = fmt::format("{} {}", option == nullptr ? optionOf(kind) : option, argument);
  }

  SymbolSpec parse() {
    spec_.name = plainWords();
    if (spec_.kind == SpecKind::variable) {
      takeKind();
    }
    if (spec_.name.empty()) {
      fail("the name of a symbol is expected");
    }
    if (accept('(')) {
      parseKeys();
    } else if (hasValues()) {
      fail("'(' and the key columns are expected; a scalar is written with ()");
    } else {
      spec_.keys.push_back({.column = spec_.name, .domain = std::nullopt});
    }
    parseContent();
    if (atQuote()) {
      spec_.text = quotedText();
    }
    if (at_ < argument_.size()) {
      fail(hasValues() ? "'=' and the value column are expected"
                       : "':' and the text column are expected");
    }
    return spec_;
  }

 private:
  [[nodiscard]] bool hasValues() const {
    return spec_.kind == SpecKind::parameter || spec_.kind == SpecKind::variable;
  }

  // Takes the word in front of a variable's name that tells its kind.
  void takeKind() {
    spec_.subtype = variableKinds.front().subtype;
    const std::size_t blank = spec_.name.find(' ');
    if (blank == std::string::npos) {
      return;
    }
    const std::string word = spec_.name.substr(0, blank);
    const auto* kind = std::ranges::find_if(variableKinds, [&](const VariableKind& known) {
      return tool::sameFolded(known.word, word);
    });
    if (kind == variableKinds.end()) {
      fail("free, positive, negative, binary or integer is expected before the name");
    }
    spec_.subtype = kind->subtype;
    spec_.name = spec_.name.substr(spec_.name.find_first_not_of(' ', blank));
  }

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
    if (!accept(hasValues() ? '=' : ':')) {
      spec_.contentColumn = spec_.kind == SpecKind::parameter ? spec_.name : "";
      return;
    }
    if (spec_.kind == SpecKind::variable) {
      parseFields();
    } else {
      spec_.contentColumn = columnName();
      spec_.contentIsGiven = true;
    }
  }

  // One column is that of the levels; otherwise each has the name of its field in front.
  void parseFields() {
    const std::string first = columnName();
    if (!accept(':')) {
      spec_.fields.push_back({.field = 0, .column = first});
      return;
    }
    spec_.fields.push_back({.field = fieldNamed(first), .column = columnName()});
    while (accept(',')) {
      const std::size_t field = fieldNamed(columnName());
      if (std::ranges::find(spec_.fields, field, &FieldSpec::field) != spec_.fields.end()) {
        fail(fmt::format("{} is given twice", ztb::fieldNames.at(field)));
      }
      if (!accept(':')) {
        fail("':' and the column of the field are expected");
      }
      spec_.fields.push_back({.field = field, .column = columnName()});
    }
  }

  [[nodiscard]] std::size_t fieldNamed(const std::string& word) const {
    const auto* found = std::ranges::find_if(
        ztb::fieldNames, [&](std::string_view known) { return tool::sameFolded(known, word); });
    if (found == ztb::fieldNames.end()) {
      fail(fmt::format("'{}' is no field, expected level, marginal, lower, upper or scale", word));
    }
    return static_cast<std::size_t>(found - ztb::fieldNames.begin());
  }

  std::string columnName() {
    std::string name = atQuote() ? quotedText() : plainWords();
    if (name.empty()) {
      fail("the name of a column is expected");
    }
    return name;
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
    throw tool::UsageError(fmt::format("{}: {} at char {}", spec_.source, reason, at_ + 1));
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
    case SpecKind::variable:
      return "--variable";
    default:
      return "--parameter";
  }
}

SymbolSpec parseSymbolSpec(SpecKind kind, const std::string& argument, const char* option) {
  return SpecParser(kind, argument, option).parse();
}

}  // namespace formats
