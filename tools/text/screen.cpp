#include "tools/text/screen.h"

#include <cstdlib>

#include "tools/text/console.h"

namespace tool {

bool outputIsTerminal() {
  return isTerminal(1);
}

bool takesColour(int stream) {
  const char* const refused = std::getenv("NO_COLOR");
  const char* const kind = std::getenv("TERM");
  return isTerminal(stream) && (refused == nullptr || *refused == '\0') &&
         (kind == nullptr || std::string_view(kind) != "dumb");
}

std::size_t tableWidth(const std::optional<std::size_t>& asked) {
  if (asked) {
    return *asked;
  }
  return outputIsTerminal() ? terminalWidth() : 0;
}

std::string emphasised(std::string_view text, bool colour) {
  return colour ? "\x1b[1m" + std::string(text) + "\x1b[0m" : std::string(text);
}

}  // namespace tool
