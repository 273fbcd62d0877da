// MathProg models with and without a data file.

#include <glpk.h>
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "providers/model/model_error.h"
#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/stdout_capture.h"
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

class MathProgFill : public MathProg {
 protected:
  static ztbModelFill set(const char* name, const std::vector<const char*>& labels,
                          int dimension = 1) {
    return {name,          1,       dimension, static_cast<long long>(labels.size()) / dimension,
            labels.data(), nullptr, 0};
  }
  static ztbModelFill parameter(const char* name, const std::vector<const char*>& labels,
                                const std::vector<double>& values) {
    return {name,
            0,
            static_cast<int>(labels.size() / values.size()),
            static_cast<long long>(values.size()),
            labels.data(),
            values.data(),
            0};
  }
  std::string refusalOf(const std::string& file, std::vector<ztbModelFill> fills) {
    try {
      lomu::readModelFile(file, "", fills);
    } catch (const lomu::ModelError& error) {
      return error.what();
    }
    return "not refused";
  }
};

TEST_F(MathProgFill, takesThePlaceOfTheModelsOwnData) {
  const std::vector<const char*> places{"bern", "o'hare \"x\""};
  const std::vector<double> amounts{6, 0.1};
  std::vector<ztbModelFill> fills{set("i", places), parameter("Demand", places, amounts),
                                  parameter("other", places, amounts)};
  const auto model = lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "", fills);
  EXPECT_EQ("profit lim[bern] lim['o''hare \"x\"'] rng fix open", rowNames(model));
  EXPECT_EQ("1 x[bern] <= 5", rowText(model, "lim[bern]"));
  EXPECT_EQ(1, fills[0].taken);
  EXPECT_EQ(1, fills[1].taken);
  EXPECT_EQ(0, fills[2].taken);
}

TEST_F(MathProgFill, leavesTheDataOfOtherSymbols) {
  const std::vector<const char*> places{"a b", "oslo"};
  const std::vector<double> amounts{8, 9};
  std::vector<ztbModelFill> fills{parameter("demand", places, amounts)};
  const std::string data =
      "# demand;\ndata; set I := 'a b' oslo; param demand := 'a b' 3 oslo 4; end;\n";
  const auto own = lomu::readModelFile(write("m.mod", std::string(kModel) + data), "", fills);
  EXPECT_EQ("1 x['a b'] <= 7", rowText(own, "lim['a b']"));
  EXPECT_EQ("1 x[oslo] <= 8", rowText(own, "lim[oslo]"));
  const auto apart = lomu::readModelFile(write("m.mod", std::string(kModel) + "end;\n"),
                                         write("m.dat", kData), fills);
  EXPECT_EQ(modelfiles::canonicalText(own), modelfiles::canonicalText(apart));
}

// Years are numbers to the model; pairs, a scalar, and sets and parameters without records.
TEST_F(MathProgFill, takesNumbersPairsScalarsAndNothing) {
  const std::string text =
      "set T; set L, dimen 2; set E default {}; param rate; param cap{T}; param none{T} default "
      "3;\n"
      "var x{t in T} >= 0;\nmaximize o: sum{t in T} x[t] + card(L) + card(E);\n"
      "s.t. c{t in T}: x[t] <= cap[t] * rate + none[t] + t;\nend;\n";
  const std::vector<const char*> years{"2030", "2031"};
  const std::vector<const char*> pairs{"a", "b", "c", "d", "e", "f"};
  const std::vector<double> caps{5, 7};
  const std::vector<double> rate{0.5};
  std::vector<ztbModelFill> fills{set("T", years),
                                  set("L", pairs, 2),
                                  set("E", {}),
                                  parameter("cap", years, caps),
                                  parameter("rate", {}, rate),
                                  {"none", 0, 1, 0, nullptr, nullptr, 0}};
  const auto model = lomu::readModelFile(write("m.mod", text), "", fills);
  EXPECT_EQ("max 1 x[2030] + 1 x[2031] + 3", rowText(model, 0));
  EXPECT_EQ("1 x[2030] <= 2035.5", rowText(model, "c[2030]"));
}

TEST_F(MathProgFill, refusesWhatCannotBeFilled) {
  const std::vector<const char*> labels{"a"};
  const std::vector<double> values{1};
  const std::vector<double> infinite{std::numeric_limits<double>::infinity()};
  const std::string file =
      write("m.mod",
            "set I := {'b'};\nparam p{I};\nparam q{I};\nvar x;\nminimize o: x;\ndata;\n"
            "param: p q := b 1 2;\nend;\n");
  EXPECT_EQ(file +
                ": set \"I\" is computed by the model and cannot be filled, expected one without "
                "\":=\"",
            refusalOf(file, {set("I", labels)}));
  EXPECT_EQ(file +
                ": parameter \"p\" is to be filled with a value that is no finite number for "
                "('a'), expected one",
            refusalOf(file, {parameter("p", labels, infinite)}));
  // In GLPK's words, with the line of the model where it met the value.
  const std::string other = write("n.mod", "param p{1..2};\nvar x;\nminimize o: p[1] * x;\nend;\n");
  EXPECT_EQ(other + ":3: p[a] out of domain", refusalOf(other, {parameter("p", labels, values)}));
  const std::vector<const char*> pair{"a", "b"};
  const std::string third = write("o.mod", "set I;\nvar x{I};\nminimize o: 0;\nend;\n");
  const std::string told = third + ": the data that fill I(*, *): ";
  EXPECT_EQ(told, refusalOf(third, {set("I", pair, 2)}).substr(0, told.size()));
  EXPECT_EQ(third + ": set \"I\" cannot be filled by a parameter, expected a set",
            refusalOf(third, {parameter("i", labels, values)}));
  // Of several, the one that is wrong.
  const std::string fourth =
      write("p.mod", "set I; param a{I}; param b;\nvar x{I};\nminimize o: b * x['a'];\nend;\n");
  const std::string wrong = fourth + ": the data that fill b(*): ";
  EXPECT_EQ(wrong, refusalOf(fourth, {set("I", labels), parameter("a", labels, values),
                                      parameter("b", labels, values)})
                       .substr(0, wrong.size()));
}

// Tables of several parameters keep what is not filled: q is 5 and, by its default, 3; p is 1
// and 2.
TEST_F(MathProgFill, takesColumnsOfTablesAlone) {
  const std::string model =
      "set I; param p{I}; param q{I};\nvar x{i in I} >= p[i], <= q[i];\n"
      "minimize o: sum{i in I} x[i];\ndata;\n";
  const std::string table = "param default 3 : I : p, q := 'b ,''s', 1, 5 /* q, */ c 2 . ;\n";
  const std::vector<const char*> own{"b ,'s", "c"};
  const std::vector<const char*> others{"d", "e"};
  const std::vector<double> values{4, 2.5};
  const auto bounds = [&](const std::string& data, std::vector<ztbModelFill> fills) {
    const auto read = lomu::readModelFile(write("m.mod", model + data + "end;\n"), "", fills);
    std::string text;
    for (const auto& column : read.columns) text += columnText(read, column.name) + "; ";
    return text;
  };
  EXPECT_EQ("4 <= x['b ,''s'] <= 5; 2.5 <= x[c] <= 3; ",
            bounds(table, {parameter("p", own, values)}));
  EXPECT_EQ("1 <= x['b ,''s'] <= 4; 2 <= x[c] <= 2.5; ",
            bounds(table, {parameter("q", own, values)}));
  EXPECT_EQ("4 <= x['b ,''s'] <= 4; 2.5 <= x[c] <= 2.5; ",
            bounds(table, {parameter("p", own, values), parameter("q", own, values)}));
  EXPECT_EQ("4 <= x[d] <= 4; 2.5 <= x[e] <= 2.5; ",
            bounds(table, {set("I", others), parameter("p", others, values),
                           parameter("q", others, values)}));
  // Of pairs, where nothing but the set is left.
  const std::string pairs = write("p.mod",
                                  "set L dimen 2; param p{L};\nvar x{(i,j) in L} >= p[i,j];\n"
                                  "minimize o: sum{(i,j) in L} x[i,j];\ndata;\n"
                                  "param : L : p := a 1 7, b 2 8;\nend;\n");
  const std::vector<const char*> keys{"a", "1", "b", "2"};
  std::vector<ztbModelFill> fills{parameter("p", keys, values)};
  const auto read = lomu::readModelFile(pairs, "", fills);
  EXPECT_EQ("4 <= x[a,1] <= inf", columnText(read, "x[a,1]"));
  EXPECT_EQ("2.5 <= x[b,2] <= inf", columnText(read, "x[b,2]"));
  // With two labels a record, 3 + 3 entries are no whole number of records of 4.
  const std::string uneven = write("u.mod", model + table + "end;\n");
  EXPECT_EQ(
      uneven +
          ":5: the data give \"p\" in one table with others, in which its values are not told "
          "from theirs by the 2 labels of the records that fill it; expected a statement of "
          "its own",
      refusalOf(uneven, {parameter("p", keys, values)}));
}

// The labels of the index stand in front of those of the elements.
TEST_F(MathProgFill, takesIndexedSets) {
  const std::string text =
      "set I; set near{I} within I, default {}; set way{i in I} dimen 2;\n"
      "set both{I} within I cross I;\nvar x{i in I, j in near[i]} >= 0;\n"
      "var y{i in I, (j, k) in way[i]} >= 0;\n"
      "minimize o: sum{i in I, j in near[i]} x[i,j] + sum{i in I, (j, k) in way[i]} y[i,j,k];\n"
      "data;\n"
      "set I := a b c; set near[a] := c; set near[b] := c;\nend;\n";
  const std::string file = write("m.mod", text);
  const std::vector<const char*> near{"a", "b", "b", "a", "a", "a"};
  const std::vector<const char*> way{"c", "p", "1", "a", "r", "3", "c", "q", "2", "b", "r", "4"};
  std::vector<ztbModelFill> fills{set("near", near, 2), set("way", way, 3)};
  const auto model = lomu::readModelFile(file, "", fills);
  std::string names;
  for (const auto& column : model.columns) names += column.name + " ";
  EXPECT_EQ("x[a,b] x[a,a] x[b,a] y[a,r,3] y[b,r,4] y[c,p,1] y[c,q,2] ", names);
  EXPECT_EQ(
      file +
          ": set \"way\" is indexed, with elements of 2 positions; expected data with more, for "
          "the index in front, not with 2",
      refusalOf(file, {set("way", near, 2)}));
  EXPECT_EQ(
      file +
          ": set \"both\" is indexed and within others, so that nobody knows how many "
          "positions its elements have; expected \"dimen\" with their number in its declaration",
      refusalOf(file, {set("both", way, 3)}));
}

TEST_F(MathProgFill, takesTheNameAsTheModelSpellsIt) {
  const std::string file = write("m.mod",
                                 "param cc; param CC;\nvar x >= cc, <= CC;\nminimize o: x;\ndata;\n"
                                 "param cc := 1; param CC := 2;\nend;\n");
  const std::vector<double> value{5};
  std::vector<ztbModelFill> fills{parameter("CC", {}, value)};
  EXPECT_EQ("1 <= x <= 5", columnText(lomu::readModelFile(file, "", fills), "x"));
  EXPECT_EQ(
      file + ": \"Cc\" may fill \"cc\" and \"CC\", expected it as the model spells one of them",
      refusalOf(file, {parameter("Cc", {}, value)}));
}

// What is wrong in the data that stay is told with its place; nothing of them gets lost.
TEST_F(MathProgFill, tellsWhatIsWrongInTheDataThatStay) {
  const std::string model = "set I;\nparam p{I};\nparam q{I} default 0;\nvar x;\nminimize o: x;\n";
  const std::vector<const char*> labels{"a"};
  const std::vector<double> values{1};
  const std::vector<ztbModelFill> fills{parameter("p", labels, values)};
  const std::string own =
      write("m.mod", model + "data;\nset I := a;\nparam p :=\na 1;\n\nparam q := a z;\nend;\n");
  EXPECT_EQ(own + ":11: q requires numeric data", refusalOf(own, fills));
  const std::string cut = write("c.mod", model + "data;\nset I := a;\n\nparam q := a 3\n");
  EXPECT_EQ(cut + ":9: the data end within a statement, expected a semicolon behind it",
            refusalOf(cut, fills));
  const std::string bare = write("b.mod", model + "end;\n");
  const std::string data = write("b.dat", "# all\ndata;\nset I := a;\nparam r := a 3;\nend;\n");
  std::string told;
  try {
    std::vector<ztbModelFill> taken = fills;
    lomu::readModelFile(bare, data, taken);
  } catch (const lomu::ModelError& error) {
    told = error.what();
  }
  EXPECT_EQ(data + ":4: r not a parameter", told);
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
  ztbtest::StdoutCapture output;
  lomu::readModelFile(write("m.mod", std::string(kModel) + kData), "");
  EXPECT_EQ("", output.text());
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
