// ztb sweep: links and pipes in place of its files.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

#include "tests/tools/background_program.h"
#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"

namespace {

using testing::HasSubstr;
using tooltest::Outcome;
using SweepLinkTest = tooltest::EndlessSweepTest;

TEST_F(SweepLinkTest, ALinkToAResultThatIsBeingWrittenIsRefused) {
  makeScenarios(2, {1});
  const tooltest::ProcessorTimeLimit limit(60);
  tooltest::BackgroundProgram run(path("."), sweep(), "errors");
  ASSERT_NE(run.waitForChildBut(0), 0);
  std::filesystem::create_symlink("out.rxf", path("link.rxf"));
  const Outcome second = ztb(sweep({"--resume"}, "link.rxf"));
  EXPECT_EQ(second.status, 1);
  EXPECT_THAT(second.errors, HasSubstr("ztb: link.rxf: another sweep is writing this result "));
}

TEST_F(SweepLinkTest, ALockThatIsALinkIsNotFollowed) {
  makeScenarios(1, {});
  write("mine", "kept");
  std::filesystem::create_symlink("mine", path(".out.rxf.lock"));
  expectFails(1,
              "ztb: " + std::filesystem::canonical(path(".")).string() +
                  "/.out.rxf.lock: Too many levels of symbolic links\n",
              sweep());
  EXPECT_EQ(read("mine"), "kept");
}

TEST_F(SweepLinkTest, AnInputIsNoPipe) {
  makeScenarios(1, {});
  ASSERT_EQ(mkfifo(path("pipe").c_str(), 0600), 0);
  expectFails(1, "ztb: pipe: cannot be read: it is no regular file\n",
              sweep({"--model-data", "pipe"}));
}

}  // namespace
