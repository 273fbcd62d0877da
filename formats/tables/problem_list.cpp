#include "formats/tables/problem_list.h"

#include <fmt/format.h>

#include <ztb/display_text.hpp>

namespace formats {

std::string placeText(const std::string& file, TextPosition at) {
  std::string place = file;
  if (at.line > 0) {
    place += fmt::format(":{}", at.line);
  }
  if (at.column > 0) {
    place += fmt::format(":{}", at.column);
  }
  return place;
}

void ProblemList::add(const std::string& place, const std::string& text) {
  ++count_;
  if (lines_.size() < limit_) {
    lines_.push_back(ztb::displayText(place + ": " + text));
  }
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

}  // namespace formats
