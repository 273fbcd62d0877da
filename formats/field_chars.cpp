#include "formats/field_chars.h"

#include <fmt/format.h>

#include "tools/text/failure.h"

namespace formats {

using tool::UsageError;

char separatorOf(const std::string& text) {
  if (text == "tab" || text == "\\t") {
    return '\t';
  }
  if (text.size() != 1 || text == "\"" || text == "\n" || text == "\r") {
    throw UsageError(fmt::format("--separator {}: expected one char, or the word tab", text));
  }
  return text.front();
}

char decimalOf(const std::string& text) {
  if (text != "." && text != ",") {
    throw UsageError(fmt::format("--decimal {}: expected a point or a comma", text));
  }
  return text.front();
}

void requireDifferent(char separator, char decimal) {
  if (separator == decimal) {
    throw UsageError(
        "--decimal ,: the comma parts the fields; give --separator ';' or tab as well");
  }
}

}  // namespace formats
