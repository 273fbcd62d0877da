// What the LP reader takes: sections, sums, relations, quadratic parts.

#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/model_files/model_text.h"

namespace {

using modelfiles::columnNames;
using modelfiles::columnText;
using modelfiles::lp;
using modelfiles::notesText;
using modelfiles::rowNames;
using modelfiles::rowText;
using modelfiles::setText;

TEST(LpForm, objectiveRowsAndNamesInOrderOfAppearance) {
  const auto model =
      lp("Minimize\n cost: 3 x + 2 y\nSubject To\n c1: x + y >= 2\n c2: z - x <= 4\nEnd\n");
  EXPECT_EQ("cost c1 c2", rowNames(model));
  EXPECT_EQ("x y z", columnNames(model));
  EXPECT_EQ("min 3 x + 2 y + 0", rowText(model, 0));
  EXPECT_EQ("1 x + 1 y >= 2", rowText(model, 1));
  EXPECT_EQ("-1 x + 1 z <= 4", rowText(model, 2));
  EXPECT_EQ("0 <= x <= inf", columnText(model, "x"));
}

TEST(LpForm, keywordsInAnySpellingAndCase) {
  for (const std::string sense : {"minimize", "MINIMISE", "Minimum", "min"}) {
    EXPECT_FALSE(lp(sense + " x\nst\nx >= 1\nend").maximize) << sense;
  }
  for (const std::string sense : {"maximize", "MAXIMISE", "Maximum", "max"}) {
    EXPECT_TRUE(lp(sense + " x\nst\nx >= 1\nend").maximize) << sense;
  }
  for (const std::string rows : {"subject to", "Subject\tTo", "SUCH THAT", "st", "s.t.", "st."}) {
    EXPECT_EQ("1 x >= 1", rowText(lp("min x\n" + rows + "\nx >= 1\nend"), "R1")) << rows;
  }
  for (const std::string integers :
       {"general", "generals", "gen", "gens", "integer", "integers", "int", "ints"}) {
    EXPECT_EQ("0 <= x <= inf integer", columnText(lp("min x\n" + integers + "\nx\nend"), "x"))
        << integers;
  }
  for (const std::string binaries : {"binary", "binaries", "bin", "bins"}) {
    EXPECT_EQ("0 <= x <= 1 binary", columnText(lp("min x\n" + binaries + "\nx\nend"), "x"))
        << binaries;
  }
  for (const std::string bounds : {"bound", "BOUNDS"}) {
    EXPECT_EQ("0 <= x <= 4", columnText(lp("min x\n" + bounds + "\nx <= 4\nend"), "x")) << bounds;
  }
}

TEST(LpForm, keywordsMayFollowOtherTextOnlyOnANewLine) {
  EXPECT_EQ("1 max >= 1", rowText(lp("min x\nst\nc: max >= 1"), "c"));
  EXPECT_EQ("1 x >= 1", rowText(lp("min x\nst\nend: x >= 1"), "end"));
}

TEST(LpForm, whatStandsBehindEndIsPassedOverWithANote) {
  const auto model = modelfiles::wholeLp("min x\nst\nx >= 1\nEnd\n\\ remark\n\n  <\x01 rubbish");
  EXPECT_EQ("1 x >= 1", rowText(model, "R1"));
  EXPECT_EQ("m.lp:7:3: what stands behind End is passed over\n", notesText(model));
  EXPECT_EQ("", notesText(modelfiles::wholeLp("min x\nend\n \\ remark\n")));
}

TEST(LpForm, rowsWithoutNameAreNamedByPosition) {
  EXPECT_EQ("objective R1 c R3", rowNames(lp("min x\nst\nx >= 1\nc: x <= 4\nx <= 5\nend")));
}

TEST(LpForm, aLabelMayBeTheNameOfARowWithout) {
  const auto model = lp("min x\nst\nx >= 1\nR1: x <= 4\nR3: x <= 5\nx <= 6\nR4: x <= 7");
  EXPECT_EQ("objective R1_ R1 R3 R4_ R4", rowNames(model));
  EXPECT_EQ("1 x >= 1", rowText(model, "R1_"));
  EXPECT_EQ("1 x <= 6", rowText(model, "R4_"));
}

// 3 <= 5 always holds, 5 <= 3 never.
TEST(LpForm, rowsOfConstantsAreRowsWithoutTerms) {
  const auto model = lp("min x\nst\na: 3 <= 5\nb: 5 <= 3\nc: 2 = 2\nd: 1 <= 2 <= 3");
  EXPECT_EQ(" <= 2", rowText(model, "a"));
  EXPECT_EQ(" <= -2", rowText(model, "b"));
  EXPECT_EQ(" = 0", rowText(model, "c"));
  EXPECT_EQ("-1 <=  <= 1", rowText(model, "d"));
}

TEST(LpForm, contradictingBoundsAreTheModels) {
  const auto model = lp("min x\nst\nc: 5 <= x + y <= 3\nbounds\n4 <= x <= 3");
  EXPECT_EQ("5 <= 1 x + 1 y <= 3", rowText(model, "c"));
  EXPECT_EQ("4 <= x <= 3", columnText(model, "x"));
}

TEST(LpForm, variablesOfBoundsAndKindsAloneAreTakenWithANote) {
  const auto model = lp("min x\nbounds\n y <= 3\nbin\n b\ngen\n i");
  EXPECT_EQ("x y b i", columnNames(model));
  EXPECT_EQ("0 <= y <= 3", columnText(model, "y"));
  EXPECT_EQ("0 <= b <= 1 binary", columnText(model, "b"));
  EXPECT_EQ("0 <= i <= inf integer", columnText(model, "i"));
  EXPECT_EQ(
      "m.lp:3:2: the variable \"y\" stands in no row and not in the objective; it is taken all the "
      "same (and 2 more)\n",
      notesText(model));
}

TEST(LpForm, semiContinuousVariables) {
  for (const std::string header : {"Semi-Continuous", "semi continuous", "SEMI", "semis"}) {
    const auto model = lp("min x + y\nbounds\n2 <= x <= 9\ny <= 4\ngen\ny\n" + header + "\n x y");
    EXPECT_EQ("2 <= x <= 9 or 0", columnText(model, "x")) << header;
    EXPECT_EQ("0 <= y <= 4 integer or 0", columnText(model, "y")) << header;
  }
}

TEST(LpForm, specialOrderedSets) {
  const auto model =
      lp("min x + y + z\nSOS\n one: S1 :: x : 3 y:1\n z : 2.5\n two: s2:: x:-1 y:0\n S1 :: z:1\n"
         "sos2\n a: x:1 y:2\n b: S2 :: y:1\nsos1\n x:1 z:4");
  ASSERT_EQ(6U, model.sets.size());
  EXPECT_EQ("one: S1 :: x:3 y:1 z:2.5", setText(model, 0));
  EXPECT_EQ("two: S2 :: x:-1 y:0", setText(model, 1));
  EXPECT_EQ("S3: S1 :: z:1", setText(model, 2));
  EXPECT_EQ("a: S2 :: x:1 y:2", setText(model, 3));
  EXPECT_EQ("b: S2 :: y:1", setText(model, 4));
  EXPECT_EQ("S6: S1 :: x:1 z:4", setText(model, 5));
}

TEST(LpForm, objectiveWithoutNameGivesWayToARow) {
  EXPECT_EQ("objective_ objective", rowNames(lp("min x\nst\nobjective: x >= 1\nend")));
}

TEST(LpForm, objectiveMayBeEmptyOrConstant) {
  EXPECT_EQ("min  + 0", rowText(lp("min\nst\nx >= 1\nend"), 0));
  EXPECT_EQ("max  + -2.5", rowText(lp("max obj: - 2.5\nst\nx >= 1\nend"), "obj"));
}

TEST(LpForm, commentsAndLineEndsOfEveryKind) {
  const auto model = lp("\\ top\r\nmin x \\ + y\r\nst\r\n\\ c: x >= 3\r\nc: x >= 1\\\r\nend \\");
  EXPECT_EQ("min 1 x + 0", rowText(model, 0));
  EXPECT_EQ("1 x >= 1", rowText(model, "c"));
}

TEST(LpForm, byteOrderMarkIsSkipped) {
  EXPECT_EQ("min 1 x + 0", rowText(lp("\xEF\xBB\xBFmin x\nend"), 0));
}

TEST(LpForm, numbersInEveryForm) {
  EXPECT_EQ("min 2 a + 0.5 b + 3 c + 1500 d + 0.25 e1 + 4 e + 10 f + 0",
            rowText(lp("min 2a + .5b + 3. c + 1.5E3d + 25e-2e1 + 4e + 1e+1f"), 0));
  EXPECT_EQ("min 6 x + 0", rowText(lp("min 6 * x"), 0));
}

TEST(LpForm, signsInARowMultiply) {
  EXPECT_EQ("min 3 x + -2 y + 1 z + 0", rowText(lp("min - -3 x + - 2 y - - + z"), 0));
}

TEST(LpForm, termsThatRepeatAddUp) {
  EXPECT_EQ("4 x + 1 y <= 3", rowText(lp("min x\nst\nc: x + 2 x + y + x <= 3"), "c"));
}

TEST(LpForm, sumsGoOverSeveralLines) {
  const auto model = lp("min x\n + 2\n y\nst\nc:\n x +\n y\n - 3\n z\n >=\n 2\nd: x >= 0");
  EXPECT_EQ("min 1 x + 2 y + 0", rowText(model, 0));
  EXPECT_EQ("1 x + 1 y + -3 z >= 2", rowText(model, "c"));
}

TEST(LpForm, relationsInEverySpelling) {
  for (const std::string relation : {"<=", "=<", "<"}) {
    EXPECT_EQ("1 x <= 3", rowText(lp("min x\nst\nc: x" + relation + "3"), "c"));
  }
  for (const std::string relation : {">=", "=>", ">"}) {
    EXPECT_EQ("1 x >= 3", rowText(lp("min x\nst\nc: x" + relation + "3"), "c"));
  }
  EXPECT_EQ("1 x = -3", rowText(lp("min x\nst\nc: x=-3"), "c"));
}

TEST(LpForm, constantsAndTermsOnEitherSide) {
  EXPECT_EQ("1 x + -1 y <= 9", rowText(lp("min x\nst\nc: x - 7 <= 2 + y"), "c"));
  EXPECT_EQ("1 x >= 4", rowText(lp("min x\nst\nc: 4 <= x"), "c"));
  EXPECT_EQ("1 x <= 4", rowText(lp("min x\nst\nc: 4 >= x"), "c"));
  EXPECT_EQ("1 x + 1 y >= 3", rowText(lp("min x\nst\nc: 5 - 1 <= x + 1 + y"), "c"));
  EXPECT_EQ("1 x + -1 y = 0", rowText(lp("min x\nst\nc: x = y"), "c"));
  EXPECT_EQ("2 x + 1 x*x <= 3", rowText(lp("min x\nst\nc: 2 x <= 3 - [ x ^ 2 ]"), "c"));
}

TEST(LpForm, objectiveConstantsAddUp) {
  EXPECT_EQ("min 1 x + 4.5", rowText(lp("min 3 + x + 2 - 0.5"), 0));
}

TEST(LpForm, doubleSidedRows) {
  EXPECT_EQ("-3 <= 1 x + 1 y <= 5", rowText(lp("min x\nst\nc: -3 <= x + y <= 5"), "c"));
  EXPECT_EQ("-3 <= 1 x <= 5", rowText(lp("min x\nst\nc: 5 >= x >= -3"), "c"));
  EXPECT_EQ("-4 <= 1 x <= 4", rowText(lp("min x\nst\nc: -3 <= x + 1 <= 5"), "c"));
  EXPECT_EQ("1 x = 5", rowText(lp("min x\nst\nc: 5 <= x <= 5"), "c"));
  EXPECT_EQ("1 x <= 5", rowText(lp("min x\nst\nc: -inf <= x <= 5"), "c"));
  EXPECT_EQ("1 x >= 2", rowText(lp("min x\nst\nc: 2 <= x <= 1e30"), "c"));
  EXPECT_EQ("1 x free", rowText(lp("min x\nst\nc: -1e30 <= x <= infinity"), "c"));
}

TEST(LpForm, bothSidesOfARowAreKeptToTheLastBit) {
  const auto sides = [](const std::string& lower, const std::string& upper) {
    const auto model = lp("min x\nst\nc: " + lower + " <= x <= " + upper);
    const lomu::RowData& row = model.rows.at(1);
    const bool isLess = row.type == lomu::RowType::lessOrEqual;
    return isLess ? std::pair(row.rhs - row.range, row.rhs)
                  : std::pair(row.rhs, row.rhs + row.range);
  };
  EXPECT_EQ(std::pair(1.0, 1e20), sides("1", "1e20"));
  EXPECT_EQ(std::pair(-1e20, 1.0), sides("-1e20", "1"));
  EXPECT_EQ(std::pair(1e-3, 1e17), sides("1e-3", "1e17"));
  EXPECT_EQ(std::pair(1.8, 5.0), sides("1.8", "5"));
  EXPECT_EQ(std::pair(1e20, 1.0), sides("1e20", "1")) << "which no point satisfies";
}

TEST(LpForm, rightHandSideBeyondReachFreesARow) {
  EXPECT_EQ("1 x free", rowText(lp("min x\nst\nc: x <= 1e30"), "c"));
  EXPECT_EQ("1 x free", rowText(lp("min x\nst\nc: x >= -infinity"), "c"));
}

TEST(LpForm, rowsWithoutLabelBeginOnANewLine) {
  const auto model =
      lp("min x\nst\n x + y <= 5\n x - y >= 2\n -z + y <= 1\n 2 y >= x\n 3 z <= 4\n"
         " -1 <= x <= 1\n");
  EXPECT_EQ("1 x + 1 y <= 5", rowText(model, "R1"));
  EXPECT_EQ("1 x + -1 y >= 2", rowText(model, "R2"));
  EXPECT_EQ("1 y + -1 z <= 1", rowText(model, "R3"));
  EXPECT_EQ("-1 x + 2 y >= 0", rowText(model, "R4"));
  EXPECT_EQ("3 z <= 4", rowText(model, "R5"));
  EXPECT_EQ("-1 <= 1 x <= 1", rowText(model, "R6"));
}

TEST(LpForm, aSignGoesOnWithTheVariablesOfARightSide) {
  EXPECT_EQ("1 x + -1 y + 1 z >= 3", rowText(lp("min x\nst\nc: x >= y + 3\n - z\n"), "c"));
}

TEST(LpForm, labelledRowsMayShareALine) {
  const auto model = lp("min x\nst\na: x <= 3 b: x + y >= 1\n");
  EXPECT_EQ("1 x <= 3", rowText(model, "a"));
  EXPECT_EQ("1 x + 1 y >= 1", rowText(model, "b"));
}

TEST(LpForm, quadraticObjectiveIsHalved) {
  EXPECT_EQ("min 1 x + 0.5 x*x + 2 x*y + 7", rowText(lp("min x + [ x ^ 2 + 4 x * y ] / 2 + 7"), 0));
  EXPECT_EQ("min 0.5 x*x + 2 x*y + 0", rowText(lp("min [x^2+4x*y]/2"), 0));
}

TEST(LpForm, quadraticRowIsNotHalved) {
  EXPECT_EQ("1 x + 1 x*x + 4 x*y <= 3", rowText(lp("min x\nst\nc: x + [ x^2 + 4 x*y ] <= 3"), "c"));
}

TEST(LpForm, bracketsTakeSignsAndAddUp) {
  EXPECT_EQ("min -1 x*x + 1.5 x*y + -0.5 y*y + 0",
            rowText(lp("min - [ 2 x^2 - 3 x*y ]/2 + [ - y^2 ] / 2"), 0));
  EXPECT_EQ("1 x*y >= 1", rowText(lp("min x\nst\nc: [ 3 x * y ] - [ 2 y * x ] >= 1"), "c"));
  EXPECT_EQ("-1 x*x <= 3", rowText(lp("min x\nst\nc: -\n[\nx\n^\n2\n]\n<= 3"), "c"));
}

TEST(LpForm, namesHoldLabelsInBrackets) {
  const auto model =
      lp("min x[seville,oslo] + x(seville,oslo) + x['a b',7] + buy('Wheat Flour (Enriched)')\n"
         "st\nlimit['it''s, [ok]',b]: y[a][b] + 2 z[f(a,b),c].d >= [x[a]^2 + x[a]*x(b)]\n");
  EXPECT_EQ(
      "x[seville,oslo] x(seville,oslo) x['a b',7] buy('Wheat Flour (Enriched)') y[a][b] "
      "z[f(a,b),c].d x[a] x(b)",
      columnNames(model));
  EXPECT_EQ("1 y[a][b] + 2 z[f(a,b),c].d + -1 x[a]*x[a] + -1 x[a]*x(b) >= 0",
            rowText(model, "limit['it''s, [ok]',b]"));
}

TEST(LpForm, quotesWithinALabelAreOrdinaryCharacters) {
  EXPECT_EQ("x[O'Brien,5\"]", columnNames(lp("min x[O'Brien,5\"]")));
}

TEST(LpForm, namesTakeTheSignsOfTheFormat) {
  const std::string name = "a!\"#$%&/,.;?@_`'{}|~9\xC3\xA9";
  EXPECT_EQ(name, columnNames(lp("min " + name + "\n")));
}

TEST(LpForm, namesOf255CharactersAreTaken) {
  const std::string name(255, 'n');
  EXPECT_EQ(name, columnNames(lp("min " + name)));
}

TEST(LpForm, boundsOfAllForms) {
  const auto model =
      lp("min a + b + c + d + e + f + g + h + i + j + k\nbounds\n"
         "a free\n -inf <= b <= 4\nc = 3\n d >= -1e30\n2 <= e\n 5 >= f\n 9 >= g >= 1\n"
         "h <= +Infinity h >= - 2\ni >= -2.5 i <= 1e31\n -4 = j\n k Free\n");
  EXPECT_EQ("-inf <= a <= inf", columnText(model, "a"));
  EXPECT_EQ("-inf <= b <= 4", columnText(model, "b"));
  EXPECT_EQ("3 <= c <= 3", columnText(model, "c"));
  EXPECT_EQ("-inf <= d <= inf", columnText(model, "d"));
  EXPECT_EQ("2 <= e <= inf", columnText(model, "e"));
  EXPECT_EQ("0 <= f <= 5", columnText(model, "f"));
  EXPECT_EQ("1 <= g <= 9", columnText(model, "g"));
  EXPECT_EQ("-2 <= h <= inf", columnText(model, "h"));
  EXPECT_EQ("-2.5 <= i <= inf", columnText(model, "i"));
  EXPECT_EQ("-4 <= j <= -4", columnText(model, "j"));
  EXPECT_EQ("-inf <= k <= inf", columnText(model, "k"));
}

TEST(LpForm, negativeUpperBoundAloneKeepsTheLowerBoundAt0) {
  EXPECT_EQ("0 <= x <= -4", columnText(lp("min x\nbounds\nx <= -4"), "x"));
}

TEST(LpForm, theLastOfSeveralBoundsHolds) {
  EXPECT_EQ("0 <= x <= 2", columnText(lp("min x\nbounds\nx <= 4\nx <= 2"), "x"));
}

TEST(LpForm, binariesMayBeFixedByBounds) {
  EXPECT_EQ("1 <= x <= 1 binary", columnText(lp("min x\nbounds\nx = 1\nbin\nx"), "x"));
  EXPECT_EQ("0 <= x <= 0 binary", columnText(lp("min x\nbin\nx\nbounds\nx = 0"), "x"));
}

TEST(LpForm, boundsOfABinaryAreNarrowedTo0And1) {
  EXPECT_EQ("0 <= x <= 1 binary", columnText(lp("min x\nbounds\nx <= 5\nbin\nx"), "x"));
  EXPECT_EQ("0 <= x <= 1 binary", columnText(lp("min x\nbin\nx\nbounds\nx free"), "x"));
  EXPECT_EQ("2 <= x <= 1 binary", columnText(lp("min x\nbin\nx\nbounds\nx >= 2"), "x"));
}

TEST(LpForm, binaryWinsOverInteger) {
  EXPECT_EQ("0 <= x <= 1 binary", columnText(lp("min x\nbin\nx\ngen\nx"), "x"));
  EXPECT_EQ("0 <= x <= 1 binary", columnText(lp("min x\ngen\nx\nbin\nx"), "x"));
}

TEST(LpForm, sectionsAfterTheRowsInAnyOrderAndOften) {
  const auto model = lp("min x + y\nst\nx + y >= 1\ngen\nx\nbounds\nx <= 9\ngen y\nbounds\ny <= 8");
  EXPECT_EQ("0 <= x <= 9 integer", columnText(model, "x"));
  EXPECT_EQ("0 <= y <= 8 integer", columnText(model, "y"));
}

}  // namespace
