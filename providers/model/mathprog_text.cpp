#include "providers/model/mathprog_text.h"

#include <algorithm>
#include <charconv>
#include <optional>

#include "providers/model/lp_tokens.h"
#include "providers/model/mathprog_table.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

bool isWordChar(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Cuts a text into statements, each up to its semicolon.
std::vector<MathProgStatement> statementsOf(std::string_view text) {
  std::vector<MathProgStatement> statements;
  MathProgStatement statement;
  std::size_t begin = 0;
  std::size_t at = 0;
  const auto from = [&](std::size_t first) { return text.substr(first, at - first); };
  while (at < text.size()) {
    const char c = text[at];
    const std::size_t first = at;
    if (c == '#') {
      at = std::min(text.find('\n', at), text.size());
    } else if (text.substr(at, 2) == "/*") {
      const std::size_t end = text.find("*/", at + 2);
      at = end == std::string_view::npos ? text.size() : end + 2;
    } else if (c == '\'' || c == '"') {
      // A quote that is doubled inside begins the next part of the same label.
      const std::size_t end = text.find(c, at + 1);
      at = end == std::string_view::npos ? text.size() : end + 1;
    } else if (isWordChar(c)) {
      while (at < text.size() && isWordChar(text[at])) ++at;
      statement.words.push_back(from(first));
    } else if (c == ';') {
      ++at;
      statement.text = from(begin);
      statements.push_back(std::move(statement));
      statement = {};
      begin = at;
    } else {
      at += text.substr(at, 2) == ":=" ? 2 : 1;
      if (c != ' ' && c != '\t' && c != '\r' && c != '\n') statement.words.push_back(from(first));
    }
  }
  if (!statement.words.empty()) {
    statement.text = from(begin);
    statements.push_back(std::move(statement));
  }
  return statements;
}

bool isOnly(const MathProgStatement& statement, std::string_view word) {
  return statement.words.size() == 1 && statement.words[0] == word;
}

// The words of a declaration outside of all brackets, but for the keyword and the name.
std::vector<std::string_view> attributesOf(const MathProgStatement& statement) {
  std::vector<std::string_view> attributes;
  int depth = 0;
  for (std::size_t k = 2; k < statement.words.size(); ++k) {
    const std::string_view word = statement.words[k];
    if (word == "}" || word == ")" || word == "]") --depth;
    if (depth == 0) attributes.push_back(word);
    if (word == "{" || word == "(" || word == "[") ++depth;
  }
  return attributes;
}

// How many positions the elements of a set have: as it says, as the set has that it is within, or
// one where it says nothing; 0 where it is within something else.
int elementPositions(const std::vector<std::string_view>& attributes,
                     const std::vector<MathProgSymbol>& known) {
  const auto isName = [](std::string_view word) { return isWordChar(word.front()); };
  for (std::size_t k = 0; k + 1 < attributes.size(); ++k) {
    if (attributes[k] != "dimen") continue;
    int positions = 0;
    std::from_chars(attributes[k + 1].data(), attributes[k + 1].data() + attributes[k + 1].size(),
                    positions);
    return positions;
  }
  const auto within = std::find(attributes.begin(), attributes.end(), "within");
  if (within == attributes.end()) return 1;
  const auto name = within + 1;
  if (name == attributes.end()) return 0;
  // Behind it may stand a comma or another attribute, but nothing that makes another set of it.
  const bool standsAlone =
      name + 1 == attributes.end() || name[1] == "," || name[1] == ";" || name[1] == "default";
  const auto set = std::find_if(known.begin(), known.end(), [&](const MathProgSymbol& symbol) {
    return symbol.isSet && !symbol.isIndexed && symbol.name == *name;
  });
  return standsAlone && isName(*name) && set != known.end() ? set->elementPositions : 0;
}

}  // namespace

MathProgText::MathProgText(std::string_view text) : statements_(statementsOf(text)) {
  for (firstOfData_ = 0; firstOfData_ < statements_.size(); ++firstOfData_) {
    const MathProgStatement& statement = statements_[firstOfData_];
    if (isOnly(statement, "data") || isOnly(statement, "end")) break;
    if (statement.words.size() < 2) continue;
    const bool isSet = statement.words[0] == "set";
    if (!isSet && statement.words[0] != "param") continue;
    const std::vector<std::string_view> attributes = attributesOf(statement);
    const auto has = [&](std::string_view word) {
      return std::find(attributes.begin(), attributes.end(), word) != attributes.end();
    };
    symbols_.push_back({std::string(statement.words[1]), isSet, has(":="),
                        statement.words.size() > 2 && statement.words[2] == "{",
                        isSet ? elementPositions(attributes, symbols_) : 0});
  }
  // The word "data" itself is no data.
  if (firstOfData_ < statements_.size() && isOnly(statements_[firstOfData_], "data")) {
    ++firstOfData_;
  }
}

std::vector<MathProgStatement> MathProgText::dataStatements(bool isDataFile) const {
  std::vector<MathProgStatement> data;
  for (std::size_t i = isDataFile ? 0 : firstOfData_; i < statements_.size(); ++i) {
    if (isOnly(statements_[i], "end")) break;
    if (!isOnly(statements_[i], "data")) data.push_back(statements_[i]);
  }
  return data;
}

MathProgData replacedData(const std::string& file, std::string_view text, bool isDataFile,
                          const std::vector<MathProgFilled>& filled, std::string_view added) {
  const auto find = [&](std::string_view word) {
    return std::find_if(filled.begin(), filled.end(),
                        [&](const MathProgFilled& one) { return one.name == word; });
  };
  const auto isReplaced = [&](std::string_view word) { return find(word) != filled.end(); };
  // Of places that ascend, so that no line is counted twice.
  const char* counted = text.data();
  std::size_t breaks = 0;
  const auto lineOf = [&](const char* place) {
    breaks += static_cast<std::size_t>(std::count(counted, place, '\n'));
    counted = place;
    return breaks + 1;
  };
  MathProgData data{"data;"};
  std::size_t line = 1;
  for (const MathProgStatement& statement : MathProgText(text).dataStatements(isDataFile)) {
    const auto& words = statement.words;
    if (!statement.text.ends_with(';')) {
      throw ModelError(file + ":" + std::to_string(lineOf(words[0].data())) +
                           ": the data end within a statement, expected a semicolon behind it",
                       ZTB_ERROR_DAMAGED_FILE);
    }
    // Each line stays where it was, so that what is wrong is told with its line.
    const std::size_t first = lineOf(statement.text.data());
    const std::size_t last = lineOf(statement.text.data() + statement.text.size());
    data.text.append(first - line, '\n');
    line = last;
    const bool isNamed = words.size() > 1 && (words[0] == "set" || words[0] == "param") &&
                         words[1] != ":" && words[1] != "default";
    if (isNamed) {
      if (isReplaced(words[1])) {
        data.text.append(last - first, '\n');
      } else {
        data.text += statement.text;
      }
      continue;
    }
    const auto end = std::find(words.begin(), words.end(), ":=");
    const auto replaced = std::find_if(words.begin(), end, isReplaced);
    if (replaced == end) {
      data.text += statement.text;
      continue;
    }
    const std::optional<MathProgTable> table = MathProgTable::of(statement.text);
    const std::optional<std::string> left =
        table ? table->without(isReplaced, find(*replaced)->labels) : std::nullopt;
    if (!left) {
      const auto at = first + static_cast<std::size_t>(
                                  std::count(statement.text.data(), replaced->data(), '\n'));
      throw ModelError(file + ":" + std::to_string(at) + ": the data give " + shown(*replaced) +
                           " in one table with others, in which its values are not told from "
                           "theirs by the " +
                           std::to_string(find(*replaced)->labels) +
                           " labels of the records that fill it; expected a statement of its own",
                       ZTB_ERROR_DAMAGED_FILE);
    }
    data.text += *left;
  }
  data.text += '\n';
  data.ownLines = line;
  data.text += added;
  data.text += "end;\n";
  return data;
}

}  // namespace lomu
