#include <string>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::Outcome;
using tooltest::OutputTo;
using tooltest::ProgramTest;

class StandardStreamsTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    database.addParameter("p", {"*"}).add("a").setLevel(2.5);
    database.write(path("a.rxf"));
    database.addParameter("q", {"*"});
    database.write(path("b.rxf"));
  }
};

TEST_F(StandardStreamsTest, AFileIsReadFromStandardInput) {
  const std::string file = read("a.rxf");
  EXPECT_EQ(ztb({"show", "-", "p", "--csv"}, file).output, "label,value\na,2.5\n");
  EXPECT_NE(ztb({"info", "-"}, file).output.find("\nstandard input: 1 symbol"), std::string::npos);
  EXPECT_EQ(ztb({"diff", "a.rxf", "-"}, file).status, 0);
  const Outcome outcome = ztb({"show", "-", "p"}, "no such file");
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: Not an RXF file: standard input\n");
}

TEST_F(StandardStreamsTest, AFileIsWrittenToStandardOutput) {
  const Outcome made = ztb({"import", "-", "--from", "-", "--parameter", "v(i)"}, "i,v\nx,4\n");
  EXPECT_EQ(made.status, 0);
  EXPECT_EQ(made.errors, "standard output: 1 symbol, 1 label, 1 record\n");
  write("made.rxf", made.output);
  EXPECT_EQ(ztbFine({"show", "made.rxf", "v", "--csv"}), "i,value\nx,4\n");
  const Outcome copied = ztb({"copy", "-", "v", "-"}, made.output);
  EXPECT_EQ(copied.status, 0);
  write("copied.rxf", copied.output);
  EXPECT_EQ(ztbFine({"diff", "made.rxf", "copied.rxf"}), "no difference: 1 symbol, 1 record\n");
}

TEST_F(StandardStreamsTest, ASolutionIsWrittenToStandardOutput) {
  write("m.lp", "Minimize\n v: x\nSubject To\n c: x >= 3\nEnd\n");
  const Outcome solved = ztb({"solve", "m.lp", "--out", "-", "--show", "x"});
  EXPECT_EQ(solved.status, 0);
  EXPECT_NE(solved.errors.find("objective   3\n"), std::string::npos);
  write("s.rxf", solved.output);
  EXPECT_EQ(ztbFine({"show", "s.rxf", "x", "--csv", "--field", "level"}), "level\n3\n");
}

TEST_F(StandardStreamsTest, ATableIsWrittenToStandardOutput) {
  EXPECT_EQ(ztbFine({"export", "a.rxf", "p", "--csv", "-"}), "label,value\na,2.5\n");
  expectFails(2,
              "ztb: --csv -: standard output takes the table of one symbol, 2 symbols are chosen\n",
              {"export", "b.rxf", "--all", "--csv", "-"});
}

TEST_F(StandardStreamsTest, StandardInputIsReadOnce) {
  expectFails(2, "ztb: diff - -: - can stand once, standard input has one file\n",
              {"diff", "-", "-"});
  expectFails(2, "ztb: -: standard input can be read once, so - can stand once\n",
              {"import", "o.rxf", "--from", "-", "--set", "i", "--from", "-", "--set", "j"});
}

TEST_F(StandardStreamsTest, ASweepTakesNoPipe) {
  for (const std::string option : {"MODEL", "--scenarios", "--out", "--model-data"}) {
    const auto named = [&](const std::string& name, const std::string& file) {
      return name == option ? std::string("-") : file;
    };
    expectFails(
        2,
        "ztb: " + option +
            " -: a sweep takes no pipe, its processes each read the files; give the name "
            "of a file\n",
        {"sweep", named("MODEL", "m.lp"), "--scenarios", named("--scenarios", "a.rxf"), "--over",
         "s", "--out", named("--out", "o.rxf"), "--model-data", named("--model-data", "m.dat")});
  }
}

TEST_F(StandardStreamsTest, MessagesNameStandardInput) {
  const std::string file = read("a.rxf");
  EXPECT_EQ(ztb({"diff", "b.rxf", "-"}, file).output,
            "- parameter q(*)\nb.rxf and standard input differ in 1 symbol\n");
  EXPECT_NE(
      ztb({"diff", "-", "a.rxf", "--json"}, file).output.find("\"before\": \"standard input\""),
      std::string::npos);
}

TEST_F(StandardStreamsTest, AResultThatDoesNotGoThroughIsAFailure) {
  const Outcome outcome = ztb({"copy", "a.rxf", "p", "-"}, "", OutputTo::fullDisk);
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.errors, "ztb: standard output: cannot be written: No space left on device\n");
}

}  // namespace
