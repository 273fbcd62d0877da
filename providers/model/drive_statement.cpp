#include "providers/model/drive_statement.h"

#include <algorithm>
#include <ztb/case_folding.hpp>
#include <ztb/model_names.hpp>
#include <ztb/nearest_name.hpp>

#include "providers/model/model_error.h"

namespace lomu {

namespace {

constexpr std::size_t kMaxSymbolLength = 63 - std::char_traits<char>::length(ztb::parameterSuffix);

bool isNameChar(char c) {
  return ztb::isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

const std::vector<std::string>& kindWords() {
  static const std::vector<std::string> words{"cost", "rhs", "lower", "upper", "coefficient"};
  return words;
}

// One entry of a list of positions, as it is written.
struct Entry {
  std::string text;
  bool quoted;
};

class Parser {
 public:
  explicit Parser(std::string_view text) : text_(text) {}

  DriveStatement parse() {
    DriveStatement statement;
    statement.symbol = name("the name of a symbol");
    if (statement.symbol.size() > kMaxSymbolLength ||
        !ztb::isAsciiLetter(statement.symbol.front())) {
      fail("\"" + statement.symbol + "\" is no name of a parameter, which begins with a letter " +
           "and has at most " + std::to_string(kMaxSymbolLength) + " characters");
    }
    takePositions(statement);
    if (!takeSign('=')) fail("an \"=\" is expected behind the symbol");
    statement.kind = kind();
    takeWord("of");
    statement.family = family(statement);
    if (statement.kind == DrivenKind::coefficient) {
      takeWord("in");
      statement.row = family(statement);
    }
    skipBlanks();
    if (at_ != text_.size()) {
      fail("nothing is expected behind it but stands there: \"" + std::string(text_.substr(at_)) +
           "\"");
    }
    return statement;
  }

 private:
  [[noreturn]] void fail(const std::string& problem) const {
    throw ModelError("drive \"" + std::string(text_) + "\": " + problem +
                     "; write it as \"price(food) = cost of buy\", \"demand(city) = rhs of " +
                     "demand\", \"cap(plant) = upper of make\" or \"yield(crop, soil) = " +
                     "coefficient of grow in harvest(soil)\"");
  }

  void skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }

  bool takeSign(char sign) {
    skipBlanks();
    if (at_ == text_.size() || text_[at_] != sign) return false;
    ++at_;
    return true;
  }

  std::string name(const char* what) {
    skipBlanks();
    const std::size_t begin = at_;
    while (at_ < text_.size() && isNameChar(text_[at_])) ++at_;
    if (at_ == begin) {
      fail(std::string(what) + " is expected at \"" + std::string(text_.substr(begin)) + "\"");
    }
    return std::string(text_.substr(begin, at_ - begin));
  }

  void takeWord(const char* word) {
    const std::string found = name((std::string("\"") + word + "\"").c_str());
    if (!ztb::sameFolded(found, word)) {
      fail(std::string("\"") + word + "\" is expected in the place of \"" + found + "\"");
    }
  }

  DrivenKind kind() {
    const std::string word = name("cost, rhs, lower, upper or coefficient");
    const auto& words = kindWords();
    const auto found = std::find_if(words.begin(), words.end(), [&](const std::string& known) {
      return ztb::sameFolded(known, word);
    });
    if (found == words.end()) {
      fail("\"" + word + "\" is none of cost, rhs, lower, upper and coefficient" +
           ztb::suggestion(word, words));
    }
    return static_cast<DrivenKind>(found - words.begin());
  }

  // What stands in brackets here; nothing without brackets.
  std::optional<std::vector<Entry>> list() {
    skipBlanks();
    if (at_ == text_.size() || (text_[at_] != '(' && text_[at_] != '[')) return std::nullopt;
    ++at_;
    std::vector<Entry> entries;
    ztb::LabelScanner scanner;
    std::string entry;
    while (at_ < text_.size()) {
      const bool quoted = scanner.isQuoted();
      const auto taken = scanner.take(text_[at_]);
      if (!scanner.quotesWell()) fail("a comma has to follow a quoted label");
      if (taken == ztb::LabelScanner::Char::ofLabel) entry += text_[at_];
      ++at_;
      const bool ends = taken == ztb::LabelScanner::Char::end;
      if (!ends && taken != ztb::LabelScanner::Char::separator) continue;
      if (!quoted) entry.erase(entry.find_last_not_of(' ') + 1);
      if (entry.empty() && ends && entries.empty() && !quoted) return entries;
      if (entry.empty()) fail("a position is empty");
      entries.push_back({std::move(entry), quoted});
      entry.clear();
      if (ends) return entries;
    }
    fail("a bracket is left open");
  }

  void takePositions(DriveStatement& statement) {
    const auto entries = list();
    if (!entries) return;
    for (const Entry& entry : *entries) {
      if (entry.quoted || !std::all_of(entry.text.begin(), entry.text.end(), isNameChar)) {
        fail("\"" + entry.text + "\" is no name of a position, which has letters, digits and _");
      }
      if (std::any_of(statement.positions.begin(), statement.positions.end(),
                      [&](const std::string& p) { return ztb::sameFolded(p, entry.text); })) {
        fail("position " + entry.text + " of " + statement.symbol + " stands twice");
      }
      statement.positions.push_back(entry.text);
    }
    if (statement.positions.size() > ZTB_MAX_DIMENSION) fail("there are more than 20 positions");
  }

  FamilyReference family(const DriveStatement& statement) {
    FamilyReference reference{name("the name of a variable or equation"), std::nullopt};
    const auto entries = list();
    if (!entries) return reference;
    reference.positions.emplace();
    for (const Entry& entry : *entries) {
      reference.positions->push_back(position(statement, entry));
    }
    return reference;
  }

  FamilyPosition position(const DriveStatement& statement, const Entry& entry) {
    if (entry.quoted) return {FamilyPosition::Kind::label, 0, entry.text};
    if (entry.text == "*") return {FamilyPosition::Kind::any, 0, ""};
    const auto& names = statement.positions;
    const auto found = std::find_if(names.begin(), names.end(), [&](const std::string& known) {
      return ztb::sameFolded(known, entry.text);
    });
    if (found == names.end()) {
      fail("\"" + entry.text + "\" is no position of " + statement.symbol +
           ztb::suggestion(entry.text, names) + "; a label stands in quotes, any label is *");
    }
    return {FamilyPosition::Kind::named, static_cast<std::size_t>(found - names.begin()), ""};
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

DriveStatement parseDriveStatement(std::string_view text) {
  return Parser(text).parse();
}

}  // namespace lomu
