#include "tests/tools/terminal.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <regex>
#include <utility>

namespace tooltest {

Terminal::Terminal() : screen_(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  EXPECT_EQ(grantpt(screen_), 0);
  EXPECT_EQ(unlockpt(screen_), 0);
  std::array<char, 128> name{};
  EXPECT_EQ(ptsname_r(screen_, name.data(), name.size()), 0);
  path_ = name.data();
  keptOpen_ = open(path_.c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC);
  EXPECT_GE(keptOpen_, 0);
}

Terminal::~Terminal() {
  leaveToPrograms();
  close(screen_);
}

void Terminal::leaveToPrograms() {
  if (keptOpen_ >= 0) {
    close(std::exchange(keptOpen_, -1));
  }
}

bool Terminal::waitFor(const std::string& regex) {
  const std::regex wanted(regex);
  while (!std::regex_search(text_, wanted)) {
    std::array<char, 4096> buffer{};
    const ssize_t count = read(screen_, buffer.data(), buffer.size());
    if (count <= 0) {
      return false;
    }
    text_.append(buffer.data(), static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace tooltest
