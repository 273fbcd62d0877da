#include "tools/text/wrapped_text.h"

#include <algorithm>

#include "tools/text/display_width.h"

namespace tool {

namespace {

// A column of descriptions that would be narrower is given up.
constexpr std::size_t narrowestColumn = 24;

// Where the lines that follow begin instead.
constexpr std::size_t smallIndent = 6;

// Where the description of an option begins in its line: behind the first run of blanks in it.
std::size_t descriptionColumn(std::string_view line) {
  const std::size_t name = line.find_first_not_of(' ');
  const std::size_t blanks = line.find("  ", name);
  return blanks == std::string_view::npos ? name : line.find_first_not_of(' ', blanks);
}

}  // namespace

std::string wrapped(std::string_view line, std::size_t width, std::size_t indent) {
  if (width == 0 || displayWidth(line) <= width) {
    return std::string(line);
  }
  const std::size_t begin = std::min(line.find_first_not_of(' '), line.size());
  std::string result(line.substr(0, begin));
  std::size_t places = begin;
  bool first = true;
  for (std::size_t at = begin; at < line.size();) {
    const std::size_t blanks = line.find_first_not_of(' ', at);
    const std::size_t end = std::min(line.find(' ', blanks), line.size());
    const std::string_view word = line.substr(blanks, end - blanks);
    const std::size_t taken = displayWidth(word) + (blanks - at);
    if (!first && places + taken > width) {
      result += '\n' + std::string(indent, ' ');
      places = indent + displayWidth(word);
    } else {
      result += line.substr(at, blanks - at);
      places += taken;
    }
    result += word;
    first = false;
    at = line.find_first_not_of(' ', end) == std::string_view::npos ? line.size() : end;
  }
  return result;
}

std::string wrappedHelp(std::string_view text, std::size_t width) {
  if (width == 0) {
    return std::string(text);
  }
  std::string result;
  std::string paragraph;
  bool inExamples = false;
  const auto endParagraph = [&] {
    if (!paragraph.empty()) {
      result += wrapped(paragraph, width) + '\n';
      paragraph.clear();
    }
  };
  while (!text.empty()) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(text.size(), line.size() + 1));
    const bool indented = line.starts_with(' ');
    if (!indented) {
      inExamples = line.starts_with("Example");
    }
    // It stands right below what the command does.
    if (line.starts_with("Usage:")) endParagraph();
    if (!line.empty() && !indented && !line.ends_with(':')) {
      paragraph += paragraph.empty() ? "" : " ";
      paragraph += line;
      continue;
    }
    endParagraph();
    if (inExamples || !indented) {
      result += line;
    } else {
      const std::size_t column = descriptionColumn(line);
      result += wrapped(line, width, column + narrowestColumn > width ? smallIndent : column);
    }
    result += '\n';
  }
  endParagraph();
  return result;
}

}  // namespace tool
