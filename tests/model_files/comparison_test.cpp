// LP files as another reader takes them: glpsol reads a text and writes the model as MPS, which has
// to be the model that our reader makes of the text. And the other way round for MPS files.

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_file.h"
#include "tests/model_files/model_text.h"
#include "tests/support/temp_folder.h"

namespace {

using modelfiles::canonicalText;

class Comparison : public testing::TestWithParam<std::string> {
 protected:
  ztbtest::TempFolder folder_;
};

TEST_P(Comparison, lpFileIsTakenAsGlpsolTakesIt) {
  const std::string file = folder_.file("m.lp");
  const std::string other = folder_.file("m.mps");
  modelfiles::writeFile(file, GetParam());
  const std::string log = modelfiles::outputOf(ZTB_GLPSOL " --lp '" + file +
                                               "' --check --wfreemps '" + other + "' 2>&1");
  ASSERT_NE(std::string::npos, log.find("Writing problem data")) << log;
  // MPS has no direction: glpsol writes a maximum as it is.
  auto expected = lomu::readModelFile(other, "");
  const auto model = lomu::readModelFile(file, "");
  expected.maximize = model.maximize;
  EXPECT_EQ(canonicalText(expected), canonicalText(model));
}

INSTANTIATE_TEST_SUITE_P(
    texts, Comparison,
    testing::Values(
        "Minimize\n cost: 3 x + 2 y - z\nSubject To\n c1: x + y >= 2\n"
        " c2: 2 x - 3.5 z <= 4\n c3: x + y + z = 7\nBounds\n -2 <= x <= 8\n y <= 4\n"
        " z free\nEnd\n",
        "max\n 1e1a+.5b\n - 2\n c\nst\n r(1): a +\n b +\n c <= 1.5E1\n r(2): a - b >= -3\n"
        " r(3): b - c <= 9\nbounds\n -inf <= a <= 4\n b >= -1.5\n c = 3\nend\n",
        "\\ kinds\nminimum\n obj: n + m + k + b\nsuch that\n one: n + 2 m >= 3.5\n"
        " two: m + k =< 9\n three: n - k => -2\nbounds\n n <= 12\n -5 <= m\n 3 <= k\n"
        "generals\n n m\nbinaries\n b\nend\n",
        "minimize\n obj: x\nst\n c: x + 0 y >= 1\nbounds\n x <= 1e31\nend\n"));

#ifdef ZTB_NETLIB
TEST(NetlibComparison, problemsReadFromMpsAndFromLpAreTheSame) {
  const ztbtest::TempFolder folder;
  // The other two have names that an LP file cannot hold.
  for (const std::string name : {"afiro", "israel", "scrs8", "stair"}) {
    const std::string file = std::string(ZTB_NETLIB) + "/" + name + ".mps";
    const std::string other = folder.file(name + ".lp");
    modelfiles::outputOf(ZTB_GLPSOL " --mps '" + file + "' --check --wlp '" + other + "' 2>&1");
    const bool same = canonicalText(lomu::readModelFile(other, "")) ==
                      canonicalText(lomu::readModelFile(file, ""));
    EXPECT_TRUE(same) << name;
  }
}

// Rows (with the objective), columns and entries as published with the problems; the entries count
// those of the objective.
TEST(NetlibComparison, sizesAreThePublishedOnes) {
  struct Size {
    const char* name;
    std::size_t rows, columns, entries;
  };
  for (const Size& size : {Size{"adlittle", 57, 97, 465}, Size{"afiro", 28, 32, 88},
                           Size{"israel", 175, 142, 2358}, Size{"scrs8", 491, 1169, 4029},
                           Size{"shell", 537, 1775, 4900}, Size{"stair", 357, 467, 3857}}) {
    const auto model = lomu::readModelFile(std::string(ZTB_NETLIB) + "/" + size.name + ".mps", "");
    EXPECT_EQ(size.rows, model.rows.size()) << size.name;
    EXPECT_EQ(size.columns, model.columns.size()) << size.name;
    EXPECT_EQ(size.entries, model.terms.size()) << size.name;
  }
}
#endif

}  // namespace
