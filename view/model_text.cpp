#include "view/model_text.h"

#include <cstdlib>
#include <fstream>
#include <utility>

#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"

namespace view {

namespace {

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

std::string ownName(const std::unordered_map<std::string, std::string>& own,
                    const std::string& name) {
  const auto found = own.find(name);
  return found == own.end() ? name : found->second;
}

}  // namespace

ModelText::ModelText(ztb::Model& model) {
  const tool::ScratchFolder folder;
  try {
    model.write(folder.file("model.lp"));
  } catch (const ztb::Error& error) {
    throw tool::Failure(error.what());
  }
  read(folder.file("model.lp"));
}

// "row _1st was 1st", "column ...": a name that cannot stand in LP, told ahead of all.
void ModelText::takeChange(const std::string& told) {
  constexpr std::string_view was = " was ";
  const std::size_t begin = told.find(' ');
  const std::size_t end = told.find(was);
  if (begin == std::string::npos || end == std::string::npos || end < begin) return;
  auto& own = told.starts_with("row ") ? ownRows_ : ownColumns_;
  own.emplace(told.substr(begin + 1, end - begin - 1), told.substr(end + was.size()));
}

void ModelText::enter(std::size_t row, const std::string& column) {
  const auto [found, isNew] = columnNumbers_.try_emplace(column, columns_.size());
  if (isNew) columns_.push_back(ownName(ownColumns_, column));
  entries_.push_back({row, found->second});
}

// Each row begins with a line of its name, " cost:"; each term has a line, " + 2.5 buy", and so
// has a product, " + 2 price * buy", behind a line with a bracket.
void ModelText::read(const std::string& path) {
  constexpr std::string_view change = "\\ ztb: ";
  std::ifstream file(path);
  for (std::string line; std::getline(file, line) && line != "Bounds";) {
    if (line.starts_with(" + ") || line.starts_with(" - ")) {
      takeTerm(line.substr(3));
    } else if (line.starts_with(' ')) {
      beginRow(line);
    } else if (line.starts_with(change)) {
      takeChange(line.substr(change.size()));
    }
  }
}

// " need(2):", " need(2): -5 <=" where a side stands in front, " need(2): 0 >= 4" without terms.
void ModelText::beginRow(const std::string& line) {
  inProducts_ = false;
  const std::size_t colon = findUnquoted(line, ':');
  const std::string name = line.substr(1, colon == std::string::npos ? colon : colon - 1);
  rows_.push_back(ownName(ownRows_, name));
  sides_.emplace_back();
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

}  // namespace view
