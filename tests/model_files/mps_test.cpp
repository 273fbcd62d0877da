// MPS files, fixed and free, plain and packed.

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::columnNames;
using modelfiles::columnText;
using modelfiles::fileRefusal;
using modelfiles::notesText;
using modelfiles::rowNames;
using modelfiles::rowText;
using modelfiles::setText;
using modelfiles::writeFile;

// Positions: type 2-3, names 5-12 and 15-22, number 25-36, name 40-47, number 50-61.
const char* const kFixed =
    "NAME          SMALL\n"
    "ROWS\n"
    " N  COST\n"
    " N  OTHER\n"
    " L  LIM 1\n"
    " G  LIM2\n"
    " E  MYEQN\n"
    " L  RNGL\n"
    " G  RNGG\n"
    " E  RNGE\n"
    "COLUMNS\n"
    "    X ONE     COST               1.5   LIM 1              1.0\n"
    "    X ONE     LIM2               1.0   OTHER              9.0\n"
    "    Y         COST               2.0   LIM 1              1.0\n"
    "    Y         MYEQN             -1.0   RNGL               1.0\n"
    "    Y         RNGG               1.0   RNGE               1.0\n"
    "    M1        'MARKER'                 'INTORG'\n"
    "    Z         COST              -1.0   MYEQN              1.0\n"
    "    W         COST              -1.0   MYEQN              1.0\n"
    "    M2        'MARKER'                 'INTEND'\n"
    "    V         LIM2               1.0\n"
    "    U         LIM2               1.0\n"
    "RHS\n"
    "    RHS       LIM 1              4.0   LIM2               1.0\n"
    "    RHS       MYEQN              7.0   COST              10.0\n"
    "    RHS       RNGL               9.0   RNGG               9.0\n"
    "    RHS       RNGE               9.0\n"
    "RANGES\n"
    "    R         RNGL               2.5   RNGG               2.5\n"
    "    R         RNGE              -2.0\n"
    "BOUNDS\n"
    " UP BND       X ONE             -4.0\n"
    " LO BND       Y                 -1.0\n"
    " UP BND       Y                 1e30\n"
    " UP BND       W                 40.0\n"
    " FR BND       V\n"
    " FX BND       U                  2.5\n"
    "ENDATA\n";

const char* const kFree =
    "NAME SMALL\n"
    "ROWS\n"
    " N cost\n"
    " L limit[seville,oslo]\n"
    "COLUMNS\n"
    " ship[seville,oslo] cost 2 limit[seville,oslo] 1\n"
    " a_name_longer_than_eight cost 3\n"
    "RHS\n"
    " rhs limit[seville,oslo] 4 cost -7\n"
    "BOUNDS\n"
    " MI b a_name_longer_than_eight\n"
    " UP b a_name_longer_than_eight -1\n"
    "ENDATA\n";

class Mps : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string file = folder_.file(name);
    writeFile(file, text);
    return file;
  }
  lomu::ModelData read(const std::string& text) {
    return lomu::readModelFile(write("m.mps", text), "");
  }

  ztbtest::TempFolder folder_;
};

TEST_F(Mps, fixedLeavesBlanksInNamesOut) {
  const auto model = read(kFixed);
  EXPECT_EQ("COST OTHER LIM1 LIM2 MYEQN RNGL RNGG RNGE", rowNames(model));
  EXPECT_EQ("XONE Y Z W V U", columnNames(model));
  EXPECT_EQ("1 XONE + 1 Y <= 4", rowText(model, "LIM1"));
  EXPECT_EQ("1 XONE + 1 V + 1 U >= 1", rowText(model, "LIM2"));
  EXPECT_EQ("-1 Y + 1 Z + 1 W = 7", rowText(model, "MYEQN"));
}

TEST_F(Mps, rightHandSideOfTheObjectiveIsItsConstantWithTheSignTurned) {
  EXPECT_EQ("min 1.5 XONE + 2 Y + -1 Z + -1 W + -10", rowText(read(kFixed), 0));
}

TEST_F(Mps, freeRowsBesideTheObjectiveAreKept) {
  EXPECT_EQ("9 XONE free", rowText(read(kFixed), "OTHER"));
}

// With right-hand side 9 and range 2.5, or -2: <= goes down, >= goes up, = to the side of the sign.
TEST_F(Mps, rangesMakeTwoSidedRows) {
  const auto model = read(kFixed);
  EXPECT_EQ("6.5 <= 1 Y <= 9", rowText(model, "RNGL"));
  EXPECT_EQ("9 <= 1 Y <= 11.5", rowText(model, "RNGG"));
  EXPECT_EQ("7 <= 1 Y <= 9", rowText(model, "RNGE"));
}

std::string withRanges(const std::string& ranges) {
  return "ROWS\n N c\n L l\n G g\n E e\n E f\nCOLUMNS\n x c 1 l 1\n x g 1 e 1\n x f 1\nRHS\n l 9 g "
         "9\n"
         " e 9 f 9\nRANGES\n" +
         ranges + "ENDATA\n";
}

TEST_F(Mps, rangesCountBySizeButForEqualities) {
  const auto model = read(withRanges(" l -2 g -2\n e 2 f 0\n"));
  EXPECT_EQ("7 <= 1 x <= 9", rowText(model, "l"));
  EXPECT_EQ("9 <= 1 x <= 11", rowText(model, "g"));
  EXPECT_EQ("9 <= 1 x <= 11", rowText(model, "e"));
  EXPECT_EQ("1 x = 9", rowText(model, "f"));
}

TEST_F(Mps, rangesOfNothingAndWithoutEnd) {
  const auto model = read(withRanges(" l 0 g 1e30\n e 1e31 f -1e30\n"));
  EXPECT_EQ("1 x = 9", rowText(model, "l"));
  EXPECT_EQ("1 x >= 9", rowText(model, "g"));
  EXPECT_EQ("1 x >= 9", rowText(model, "e"));
  EXPECT_EQ("1 x <= 9", rowText(model, "f"));
}

TEST_F(Mps, rangeOfAFreeRowIsPassedOverWithANote) {
  const auto model = read(withRanges(" c 2\n"));
  EXPECT_EQ(folder_.file("m.mps") + ":15:4: the range of the free row \"c\" is passed over\n",
            notesText(model));
}

TEST_F(Mps, rangesMayComeBeforeRightHandSides) {
  const auto model =
      read("ROWS\n N c\n E e\nCOLUMNS\n x c 1 e 1\nRANGES\n r e -3\nRHS\n s e 5\nENDATA\n");
  EXPECT_EQ("2 <= 1 x <= 5", rowText(model, "e"));
}

TEST_F(Mps, negativeUpperBoundAloneFreesTheLowerBound) {
  EXPECT_EQ("-inf <= XONE <= -4", columnText(read(kFixed), "XONE"));
}

TEST_F(Mps, boundsAndKinds) {
  const auto model = read(kFixed);
  EXPECT_EQ("-1 <= Y <= inf", columnText(model, "Y"));
  EXPECT_EQ("0 <= Z <= 1 binary", columnText(model, "Z"));
  EXPECT_EQ("0 <= W <= 40 integer", columnText(model, "W"));
  EXPECT_EQ("-inf <= V <= inf", columnText(model, "V"));
  EXPECT_EQ("2.5 <= U <= 2.5", columnText(model, "U"));
}

TEST_F(Mps, freeWithLongNames) {
  const auto model = read(kFree);
  EXPECT_EQ("min 2 ship[seville,oslo] + 3 a_name_longer_than_eight + 7", rowText(model, 0));
  EXPECT_EQ("1 ship[seville,oslo] <= 4", rowText(model, "limit[seville,oslo]"));
  EXPECT_EQ("-inf <= a_name_longer_than_eight <= -1",
            columnText(model, "a_name_longer_than_eight"));
}

TEST_F(Mps, packedIsReadLikePlain) {
  for (const char* const text : {kFixed, kFree}) {
    const auto plain = read(text);
    modelfiles::packFile(folder_.file("m.mps"));
    const auto packed = lomu::readModelFile(folder_.file("m.mps.gz"), "");
    EXPECT_EQ(modelfiles::canonicalText(plain), modelfiles::canonicalText(packed));
  }
}

TEST_F(Mps, damagedPackedFileIsRefused) {
  const std::string file = write("m.mps.gz", "\x1F\x8B\x08 this is not packed");
  EXPECT_EQ(file + ":", fileRefusal(file).substr(0, file.size() + 1));
}

// A model of the columns a to f, with the lines of BOUNDS; c to f stand between markers.
std::string withBounds(const std::string& bounds) {
  return "ROWS\n N o\nCOLUMNS\n a o 1\n b o 1\n m 'MARKER' 'INTORG'\n c o 1\n d o 1\n e o 1\n f o "
         "1\n"
         " m 'MARKER' 'INTEND'\nBOUNDS\n" +
         bounds + "ENDATA\n";
}

TEST_F(Mps, boundsOfEveryType) {
  const auto bounds = [&](const std::string& lines) {
    return columnText(read(withBounds(lines)), "a");
  };
  EXPECT_EQ("0 <= a <= 4", bounds(" UP B a 4\n"));
  EXPECT_EQ("-4 <= a <= inf", bounds(" LO B a -4\n"));
  EXPECT_EQ("4 <= a <= 4", bounds(" FX B a 4\n"));
  EXPECT_EQ("-inf <= a <= inf", bounds(" FR B a\n"));
  EXPECT_EQ("-inf <= a <= inf", bounds(" MI B a\n"));
  EXPECT_EQ("0 <= a <= inf", bounds(" UP B a 4\n PL B a\n"));
  EXPECT_EQ("0 <= a <= 1 binary", bounds(" BV B a\n"));
  EXPECT_EQ("0 <= a <= 0 binary", bounds(" BV B a\n FX B a 0\n"));
  EXPECT_EQ("0 <= a <= 2 integer", bounds(" BV B a\n UP B a 2\n"));
  EXPECT_EQ("2 <= a <= inf integer", bounds(" LI B a 2\n"));
  EXPECT_EQ("0 <= a <= 7 integer", bounds(" UI B a 7\n"));
  EXPECT_EQ("0 <= a <= 7 or 0", bounds(" SC B a 7\n"));
  EXPECT_EQ("2 <= a <= inf or 0", bounds(" SC B a\n LO B a 2\n"));
  EXPECT_EQ("0 <= a <= inf or 0", bounds(" SC B a 0\n"));
  EXPECT_EQ("0 <= a <= 7 integer or 0", bounds(" SI B a 7\n"));
  EXPECT_EQ("-inf <= a <= inf", bounds(" LO B a -1e30\n UP B a Inf\n"));
  EXPECT_EQ("1500 <= a <= inf", bounds(" lo B a +1.5D+3\n")) << "as Fortran writes numbers";
}

TEST_F(Mps, boundsMayGoWithoutTheNameOfAVector) {
  const auto model = read(withBounds(" UP a 4\n FR b\n BV c\n SC d 9\n SC e\n"));
  EXPECT_EQ("0 <= a <= 4", columnText(model, "a"));
  EXPECT_EQ("-inf <= b <= inf", columnText(model, "b"));
  EXPECT_EQ("0 <= c <= 1 binary", columnText(model, "c"));
  EXPECT_EQ("0 <= d <= 9 integer or 0", columnText(model, "d"));
  EXPECT_EQ("0 <= e <= inf integer or 0", columnText(model, "e"));
}

TEST_F(Mps, negativeUpperBoundLeavesALowerOneThatIsGiven) {
  const auto model =
      read(withBounds(" UP B a -2\n LO B a 0\n LO B b 0\n UP B b -3\n UI B c -1\n UP B d -1\n"));
  EXPECT_EQ("0 <= a <= -2", columnText(model, "a"));
  EXPECT_EQ("0 <= b <= -3", columnText(model, "b"));
  EXPECT_EQ("-inf <= c <= -1 integer", columnText(model, "c"));
  EXPECT_EQ("-inf <= d <= -1 integer", columnText(model, "d"));
  EXPECT_EQ(folder_.file("m.mps") +
                ":17:9: the upper bound of \"c\" is below 0 and it has no lower one: taken as free "
                "below (and 1 more)\n",
            notesText(model));
}

TEST_F(Mps, integersBetweenMarkersEndAt1OnlyWithoutAnyBound) {
  const auto model = read(withBounds(" LO B d 2\n UP B e 9\n PL B f\n"));
  EXPECT_EQ("0 <= c <= 1 binary", columnText(model, "c"));
  EXPECT_EQ("2 <= d <= inf integer", columnText(model, "d"));
  EXPECT_EQ("0 <= e <= 9 integer", columnText(model, "e"));
  EXPECT_EQ("0 <= f <= inf integer", columnText(model, "f"));
}

TEST_F(Mps, theFirstVectorOfEachSectionCounts) {
  const auto model = read(
      "NAME T\nROWS\n N o\n L r\nCOLUMNS\n x o 1 r 1\nRHS\n A r 4\n B r 5\n B o 2\nRANGES\n C r "
      "1\n D r 2\n"
      "BOUNDS\n UP E x 3\n UP F x 2\nENDATA\n");
  EXPECT_EQ("3 <= 1 x <= 4", rowText(model, "r"));
  EXPECT_EQ("min 1 x + 0", rowText(model, 0));
  EXPECT_EQ("0 <= x <= 3", columnText(model, "x"));
  const std::string file = folder_.file("m.mps");
  EXPECT_EQ(
      file +
          ":9:2: the vector \"B\" of RHS is passed over: the first, \"A\", counts (and 1 more)\n" +
          file + ":13:2: the vector \"D\" of RANGES is passed over: the first, \"C\", counts\n" +
          file + ":16:5: the vector \"F\" of BOUNDS is passed over: the first, \"E\", counts\n",
      notesText(model));
}

TEST_F(Mps, aColumnMayStandInTwoBlocks) {
  const auto model =
      read("ROWS\n N o\n L r\nCOLUMNS\n x o 1\n y r 1\n x r 2\nRHS\n R r 4\nENDATA\n");
  EXPECT_EQ("x y", columnNames(model));
  EXPECT_EQ("2 x + 1 y <= 4", rowText(model, "r"));
  EXPECT_EQ(
      folder_.file("m.mps") + ":7:2: the column \"x\" stands in two blocks, which are added\n",
      notesText(model));
}

TEST_F(Mps, coefficientsOfTheSecondBlockGoToItsColumn) {
  const auto model =
      read("ROWS\n N o\n L r\n L s\nCOLUMNS\n x o 1\n y r 1\n x r 2\n x s 3\nRHS\nENDATA\n");
  EXPECT_EQ("3 x <= 0", rowText(model, "s"));
}

TEST_F(Mps, directionOfTheObjective) {
  const auto maximizes = [&](const std::string& section) {
    return read("NAME T\n" + section + "ROWS\n N o\nCOLUMNS\n x o 1\nENDATA\n").maximize;
  };
  EXPECT_TRUE(maximizes("OBJSENSE\n    MAX\n"));
  EXPECT_TRUE(maximizes("OBJSENSE\n    maximize\n"));
  EXPECT_TRUE(maximizes("OBJSENSE MAX\n"));
  EXPECT_TRUE(maximizes("OBJSENSE MAXIMISE\n"));
  EXPECT_FALSE(maximizes("OBJSENSE\n MIN\n"));
  EXPECT_FALSE(maximizes("OBJSENSE minimize\n"));
  EXPECT_FALSE(maximizes(""));
}

TEST_F(Mps, objectiveByName) {
  const auto model =
      read("OBJNAME\n second\nROWS\n N first\n N second\nCOLUMNS\n x first 1 second 2\nENDATA\n");
  EXPECT_EQ("second first", rowNames(model));
  EXPECT_EQ("min 2 x + 0", rowText(model, 0));
  EXPECT_EQ(folder_.file("m.mps") + ": there is no free row \"z\", which OBJNAME names",
            fileRefusal(write("m.mps", "OBJNAME z\nROWS\n N a\nCOLUMNS\n x a 1\nENDATA\n")));
}

TEST_F(Mps, withoutAFreeRowTheObjectiveIsEmpty) {
  const auto model =
      read("ROWS\n L objective\nCOLUMNS\n x objective 1\nRHS\n r objective 4\nENDATA\n");
  EXPECT_EQ("objective_ objective", rowNames(model));
  EXPECT_EQ("min  + 0", rowText(model, 0));
  EXPECT_EQ("1 x <= 4", rowText(model, "objective"));
}

TEST_F(Mps, infiniteRightHandSidesFreeARow) {
  const auto model =
      read("ROWS\n N o\n L l\n G g\nCOLUMNS\n x l 1 g 1\nRHS\n l 1e30 g -1e31\nENDATA\n");
  EXPECT_EQ("1 x free", rowText(model, "l"));
  EXPECT_EQ("1 x free", rowText(model, "g"));
}

TEST_F(Mps, commentsAndEmptyLines) {
  const auto model = read(
      "* top\n\nNAME\n  \t\r\nROWS\r\n N o\n* between\n L $r\nCOLUMNS\n x o 1 $ remark\n y $r 2 o "
      "1\n"
      "RHS\nENDATA\n");
  EXPECT_EQ("min 1 x + 1 y + 0", rowText(model, 0));
  EXPECT_EQ("2 y <= 0", rowText(model, "$r"));
}

TEST_F(Mps, commentsOfManyWordsBehindNamesOfEverySection) {
  const auto model = read(
      "ROWS\n N o $ what it costs, in all, of what is made\n L r $ a b c d e f g h\n"
      "COLUMNS\n x o 1 r 1 $ of the two which are there the first\n y o 1\n"
      "RHS\n v r 4 $ at most\nRANGES\n v r 3 $ from 1 on\n"
      "BOUNDS\n UP v x 9 $ nine\n FR y $ free\nENDATA\n");
  EXPECT_EQ("1 <= 1 x <= 4", rowText(model, "r"));
  EXPECT_EQ("0 <= x <= 9", columnText(model, "x"));
  EXPECT_EQ("-inf <= y <= inf", columnText(model, "y"));
}

TEST_F(Mps, whatALineLeavesOutIsThatOfTheLineBefore) {
  const std::string free =
      "ROWS\n N o\n L r\n G s\nCOLUMNS\n x o 1 r 2\n s 3\n y o 4\n r 5 s 6\nRHS\n A r 7\n s 1\n"
      "BOUNDS\n UP B x 8\n UP y 9\nENDATA\n";
  const std::string fixed =
      "ROWS\n N  o\n L  r\n G  s\n"
      "COLUMNS\n"
      "    x 1       o                  1.0   r                  2.0\n"
      "              s                  3.0\n"
      "    y         o                  4.0\n"
      "              r                  5.0   s                  6.0\n"
      "RHS\n"
      "    A         r                  7.0\n"
      "              s                  1.0\n"
      "BOUNDS\n"
      " UP B         x 1                8.0\n"
      " UP           y                  9.0\n"
      "ENDATA\n";
  for (const std::string& x : {std::string("x"), std::string("x1")}) {
    const auto model = read(x == "x" ? free : fixed);
    EXPECT_EQ("min 1 " + x + " + 4 y + 0", rowText(model, 0));
    EXPECT_EQ("2 " + x + " + 5 y <= 7", rowText(model, "r"));
    EXPECT_EQ("3 " + x + " + 6 y >= 1", rowText(model, "s"));
    EXPECT_EQ("0 <= " + x + " <= 8", columnText(model, x));
    EXPECT_EQ("0 <= y <= 9", columnText(model, "y"));
    EXPECT_EQ("", notesText(model));
  }
}

TEST_F(Mps, whatStandsBehindTheEndIsPassedOverWithANote) {
  EXPECT_EQ(folder_.file("m.mps") + ":7:1: what stands behind ENDATA is passed over\n",
            notesText(read("ROWS\n N o\nCOLUMNS\n x o 1\nENDATA\n\nrubbish\n")));
}

// 3 x^2 + 2 x y, written as x Q x / 2 with one triangle of Q, and with all of it.
TEST_F(Mps, quadraticObjectives) {
  const std::string head = "ROWS\n N o\n L r\nCOLUMNS\n x o 1 r 1\n y r 1\nRHS\n r r 4\n";
  const std::string expected = "min 1 x + 3 x*x + 2 x*y + 0";
  EXPECT_EQ(expected, rowText(read(head + "QUADOBJ\n x x 6\n x y 2\nENDATA\n"), 0));
  EXPECT_EQ(expected, rowText(read(head + "QSECTION\n x x 6\n x y 2\nENDATA\n"), 0));
  EXPECT_EQ(expected, rowText(read(head + "QSECTION o\n x x 6\n x y 2\nENDATA\n"), 0));
  EXPECT_EQ(expected, rowText(read(head + "QMATRIX\n x x 6\n x y 2\n y x 2\nENDATA\n"), 0));
}

// x^2 + 4 x y in a row: all of Q, which is not halved.
TEST_F(Mps, quadraticRows) {
  const auto model = read(
      "ROWS\n N o\n L r\nCOLUMNS\n x o 1 r 1\n y r 1\nRHS\n r r 4\nQCMATRIX r\n x x 1\n x y 2\n y "
      "x 2\n"
      "ENDATA\n");
  EXPECT_EQ("1 x + 1 x*x + 4 x*y + 1 y <= 4", rowText(model, "r"));
}

TEST_F(Mps, specialOrderedSets) {
  const std::string head =
      "ROWS\n N o\nCOLUMNS\n x o 1\n y o 1\n S1 o 1\nRHS\nBOUNDS\n UP B x 1\nSOS\n";
  const auto model = read(
      head + " S1 SOS one\n SOS x 3\n SOS y 1\n S2 two\n x 1\n S1 2\n S1 three 5\n y 1\nENDATA\n");
  ASSERT_EQ(3U, model.sets.size());
  EXPECT_EQ("one: S1 :: x:3 y:1", setText(model, 0));
  EXPECT_EQ("two: S2 :: x:1 S1:2", setText(model, 1));
  EXPECT_EQ("three: S1 :: y:1", setText(model, 2));
}

TEST_F(Mps, membersOfSetsWithoutAWeightAreInTheirOrder) {
  const std::string head = "ROWS\n N o\nCOLUMNS\n x o 1\n y o 1\n z o 1\nRHS\nSOS\n";
  const auto model = read(head + " S2 SOS one\n SOS z\n SOS x\n SOS y\n S1 two\n y\n x\nENDATA\n");
  EXPECT_EQ("one: S2 :: z:1 x:2 y:3", setText(model, 0));
  EXPECT_EQ("two: S1 :: y:1 x:2", setText(model, 1));
  std::string text = kFixed;
  text.insert(text.find("ENDATA"),
              "SOS\n S2 SOS       MY SET\n    SOS       Y\n    SOS       X ONE\n");
  EXPECT_EQ("MYSET: S2 :: Y:1 XONE:2", setText(read(text), 0));
}

TEST_F(Mps, namesThatDifferByBlanksAloneAreRefused) {
  for (const std::string name : {"XONE", "XO NE"}) {
    std::string text = kFixed;
    const std::string old = "    X ONE     LIM2 ";
    text.replace(text.find(old), old.size(),
                 "    " + name + std::string(10 - name.size(), ' ') + "LIM2 ");
    const std::string file = write("m.mps", text);
    EXPECT_EQ(file + ":13:5: found \"" + name +
                  "\", expected a name that differs from \"X ONE\" by more than blanks",
              fileRefusal(file));
  }
}

TEST_F(Mps, specialOrderedSetsInFixedFormat) {
  std::string text = kFixed;
  text.insert(text.find("ENDATA"),
              "SOS\n S2 SOS       MY SET\n    SOS       X ONE              1.0\n"
              "    SOS       Y                  2.0\n");
  const auto model = read(text);
  ASSERT_EQ(1U, model.sets.size());
  EXPECT_EQ("MYSET: S2 :: XONE:1 Y:2", setText(model, 0));
}

struct MpsCase {
  std::string name;
  std::string text;
  std::string refusal;
};

class MpsRefusal : public testing::TestWithParam<MpsCase> {
 protected:
  ztbtest::TempFolder folder_;
};

TEST_P(MpsRefusal, namesPlaceAndExpectation) {
  const std::string file = folder_.file("m.mps");
  writeFile(file, GetParam().text);
  EXPECT_EQ(file + ":" + GetParam().refusal, fileRefusal(file));
}

// Five lines; the text of a case goes on with the sixth.
const std::string kHead = "ROWS\n N o\n L r\nCOLUMNS\n x o 1 r 1\n";

const MpsCase kRefusals[] = {
    {"unknownSection", "NAME T\nLAZYCONS\n",
     "2:1: found \"LAZYCONS\", expected a section: NAME, OBJSENSE, OBJNAME, ROWS, COLUMNS, RHS, "
     "RANGES, "
     "BOUNDS, SOS, QUADOBJ, QMATRIX, QSECTION, QCMATRIX or ENDATA"},
    {"noEnd", kHead + "RHS\n", "7:1: found the end of the file, expected ENDATA"},
    {"dataWithoutSection", " x o 1\n",
     "1:2: found \"x\", expected a section such as ROWS, in the first column"},
    {"noDirection", "OBJSENSE\n up\n", "2:2: found \"up\", expected MAX or MIN"},
    {"rowType", "ROWS\n D r\n", "2:2: found \"D\", expected the type of a row: N, E, L or G"},
    {"rowWithoutName", "ROWS\n N\n", "2:3: found the end of the line, expected the name of a row"},
    {"rowTwice", "ROWS\n N o\n L o\n",
     "3:4: the row name \"o\" stands twice, expected another one"},
    {"behindARow", "ROWS\n N o p\n", "2:6: found \"p\", expected the end of the line"},
    {"columnAlone", kHead + " y\n", "6:3: found the end of the line, expected the name of a row"},
    {"unknownRow", kHead + " y s 1\n", "6:4: there is no row \"s\", expected one of ROWS"},
    {"noNumber", kHead + " y r\n", "6:5: found the end of the line, expected a number"},
    {"badNumber", kHead + " y o 1 r 1x\n", "6:10: found \"1x\", expected a number"},
    {"notANumber", kHead + " y r nan\n", "6:6: found \"nan\", expected a number"},
    {"infiniteCoefficient", kHead + " y r 1e30\n",
     "6:6: the number \"1e30\" is out of range, expected a size below 1e30"},
    {"numberOutOfRange", kHead + " y r 1e400\n",
     "6:6: the number \"1e400\" is out of range, expected a size from 2.3e-308 to 1.7e308"},
    {"marker", kHead + " m 'MARKER' 'ORG'\n",
     "6:13: found \"'ORG'\", expected 'INTORG' or 'INTEND'"},
    {"sixFields", kHead + " y r 1 o 1 r 1\n", "6:12: found \"r\", expected the end of the line"},
    {"rhsAlone", kHead + "RHS\n r\n",
     "7:3: found the end of the line, expected a row and a number"},
    {"infiniteRhs", kHead + "RHS\n b r -1e30\n",
     "7:6: row \"r\" has an infinite number where no value satisfies it, expected a size below "
     "1e30"},
    {"infiniteConstant", kHead + "RHS\n b o 1e30\n",
     "7:6: the number \"1e30\" is out of range, expected a size below 1e30"},
    {"boundType", kHead + "BOUNDS\n ZZ b x 1\n",
     "7:2: found \"ZZ\", expected the type of a bound: UP, LO, FX, FR, MI, PL, BV, LI, UI, SC or "
     "SI"},
    {"unknownColumn", kHead + "BOUNDS\n UP b y 1\n",
     "7:7: there is no column \"y\", expected one of COLUMNS"},
    {"boundWithoutNumber", kHead + "BOUNDS\n UP x\n",
     "7:6: found the end of the line, expected a number"},
    {"boundWithoutColumn", kHead + "BOUNDS\n FR\n",
     "7:4: found the end of the line, expected the name of a column"},
    {"infiniteLower", kHead + "BOUNDS\n LO b x 1e30\n",
     "7:9: the lower bound of \"x\" is infinite on the wrong side, expected a value that can be "
     "reached"},
    {"infiniteUpper", kHead + "BOUNDS\n UP b x -inf\n",
     "7:9: the upper bound of \"x\" is infinite on the wrong side, expected a value that can be "
     "reached"},
    {"memberWithoutSet", kHead + "SOS\n x 1\n",
     "7:2: found \"x\", expected S1 or S2 and the name of a set"},
    {"setWithoutName", kHead + "SOS\n S1\n",
     "7:4: found the end of the line, expected the name of the set"},
    {"memberTwice", kHead + "SOS\n S1 s\n x 1\n x 2\n",
     "9:2: the column \"x\" or its weight stands twice in set \"s\", expected columns with weights "
     "that order them"},
    {"productOfUnknown", kHead + "QUADOBJ\n x y 1\n",
     "7:4: there is no column \"y\", expected one of COLUMNS"},
    {"matrixOfNoRow", kHead + "QCMATRIX\n x x 1\n",
     "6:9: found the end of the line, expected the name of a row"},
    {"controlByte", "ROWS\n N o\x01\n", "2:5: a byte of value 1, expected text"},
    {"longName", "ROWS\n N " + std::string(256, 'o') + "\n",
     "2:4: a field of 256 characters, expected at most 255"},
};
INSTANTIATE_TEST_SUITE_P(texts, MpsRefusal, testing::ValuesIn(kRefusals),
                         [](const testing::TestParamInfo<MpsCase>& tested) {
                           return tested.param.name;
                         });

// A text that is no file of either format is refused as the one that it was read farther as.
TEST_F(Mps, refusalIsThatOfTheFormatThatGotFarther) {
  std::string text = kFixed;
  text.replace(text.find(" UP BND       Y"), 3, " ZZ");
  EXPECT_EQ(
      folder_.file("m.mps") +
          ":34:2: found \"ZZ\", expected the type of a bound: UP, LO, FX, FR, MI, PL, BV, LI, "
          "UI, SC or SI",
      fileRefusal(write("m.mps", text)));
}

TEST_F(Mps, fixedFormatHasItsColumns) {
  std::string text = kFixed;
  text.replace(text.find("    Y         MYEQN             -1.0   RNGL               1.0"), 14,
               "    Y        ");
  EXPECT_EQ(folder_.file("m.mps") + ":15:14: found \"MYEQN",
            fileRefusal(write("m.mps", text)).substr(0, folder_.file("m.mps").size() + 20));
}

TEST_F(Mps, aLineMayBeLongerThanABlock) {
  const std::string blanks(600000, ' ');
  EXPECT_EQ("min 1 x + 0", rowText(read("ROWS\n N o\nCOLUMNS\n x" + blanks + "o 1\nENDATA\n"), 0));
  const std::string file = write("m.mps", "ROWS\n N o" + blanks + blanks + "p\n");
  EXPECT_EQ(file + ":2:1: a line of more than 1048576 bytes, expected a shorter one",
            fileRefusal(file));
}

// More than one block of the reader.
TEST_F(Mps, longFiles) {
  std::string text = "ROWS\n N o\n G r\nCOLUMNS\n";
  for (int j = 0; j < 40000; ++j)
    text += " x" + std::to_string(j) + " o 1 r " + std::to_string(j) + "\n";
  const auto model = read(text + "RHS\n b r 7\nENDATA\n");
  ASSERT_EQ(40000U, model.columns.size());
  ASSERT_EQ(80000U, model.terms.size());
  for (std::size_t j = 0; j < 40000; ++j) {
    ASSERT_EQ("x" + std::to_string(j), model.columns[j].name);
    ASSERT_EQ(static_cast<double>(j), model.terms[2 * j + 1].value);
  }
}

TEST_F(Mps, nothingIsPrinted) {
  ztbtest::StdoutCapture output;
  read(kFixed);
  fileRefusal(write("m.mps", "nonsense\n"));
  EXPECT_EQ("", output.text());
}

}  // namespace
