#include "providers/model/mathprog_text.h"

#include <algorithm>

#include "providers/model/lp_tokens.h"
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
  return statements;
}

bool isOnly(const MathProgStatement& statement, std::string_view word) {
  return statement.words.size() == 1 && statement.words[0] == word;
}

// Whether the declaration assigns, outside of the brackets of its index.
bool isComputed(const MathProgStatement& statement) {
  int depth = 0;
  for (const std::string_view word : statement.words) {
    if (word == "{" || word == "(" || word == "[") ++depth;
    if (word == "}" || word == ")" || word == "]") --depth;
    if (depth == 0 && word == ":=") return true;
  }
  return false;
}

}  // namespace

MathProgText::MathProgText(std::string_view text) : statements_(statementsOf(text)) {
  for (firstOfData_ = 0; firstOfData_ < statements_.size(); ++firstOfData_) {
    const MathProgStatement& statement = statements_[firstOfData_];
    if (isOnly(statement, "data") || isOnly(statement, "end")) break;
    if (statement.words.size() < 2) continue;
    const bool isSet = statement.words[0] == "set";
    if (!isSet && statement.words[0] != "param") continue;
    symbols_.push_back({std::string(statement.words[1]), isSet, isComputed(statement)});
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

std::string replacedData(const std::string& file, std::string_view text, bool isDataFile,
                         const std::vector<std::string>& names, std::string_view added) {
  const auto isReplaced = [&](std::string_view word) {
    return std::find(names.begin(), names.end(), word) != names.end();
  };
  std::string data = "data;\n";
  for (const MathProgStatement& statement : MathProgText(text).dataStatements(isDataFile)) {
    const auto& words = statement.words;
    const bool isNamed = words.size() > 1 && (words[0] == "set" || words[0] == "param") &&
                         words[1] != ":" && words[1] != "default";
    if (isNamed && isReplaced(words[1])) continue;
    const auto end = std::find(words.begin(), words.end(), ":=");
    const auto found = isNamed ? end : std::find_if(words.begin(), end, isReplaced);
    if (found != end) {
      throw ModelError(file + ": the data give " + shown(*found) +
                           " in one table with others, so that it cannot be replaced; expected a "
                           "statement of its own",
                       ZTB_ERROR_DAMAGED_FILE);
    }
    data += statement.text;
    data += '\n';
  }
  data += added;
  return data + "end;\n";
}

}  // namespace lomu
