// MPS files, fixed and free, plain and packed.

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::columnNames;
using modelfiles::columnText;
using modelfiles::fileRefusal;
using modelfiles::rowNames;
using modelfiles::rowText;
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
  EXPECT_EQ("COST LIM1 LIM2 MYEQN RNGL RNGG RNGE", rowNames(model));
  EXPECT_EQ("XONE Y Z W V U", columnNames(model));
  EXPECT_EQ("1 XONE + 1 Y <= 4", rowText(model, "LIM1"));
  EXPECT_EQ("1 XONE + 1 V + 1 U >= 1", rowText(model, "LIM2"));
  EXPECT_EQ("-1 Y + 1 Z + 1 W = 7", rowText(model, "MYEQN"));
}

TEST_F(Mps, rightHandSideOfTheObjectiveIsItsConstantWithTheSignTurned) {
  EXPECT_EQ("min 1.5 XONE + 2 Y + -1 Z + -1 W + -10", rowText(read(kFixed), 0));
}

TEST_F(Mps, freeRowsBesideTheObjectiveAreDropped) {
  EXPECT_EQ("no row OTHER", rowText(read(kFixed), "OTHER"));
}

TEST_F(Mps, rangesMakeTwoSidedRows) {
  const auto model = read(kFixed);
  EXPECT_EQ("6.5 <= 1 Y <= 9", rowText(model, "RNGL"));
  EXPECT_EQ("9 <= 1 Y <= 11.5", rowText(model, "RNGG"));
  EXPECT_EQ("7 <= 1 Y <= 9", rowText(model, "RNGE"));
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
    ASSERT_EQ("", modelfiles::outputOf("gzip -kf '" + folder_.file("m.mps") + "' 2>&1"));
    const auto packed = lomu::readModelFile(folder_.file("m.mps.gz"), "");
    EXPECT_EQ(modelfiles::canonicalText(plain), modelfiles::canonicalText(packed));
  }
}

TEST_F(Mps, damagedPackedFileIsRefused) {
  const std::string file = write("m.mps.gz", "\x1F\x8B\x08 this is not packed");
  EXPECT_EQ(file + ":", fileRefusal(file).substr(0, file.size() + 1));
}

TEST_F(Mps, refusalIsThatOfTheFormatThatGotFarther) {
  std::string text = kFixed;
  text.replace(text.find(" UP BND       Y"), 3, " ZZ");
  EXPECT_EQ(folder_.file("m.mps") + ":34: invalid bound type in field 1",
            fileRefusal(write("m.mps", text)));
  text = kFree;
  text.replace(text.find(" MI b"), 3, " ZZ");
  EXPECT_EQ(folder_.file("m.mps") + ":11: invalid bound type in field 1",
            fileRefusal(write("m.mps", text)));
}

TEST_F(Mps, unknownSectionIsNamedWithWhatIsExpected) {
  const std::string file = write("m.mps", "NAME T\nOBJSENSE\n MAX\nROWS\n N c\n");
  EXPECT_EQ(file + ":2: invalid indicator record, expected ROWS, COLUMNS, RHS, RANGES, BOUNDS or " +
                "ENDATA",
            fileRefusal(file));
}

TEST_F(Mps, unknownRowIsNamedWithItsLine) {
  std::string text = kFree;
  text.replace(text.find("rhs limit[seville"), 9, "rhs limut");
  EXPECT_EQ(folder_.file("m.mps") + ":9: row 'limut[seville,oslo]' not found",
            fileRefusal(write("m.mps", text)));
}

TEST_F(Mps, nothingIsPrinted) {
  testing::internal::CaptureStdout();
  read(kFixed);
  fileRefusal(write("m.mps", "nonsense\n"));
  EXPECT_EQ("", testing::internal::GetCapturedStdout());
}

}  // namespace
