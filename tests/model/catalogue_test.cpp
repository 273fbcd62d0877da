// The solver catalogue file.
#include "providers/model/catalogue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_error.h"

namespace {

using lomu::Catalogue;
using lomu::ModelError;
using testing::ElementsAre;

std::string refusal(const std::string& text) {
  try {
    Catalogue::parse(text, "cat.txt", "/dir/");
  } catch (const ModelError& error) {
    return error.what();
  }
  return "";
}

TEST(Catalogue, ReadsRowsBetweenCommentsAndEmptyLines) {
  const Catalogue catalogue = Catalogue::parse(
      "# solvers\n\nclp LP yes libc.so # the simplex\r\n  Own\tLP,MIQP   no  /opt/libo.so",
      "cat.txt", "/dir/");
  ASSERT_EQ(catalogue.rows().size(), 2U);
  EXPECT_EQ(catalogue.row(1)->name, "clp");
  EXPECT_EQ(catalogue.row(1)->library, "/dir/libc.so");
  EXPECT_TRUE(catalogue.row(1)->inPlace);
  EXPECT_THAT(catalogue.row(2)->kinds, ElementsAre("LP", "MIQP"));
  EXPECT_EQ(catalogue.row(2)->library, "/opt/libo.so");
  EXPECT_FALSE(catalogue.row(2)->inPlace);
  EXPECT_EQ(catalogue.row(0), nullptr);
  EXPECT_EQ(catalogue.row(3), nullptr);
}

TEST(Catalogue, NamesTheLineOfWhatItRefuses) {
  EXPECT_EQ(refusal("clp LP yes\n"),
            "cat.txt:1: a row has a name, kinds, in-place and a library, this one has 3 words");
  EXPECT_EQ(refusal("# one\nclp LP yes a b\n"),
            "cat.txt:2: a row has a name, kinds, in-place and a library, this one has 5 words");
  EXPECT_EQ(refusal("clp lp yes a\n"),
            "cat.txt:1: \"lp\" is no kind of model; kinds are LP, MIP, QP, MIQP");
  for (const char* kinds : {",", "LP,", ",LP", "LP,,MIP"}) {
    EXPECT_EQ(refusal("clp " + std::string(kinds) + " yes a\n"),
              "cat.txt:1: \"\" is no kind of model; kinds are LP, MIP, QP, MIQP")
        << kinds;
  }
  EXPECT_EQ(refusal("clp LP maybe a\n"), "cat.txt:1: in-place is \"yes\" or \"no\", not \"maybe\"");
  EXPECT_EQ(refusal("clp LP yes a\nglpk LP no b\nCLP LP yes c"),
            "cat.txt:3: solver \"CLP\" stands twice");
  EXPECT_EQ(refusal("clp LP yes " + std::string(5000, 'a')),
            "cat.txt:1: the row has more than 4096 bytes");
  EXPECT_EQ(refusal("# nothing\n"), "cat.txt: the solver catalogue names no solver");
}

TEST(Catalogue, AFileThatIsMissingIsNamed) {
  try {
    Catalogue::read("no/such/file", "");
    FAIL();
  } catch (const ModelError& error) {
    EXPECT_STREQ(error.what(), "no/such/file: the solver catalogue cannot be read or is empty");
  }
}

TEST(Catalogue, ASolverWithoutItsLibraryOnlyDropsOut) {
  const Catalogue catalogue =
      Catalogue::parse("gone LP yes libgone.so\nother LP no libc.so.6\n", "cat.txt", "/no/such/");
  EXPECT_EQ(catalogue.number("gone"), 0);
  EXPECT_EQ(catalogue.number("unknown"), 0);
  EXPECT_EQ(catalogue.rows().size(), 2U);
}

TEST(Catalogue, NamesTheKindsOfModels) {
  using lomu::ModelType;
  EXPECT_EQ(lomu::kindOf(ModelType::linear), "LP");
  EXPECT_EQ(lomu::kindOf(ModelType::mixedInteger), "MIP");
  EXPECT_EQ(lomu::kindOf(ModelType::relaxedMixedInteger), "LP");
  EXPECT_EQ(lomu::kindOf(ModelType::quadratic), "QP");
  EXPECT_EQ(lomu::kindOf(ModelType::mixedIntegerQuadratic), "MIQP");
}

}  // namespace
