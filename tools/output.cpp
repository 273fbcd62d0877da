#include "tools/output.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "tools/failure.h"

namespace tool {

void print(std::string_view text) {
  // A failure stays marked in the stream until flushOutput asks.
  static_cast<void>(std::fwrite(text.data(), 1, text.size(), stdout));
}

void flushOutput() {
  if (std::fflush(stdout) != 0 || std::ferror(stdout) != 0) {
    throw Failure(fmt::format("standard output: cannot be written: {}", std::strerror(errno)));
  }
}

}  // namespace tool
