// What `ztb view` does once its words are read.
#ifndef ZTB_TOOLS_COMMANDS_VIEWER_H_
#define ZTB_TOOLS_COMMANDS_VIEWER_H_

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace tool {

struct ViewOptions {
  std::vector<std::string> files;
  std::optional<std::size_t> port;
  std::optional<std::size_t> readTimeout;
  bool noOpen = false;
  bool framed = false;
  bool solve = false;
};

// Serves the files until somebody ends it. Throws Failure and UsageError; on Windows, for which
// there is no viewer, it throws at once.
void runView(const ViewOptions& options);

}  // namespace tool

#endif  // ZTB_TOOLS_COMMANDS_VIEWER_H_
