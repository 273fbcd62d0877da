// What of models is Windows' own: names of files outside the code page, what is said of libraries
// that are not there, and which solvers there are.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <ztb/model.hpp>

#include "providers/model/glpk_functions.h"
#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"
#include "tests/support/temp_folder.h"

namespace {

using ztbtest::TempFolder;

// A name that no code page has whole.
constexpr const char* kName =
    "M\xC3\xB6"
    "del \xCE\xBB \xD0\x96 \xE6\xA8\xA1";

std::string nameIn(const TempFolder& folder, const std::string& ending) {
  return folder.path().string() + "\\" + kName + ending;
}

std::filesystem::path wideName(const std::string& name) {
  return std::filesystem::path(std::u8string(name.begin(), name.end()));
}

std::string fromFile(const std::string& name) {
  std::ifstream in(wideName(name), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// 3 x + 2 y over x + y >= 4, x >= 1: 9 at (1, 3).
constexpr const char* kSmall = "min\n obj: 3 x + 2 y\nst\n c: x + y >= 4\nbounds\n x >= 1\nend\n";

TEST(WindowsModels, areReadAndWrittenByNamesInUtf8) {
  const TempFolder folder;
  const std::string file = nameIn(folder, ".lp");
  std::ofstream(wideName(file)) << kSmall;
  ztb::Model model = ztb::Model::open(file);
  const std::string copy = nameIn(folder, "2.mps");
  model.write(copy);
  EXPECT_THAT(fromFile(copy), testing::HasSubstr("ROWS"));
  // Over itself, too: a file that is there is replaced.
  model.write(copy);
  EXPECT_EQ(2, ztb::Model::open(copy).size().columns);
  // Nothing is left beside them.
  EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

TEST(WindowsModels, aFileThatAnotherProgramHasOpenStays) {
  const TempFolder folder;
  std::ofstream(wideName(nameIn(folder, ".lp"))) << kSmall;
  ztb::Model model = ztb::Model::open(nameIn(folder, ".lp"));
  const std::string target = nameIn(folder, ".mps");
  std::ofstream(wideName(target)) << "old";
  const HANDLE held = CreateFileW(wideName(target).c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  ASSERT_NE(INVALID_HANDLE_VALUE, held);
  EXPECT_THROW(model.write(target), ztb::Error);
  CloseHandle(held);
  EXPECT_EQ("old", fromFile(target));
  EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(folder.path()), {}));
}

// One that is not there: Wine would let it be replaced.
TEST(WindowsModels, areWrittenToNoDevice) {
  const TempFolder folder;
  std::ofstream(wideName(nameIn(folder, ".lp"))) << kSmall;
  ztb::Model model = ztb::Model::open(nameIn(folder, ".lp"));
  for (const std::string device : {"lpt9.lp", "LPT9.mps"}) {
    try {
      model.write(device);
      FAIL();
    } catch (const ztb::Error& error) {
      EXPECT_THAT(error.what(), testing::HasSubstr(device + ": is no ordinary file, nothing is "
                                                            "written to it"));
    }
  }
}

std::string refusalOfSolver(const std::string& library) {
  return lomu::SolverLibrary::whyNot(library);
}

TEST(WindowsSolvers, thatAreNotThereAreNamed) {
  EXPECT_EQ(
      "the solver cannot be opened: Z:\\nowhere\\ztbclp.dll: it, or a library that it needs, is "
      "not "
      "there",
      refusalOfSolver("Z:\\nowhere\\ztbclp.dll"));
  EXPECT_EQ("kernel32.dll is no solver library: it has no ztbSolverLibrary",
            refusalOfSolver("kernel32.dll"));
  const TempFolder folder;
  std::ofstream(folder.file("text.dll")) << "no library";
  EXPECT_EQ("the solver cannot be opened: " + folder.file("text.dll") +
                ": this is no library for 64-bit Windows",
            refusalOfSolver(folder.file("text.dll")));
}

TEST(WindowsSolvers, areTheThreeOfTheCatalogue) {
  const TempFolder folder;
  const std::string file = nameIn(folder, ".lp");
  std::ofstream(wideName(file)) << kSmall;
  for (const char* const solver : {"clp", "cbc", "glpk"}) {
    ztb::Model model = ztb::Model::open(file);
    ztb::Database database;
    ztb::ModelTie tie(database, model);
    tie.solve(solver);
    EXPECT_NEAR(9, model.objective(), 1e-9) << solver;
  }
  ztb::Model model = ztb::Model::open(file);
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  try {
    tie.solve("ipopt");
    ADD_FAILURE() << "there is no Ipopt";
  } catch (const ztb::Error& error) {
    EXPECT_STREQ("Invalid solver name: ipopt: the solvers are clp, cbc and glpk", error.what());
  }
}

TEST(WindowsGlpk, thatIsNotThereIsNamed) {
  try {
    lomu::GlpkFunctions::open("no_such_glpk.dll");
    ADD_FAILURE() << "it was opened";
  } catch (const lomu::ModelError& error) {
    EXPECT_STREQ(
        "MathProg files are read by GLPK (glpk_5_0.dll beside this library), which cannot be "
        "opened: "
        "no_such_glpk.dll: it, or a library that it needs, is not there",
        error.what());
  }
}

}  // namespace
