// Allocations that fail while a model is opened, built and taken into use, and while a database
// that is tied to it changes it and reads its solution. Every failure is told, none is taken for an
// empty result, and nothing is left allocated.
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <array>
#include <fstream>
#include <functional>
#include <string>

#include "tests/fault/failing_allocation.h"
#include "tests/support/database.h"
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

// The steps of building a model, each with whether it was done.
using Step = bool (*)(ztbModel* model);
constexpr std::array<Step, 9> kSteps{
    [](ztbModel* m) {
      return ztbModelSetObjective(m, "an objective with a name of some length", 0, 1) == 1;
    },
    [](ztbModel* m) {
      return ztbModelAddColumn(m, "a column with a long name[oslo]", 0, 1, 4) == 0;
    },
    [](ztbModel* m) {
      return ztbModelAddColumn(m, "a column with a long name[seville]", 0, 1, 4) == 1;
    },
    [](ztbModel* m) {
      return ztbModelAddRow(m, "a row that has a long name, too", ztbRowGreaterOrEqual, 5, 0) == 1;
    },
    [](ztbModel* m) { return ztbModelAddTerm(m, 0, 0, 1) == 1; },
    [](ztbModel* m) { return ztbModelAddTerm(m, 1, 0, 1) == 1; },
    [](ztbModel* m) { return ztbModelAddTerm(m, 1, 1, 1) == 1; },
    [](ztbModel* m) { return ztbModelAddProduct(m, 0, 0, 1, 1) == 1; },
    [](ztbModel* m) { return ztbModelPbi(m) != nullptr; }};

TEST(ModelFaults, creating) {
  forEveryAllocation([](long number, Failures failures) {
    ztbModel* model = nullptr;
    Message message{};
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      ztbModelCreate(&model, message.data(), 256);
      happened = failing.happened();
    }
    EXPECT_EQ(happened, model == nullptr);
    EXPECT_STREQ(happened ? "out of memory" : "", message.data());
    ztbModelFree(&model);
    return happened;
  });
}

TEST(ModelFaults, buildingAndTakingIntoUse) {
  forEveryAllocation([](long number, Failures failures) {
    ztbModel* model = nullptr;
    ztbModelCreate(&model, nullptr, 0);
    std::size_t done = 0;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      while (done < kSteps.size() && kSteps[done](model)) ++done;
      happened = failing.happened();
    }
    if (done < kSteps.size()) {
      EXPECT_TRUE(happened);
      EXPECT_STREQ("out of memory", ztbModelMessage(model));
    }
    // What was refused was not begun: the step can be made again.
    for (; done < kSteps.size(); ++done) {
      EXPECT_TRUE(kSteps[done](model)) << "step " << done << ": " << ztbModelMessage(model);
    }
    EXPECT_EQ(ztbKindQuadratic, ztbModelKind(model));
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

// A database tied to a transport from two towns, with the parameter that changes its need.
class TiedDatabase {
 public:
  TiedDatabase() {
    ztbModelCreate(&model_, nullptr, 0);
    const char* const towns[] = {"oslo", "a_town_with_a_long_name_in_the_south"};
    for (const char* town : towns) {
      const std::string element = "[" + std::string(town) + "]";
      const int ship = ztbModelAddColumn(model_, ("ship" + element).c_str(), 0, 0, 9);
      const int need =
          ztbModelAddColumn(model_, ("a_need_with_a_long_name_var" + element).c_str(), 0, 3, 3);
      const int row = ztbModelAddRow(model_, ("all_that_is_needed_is_shipped" + element).c_str(),
                                     ztbRowGreaterOrEqual, 0, 0);
      ztbModelAddTerm(model_, 0, ship, 2);
      ztbModelAddTerm(model_, row, ship, 1);
      ztbModelAddTerm(model_, row, need, -1);
    }
    pbi_ = ztbModelPbi(model_);
  }
  ~TiedDatabase() { ztbModelFree(&model_); }
  TiedDatabase(const TiedDatabase&) = delete;
  TiedDatabase& operator=(const TiedDatabase&) = delete;

  int initFromDict() { return lib().c__ztbinitfromdict(db, pbi_); }
  int initUpdate() { return lib().c__ztbinitupdate(db, pbi_); }
  void tie() {
    EXPECT_EQ(1, initFromDict()) << db.lastError();
    EXPECT_EQ(1, initUpdate()) << db.lastError();
    need_ = db.addParameter("a_need_with_a_long_name");
    db.put(need_, {"oslo"}, 5.0);
  }
  int update(int* unmatched) {
    return lib().c__ztbupdatemodelsymbol(db, need_, 0, need_, 1, unmatched);
  }
  [[nodiscard]] double objective() const { return ztbModelObjective(model_); }

  Database db;

 private:
  ztbModel* model_ = nullptr;
  void* pbi_ = nullptr;
  void* need_ = nullptr;
};

// Runs `operate` on a database that `prepare` left, with an allocation failing, and expects success
// or "Out of memory in NAME". `check` sees the database after a success.
template <typename Prepare, typename Operate, typename Check>
void expectTold(const std::string& name, const Prepare& prepare, const Operate& operate,
                const Check& check) {
  TiedDatabase warm;
  prepare(warm);
  operate(warm);
  check(warm);
  forEveryAllocation([&](long number, Failures failures) {
    TiedDatabase tied;
    prepare(tied);
    StdoutCapture capture;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = operate(tied);
      happened = failing.happened();
    }
    capture.text();
    if (result == 1) {
      check(tied);
    } else {
      EXPECT_TRUE(happened);
      EXPECT_EQ("Out of memory in " + name, tied.db.lastError());
    }
    return happened;
  });
}

TEST(ModelFaults, fillingADatabaseFromADictionary) {
  expectTold(
      "ztbInitFromDict", [](TiedDatabase&) {},
      [](TiedDatabase& tied) { return tied.initFromDict(); },
      [](TiedDatabase& tied) {
        EXPECT_EQ(2, tied.db.info(ZTB_INFO_UEL_COUNT));
        EXPECT_EQ(4, tied.db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
      });
}

TEST(ModelFaults, changingAModel) {
  int unmatched = -1;
  expectTold(
      "ztbUpdateModelSymbol", [](TiedDatabase& tied) { tied.tie(); },
      [&](TiedDatabase& tied) {
        unmatched = -1;
        return tied.update(&unmatched);
      },
      [&](TiedDatabase& tied) {
        EXPECT_EQ(0, unmatched) << "the symbol was not found, or its walk was not begun";
        EXPECT_EQ(1, lib().c__ztbcallsolver(tied.db, "clp")) << tied.db.lastError();
        EXPECT_EQ(2 * (5.0 + 3.0), tied.objective());
      });
}

TEST(ModelFaults, readingASolution) {
  void* symbol = nullptr;
  void* record = nullptr;
  expectTold(
      "ztbFindFirstRecord",
      [&](TiedDatabase& tied) {
        tied.tie();
        symbol = tied.db.find("ship");
        EXPECT_EQ(1, lib().c__ztbcallsolver(tied.db, "clp")) << tied.db.lastError();
      },
      [&](TiedDatabase& tied) {
        record = nullptr;
        return lib().c__ztbfindfirstrecord(tied.db, symbol, &record);
      },
      [&](TiedDatabase& tied) {
        const Record first(tied.db, record);
        EXPECT_EQ(3.0, tied.db.level(first));
        EXPECT_EQ(2, tied.db.recordCount(symbol));
      });
}

}  // namespace
}  // namespace ztbtest
