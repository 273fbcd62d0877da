#include <string>
#include <utility>
#include <vector>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::OutputTo;
using tooltest::ProgramTest;

class UsageTest : public ProgramTest {};

TEST_F(UsageTest, HelpOfEveryCommandHasAnExample) {
  for (const char* command : {"info", "show", "import", "export", "diff", "check", "copy", "pivot",
                              "plot", "solve", "sweep", "help", "completion", "manual"}) {
    const Outcome outcome = ztb({command, "--help"});
    EXPECT_EQ(outcome.status, 0) << command;
    EXPECT_EQ(outcome.errors, "") << command;
    const std::size_t examples = outcome.output.find("\nExample");
    ASSERT_NE(examples, std::string::npos) << command;
    EXPECT_NE(outcome.output.find(std::string("\n  ztb ") + command, examples), std::string::npos)
        << command;
    EXPECT_NE(ztbFine({"--help"}).find(std::string("\n  ") + command), std::string::npos);
  }
}

TEST_F(UsageTest, VersionIsPrinted) {
  EXPECT_EQ(ztbFine({"--version"}), "ztb 5.0.0\n");
}

TEST_F(UsageTest, HelpThatCannotBePrintedIsAFailure) {
  for (const std::vector<std::string>& arguments :
       {std::vector<std::string>{"--help"}, {"--version"}, {"show", "--help"}}) {
    const Outcome outcome = ztb(arguments, "", OutputTo::fullDisk);
    EXPECT_EQ(outcome.status, 1) << arguments.front();
    EXPECT_EQ(outcome.errors, "ztb: standard output: cannot be written: No space left on device\n");
  }
}

// As of a variable of the shell that is not set.
TEST_F(UsageTest, AnEmptyArgumentIsNotAnOptionLeftOut) {
  const std::vector<std::string> sweep{"sweep",  "m.lp", "--scenarios", "s",
                                       "--over", "s",    "--out",       "o"};
  for (const auto& [command, option] :
       std::vector<std::pair<std::vector<std::string>, std::string>>{
           {{"solve", "m.lp"}, "--data"},
           {{"solve", "m.lp"}, "--model-data"},
           {{"solve", "m.lp"}, "--out"},
           {{"solve", "m.lp"}, "--solver"},
           {sweep, "--model-data"},
           {sweep, "--solver"}}) {
    std::vector<std::string> arguments = command;
    arguments.insert(arguments.end(), {option, ""});
    expectFails(
        2,
        "ztb: " + option + ": an empty argument is given; see ztb " + command.front() + " --help\n",
        arguments);
  }
}

TEST_F(UsageTest, WrongUsageEndsWithTwo) {
  expectFails(2, "ztb: no command is given; ztb --help lists the commands\n", {});
  expectFails(2, "ztb: no command 'bogus'; ztb --help lists the commands\n", {"bogus", "x"});
  expectFails(2, "ztb: FILE is required; see ztb info --help\n", {"info"});
  expectFails(2, "ztb: SYMBOL is required; see ztb show --help\n", {"show", "a.rxf"});
  expectFails(2, "ztb: --wide is given twice; see ztb export --help\n",
              {"export", "a.rxf", "p", "--to", "p.csv", "--wide", "i", "--wide", "j"});
  expectFails(2, "ztb: --to is given 3 times; see ztb export --help\n",
              {"export", "a.rxf", "p", "--to", "p.csv", "--to", "q.csv", "--to", "r.csv"});
  expectFails(2, "ztb: --width: its value is missing, expected N; see ztb show --help\n",
              {"show", "a.rxf", "p", "--width"});
  expectFails(2, "ztb: FILE ... OUT: at least 3 names are expected; see ztb concat --help\n",
              {"concat", "a.rxf", "b.rxf"});
  expectFails(2, "ztb: --csv and --json exclude each other; see ztb show --help\n",
              {"show", "a.rxf", "p", "--json", "--csv"});
  expectFails(2, "ztb: nothing to write to: give --to TARGET, or --csv DIR\n",
              {"export", "a.rxf", "--all"});
  expectFails(2, "ztb: --head: '-1' is no whole number of at least 0; see ztb show --help\n",
              {"show", "a.rxf", "s", "--head=-1"});
  expectFails(2, "ztb: no option --bogus; see ztb show --help\n",
              {"show", "a.rxf", "s", "--bogus"});
  expectFails(2, "ztb: --tolerance: 'x' is no number; see ztb diff --help\n",
              {"diff", "a.rxf", "b.rxf", "--tolerance", "x"});
  expectFails(
      2,
      "ztb: --jobs: '99999999999' is too large, at most 2147483647 is expected; see ztb "
      "sweep --help\n",
      {"sweep", "m.lp", "--scenarios", "s", "--over", "s", "--out", "o", "--jobs", "99999999999"});
  EXPECT_EQ(ztb({"show", "a.rxf", "s", "--csv", "--json"}).status, 2);
}

TEST_F(UsageTest, AFlagTakesNoValue) {
  expectFails(2, "ztb: --csv takes no value; see ztb show --help\n",
              {"show", "a.rxf", "s", "--csv=maybe"});
  expectFails(2, "ztb: --json takes no value; see ztb info --help\n",
              {"info", "a.rxf", "--json=false"});
}

// What a misspelt option leaves over would otherwise be told as too many or too few files.
TEST_F(UsageTest, AMisspeltNameIsNamed) {
  expectFails(2, "ztb: no option --haed, is --head meant?; see ztb show --help\n",
              {"show", "--haed", "3", "a.rxf"});
  expectFails(2, "ztb: no option --jsn, is --json meant?; see ztb info --help\n",
              {"info", "--jsn=1", "a.rxf", "b.rxf"});
  expectFails(2, "ztb: no command 'shwo', is show meant?; ztb --help lists the commands\n",
              {"shwo", "a.rxf"});
  expectFails(2, "ztb: no option --form, is --from meant?; see ztb import --help\n",
              {"import", "o.rxf", "--form", "foods.csv", "--set", "food"});
}

TEST_F(UsageTest, WhatStandsBeforeACommandIsTold) {
  expectFails(2, "ztb: no option --out; see ztb info --help\n", {"--out", "x", "info", "diet.rxf"});
  expectFails(2,
              "ztb: --width stands before info; the options of a command stand behind its name; "
              "see ztb info --help\n",
              {"--width", "40", "info", "diet.rxf"});
  expectFails(2, "ztb: no command 'x'; ztb --help lists the commands\n", {"x", "info", "diet.rxf"});
}

TEST_F(UsageTest, OneArgumentTooManyIsNamed) {
  expectFails(2, "ztb: 'b.rxf' is one argument too many; see ztb info --help\n",
              {"info", "a.rxf", "b.rxf"});
}

TEST_F(UsageTest, ImportSaysWhatIsMissing) {
  expectFails(2,
              "ztb: nothing to import: give --from FILE with --set, --parameter or --variable, or "
              "--dir DIR\n",
              {"import", "o.rxf"});
  expectFails(2, "ztb: --set x: a --from FILE must stand before it\n",
              {"import", "o.rxf", "--set", "x"});
  expectFails(2, "ztb: --from a.csv: no --set, --parameter or --variable behind it reads from it\n",
              {"import", "o.rxf", "--from", "a.csv"});
  expectFails(2, "ztb: --dir and --from exclude each other\n",
              {"import", "o.rxf", "--dir", "d", "--from", "a.csv", "--set", "x"});
  expectFails(2, "ztb: --separator ::: expected one char, or the word tab\n",
              {"import", "o.rxf", "--separator", "::", "--from", "a.csv", "--set", "x"});
  expectFails(2, "ztb: --set x(y: ',' or ')' is expected at char 4\n",
              {"import", "o.rxf", "--from", "a.csv", "--set", "x(y"});
}

}  // namespace
