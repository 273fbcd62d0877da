// Commands that make a file, where a limit stands in for a full disk.
#include <sys/resource.h>

#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using DataSetFullDiskTest = tooltest::ProgramTest;

TEST_F(DataSetFullDiskTest, aFullDiskLeavesNothingBehindAndEveryFileAsItWas) {
  ztb::Database small;
  small.addParameter("p", {"*"}).add("x").setLevel(1);
  small.write(path("a.rxf"));
  // Numbers that take room in a file.
  std::string table = "n,v\n";
  unsigned random = 1;
  for (int n = 0; n < 20000; ++n) {
    random = random * 1664525U + 1013904223U;
    table += std::to_string(n) + ',' + std::to_string(random) + '\n';
  }
  write("many.csv", table);
  ztbFine({"import", "many.rxf", "--from", "many.csv", "--parameter", "many(n) = v"});
  const std::string bytes = read("many.rxf");
  rlimit before{};
  ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &before), 0);
  rlimit few = before;
  few.rlim_cur = 30000;
  ASSERT_GT(bytes.size(), few.rlim_cur);
  ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &few), 0);
  const auto fails = [this](const std::string& out, const std::vector<std::string>& arguments) {
    expectFails(1,
                "ztb: 1 RXF Error(s). First Error: Writing failed: " + out + ": File too large\n",
                arguments);
  };
  fails("out.rxf", {"merge", "many.rxf", "a.rxf", "out.rxf"});
  fails("out.rxf", {"rename", "many.rxf", "out.rxf", "many=more"});
  fails("out.rxf", {"where", "many.rxf", "out.rxf", "--where", "value > 1"});
  fails("many.rxf", {"where", "many.rxf", "many.rxf", "--where", "value > 1"});
  fails("out.rxf", {"aggregate", "many.rxf", "many", "--by", "n", "--sum", "--out", "out.rxf"});
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(exists("out.rxf"));
  EXPECT_EQ(read("many.rxf"), bytes);
}

}  // namespace
