// What is shown on a terminal, and how wide.

#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

#include <cstdlib>
#include <sstream>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/tools/background_program.h"
#include "tests/tools/program.h"
#include "tests/tools/terminal.h"

namespace {

using tooltest::ProgramTest;
using tooltest::Terminal;

class ScreenTest : public ProgramTest {
 protected:
  void SetUp() override {
    ztb::Database database;
    ztb::Symbol p = database.addParameter("p", {"*"});
    for (int label = 1; label <= 1500; ++label) {
      p.add("a rather long label, number " + std::to_string(label)).setLevel(label);
    }
    database.write(path("a.rxf"));
    unsetenv("NO_COLOR");
    setenv("TERM", "xterm", 1);
  }
  void TearDown() override { unsetenv("NO_COLOR"); }

  // What a terminal of so many places in a line gets.
  std::string shown(unsigned short width, const std::vector<std::string>& arguments) const {
    Terminal terminal;
    const int screen = open(terminal.path().c_str(), O_RDWR | O_NOCTTY);
    const struct winsize size { .ws_row = 24, .ws_col = width, .ws_xpixel = 0, .ws_ypixel = 0 };
    EXPECT_EQ(ioctl(screen, TIOCSWINSZ, &size), 0);
    tooltest::BackgroundProgram program(path("."), arguments, "errors", terminal.path());
    close(screen);
    terminal.leaveToPrograms();
    EXPECT_FALSE(terminal.waitFor("what no table holds"));
    EXPECT_EQ(program.wait(), 0);
    return terminal.text();
  }
};

// The terminal itself puts the returns in. A line of 20 places: 14 for the label.
TEST_F(ScreenTest, TablesFitTheTerminal) {
  EXPECT_EQ(shown(21, {"show", "a.rxf", "p", "--head", "1"}),
            "parameter p(*)\r\n"
            "\r\n"
            "\x1b[1mlabel           value\x1b[0m\r\n"
            "--------------  -----\r\n"
            "a rather long\xE2\x80\xA6      1\r\n"
            "\r\n"
            "1 record shown,\r\n"
            "others follow\r\n");
}

// Help, and what stands above and below a table, is broken where the line ends; examples are not.
TEST_F(ScreenTest, TextsFitTheTerminal) {
  for (const std::vector<std::string>& arguments : {std::vector<std::string>{"help"},
                                                    {"help", "solve"},
                                                    {"sweep", "--help"},
                                                    {"show", "a.rxf", "p", "--head", "1"},
                                                    {"info", "a.rxf"}}) {
    std::istringstream lines(shown(60, arguments));
    bool inExamples = false;
    for (std::string line; std::getline(lines, line);) {
      line.erase(line.find_last_not_of('\r') + 1);
      inExamples = line.starts_with("Example") || (inExamples && line.starts_with(' '));
      const std::size_t escapes = line.find('\x1b') == std::string::npos ? 0 : 8;
      EXPECT_TRUE(inExamples || line.size() <= 60 + escapes) << line;
    }
  }
}

TEST_F(ScreenTest, TheWidthAskedForComesFirst) {
  EXPECT_NE(shown(21, {"show", "a.rxf", "p", "--head", "1", "--width", "0"})
                .find("a rather long label, number 1      1\r\n"),
            std::string::npos);
  EXPECT_NE(ztbFine({"show", "a.rxf", "p", "--head", "1", "--width", "21"})
                .find("\na rather long\xE2\x80\xA6      1\n"),
            std::string::npos);
}

TEST_F(ScreenTest, NoColourWhereItIsNotWanted) {
  setenv("NO_COLOR", "1", 1);
  EXPECT_EQ(shown(80, {"show", "a.rxf", "p", "--head", "1"}).find('\x1b'), std::string::npos);
  unsetenv("NO_COLOR");
  setenv("TERM", "dumb", 1);
  EXPECT_EQ(shown(80, {"show", "a.rxf", "p", "--head", "1"}).find('\x1b'), std::string::npos);
  EXPECT_EQ(ztbFine({"show", "a.rxf", "p", "--head", "1"}).find('\x1b'), std::string::npos);
}

TEST_F(ScreenTest, RowsOfAQueryEndWithALimitThatIsTold) {
  const std::string query = "select value from p";
  const std::string limited = shown(80, {"sql", "a.rxf", query});
  EXPECT_TRUE(
      limited.ends_with("\r\n 1000\r\n"
                        "\r\n"
                        "1000 rows shown, others follow\r\n"
                        "--all shows them all, --head N the first N\r\n"))
      << limited.substr(limited.size() - 200);
  EXPECT_TRUE(shown(80, {"sql", "a.rxf", query, "--all"}).ends_with("\r\n 1500\r\n"));
  EXPECT_TRUE(shown(80, {"sql", "a.rxf", query, "--csv"}).ends_with("\r\n1500\r\n"));
  EXPECT_TRUE(shown(80, {"sql", "a.rxf", query + " limit 1000"}).ends_with("\r\n 1000\r\n"));
  EXPECT_TRUE(ztbFine({"sql", "a.rxf", query}).ends_with("\n 1500\n"));
  EXPECT_EQ(ztbFine({"sql", "a.rxf", query, "--head", "1"}),
            "value\n-----\n    1\n\n1 row shown, others follow\n");
  EXPECT_EQ(ztbFine({"sql", "a.rxf", query, "--head", "1", "--csv"}), "value\n1\n");
  EXPECT_EQ(ztbFine({"sql", "a.rxf", query, "--head", "1", "--json"}), "[\n  {\"value\":1.0}\n]\n");
  expectFails(2, "ztb: --head and --all tell what is shown; --into takes all rows\n",
              {"sql", "a.rxf", query, "--head", "1", "--into", "t", "--out", "b.rxf"});
}

TEST_F(ScreenTest, RowsOfAPivotTableEndWithALimitThatIsTold) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  for (int row = 1; row <= 1500; ++row) {
    p.add("r" + std::to_string(row), "a").setLevel(row);
    p.add("r" + std::to_string(row), "b").setLevel(1000000.5 + row);
  }
  database.write(path("wide.rxf"));
  const std::vector<std::string> pivot{"pivot", "wide.rxf", "p", "--rows", "1", "--columns", "2"};
  const auto with = [&](std::vector<std::string> more) {
    more.insert(more.begin(), pivot.begin(), pivot.end());
    return more;
  };
  const std::string limited = shown(80, pivot);
  EXPECT_TRUE(
      limited.ends_with("\r\nr1000  1000  1001000.5\r\n"
                        "\r\n"
                        "1500 rows x 2 columns, 3000 records\r\n"
                        "1000 rows shown, others follow\r\n"
                        "--all shows them all, --head N the first N\r\n"))
      << limited.substr(limited.size() - 200);
  EXPECT_TRUE(shown(80, with({"--all"}))
                  .ends_with("\r\nr1500  1500  1001500.5\r\n"
                             "\r\n"
                             "1500 rows x 2 columns, 3000 records\r\n"));
  EXPECT_TRUE(
      ztbFine(pivot).ends_with("\nr1500  1500  1001500.5\n"
                               "\n"
                               "1500 rows x 2 columns, 3000 records\n"));
  EXPECT_EQ(ztbFine(with({"--head", "1", "--csv"})), "dim_1,a,b\nr1,1,1000001.5\n");
  // Each part of a wide table ends there; columns are as wide as what is shown.
  EXPECT_EQ(ztbFine(with({"--head", "2", "--width", "16"})),
            "parameter p(*,\n"
            "*)\n"
            "\n"
            "dim_1  a\n"
            "-----  -\n"
            "r1     1\n"
            "r2     2\n"
            "\n"
            "dim_1          b\n"
            "-----  ---------\n"
            "r1     1000001.5\n"
            "r2     1000002.5\n"
            "\n"
            "1500 rows x 2\n"
            "columns, 3000\n"
            "records\n"
            "2 rows shown,\n"
            "others follow\n");
}

TEST_F(ScreenTest, ManyRecordsEndWithALimitThatIsTold) {
  const std::string limited = shown(80, {"show", "a.rxf", "p"});
  EXPECT_NE(limited.find("\r\na rather long label, number 1000   1000\r\n"
                         "\r\n"
                         "1000 records shown, others follow\r\n"
                         "p has 1500 records; --all shows them all, --head N the first N\r\n"),
            std::string::npos)
      << limited.substr(limited.size() - 300);
  EXPECT_NE(shown(80, {"show", "a.rxf", "p", "--all"}).find("\r\n1500 records\r\n"),
            std::string::npos);
  EXPECT_NE(ztbFine({"show", "a.rxf", "p"}).find("\n1500 records\n"), std::string::npos);
}

// What steers a terminal is spelled out, in a table for programs too.
TEST_F(ScreenTest, CsvIsForItsReader) {
  ztb::Database database;
  ztb::Symbol cost = database.addParameter("cost", {"*", "*"});
  cost.add(
          "bad\x9b"
          "31m",
          "bad\xC2\x9B"
          "31m")
      .setLevel(1);
  cost.add("ex\u202Egpj\x7F", "half\xE2\x82").setLevel(2);
  database.write(path("h.rxf"));
  EXPECT_EQ(shown(80, {"show", "h.rxf", "cost", "--csv"}),
            "dim_1,dim_2,value\r\n"
            "bad\\x9b31m,bad<U+009B>31m,1\r\n"
            "ex<U+202E>gpj\\x7f,half\\xe2\\x82,2\r\n");
}

}  // namespace
