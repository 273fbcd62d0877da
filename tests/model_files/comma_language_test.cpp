// Model files in a program that has set a language in which numbers have a comma.

#include "tests/support/comma_language.h"

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::rowText;
using modelfiles::writeFile;

class CommaLanguageTest : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& text) {
    const std::string file = folder_.file(name);
    writeFile(file, text);
    return file;
  }

  ztbtest::TempFolder folder_;
  ztbtest::CommaLanguage language_;
};

TEST_F(CommaLanguageTest, MathProgHasPointsInNumbers) {
  const auto model = lomu::readModelFile(
      write("m.mod",
            "param p;\nvar x >= 0.25;\nminimize o: 1.5 * x;\ns.t. c: p * x >= 0.5;\nend;\n"),
      write("m.dat", "data;\nparam p := 2.75;\nend;\n"));
  EXPECT_EQ(rowText(model, "c"), "2.75 x >= 0.5");
  EXPECT_EQ(rowText(model, 0), "min 1.5 x + 0");
  EXPECT_EQ(model.columns[0].lower, 0.25);
  EXPECT_TRUE(ztbtest::CommaLanguage::isSet());
}

TEST_F(CommaLanguageTest, LpAndMpsHavePointsInNumbers) {
  const auto lp = lomu::readModelFile(
      write("m.lp", "minimize\n o: 1.5 x\nsubject to\n c: 2.75 x >= 0.5\nend\n"), "");
  EXPECT_EQ(rowText(lp, "c"), "2.75 x >= 0.5");
  const auto mps = lomu::readModelFile(
      write("m.mps", "ROWS\n N o\n G c\nCOLUMNS\n x o 1.5 c 2.75\nRHS\n RHS c 0.5\nENDATA\n"), "");
  EXPECT_EQ(rowText(mps, "c"), "2.75 x >= 0.5");
}

}  // namespace
