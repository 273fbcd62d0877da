#include "view/model_text.h"

#include <cstdlib>
#include <fstream>
#include <sstream>
#include <utility>

#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"

namespace view {

namespace {

constexpr double infinite = std::numeric_limits<double>::infinity();

// The first place of a char that stands in no quotes; npos for none.
std::size_t findUnquoted(std::string_view text, char wanted) {
  char quote = 0;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const char c = text[at];
    if (quote != 0) {
      if (c == quote) quote = 0;
    } else if (c == wanted) {
      return at;
    } else if (c == '\'' || c == '"') {
      quote = c;
    }
  }
  return std::string_view::npos;
}

double numberIn(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

}  // namespace

ModelText::ModelText(ztb::Model& model) {
  const tool::ScratchFolder folder;
  try {
    model.write(folder.file("model.lp"));
    readLp(folder.file("model.lp"));
  } catch (const ztb::Error&) {
    try {
      model.write(folder.file("model.mps"));
    } catch (const ztb::Error& error) {
      throw tool::Failure(error.what());
    }
    readMps(folder.file("model.mps"));
  }
}

void ModelText::addRow(std::string name, RowSides sides) {
  rows_.push_back(std::move(name));
  sides_.push_back(sides);
}

void ModelText::enter(std::size_t row, const std::string& column) {
  const auto [found, isNew] = columnNumbers_.try_emplace(column, columns_.size());
  if (isNew) columns_.push_back(column);
  entries_.push_back({row, found->second});
}

// Each row begins with a line of its name, " cost:"; each term has a line, " + 2.5 buy", and so
// has a product, " + 2 price * buy", behind a line with a bracket.
void ModelText::readLp(const std::string& path) {
  std::ifstream file(path);
  for (std::string line; std::getline(file, line) && line != "Bounds";) {
    if (line.starts_with(" + ") || line.starts_with(" - ")) {
      takeTerm(line.substr(3));
    } else if (line.starts_with(' ')) {
      beginRow(line);
    }
  }
}

// " need(2):", " need(2): -5 <=" where a side stands in front, " need(2): 0 >= 4" without terms.
void ModelText::beginRow(const std::string& line) {
  inProducts_ = false;
  const std::size_t colon = findUnquoted(line, ':');
  addRow(line.substr(1, colon == std::string::npos ? colon : colon - 1), {});
  if (colon == std::string::npos) return;
  std::string rest = line.substr(colon + 1);
  // With two signs, or one at the end, the first has the lower side in front.
  const std::size_t sign = rest.find(" <=");
  if (sign != std::string::npos &&
      (rest.ends_with(" <=") || rest.find(" <=", sign + 1) != std::string::npos)) {
    sides_.back().lower = numberIn(rest.substr(0, sign));
    rest.erase(0, sign + 3);
  }
  takeSide(rest);
}

// Takes what stands behind the last term of a row, " >= 4", off a text.
void ModelText::takeSide(std::string& text) {
  for (const std::string_view sign : {" >= ", " <= ", " = "}) {
    const std::size_t at = text.rfind(sign);
    // A label in quotes may hold one too.
    if (at == std::string::npos || text.find_first_of("'\"", at) != std::string::npos) continue;
    const double side = numberIn(text.substr(at + sign.size()));
    if (sign != " <= ") sides_.back().lower = side;
    if (sign != " >= ") sides_.back().upper = side;
    text.resize(at);
    return;
  }
}

void ModelText::takeTerm(std::string term) {
  if (rows_.empty()) return;
  takeSide(term);
  if (term == "[") {
    inProducts_ = true;
    return;
  }
  // The bracket ends behind the last product, in the objective as " ] / 2".
  const bool isLast = inProducts_ && (term.ends_with(" ]") || term.ends_with(" ] / 2"));
  if (isLast) term.resize(term.rfind(" ]"));
  const std::size_t row = rows_.size() - 1;
  const std::size_t blank = term.find(' ');
  // A number alone is the constant of the objective; a column that is nowhere else stands there
  // with a 0.
  if (blank != std::string::npos && numberIn(term) != 0) {
    std::string name = term.substr(blank + 1);
    const std::size_t times = inProducts_ ? name.find(" * ") : std::string::npos;
    if (times != std::string::npos) {
      enter(row, name.substr(0, times));
      name.erase(0, times + 3);
    } else if (inProducts_ && name.ends_with(" ^ 2")) {
      name.resize(name.size() - 4);
    }
    enter(row, name);
  }
  if (isLast) inProducts_ = false;
}

void ModelText::readMps(const std::string& path) {
  std::ifstream file(path);
  std::string section;
  for (std::string line; std::getline(file, line);) {
    if (!line.starts_with(' ')) {
      section = line.substr(0, line.find(' '));
    } else {
      readMpsEntry(section, line);
    }
  }
}

void ModelText::readMpsEntry(const std::string& section, const std::string& line) {
  std::istringstream words(line);
  std::string first;
  std::string second;
  words >> first >> second;
  std::string number;
  words >> number;
  const double value = numberIn(number);
  if (section == "ROWS") {
    rowNumbers_.emplace(second, rows_.size());
    rowTypes_ += first;
    RowSides sides;
    if (first == "E" || first == "G") sides.lower = 0;
    if (first == "E" || first == "L") sides.upper = 0;
    addRow(second, sides);
    return;
  }
  const auto found = rowNumbers_.find(second);
  if (found == rowNumbers_.end()) return;
  const std::size_t row = found->second;
  if (section == "COLUMNS" && value != 0) {
    enter(row, first);
  } else if (section == "RHS" && rowTypes_[row] != 'N') {
    if (sides_[row].lower != -infinite) sides_[row].lower = value;
    if (sides_[row].upper != infinite) sides_[row].upper = value;
  } else if (section == "RANGES") {
    if (rowTypes_[row] == 'G') sides_[row].upper = sides_[row].lower + value;
    if (rowTypes_[row] == 'L') sides_[row].lower = sides_[row].upper - value;
  }
}

}  // namespace view
