#include <algorithm>
#include <cerrno>
#include <cstdlib>

#include "tools/files/system_files.h"
#include "tools/sweep/worker_processes.h"
#include "tools/text/failure.h"

namespace tool {

void WorkerChannel::send(char kind, std::string text) const {
  std::ranges::replace_if(
      text, [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
  const std::string line = kind + text + '\n';
  std::size_t written = 0;
  while (written < line.size()) {
    const ssize_t count = posix::write(descriptor_, line.data() + written, line.size() - written);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) {
      // Nobody listens any more.
      std::_Exit(exitFailed);
    }
    written += static_cast<std::size_t>(count);
  }
}

}  // namespace tool
