// Models with integers against the solvers' own programs, which read the same file.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <random>
#include <regex>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

std::string outputOf(const std::string& command) {
  std::FILE* pipe = popen((command + " 2>&1").c_str(), "r");
  std::string text;
  std::array<char, 4096> part{};
  while (std::fgets(part.data(), part.size(), pipe) != nullptr) text += part.data();
  pclose(pipe);
  return text;
}

double numberBehind(const std::string& text, const std::string& pattern) {
  std::smatch found;
  if (!std::regex_search(text, found, std::regex(pattern + R"(\s*(-?[0-9.eE+-]+))"))) {
    ADD_FAILURE() << pattern << " is not in:\n" << text;
    return 0;
  }
  return std::stod(found[1].str());
}

// Several knapsacks side by side with a common capacity row, numbers from a seed.
std::string knapsacks(unsigned seed) {
  std::mt19937 random(seed);
  std::ostringstream text;
  const int items = 14;
  text << "Maximize\n worth: ";
  for (int i = 0; i < items; ++i) text << " + " << 5 + random() % 40 << " take(" << i << ")";
  text << " + 0.5 spare\nSubject To\n";
  for (int k = 0; k < 3; ++k) {
    text << " room(" << k << "):";
    for (int i = 0; i < items; ++i) text << " + " << 3 + random() % 30 << " take(" << i << ")";
    text << (k == 0 ? " + spare" : "") << " <= " << 90 + random() % 40 << "\n";
  }
  text << "Bounds\n";
  for (int i = 0; i < items; ++i) text << " 0 <= take(" << i << ") <= " << 1 + random() % 3 << "\n";
  text << " 0 <= spare <= 7\nGenerals\n";
  for (int i = 0; i < items; ++i) text << " take(" << i << ")";
  text << "\nEnd\n";
  return text.str();
}

class BelowZero : public testing::TestWithParam<const char*> {};

// z >= 2 / 1.2 and 3.7 y >= 1 + 2.9 z = 5.83: y = 2. A cut by a cover of flows left no point, since
// y can be below 0 and is none; the free row is part of it.
TEST_P(BelowZero, FindsAPoint) {
  const ztbtest::TempFolder folder;
  std::ofstream(folder.file("m.mps")) << "NAME m\nROWS\n N c\n N r0\n G r1\n L r2\n G r3\nCOLUMNS\n"
                                         " M 'MARKER' 'INTORG'\n x r0 -0.5\n x r3 -4\n y c 0.8\n"
                                         " y r0 1.2\n y r1 3.7\n M 'MARKER' 'INTEND'\n z r1 -2.9\n"
                                         " z r2 -1.2\n z r3 2.8\nRHS\n b r1 1\n b r2 -2\n b r3 1\n"
                                         "BOUNDS\n UP b x 15\n LO b y -1\n UP b y 7\n UP b z 12\n"
                                         "ENDATA\n";
  ztb::Model model = ztb::Model::open(folder.file("m.mps"));
  model.solve(GetParam());
  ASSERT_EQ(model.status(), ztbModelOptimal);
  EXPECT_NEAR(model.objective(), 1.6, 1e-9);
}

INSTANTIATE_TEST_SUITE_P(Solvers, BelowZero, testing::Values("cbc", "glpk"),
                         [](const auto& tested) { return std::string(tested.param); });

class Knapsacks : public testing::TestWithParam<unsigned> {};

TEST_P(Knapsacks, HaveTheOptimumOfTheSolversOwnPrograms) {
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("knapsack.lp");
  std::ofstream(file) << knapsacks(GetParam());

  const std::string report = folder.file("report.txt");
  outputOf("glpsol --lp " + file + " --mipgap 0 -o " + report);
  std::ostringstream glpk;
  glpk << std::ifstream(report).rdbuf();
  const double expected = numberBehind(glpk.str(), R"(Objective:\s*worth =)");
  const double byCbc =
      std::abs(numberBehind(outputOf("cbc " + file + " ratio 0 solve"), R"(Objective value:)"));
  ASSERT_NEAR(expected, byCbc, 1e-6 * expected) << "the two programs do not agree";

  for (const char* solver : {"cbc", "glpk"}) {
    ztb::Model model = ztb::Model::open(file);
    ztb::Database database;
    ztb::ModelTie(database, model).solve(solver);
    ASSERT_EQ(model.status(), ztbModelOptimal) << solver;
    EXPECT_NEAR(model.objective(), expected, 1e-7 * expected) << solver;
    for (ztb::Record& record : database.symbol("take").records()) {
      EXPECT_NEAR(record.level(), std::round(record.level()), 1e-6) << record.key(0).str();
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, Knapsacks, testing::Range(1U, 9U));

// max x + y, both integer from 0 to 3, 2 x + 2 y <= 7: 3.
TEST(MipStart, IsTakenWhenItsIntegersCanBeCompleted) {
  ztb::Model model;
  model.setObjective("total", true);
  const int x = model.addColumn("x", 0, 3, ztbColumnInteger);
  const int y = model.addColumn("y", 0, 3, ztbColumnInteger);
  const int row = model.addRow("room", ztbRowLessOrEqual, 7);
  for (const int column : {x, y}) {
    model.addTerm(0, column, 1);
    model.addTerm(row, column, 2);
  }
  model.setOption("UseStart", "1");
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol start = database.addParameter("start", {});
  for (const double level : {1.0, 3.0}) {
    start.put({}, level);
    for (const char* name : {"x", "y"}) {
      tie.update(database.symbol(name), ztb::Action::level, start, ztb::Missing::keep);
    }
    tie.solve("cbc");
    EXPECT_EQ(model.status(), ztbModelOptimal);
    EXPECT_NEAR(model.objective(), 3, 1e-9);
    EXPECT_EQ(model.startTaken(), level == 1) << "3 and 3 do not go in";
  }
}

// min -4 x - 2 y + 6 z, x + y + 2 z >= 1, x to 5, y to 4, z to 1: 5, 4 and 0 make -28. A start that
// is close to it leaves the costs of x and y no room, and those of z alone are multiples of 6.
TEST(MipStart, IsNotTakenForTheBestSolution) {
  ztb::Model model;
  const int x = model.addColumn("take(x)", 0, 5, ztbColumnInteger);
  const int y = model.addColumn("take(y)", 0, 4, ztbColumnInteger);
  const int z = model.addColumn("take(z)", 0, 1, ztbColumnInteger);
  const int row = model.addRow("some", ztbRowGreaterOrEqual, 1);
  for (const auto& [column, cost, weight] :
       {std::tuple{x, -4.0, 1.0}, {y, -2.0, 1.0}, {z, 6.0, 2.0}}) {
    model.addTerm(0, column, cost);
    model.addTerm(row, column, weight);
  }
  model.setOption("UseStart", "1");
  ztb::Database database;
  ztb::ModelTie tie(database, model);
  ztb::Symbol start = database.addParameter("start", {"*"});
  for (const auto& [levelOfX, levelOfY] :
       {std::pair{5.0, 3.0}, {4.0, 4.0}, {5.0, 2.0}, {0.0, 1.0}}) {
    start.merge("x").setLevel(levelOfX);
    start.merge("y").setLevel(levelOfY);
    start.merge("z").setLevel(0);
    tie.update(database.symbol("take"), ztb::Action::level, start, ztb::Missing::keep);
    tie.solve("cbc");
    EXPECT_TRUE(model.startTaken());
    EXPECT_EQ(model.status(), ztbModelOptimal);
    EXPECT_NEAR(model.objective(), -28, 1e-9) << levelOfX << ' ' << levelOfY;
  }
}

}  // namespace
