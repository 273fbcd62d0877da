// What the LP reader refuses, with the line and the column of the file.

#include <gtest/gtest.h>

#include <string>

#include "tests/model_files/model_text.h"

namespace {

using modelfiles::lpRefusal;

struct Case {
  std::string name;
  std::string text;
  std::string refusal;
};

class LpRefusal : public testing::TestWithParam<Case> {};

TEST_P(LpRefusal, namesPlaceAndExpectation) {
  EXPECT_EQ("m.lp:" + GetParam().refusal, lpRefusal(GetParam().text));
}

std::string caseName(const testing::TestParamInfo<Case>& tested) {
  return tested.param.name;
}

const Case kSections[] = {
    {"noObjective", "\n st\nx >= 1\n", "2:2: found \"st\", expected Minimize or Maximize first"},
    {"nothing", "\\ only a comment\n\n",
     "3:1: found the end of the file, expected Minimize or Maximize first"},
    {"secondObjective", "min x\nst\nc: x >= 1\nmax x\n",
     "4:1: found \"max\", expected one objective only"},
    {"secondRows", "min x\nst\nx >= 1\nsubject to\nx <= 2\n",
     "4:1: found \"subject\", expected one section of rows only"},
    {"noEnd", "min x\nst\nx >= 1\n",
     "4:1: found the end of the file, expected another section or End: the file is cut off"},
    {"labelEnd", "min x\nst\nend: x >= 1",
     "3:12: found the end of the file, expected another section or End: the file is cut off"},
    {"semiWithoutContinuous", "min x\nsemi-definite\nx\nend\n",
     "2:6: found \"definite\", expected Semi-Continuous"},
    {"lazy", "min x\nst\nx <= 1\nLazy Constraints\n",
     "4:1: a section \"Lazy\" is not supported, expected Subject To, Bounds, Generals, Binaries, "
     "Semi-Continuous, SOS or End"},
    {"userCuts", "min x\nuser cuts\n",
     "2:1: a section \"user\" is not supported, expected Subject To, Bounds, Generals, Binaries, "
     "Semi-Continuous, SOS or End"},
    {"generalConstraints", "min x\ngeneral constraints\n",
     "2:1: a section \"general\" is not supported, expected Subject To, Bounds, Generals, "
     "Binaries, "
     "Semi-Continuous, SOS or End"},
    {"multipleObjectives", "minimize multi-objectives\n",
     "1:1: a section \"minimize\" is not supported, expected Subject To, Bounds, Generals, "
     "Binaries, "
     "Semi-Continuous, SOS or End"},
    {"indicator", "min x\nst\nc: b = 1 -> x <= 3\n",
     "3:10: \"->\": rows under a condition are not supported"},
};
INSTANTIATE_TEST_SUITE_P(sections, LpRefusal, testing::ValuesIn(kSections), caseName);

const Case kSums[] = {
    {"twoNames", "min\n x y\n", "2:4: found \"y\", expected \"+\", \"-\" or the end of the sum"},
    {"twoNumbers", "min 2 3 x\n", "1:7: found \"3\", expected \"+\", \"-\" or the end of the sum"},
    {"signAtTheEnd", "min x +\nst\nx >= 1\n",
     "2:1: found \"st\", expected a number, a name or a bracket after the sign"},
    {"starWithoutName", "min 3 * 4\n",
     "1:9: found \"4\", expected the name of a variable after \"*\""},
    {"relationInObjective", "min x\n >= 4\n",
     "2:2: found \">=\", expected \"+\", \"-\" or a section such as Subject To after the "
     "objective"},
    {"infiniteConstant", "min x - inf\n",
     "1:5: the constant of the objective is infinite, expected a size below 1e30"},
    {"hugeCoefficient", "min 1e30 x\n",
     "1:5: the coefficient 1e30 is out of range, expected a size below 1e30"},
    {"numberOutOfRange", "min x\nst\nx <= 1e400\n",
     "3:6: the number 1e400 is out of range, expected a size from 2.3e-308 to 1.7e308"},
    {"pointAlone", "min . x\n", "1:5: a point without digits, expected a number"},
    {"bracketAlone", "min (x)\n",
     "1:5: \"(\" without a name right before it, expected a name or a number"},
    {"controlByte", "min x\n\x01", "2:1: a byte of value 1, expected text"},
    {"zeroByte", std::string("min x\n") + '\0', "2:1: a byte of value 0, expected text"},
};
INSTANTIATE_TEST_SUITE_P(sums, LpRefusal, testing::ValuesIn(kSums), caseName);

const Case kRows[] = {
    {"noRelation", "min x\nst\nc: x + y\nd: x <= 1\n",
     "4:1: found \"d\", expected \"<=\", \">=\" or \"=\""},
    {"noLeftSide", "min x\nst\n<= 3\n",
     "3:1: found \"<=\", expected a number, a name or a bracket"},
    {"noRightSide", "min x\nst\nx >=\nend\n",
     "4:1: found \"end\", expected a number, a name or a bracket"},
    {"labelAsRightSide", "min x\nst\nc: x >= d: 4\n",
     "3:9: found \"d\", expected a number, a name or a bracket"},
    {"sameName", "min x\nst\nc: x >= 1\n\nc: x <= 2\n",
     "5:1: the row name \"c\" stands in line 3 already, expected another one"},
    {"nameOfTheObjective", "min c: x\nst\nc: x >= 1\n",
     "3:1: the row name \"c\" stands in line 1 already, expected another one"},
    {"relationsApart", "min x\nst\nc: 1 <= x\n >= 3\n",
     "4:2: the two relations of row \"c\" do not go together, expected two \"<=\" or two \">=\""},
    {"twoEqualities", "min x\nst\nc: 1 = x = 1\n",
     "3:10: the two relations of row \"c\" do not go together, expected two \"<=\" or two \">=\""},
    {"outerSideNoNumber", "min x\nst\nc: y <= x <= 3\n",
     "3:11: a second relation in row \"c\", whose first and last side are not both numbers; "
     "expected "
     "such as -3 <= x + y <= 5, or a label before a new row"},
    {"infiniteEquality", "min x\nst\nc: x = inf\n",
     "3:1: row \"c\" has an infinite number where no value satisfies it, expected a size below "
     "1e30"},
    {"infiniteWrongSide", "min x\nst\nc: x >= 1e30\n",
     "3:1: row \"c\" has an infinite number where no value satisfies it, expected a size below "
     "1e30"},
    {"infinitiesApart", "min x\nst\nc: x + inf <= inf\n",
     "3:1: row \"c\" has an infinite number where no value satisfies it, expected a size below "
     "1e30"},
};
INSTANTIATE_TEST_SUITE_P(rows, LpRefusal, testing::ValuesIn(kRows), caseName);

const Case kBrackets[] = {
    {"notHalved", "min [ x^2 ]\nst\n",
     "2:1: found \"st\", expected \"/ 2\" after a bracket of the objective"},
    {"divisorNot2", "min [ x^2 ] / 3\n", "1:15: found \"3\", expected 2 after the \"/\""},
    {"halvedInARow", "min x\nst\n[ x^2 ]/2 <= 3\n",
     "3:8: found \"/\", expected no \"/\": brackets are halved in the objective only"},
    {"coefficient", "min 3 [ x^2 ]/2\n",
     "1:7: found \"[\", expected \"+\", \"-\" or a name; a bracket takes no coefficient"},
    {"linearTerm", "min [ x + y^2 ] / 2\n",
     "1:9: found \"+\", expected \"^ 2\" or \"*\": within a bracket stand squares and products"},
    {"cube", "min [ x ^ 3 ] / 2\n", "1:11: found \"3\", expected 2, the only power there is"},
    {"numberAsFactor", "min [ x * 3 ] / 2\n", "1:11: found \"3\", expected the name of a variable"},
    {"empty", "min [ ] / 2\n", "1:7: found \"]\", expected the name of a variable"},
    {"notClosed", "min\n[ x^2\n\nst\n",
     "4:1: found \"st\", expected \"+\", \"-\" or the \"]\" of the bracket opened in line 2"},
    {"outside", "min x ^ 2\n",
     "1:7: found \"^\", expected products and squares within a bracket only, as in [ x ^ 2 ]"},
    {"productOutside", "min 2 x * y\n",
     "1:9: found \"*\", expected products and squares within a bracket only, as in [ x ^ 2 ]"},
};
INSTANTIATE_TEST_SUITE_P(brackets, LpRefusal, testing::ValuesIn(kBrackets), caseName);

const Case kNames[] = {
    {"bracketNotClosed", "min x\n + x[a,b\n",
     "2:9: the bracket in the name \"x[a,b\" is not closed, expected \"]\" on the same line"},
    {"bracketOfOtherKind", "min x[a)\n", "1:8: the name \"x[a\" ends with \")\", expected \"]\""},
    {"quoteNotClosed", "min x['a]\n",
     "1:10: the quote in the name \"x['a]\" is not closed, expected it closed on the same line"},
    {"blankInBracket", "min x[a, b]\n",
     "1:9: a blank in the name \"x[a,\", expected none but between quotes in its bracket"},
    {"tooLong", "min " + std::string(256, 'n'),
     "1:5: the name \"" + std::string(60, 'n') + "...\" has 256 characters, expected at most 255"},
};
INSTANTIATE_TEST_SUITE_P(names, LpRefusal, testing::ValuesIn(kNames), caseName);

const Case kBounds[] = {
    {"numberAsInteger", "min x\nbin\n 3\n", "3:2: found \"3\", expected the name of a variable"},
    {"noValue", "min x\nbounds\nx <= x\n",
     "3:6: found \"x\", expected a number or infinity as bound"},
    {"noRelation", "min x\nbounds\nx 3\n", "3:3: found \"3\", expected \"<=\", \">=\" or \"=\""},
    {"coefficient", "min x\nbounds\n2 x <= 3\n",
     "3:3: found \"x\", expected \"<=\", \">=\" or \"=\""},
    {"infiniteLower", "min x\nbounds\nx >= inf\n",
     "3:6: the lower bound of \"x\" is infinite on the wrong side, expected a value that can be "
     "reached"},
    {"infiniteUpper", "min x\nbounds\nx <= -1e30\n",
     "3:6: the upper bound of \"x\" is infinite on the wrong side, expected a value that can be "
     "reached"},
    {"relationsApart", "min x\nbounds\n4 <= x >= 3\n",
     "3:8: the two relations of the bound do not go together, expected two \"<=\" or two \">=\""},
};
INSTANTIATE_TEST_SUITE_P(bounds, LpRefusal, testing::ValuesIn(kBounds), caseName);

const Case kSets[] = {
    {"noKind", "min x\nsos\ns: x : 1\nend\n",
     "3:4: found \"x\", expected S1 :: or S2 :: before the members"},
    {"otherKind", "min x\nsos\ns: S3 :: x : 1\nend\n",
     "3:4: found \"S3\", expected S1 :: or S2 ::"},
    {"kindOfAnotherSection", "min x\nsos1\ns: S2 :: x : 1\nend\n",
     "3:4: found \"S2\", expected S1 ::"},
    {"memberWithoutSet", "min x\nsos\n x : 1\nend\n",
     "3:2: found \"x\", expected S1 :: or S2 :: before the members"},
    {"noWeight", "min x\nsos2\ns: x : 1 x :\nend\n",
     "4:1: found \"end\", expected the weight, a number"},
    {"noColon", "min x\nsos2\nx 1\nend\n", "3:3: found \"1\", expected \":\""},
    {"noWord", "min x\nsos2\n1\nend\n",
     "3:1: found \"1\", expected the name of a set or a variable"},
    {"unknownMember", "min x\nsos2\ny : 1\nend\n",
     "3:1: \"y\" is no variable so far, expected one that stands before"},
    {"infiniteWeight", "min x\nsos2\nx : 1e30\nend\n",
     "3:1: the weight of \"x\" is infinite, expected a size below 1e30"},
    {"twice", "min x + y\nsos2\nx : 1 y : 1\nend\n",
     "3:7: \"y\" or its weight stands twice in the set, expected columns with weights that order "
     "them"},
};
INSTANTIATE_TEST_SUITE_P(sets, LpRefusal, testing::ValuesIn(kSets), caseName);

}  // namespace
