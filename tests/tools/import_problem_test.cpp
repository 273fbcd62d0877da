// What is wrong with the input of an import is told with file, line and column, and nothing is
// written then.

#include <string>
#include <vector>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

class ImportProblemTest : public ProgramTest {
 protected:
  // Imports a.csv with these options and expects exactly these problems, and no file.
  void expectProblems(const std::string& content, const std::vector<std::string>& options,
                      const std::string& problems, const std::string& count) const {
    write("a.csv", content);
    std::vector<std::string> arguments{"import", "out.rxf", "--from", "a.csv"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    expectFails(1, problems + "ztb: out.rxf: not written: " + count + " in the input\n", arguments);
    EXPECT_FALSE(exists("out.rxf"));
  }
};

TEST_F(ImportProblemTest, BadNumbers) {
  expectProblems("i,v\nx,1\ny,12 kg\nz,\nw,1e999\n", {"--parameter", "v(i)"},
                 "a.csv:3:3: v: '12 kg' is not a number\n"
                 "a.csv:4:3: v: is empty, expected a number\n"
                 "a.csv:5:3: v: '1e999' is outside the range of a double\n",
                 "3 problems");
}

TEST_F(ImportProblemTest, RecordsTwice) {
  expectProblems("i,j,v\nx,y,1\nx,z,2\nX,y,3\n", {"--parameter", "v(i, j)"},
                 "a.csv:4:1: record (\"x\",\"y\") of v stands in line 2 already (the case of "
                 "letters does not matter)\n",
                 "1 problem");
}

TEST_F(ImportProblemTest, ASecondRowForAScalar) {
  expectProblems("v\n1\n2\n", {"--parameter", "v()"},
                 "a.csv:3:1: record () of v stands in line 2 already\n", "1 problem");
}

TEST_F(ImportProblemTest, LabelsThatCannotBe) {
  const std::string longLabel(64, 'x');
  expectProblems("i\n" + longLabel + "\n\"a\tb\"\n\"it's \"\"it\"\"\"\n   \n", {"--set", "i"},
                 "a.csv:2:1: i: label '" + longLabel +
                     "' has 64 bytes, at most 63 are allowed\n"
                     "a.csv:3:1: i: label 'a\\tb' holds a control character\n"
                     "a.csv:4:1: i: label >it's \"it\"< holds both kinds of quote\n"
                     "a.csv:5:1: i: a label cannot be blanks alone\n",
                 "4 problems");
}

TEST_F(ImportProblemTest, ALabelThatIsMissing) {
  expectProblems("i,v\n,1\n", {"--parameter", "v(i)"},
                 "a.csv:2:1: i: is empty, expected a label (the empty label is written \"\")\n",
                 "1 problem");
}

TEST_F(ImportProblemTest, ABadLabelOnceForAllSymbolsOfARow) {
  expectProblems("i,v,w\n,1,x\n", {"--set", "i", "--parameter", "v(i)", "--parameter", "w(i)"},
                 "a.csv:2:1: i: is empty, expected a label (the empty label is written \"\")\n"
                 "a.csv:2:4: w: 'x' is not a number\n",
                 "2 problems");
}

TEST_F(ImportProblemTest, TextsThatCannotBe) {
  expectProblems("i,t\nx," + std::string(256, 't') + "\ny,\"" + std::string("a\0b", 3) + "\"\n",
                 {"--set", "i : t"},
                 "a.csv:2:3: t: text has 256 bytes, at most 255 are allowed\n"
                 "a.csv:3:3: t: text holds a zero byte\n",
                 "2 problems");
}

TEST_F(ImportProblemTest, RowsOfAnotherLength) {
  expectProblems("i,v\nx,1,2\ny\nz,3\n", {"--parameter", "v(i)"},
                 "a.csv:2:1: has 3 fields, the header has 2\n"
                 "a.csv:3:1: has 1 field, the header has 2\n",
                 "2 problems");
}

TEST_F(ImportProblemTest, AQuoteThatIsNeverClosed) {
  expectProblems("i,v\n\"x,1\ny,2\n", {"--parameter", "v(i)"},
                 "a.csv:2:1: the quote that opens here is never closed\n", "1 problem");
}

TEST_F(ImportProblemTest, ColumnsThatAreMissingOrThereTwice) {
  expectProblems("i,v,v\nx,1,2\n", {"--parameter", "v(i)", "--parameter", "w(k) = i"},
                 "a.csv:1:1: more than one column 'v'; the columns are i, v, v\n"
                 "a.csv:1:1: no column 'k'; the columns are i, v, v\n",
                 "2 problems");
}

TEST_F(ImportProblemTest, AFileWithoutAHeader) {
  expectProblems("", {"--set", "i"}, "a.csv: has no header line\n", "1 problem");
}

TEST_F(ImportProblemTest, LabelsOutsideTheirDomain) {
  write("i.csv", "i\nx\ny\n");
  write("p.csv", "j,i,v\nq,x,1\nq,z,2\n");
  expectFails(1,
              "p.csv:3:3: label 'z' (position 2 of v) is not in set i\n"
              "ztb: out.rxf: not written: 1 problem in the input\n",
              {"import", "out.rxf", "--check-domains", "--from", "i.csv", "--set", "i", "--from",
               "p.csv", "--parameter", "v(j,i)"});
  EXPECT_FALSE(exists("out.rxf"));
}

TEST_F(ImportProblemTest, AreCountedBeyondTheLimit) {
  std::string csv = "i,v\n";
  for (int row = 0; row < 30; ++row) {
    csv += "x" + std::to_string(row) + ",bad\n";
  }
  expectProblems(csv, {"--max-errors", "1", "--parameter", "v(i)"},
                 "a.csv:2:4: v: 'bad' is not a number\n... and 29 more\n", "30 problems");
}

TEST_F(ImportProblemTest, LeaveTheOldFileAsItWas) {
  write("a.csv", "i\nx\n");
  ztbFine({"import", "out.rxf", "--from", "a.csv", "--set", "i"});
  const std::string before = read("out.rxf");
  write("a.csv", "i\nx\nx\n");
  EXPECT_EQ(ztb({"import", "out.rxf", "--from", "a.csv", "--set", "i"}).status, 1);
  EXPECT_EQ(read("out.rxf"), before);
}

TEST_F(ImportProblemTest, FilesThatCannotBeRead) {
  expectFails(1, "ztb: none.csv: cannot be read: No such file or directory\n",
              {"import", "out.rxf", "--from", "none.csv", "--set", "i"});
  expectFails(1, "ztb: .: is a folder, and a table is one file of it, as in --from ./NAME.csv\n",
              {"import", "out.rxf", "--from", ".", "--set", "i"});
  expectFails(1, "ztb: .: is a folder, expected a file\n",
              {"import", "out.rxf", "--from", ".", "--format", "sqlite", "--set", "i"});
}

TEST_F(ImportProblemTest, FilesThatCannotBeWritten) {
  write("a.csv", "i\nx\n");
  expectFails(1, "ztb: No such file: the folder does not exist: none/out.rxf\n",
              {"import", "none/out.rxf", "--from", "a.csv", "--set", "i"});
  expectFails(1, "ztb: Is a folder: .\n", {"import", ".", "--from", "a.csv", "--set", "i"});
}

TEST_F(ImportProblemTest, SymbolsThatCannotBeMade) {
  write("a.csv", "i,v\nx,1\n");
  expectFails(2, "ztb: --set 1a(i): '1a' is not a valid name for a VELT symbol\n",
              {"import", "out.rxf", "--from", "a.csv", "--set", "1a(i)"});
  expectFails(2,
              "ztb: --set I(i): The name I is that of symbol i already (the case of letters does "
              "not matter): Symbol I exists already\n",
              {"import", "out.rxf", "--from", "a.csv", "--set", "i", "--set", "I(i)"});
  expectFails(2, "ztb: --set s(): Dimension must be greater than 0 for a Set\n",
              {"import", "out.rxf", "--from", "a.csv", "--set", "s()"});
  expectFails(2, "ztb: --parameter v(i in k): domain k is no one-dimensional set made before\n",
              {"import", "out.rxf", "--from", "a.csv", "--parameter", "v(i in k)"});
}

TEST_F(ImportProblemTest, SourcesThatCannotBeReadHideNoneOfTheOthers) {
  write("text.xlsx", "i,v\n");
  expectProblems("i,v\nx,much\n",
                 {"--parameter", "v(i)", "--from", "gone.csv", "--set", "i", "--from", "text.xlsx",
                  "--parameter", "w(i)"},
                 "a.csv:2:3: v: 'much' is not a number\n"
                 "gone.csv: cannot be read: No such file or directory\n"
                 "text.xlsx: is no workbook: it cannot be opened as a zip file\n",
                 "3 problems");
}

}  // namespace
