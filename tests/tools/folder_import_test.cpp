// Folders that somebody wrote or changed by hand.

#include <filesystem>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;

constexpr const char* header = "symbol,type,dimension,domains,user_info,alias_of,text\n";

class FolderImportTest : public ProgramTest {
 protected:
  void SetUp() override { std::filesystem::create_directory(path("in")); }

  void expectProblems(const std::string& problems, const std::string& count) const {
    expectFails(1, problems + "ztb: out.rxf: not written: " + count + " in the input\n",
                {"import", "out.rxf", "--dir", "in"});
    EXPECT_FALSE(exists("out.rxf"));
  }
};

TEST_F(FolderImportTest, NumbersLabelsAsTheyComeWithoutAFileOfLabels) {
  write("in/_symbols.csv", std::string(header) + "p,parameter,1,s,0,,\ns,set,1,*,0,,\n");
  write("in/p.csv", "s,value\nx,1\n");
  write("in/s.csv", "s,text\ny,\nx,\n");
  ztbFine({"import", "out.rxf", "--dir", "in"});
  const ztb::Database database = ztb::Database::open(path("out.rxf"));
  EXPECT_EQ(database.label(1), "y");
  EXPECT_EQ(database.symbolAt(0).name(), "p");
}

TEST_F(FolderImportTest, ReportsBadRowsOfTheTableOfSymbols) {
  write("in/_symbols.csv", std::string(header) +
                               "a,thing,1,*,0,,\n"
                               "b,set,2,*,0,,\n"
                               "c,set,1,*,x,,\n"
                               "1d,set,1,*,0,,\n"
                               "e,alias,1,*,0,nosuch,\n"
                               "f,set,1\n");
  expectProblems(
      "in/_symbols.csv:2:3: type: 'thing' is no type, expected set, parameter, variable, equation "
      "or alias\n"
      "in/_symbols.csv:3:7: dimension: '2' is not the number of domains, which is 1\n"
      "in/_symbols.csv:4:11: user_info: 'x' is no whole number\n"
      "in/_symbols.csv:7:1: has 3 fields, the header has 7\n"
      "in/_symbols.csv:5:1: '1d' is not a valid name for a VELT symbol\n"
      "in/_symbols.csv:6:1: Cannot find symbol nosuch\n",
      "6 problems");
}

TEST_F(FolderImportTest, ReportsAnotherHeader) {
  write("in/_symbols.csv", "name,type\n");
  expectProblems(
      "in/_symbols.csv:1:1: the header is not "
      "symbol,type,dimension,domains,user_info,alias_of,text,records\n",
      "1 problem");
}

// What an export wrote, and what is left of it when parts are cut off.
TEST_F(FolderImportTest, NoticesWhatIsCutShort) {
  constexpr const char* counted = "symbol,type,dimension,domains,user_info,alias_of,text,records\n";
  const std::string symbols = std::string(counted) + "p,parameter,1,*,0,,,2\nq,alias,1,*,0,*,,\n";
  const std::string all = symbols + "*,set,1,*,0,,All labels,3\n";
  write("in/_symbols.csv", all);
  write("in/_labels.csv", "label\nx\ny\nz\n");
  write("in/p.csv", "label,value\nx,1\ny,2\n");
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--dir", "in"}),
            "out.rxf: 2 symbols, 3 labels, 2 records\n");
  std::filesystem::remove(path("out.rxf"));
  write("in/p.csv", "label,value\nx,1\n");
  write("in/_labels.csv", "label\nx\ny\n");
  expectProblems(
      "in/_labels.csv: has 2 labels, in/_symbols.csv:4:1 tells 3: it is cut short, or rows were "
      "taken "
      "out and the number there not changed\n"
      "in/p.csv: has 1 record, in/_symbols.csv:2:1 tells 2: it is cut short, or rows were taken "
      "out "
      "and the number there not changed\n",
      "2 problems");
  write("in/_labels.csv", "label\nx\ny\nz\n");
  write("in/_symbols.csv", symbols);
  expectProblems(
      "in/_symbols.csv: is cut short: its last line is not that of all labels, *\n"
      "in/p.csv: has 1 record, in/_symbols.csv:2:1 tells 2: it is cut short, or rows were "
      "taken out and the number there not changed\n",
      "2 problems");
  write("in/p.csv", "label,value\nx,1\ny,2\nz,3\n");
  write("in/_symbols.csv", all);
  std::filesystem::remove(path("in/_labels.csv"));
  expectProblems(
      "in/_symbols.csv:4:1: 3 labels are told, and no _labels is there; with no number here "
      "they are numbered as they come\n",
      "1 problem");
  write("in/_symbols.csv", symbols + "*,set,1,*,0,,,\n");
  EXPECT_EQ(ztbFine({"import", "out.rxf", "--dir", "in"}),
            "out.rxf: 2 symbols, 3 labels, 3 records\n");
  write("in/_symbols.csv", std::string(counted) + "*,set,1,*,0,,,-1\n");
  std::filesystem::remove(path("out.rxf"));
  expectProblems("in/_symbols.csv:2:15: records: '-1' is no number of records\n", "1 problem");
}

TEST_F(FolderImportTest, ReportsLabelsThatCannotBe) {
  write("in/_symbols.csv", header);
  write("in/_labels.csv", "label\nx\nX\n\"\"\n  \na,b\n");
  expectProblems(
      "in/_labels.csv:3:1: label: label 'X' stands twice\n"
      "in/_labels.csv:5:1: label: a label cannot be blanks alone\n"
      "in/_labels.csv:6:1: has 2 fields, expected one label\n",
      "3 problems");
}

TEST_F(FolderImportTest, ReportsRecordsOfAnotherShape) {
  write("in/_symbols.csv", std::string(header) + "p,parameter,1,*,0,,\n");
  write("in/p.csv", "a,b,value\nx,y,1\n");
  expectProblems("in/p.csv:1:1: has 3 fields, expected 2 for parameter p with 1 position\n",
                 "1 problem");
  write("in/p.csv", "a,value\nx,one\nx,1\nx,2\n");
  expectProblems(
      "in/p.csv:2:3: value: 'one' is not a number\n"
      "in/p.csv:4:1: record (\"x\") of p stands in line 3 already (the case of letters does not "
      "matter)\n",
      "2 problems");
}

TEST_F(FolderImportTest, ChecksDomainsAlsoOfSetsThatComeLater) {
  write("in/_symbols.csv",
        std::string(header) + "p,parameter,1,s,0,,\ns,set,1,*,0,,\nt,set,1,s,0,,\n");
  write("in/p.csv", "s,value\nx,1\n");
  write("in/s.csv", "s,text\ny,\n");
  write("in/t.csv", "s,text\nz,\n");
  expectFails(1,
              "in/t.csv:2:1: label 'z' (position 1 of t) is not in set s\n"
              "in/p.csv:2:1: label 'x' (position 1 of p) is not in set s\n"
              "ztb: out.rxf: not written: 2 problems in the input\n",
              {"import", "out.rxf", "--dir", "in", "--check-domains"});
}

TEST_F(FolderImportTest, NamesAFileThatIsMissing) {
  const std::string lacking =
      ", so that it holds no whole database; give its files one by one, as in --from in/NAME.csv, "
      "with --set, --parameter or --variable\n";
  expectFails(1, "ztb: in: the folder has no _symbols.csv" + lacking,
              {"import", "out.rxf", "--dir", "in"});
  expectFails(1, "ztb: in: the folder has no _symbols.csv or _symbols.parquet" + lacking,
              {"import", "out.rxf", "--from", "in"});
  expectFails(1,
              "ztb: in: the folder has no _symbols.parquet, so that it holds no whole database; "
              "give its files one by one, as in --from in/NAME.parquet, with --set, --parameter or "
              "--variable\n",
              {"import", "out.rxf", "--from", "in", "--format", "parquet"});
  expectFails(1, "ztb: none/_symbols.csv: cannot be read: No such file or directory\n",
              {"import", "out.rxf", "--dir", "none"});
  write("in/_symbols.csv", std::string(header) + "p,parameter,1,*,0,,\n");
  expectFails(1, "ztb: in/p.csv: cannot be read: No such file or directory\n",
              {"import", "out.rxf", "--dir", "in"});
}

}  // namespace
