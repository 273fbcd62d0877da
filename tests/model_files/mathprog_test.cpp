// MathProg models with and without a data file.

#include <glpk.h>
#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::columnText;
using modelfiles::fileRefusal;
using modelfiles::rowNames;
using modelfiles::rowText;
using modelfiles::writeFile;

const char* const kModel =
    "set I;\n"
    "param demand{I};\n"
    "var x{I} >= 0;\n"
    "var b binary;\n"
    "var n integer, >= -2, <= 9;\n"
    "display I;\n"
    "printf \"hello\\n\";\n"
    "maximize profit: sum{i in I} 2 * x[i] + 7 + b - n;\n"
    "s.t. lim{i in I}: x[i] + 1 <= demand[i];\n"
    "s.t. rng: 2 <= sum{i in I} x[i] <= 9;\n"
    "s.t. fix: b + n = 3;\n"
    "s.t. open: b + n >= -1e30;\n"
    "solve;\n"
    "display x;\n";
const char* const kData =
    "data;\n"
    "set I := 'a b' oslo;\n"
    "param demand := 'a b' 3 oslo 4;\n"
    "end;\n";

class MathProg : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string file = folder_.file(name);
    writeFile(file, text);
    return file;
  }

  ztbtest::TempFolder folder_;
};

TEST_F(MathProg, objectiveIsRow0AndNoOther) {
  const auto model = lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  EXPECT_EQ("profit lim['a b'] lim[oslo] rng fix open", rowNames(model));
  EXPECT_EQ("max 2 x['a b'] + 2 x[oslo] + 1 b + -1 n + 7", rowText(model, 0));
}

TEST_F(MathProg, rowsAndKinds) {
  const auto model = lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  EXPECT_EQ("1 x['a b'] <= 2", rowText(model, "lim['a b']"));
  EXPECT_EQ("2 <= 1 x['a b'] + 1 x[oslo] <= 9", rowText(model, "rng"));
  EXPECT_EQ("1 b + 1 n = 3", rowText(model, "fix"));
  EXPECT_EQ("0 <= x[oslo] <= inf", columnText(model, "x[oslo]"));
  EXPECT_EQ("0 <= b <= 1 binary", columnText(model, "b"));
  EXPECT_EQ("-2 <= n <= 9 integer", columnText(model, "n"));
}

TEST_F(MathProg, dataFileGoesWithTheModel) {
  const auto together = lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  const auto apart =
      lomu::readModelFile(write("m.mod", std::string(kModel) + "end;\n"), write("m.dat", kData));
  EXPECT_EQ(modelfiles::canonicalText(together), modelfiles::canonicalText(apart));
}

TEST_F(MathProg, dataFileTakesThePlaceOfTheModelsData) {
  const auto model = lomu::readModelFile(write("m.mod", std::string(kModel) + kData),
                                         write("m.dat",
                                               "data;\nset I := bern;\nparam demand := bern 6;\n"
                                               "end;\n"));
  EXPECT_EQ("profit lim[bern] rng fix open", rowNames(model));
  EXPECT_EQ("1 x[bern] <= 5", rowText(model, "lim[bern]"));
}

TEST_F(MathProg, modelWithoutObjective) {
  const auto model =
      lomu::readModelFile(write("m.mod", "var x >= 0;\ns.t. c: x >= 1;\nend;\n"), "");
  EXPECT_EQ("objective c", rowNames(model));
  EXPECT_EQ("min  + 0", rowText(model, 0));
}

TEST_F(MathProg, furtherObjectivesAreFreeRows) {
  const auto model = lomu::readModelFile(
      write("m.mod", "var x >= 0;\nminimize one: x;\nminimize two: 2 * x;\nend;\n"), "");
  EXPECT_EQ("one two", rowNames(model));
  EXPECT_EQ("2 x free", rowText(model, "two"));
}

TEST_F(MathProg, statementsPrintNothing) {
  testing::internal::CaptureStdout();
  lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

TEST_F(MathProg, syntaxErrorNamesTheLine) {
  const std::string file = write("m.mod", "var x;\n\nminimize o x;\nend;\n");
  EXPECT_EQ(file + ":3: colon missing where expected", fileRefusal(file));
}

TEST_F(MathProg, errorWhileGeneratingNamesTheLine) {
  const std::string file = write(
      "m.mod", "set I := {'a'};\nparam d{I};\nvar x{I};\ns.t. c{i in I}: x[i] <= d[i];\nend;\n");
  EXPECT_EQ(file + ":4: no value for d[a]", fileRefusal(file));
}

TEST_F(MathProg, errorInTheDataNamesTheDataFile) {
  const std::string file = write("m.mod", std::string(kModel) + "end;\n");
  const std::string data = write("m.dat", "data;\nset I := a;\nparam damend := a 3;\nend;\n");
  EXPECT_EQ(data + ":3: damend not a parameter", fileRefusal(file, data));
}

TEST_F(MathProg, brokenCheckNamesTheLine) {
  const std::string file = write("m.mod", "param p := 3;\ncheck p > 4;\nvar x;\nend;\n");
  const std::string refusal = fileRefusal(file);
  EXPECT_EQ(file + ":2: ", refusal.substr(0, file.size() + 4)) << refusal;
}

TEST_F(MathProg, deepBracketsAreRefused) {
  const std::string file = write("m.mod", "var x;\nminimize o: " + std::string(10001, '(') + "x");
  EXPECT_EQ(file + ":2: brackets within brackets, expected at most 10000 levels",
            fileRefusal(file));
}

TEST_F(MathProg, bracketsUpToTheLimitAreRead) {
  const std::string file = write("m.mod", "var x;\nminimize o: " + std::string(9990, '(') + "x" +
                                              std::string(9990, ')') + ";\nend;\n");
  EXPECT_EQ("min 1 x + 0", rowText(lomu::readModelFile(file, ""), 0));
}

TEST_F(MathProg, problemsOfOtherUsersOfTheLibraryStayAsTheyAre) {
  glp_prob* const problem = glp_create_prob();
  glp_add_cols(problem, 1);
  glp_set_col_name(problem, 1, "mine");
  lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  fileRefusal(write("m.mod", "nonsense\n"));
  EXPECT_STREQ("mine", glp_get_col_name(problem, 1));
  glp_delete_prob(problem);
  glp_free_env();
}

}  // namespace
