#include "tools/text/output.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <string>
#include <ztb/display_text.hpp>

#include "tools/files/system_files.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"
#include "tools/text/progress.h"

namespace tool {

void print(std::string_view text) {
  const auto alone = withoutProgress();
  while (!text.empty()) {
    const std::size_t end = text.find('\n');
    const std::string_view line = text.substr(0, end);
    const bool ends = end != std::string_view::npos;
    text.remove_prefix(line.size() + (ends ? 1 : 0));
    // A failure stays marked in the stream until flushOutput asks.
    if (ztb::isDisplayable(line)) {
      static_cast<void>(std::fwrite(line.data(), 1, line.size() + (ends ? 1 : 0), stdout));
    } else {
      static_cast<void>(std::fputs((ztb::displayText(line) + (ends ? "\n" : "")).c_str(), stdout));
    }
  }
  showWritten(stdout);
}

void printError(std::string_view line) {
  printErrors(ztb::displayText(line) + "\n");
}

void printErrors(const std::string& lines) {
  const auto alone = withoutProgress();
  static_cast<void>(std::fputs(lines.c_str(), stderr));
  showWritten(stderr);
}

void flushOutput() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw Failure(fmt::format("standard output: cannot be written: {}", systemText(errno)));
  }
}

}  // namespace tool
