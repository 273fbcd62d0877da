#include "tools/models/element_text.h"

namespace tool {

namespace {

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  return text;
}

// Takes one label off the front of `text`, up to a comma or the end.
std::string takeLabel(std::string_view& text, std::string& problem) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  std::string label;
  if (!text.empty() && (text.front() == '\'' || text.front() == '"')) {
    const char quote = text.front();
    text.remove_prefix(1);
    for (;;) {
      if (text.empty()) {
        problem = "a quote is left open";
        return label;
      }
      const char c = text.front();
      text.remove_prefix(1);
      if (c != quote) {
        label += c;
      } else if (!text.empty() && text.front() == quote) {
        label += quote;
        text.remove_prefix(1);
      } else {
        break;
      }
    }
    while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
    if (!text.empty() && text.front() != ',') problem = "a comma has to follow a quoted label";
  } else {
    const std::string_view plain = text.substr(0, text.find(','));
    label = trimmed(plain);
    text.remove_prefix(plain.size());
  }
  if (problem.empty() && label.empty()) problem = "a label is empty";
  return label;
}

}  // namespace

ElementText parseElement(std::string_view text, std::string& problem) {
  problem.clear();
  text = trimmed(text);
  const std::size_t open = text.find_first_of("[(");
  ElementText element;
  element.symbol = trimmed(text.substr(0, open));
  if (element.symbol.empty()) problem = "the name of a symbol is missing";
  if (open == std::string_view::npos || !problem.empty()) return element;
  const char close = text[open] == '[' ? ']' : ')';
  if (text.back() != close) {
    problem = std::string("the labels have to end with ") + close;
    return element;
  }
  std::string_view labels = text.substr(open + 1, text.size() - open - 2);
  for (bool more = true; more && problem.empty();) {
    element.labels.push_back(takeLabel(labels, problem));
    more = !labels.empty();
    if (more) labels.remove_prefix(1);
    if (more && labels.empty() && problem.empty()) problem = "a label is empty";
  }
  return element;
}

}  // namespace tool
