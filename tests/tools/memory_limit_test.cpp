// --max-memory of the command.
#include <nlohmann/json.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::ProgramTest;

// Parameter p of one position with 1000 records, which take 64 bytes a record in the map.
class MaxMemory : public ProgramTest {
 protected:
  void SetUp() override {
    std::string table = "key,p\n";
    for (int i = 0; i < 1000; ++i) table += "l" + std::to_string(i) + ",1\n";
    write("p.csv", table);
    ztbFine({"import", "a.rxf", "--from", "p.csv", "--parameter", "p(key)"});
  }
};

TEST_F(MaxMemory, DoesNoHarmWhereFilesAreWalkedOver) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"info", "a.rxf"},
                                                    {"show", "a.rxf", "p", "--csv"},
                                                    {"check", "a.rxf"},
                                                    {"diff", "a.rxf", "a.rxf"}}) {
    std::vector<std::string> limited = arguments;
    limited.insert(limited.end(), {"--max-memory", "1"});
    EXPECT_EQ(ztbFine(limited), ztbFine(arguments)) << arguments.front();
  }
  ztbFine({"copy", "a.rxf", "p", "b.rxf", "--max-memory", "1K"});
  EXPECT_NE(ztbFine({"check", "b.rxf"}), "");
}

TEST_F(MaxMemory, LimitsTheDataOfASolve) {
  write("m.lp",
        "Minimize\n v: x\nSubject To\n c: x - p_var(l7) >= 0\nBounds\n p_var(l7) = 3\nEnd\n");
  expectFails(
      1,
      "ztb: a.rxf: symbol p: 1000 records need about 62.5 KiB in memory, the limit is 62.4 KiB "
      "(--max-memory)\n",
      {"solve", "m.lp", "--data", "a.rxf", "--max-memory", "63999"});
  const Outcome outcome = ztb({"solve", "m.lp", "--data", "a.rxf", "--max-memory", "64000"});
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.output.find("objective   1\n"), 0U) << "the value in the file, not the 3";
}

TEST_F(MaxMemory, LimitsWhatDiffSorts) {
  write("q.csv", "key,p\nl999,1\nl0,1\n");
  ztbFine({"import", "b.rxf", "--from", "q.csv", "--parameter", "p(key)"});
  expectFails(1,
              "ztb: a.rxf: symbol p: 1000 records need about 62.5 KiB in memory, the limit is 62.4 "
              "KiB (--max-memory)\n",
              {"diff", "b.rxf", "a.rxf", "--max-memory", "63999"});
  EXPECT_EQ(ztb({"diff", "b.rxf", "a.rxf", "--max-memory", "64000"}).errors, "");
}

TEST_F(MaxMemory, LimitsTheDataOfASweep) {
  std::string table = "s,key,p\n";
  for (int i = 0; i < 1000; ++i)
    table += "s" + std::to_string(i % 2) + ",l" + std::to_string(i) + ",1\n";
  write("sweep.csv", table);
  ztbFine({"import", "sc.rxf", "--from", "sweep.csv", "--distinct-set", "s", "--parameter",
           "p(s, key)"});
  write("m.lp",
        "Minimize\n v: x\nSubject To\n c: x - p_var(l7) >= 0\nBounds\n p_var(l7) = 3\nEnd\n");
  std::vector<std::string> sweep{"sweep", "m.lp",  "--scenarios", "sc.rxf",       "--over",
                                 "s",     "--out", "o.rxf",       "--max-memory", "1K"};
  const Outcome refused = ztb(sweep);
  EXPECT_EQ(refused.status, 1);
  EXPECT_TRUE(refused.errors.starts_with("ztb: sc.rxf: symbol p: 500 records need about "))
      << refused.errors;
  EXPECT_TRUE(refused.errors.ends_with(" KiB in memory, the limit is 1 KiB (--max-memory)\n"))
      << refused.errors;
  EXPECT_FALSE(exists("o.rxf"));
  sweep.back() = "1M";
  EXPECT_EQ(ztb(sweep).status, 0);
}

TEST_F(MaxMemory, RefusesWhatIsNoSize) {
  for (const std::string size : {"0", "2GB", "much"}) {
    const Outcome outcome = ztb({"info", "a.rxf", "--max-memory", size});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.errors,
              "ztb: --max-memory: '" + size +
                  "' is no size, expected a whole number from 1 on, with or without K, M, G or T; "
                  "see ztb info --help\n");
  }
}

TEST_F(MaxMemory, IsAnOptionOfEveryCommandThatOpensFiles) {
  for (const std::string command :
       {"info", "show", "export", "diff", "check", "copy", "pivot", "plot", "solve", "sweep"}) {
    EXPECT_NE(ztbFine({command, "--help"}).find("--max-memory"), std::string::npos) << command;
  }
  EXPECT_EQ(ztbFine({"import", "--help"}).find("--max-memory"), std::string::npos);
}

TEST_F(MaxMemory, IsForeseenByInfo) {
  const nlohmann::json json = nlohmann::json::parse(ztbFine({"info", "a.rxf", "--json"}));
  EXPECT_EQ(json["symbols"][0]["memory"], 64000);
}

}  // namespace
