// Allocations that fail while a model is opened, built and taken into use, and while a database is
// tied to it, updated and solved. Every failure is told, nothing is taken for an empty result, and
// nothing is left allocated. Allocations inside of third-party code are its own affair, but for
// those that reach the functions replaced here.
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <array>
#include <fstream>
#include <functional>
#include <string>

#include "tests/fault/failing_allocation.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

using Message = std::array<char, 256>;

// Runs `attempt` with the first, second, ... allocation failing until it needs no further one. It
// gives whether an allocation failed.
void forEveryAllocation(const std::function<bool(long, Failures)>& attempt) {
  for (const Failures failures : {Failures::one, Failures::allFromThere}) {
    long number = 1;
    for (bool goesOn = true; goesOn && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE("allocation " + std::to_string(number) +
                   (failures == Failures::one ? "" : " and all that follow"));
      const long before = liveAllocations();
      goesOn = attempt(number, failures);
      EXPECT_EQ(before, liveAllocations()) << "allocations are left";
    }
    EXPECT_LT(2, number) << "there was no allocation at all";
  }
}

constexpr const char* kLp =
    "minimize cost: 3 first[oslo] + 2 first[seville] + [ 2 first[oslo] * rate_var ] / 2\n"
    "subject to\n"
    " need_of_a_name_that_is_rather_long[oslo]: first[oslo] + first[seville] >= 2\n"
    "bounds\n rate_var = 2\n first[seville] <= 1\nend\n";

constexpr const char* kMps =
    "NAME t\nROWS\n N cost\n G need[oslo]\nCOLUMNS\n x[oslo] cost 3 need[oslo] 1\nRHS\n"
    " rhs need[oslo] 2\nENDATA\n";

constexpr const char* kMathProg =
    "set I := {'oslo', 'seville'};\nvar first{i in I} >= 0;\nminimize cost: sum{i in I} first[i];\n"
    "s.t. need{i in I}: first[i] >= 1;\nend;\n";

// Opens `file` with an allocation failing; true when one failed.
bool opens(const std::string& file, long number, Failures failures) {
  ztbModel* model = nullptr;
  Message message{};
  int result = -1;
  bool happened = false;
  {
    const FailingAllocation failing(number, failures);
    result = ztbModelOpen(&model, file.c_str(), nullptr, message.data(), 256);
    happened = failing.happened();
  }
  if (result == 0) {
    EXPECT_TRUE(happened) << message.data();
    EXPECT_EQ(nullptr, model);
    EXPECT_STREQ("out of memory", message.data());
  } else {
    EXPECT_STREQ("", message.data());
  }
  ztbModelFree(&model);
  return happened;
}

void expectOpeningSurvives(const char* ending, const char* text) {
  const TempFolder folder;
  const std::string file = folder.file(std::string("model_with_a_name_of_some_length") + ending);
  std::ofstream(file) << text;
  Message message{};
  ztbModel* warm = nullptr;
  ASSERT_EQ(1, ztbModelOpen(&warm, file.c_str(), nullptr, message.data(), 256)) << message.data();
  ztbModelFree(&warm);
  forEveryAllocation([&](long number, Failures failures) { return opens(file, number, failures); });
}

TEST(ModelFaults, openingAnLpFile) {
  expectOpeningSurvives(".lp", kLp);
}

TEST(ModelFaults, openingAnMpsFile) {
  expectOpeningSurvives(".mps", kMps);
}

TEST(ModelFaults, openingAMathProgFile) {
  expectOpeningSurvives(".mod", kMathProg);
}

// Builds a model; false with what failed last in `step` when a call refused.
bool build(ztbModel** model, char* message, const char** step) {
  *step = "create";
  if (ztbModelCreate(model, message, 256) == 0) return false;
  *step = "build";
  return ztbModelSetObjective(*model, "an objective with a long name", 0, 1) == 1 &&
         ztbModelAddColumn(*model, "a column with a long name[oslo]", 0, 0, 4) == 0 &&
         ztbModelAddColumn(*model, "a column with a long name[seville]", 0, 0, 4) == 1 &&
         ztbModelAddRow(*model, "a row that has a long name, too", ztbRowGreaterOrEqual, 2, 0) ==
             1 &&
         ztbModelAddTerm(*model, 0, 0, 1) == 1 && ztbModelAddTerm(*model, 1, 0, 1) == 1 &&
         ztbModelAddTerm(*model, 1, 1, 1) == 1 && ztbModelAddProduct(*model, 0, 0, 1, 1) == 1;
}

TEST(ModelFaults, buildingAndTakingIntoUse) {
  forEveryAllocation([&](long number, Failures failures) {
    ztbModel* model = nullptr;
    Message message{};
    const char* step = "";
    bool built = false;
    void* pbi = nullptr;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      built = build(&model, message.data(), &step);
      if (built) pbi = ztbModelPbi(model);
      happened = failing.happened();
    }
    if (model == nullptr) {
      EXPECT_STREQ("create", step);
      EXPECT_STREQ("out of memory", message.data());
    } else if (pbi == nullptr) {
      EXPECT_TRUE(happened);
      EXPECT_STREQ("out of memory", ztbModelMessage(model));
      // What was refused was not begun: the model can still be taken into use.
      EXPECT_NE(nullptr, ztbModelPbi(model));
    }
    ztbModelFree(&model);
    return happened;
  });
}

TEST(ModelFaults, optionsAndTheCatalogue) {
  const TempFolder folder;
  const std::string file = folder.file("vltcmpNT.txt");
  std::ofstream(file) << "# solvers\nfirst LP,MIP no a_library_with_a_long_name_that_is_not.so\n";
  forEveryAllocation([&](long number, Failures failures) {
    Message message{};
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = ztbCatalogueCheck(file.c_str(), message.data(), 256);
      happened = failing.happened();
    }
    if (result == 0) {
      EXPECT_STREQ("out of memory", message.data());
    }
    return happened;
  });
}

}  // namespace
}  // namespace ztbtest
