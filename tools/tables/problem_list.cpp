#include "tools/tables/problem_list.h"

#include <fmt/format.h>

#include <ztb/display_text.hpp>

namespace tool {

void ProblemList::add(const std::string& file, TextPosition at, const std::string& text) {
  ++count_;
  if (lines_.size() >= limit_) {
    return;
  }
  std::string line = file;
  if (at.line > 0) {
    line += fmt::format(":{}", at.line);
  }
  if (at.column > 0) {
    line += fmt::format(":{}", at.column);
  }
  lines_.push_back(ztb::displayText(line + ": " + text));
}

std::string ProblemList::report() const {
  std::string text;
  for (const std::string& line : lines_) {
    text += line + '\n';
  }
  if (count_ > lines_.size()) {
    text += fmt::format("... and {} more\n", count_ - lines_.size());
  }
  return text;
}

}  // namespace tool
