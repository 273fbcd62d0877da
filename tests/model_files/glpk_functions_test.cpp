// GLPK is not linked: what is said where it is not there, or another library has its name.
#include "providers/model/glpk_functions.h"

#include <gtest/gtest.h>

#include <string>

#include "providers/model/model_error.h"

namespace {

std::string refusal(const std::string& library) {
  try {
    lomu::GlpkFunctions::open(library);
  } catch (const lomu::ModelError& error) {
    return error.what();
  }
  return "none";
}

TEST(GlpkFunctionsTest, MissingLibraryIsToldWithItsPackage) {
  EXPECT_EQ(
      "MathProg files are read by GLPK (package libglpk40), which cannot be opened: "
      "libnosuchglpk.so.40: cannot open shared object file: No such file or directory",
      refusal("libnosuchglpk.so.40"));
}

TEST(GlpkFunctionsTest, AnotherLibraryIsRefusedByTheFunctionThatItLacks) {
  EXPECT_EQ("libm.so.6 is no GLPK: it has no glp_create_prob", refusal("libm.so.6"));
}

}  // namespace
