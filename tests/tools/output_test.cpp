#include "tools/text/output.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <array>

#include "tools/text/console.h"

namespace {

// What a child process finds when it has closed its standard streams, occupied them and opened a
// file: an exit code of 0 where all is as it should be.
int tryWithClosedStreams() {
  for (const int stream : {0, 1, 2}) close(stream);
  tool::occupyStandardStreams();
  if (open("/dev/zero", O_RDWR) <= 2) return 1;
  std::array<char, 1> byte{};
  if (read(0, byte.data(), 1) != -1) return 2;
  if (write(1, byte.data(), 1) != -1) return 3;
  return write(2, byte.data(), 1) == -1 ? 0 : 4;
}

TEST(StandardStreams, ThatAreClosedAreNoPlaceForFiles) {
  EXPECT_EXIT(_exit(tryWithClosedStreams()), testing::ExitedWithCode(0), "");
}

TEST(StandardStreams, ThatAreOpenStay) {
  EXPECT_EXIT(
      {
        tool::occupyStandardStreams();
        _exit(write(2, "said", 4) == 4 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "said");
}

}  // namespace
