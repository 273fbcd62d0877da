// ztb plot on a terminal.
#include <gmock/gmock.h>

#include <ztb/ztb.hpp>

#include "tests/support/environment_setting.h"
#include "tests/tools/background_program.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

using testing::HasSubstr;
using PlotTerminalTest = tooltest::ProgramTest;

TEST_F(PlotTerminalTest, ColoursTellSeriesApart) {
  ztb::Database database;
  ztb::Symbol sold = database.addParameter("sold", {"*", "*"});
  sold.add("w1", "Ulm").setLevel(4);
  sold.add("w1", "Bern").setLevel(2);
  sold.add("w2", "Ulm").setLevel(-4);
  database.write(path("a.rxf"));
  const ztbtest::EnvironmentSetting utf8("LC_ALL", "C.UTF-8");
  ztbtest::setVariable("TERM", "xterm");
  ztbtest::setVariable("NO_COLOR", "");
  tooltest::Terminal terminal;
  tooltest::BackgroundProgram program(
      path("."),
      {"plot", "a.rxf", "sold", "--x", "1", "--by", "2", "--type", "bar", "--width", "40"},
      "errors", terminal.path());
  terminal.leaveToPrograms();
  EXPECT_FALSE(terminal.waitFor("what no chart holds"));
  EXPECT_EQ(program.wait(), 0);
  EXPECT_THAT(terminal.text(), HasSubstr("│\x1b[36m█████████████\x1b[0m 4\r\n"));
  EXPECT_THAT(terminal.text(), HasSubstr("│\x1b[33m██████▌\x1b[0m 2\r\n"));
}

}  // namespace
