#include "formats/shown_names.h"

#include <ztb/display_text.hpp>

namespace formats {

void ShownNames::add(const std::string& path, const std::string& shown) {
  if (path.empty()) return;
  names_.emplace_back(path, shown);
  // As a terminal is shown it.
  if (const std::string displayed = ztb::displayText(path); displayed != path) {
    names_.emplace_back(displayed, ztb::displayText(shown));
  }
}

std::string ShownNames::applied(std::string text) const {
  for (const auto& [path, shown] : names_) {
    for (std::size_t at = text.find(path); at != std::string::npos;
         at = text.find(path, at + shown.size())) {
      text.replace(at, path.size(), shown);
    }
  }
  return text;
}

}  // namespace formats
