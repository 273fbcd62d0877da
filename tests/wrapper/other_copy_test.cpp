// A limit on memory where databases use another copy of the exchange-file library than the program.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/library_name.h"
#include "tests/support/temp_folder.h"

namespace {

// In a process of its own, because a library that has been opened once stays open.
TEST(OtherCopyDeathTest, RefusesALimitThatWouldNotHoldAndOpensWithoutOne) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  ztb::RxfOutput(path).publish();
  std::filesystem::copy(RXF_LIBRARY, folder.file(ZTB_LIBRARY_NAME("rxfcclib64")));
  EXPECT_EXIT(
      {
        try {
          ztb::Database(folder.path().string()).openFile(path);
          ztb::Database(folder.path().string()).openFile(path, {.maxMemory = 1});
        } catch (const ztb::Error& error) {
          std::fputs(error.what(), stderr);
          std::_Exit(3);
        }
        std::_Exit(0);
      },
      testing::ExitedWithCode(3),
      "^No memory limit can be set: databases use another exchange-file library than the one that "
      "this program is linked with$");
}

}  // namespace
