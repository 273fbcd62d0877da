#include "formats/tables/problem_list.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
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
  if (kept_ < limit_) {
    ++kept_;
    lines_.push_back(ztb::displayText(place + ": " + text));
  }
}

void ProblemList::add(const tool::Failure& failure) {
  const std::string_view text = failure.what();
  if (std::ranges::any_of(failures_, [&](const tool::Failure& other) {
        return std::string_view(other.what()) == text;
      })) {
    return;
  }
  ++count_;
  if (failures_.size() < limit_) lines_.emplace_back(text);
  failures_.push_back(failure);
}

std::optional<tool::Failure> ProblemList::onlyFailure() const {
  if (count_ != 1 || failures_.empty()) return std::nullopt;
  return failures_.front();
}

int ProblemList::kind() const {
  const bool alike = !failures_.empty() && failures_.size() == count_ &&
                     std::ranges::all_of(failures_, [&](const tool::Failure& failure) {
                       return failure.kind() == failures_.front().kind();
                     });
  return alike ? failures_.front().kind() : ZTB_ERROR_DAMAGED_FILE;
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
