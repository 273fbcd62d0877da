#include <string>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

using HelpTest = ProgramTest;

TEST_F(HelpTest, OfACommandIsThatOfItsOption) {
  const std::string help = ztbFine({"help", "show"});
  EXPECT_EQ(help, ztbFine({"show", "--help"}));
  EXPECT_NE(help.find("--slice PATTERNS"), std::string::npos);
  EXPECT_EQ(ztbFine({"help"}), ztbFine({"--help"}));
  EXPECT_NE(ztbFine({"help", "merge"}).find("Usage: ztb merge [OPTIONS] FILE ... OUT\n"),
            std::string::npos);
  EXPECT_NE(ztbFine({"help", "sql"}).find("  FILE ... QUERY REQUIRED  "), std::string::npos);
  expectFails(2, "ztb: no command 'shwo', is show meant?; ztb --help lists the commands\n",
              {"help", "shwo"});
}

// Every option that the help lists, in the language of each shell.
TEST_F(HelpTest, OtherShellsGetTheSameOptions) {
  const std::string zsh = ztbFine({"completion", "zsh"});
  const std::string fish = ztbFine({"completion", "fish"});
  EXPECT_EQ(zsh.substr(0, 13), "#compdef ztb\n");
  for (const std::string option : {"slice", "head", "width", "digits", "decimal", "tolerance"}) {
    EXPECT_NE(zsh.find("'*--" + option + "="), std::string::npos) << option;
    EXPECT_NE(fish.find(" -l " + option + " "), std::string::npos) << option;
  }
  const std::string commands =
      "info show import export diff check copy merge concat rename where aggregate pivot plot sql "
      "model "
      "solve sweep view help completion manual";
  EXPECT_NE(zsh.find("':COMMAND:(" + commands + ")'"), std::string::npos);
  EXPECT_NE(fish.find("-f -n '__fish_seen_subcommand_from help' -a '" + commands + "'"),
            std::string::npos);
  EXPECT_NE(zsh.find("(map vector trie)"), std::string::npos);
  EXPECT_NE(fish.find("-x -a 'map vector trie'"), std::string::npos);
  expectFails(2, "ztb: 'csh' is no shell, expected bash, zsh or fish\n", {"completion", "csh"});
}

}  // namespace
