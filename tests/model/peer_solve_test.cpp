// The operations of the solver environment and of the catalogue, each called through the built
// library: options, log, fresh runs, live solvers, the request to end.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ztb/model.h>

#include <array>
#include <atomic>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <thread>

#include "tests/model/peer_library.h"
#include "tests/support/library_name.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace modeltest {
namespace {

using testing::HasSubstr;

const std::string kFolder = std::string(ZTB_LIBRARY_FOLDER) + "/";

std::string contents(const std::string& file) {
  std::ostringstream text;
  text << std::ifstream(file).rdbuf();
  return text.str();
}

// max x + y, x + 2 y <= 4, 3 x + y <= 6, worked by hand: x = 1.6, y = 1.2, objective 2.8.
ztbModel* corner() {
  ztbModel* model = nullptr;
  ztbModelCreate(&model, nullptr, 0);
  ztbModelSetObjective(model, "gain", 1, 0);
  ztbModelAddColumn(model, "x", ztbColumnContinuous, 0, 10);
  ztbModelAddColumn(model, "y", ztbColumnContinuous, 0, 10);
  ztbModelAddRow(model, "first", ztbRowLessOrEqual, 4, 0);
  ztbModelAddRow(model, "second", ztbRowLessOrEqual, 6, 0);
  const double values[3][2] = {{1, 1}, {1, 2}, {3, 1}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 2; ++j) ztbModelAddTerm(model, i, j, values[i][j]);
  }
  return model;
}

// Five sums of 40 switches that are each to come as near to their half as can be: a long search.
ztbModel* longSearch() {
  ztbModel* model = nullptr;
  ztbModelCreate(&model, nullptr, 0);
  for (int j = 0; j < 40; ++j) {
    ztbModelAddColumn(model, ("use[" + std::to_string(j) + "]").c_str(), ztbColumnBinary, 0, 1);
  }
  unsigned state = 12345;
  for (int i = 0; i < 5; ++i) {
    const std::string number = std::to_string(i);
    int sum = 0;
    std::array<int, 40> sizes{};
    for (int& size : sizes) {
      state = state * 1103515245U + 12345U;
      size = static_cast<int>(state / 65536U % 100U);
      sum += size;
    }
    const int row =
        ztbModelAddRow(model, ("half[" + number + "]").c_str(), ztbRowEqual, sum / 2, 0);
    for (int j = 0; j < 40; ++j) ztbModelAddTerm(model, row, j, sizes[static_cast<std::size_t>(j)]);
    for (const char* side : {"over", "under"}) {
      const int column = ztbModelAddColumn(model, (side + ("[" + number + "]")).c_str(),
                                           ztbColumnContinuous, 0, 1e6);
      ztbModelAddTerm(model, 0, column, 1);
      ztbModelAddTerm(model, row, column, side[0] == 'o' ? 1 : -1);
    }
  }
  return model;
}

class PeerSolves : public testing::Test {
 protected:
  PeerSolves() { take(corner()); }
  ~PeerSolves() override {
    lib_.call<void(void**)>("rgyXFree", &rgy_);
    ztbModelFree(&model_);
  }

  void take(ztbModel* model) {
    ztbModelFree(&model_);
    model_ = model;
    pbi_ = ztbModelPbi(model_);
    snv_ = lib_.call<void*(void*)>("pbiEnvironment", pbi_);
  }
  int callSolver(const char* solver, double seconds = 2e300, int iterations = 2100000000) {
    using Function = int(void*, void*, const char*, const char*, int, int, const char*, const char*,
                         double, int, int, double, double, void**, char*);
    void* handle = nullptr;
    return lib_.call<Function>("CsnvCallSolver", snv_, pbi_, "", solver, 5, 0, "", "", seconds,
                               iterations, 2100000000, 2e300, 2e300, &handle, msg_.data());
  }
  int readCatalogue(const std::string& file, const std::string& folder) {
    if (rgy_ == nullptr) lib_.call<void(void**)>("rgyXCreate", &rgy_);
    return lib_.call<int(void*, const char*, const char*)>("CrgyReadConfigVUC", rgy_, file.c_str(),
                                                           folder.c_str());
  }
  [[nodiscard]] int number(const char* solver) const {
    return lib_.call<int(void*, const char*)>("CrgyAlgNumber", rgy_, solver);
  }
  int create(int solver, void** alg) {
    return lib_.call<int(void*, int, void**, const char*, char*)>("CrgyAlgCreate", rgy_, solver,
                                                                  alg, "", msg_.data());
  }
  int ready(int solver, void* alg) {
    return lib_.call<int(void*, int, void*, void*)>("rgyAlgReadyAPI", rgy_, solver, alg, pbi_);
  }
  int modify(int solver, void* alg) {
    return lib_.call<int(void*, int, void*)>("rgyAlgModifyProblem", rgy_, solver, alg);
  }
  int run(int solver, void* alg) {
    return lib_.call<int(void*, int, void*, void*)>("rgyAlgCallSolver", rgy_, solver, alg, pbi_);
  }
  void freeSolver(int solver, void** alg) {
    lib_.call<void(void*, int, void**)>("rgyAlgFree", rgy_, solver, alg);
  }
  [[nodiscard]] std::string option(const char* name) const {
    std::array<char, 256> buffer{};
    buffer.fill('#');
    char* result =
        lib_.call<char*(void*, const char*, char*)>("CsnvGetStrOpt", snv_, name, buffer.data());
    EXPECT_EQ(result, buffer.data());
    return buffer.data();
  }

  const PeerLibrary& lib_ = modelLibrary();
  ztbModel* model_ = nullptr;
  void* pbi_ = nullptr;
  void* snv_ = nullptr;
  void* rgy_ = nullptr;
  std::array<char, 256> msg_{};
};

TEST_F(PeerSolves, TheSystemDirectoryEndsInASeparator) {
  const std::string directory = option("NameSysDir");
  EXPECT_THAT(directory, testing::EndsWith("/"));
  EXPECT_TRUE(std::filesystem::equivalent(directory, kFolder)) << directory;
  EXPECT_EQ(option("namesysdir"), directory);
  EXPECT_EQ(option("nosuch"), "");
  EXPECT_EQ(option(nullptr), "");
}

TEST_F(PeerSolves, TheLogIsSilentUnlessItIsAskedFor) {
  const auto log = [&] {
    ztbtest::StdoutCapture capture;
    lib_.call<void(void*, const char*)>("CsnvLog", snv_, "a line");
    lib_.call<void(void*, const char*)>("CsnvLog", snv_, static_cast<const char*>(nullptr));
    return capture.text();
  };
  EXPECT_EQ(log(), "");
  ztbModelSetOption(model_, "LogScreen", "1");
  EXPECT_EQ(log(), "a line\n");
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("log.txt");
  ztbModelSetOption(model_, "LogFile", file.c_str());
  ztbModelSetOption(model_, "LogScreen", "0");
  EXPECT_EQ(log() + log(), "");
  EXPECT_EQ(contents(file), "a line\na line\n");
}

TEST_F(PeerSolves, ALogFileThatCannotBeWrittenDoesNotStopASolve) {
  ztbModelSetOption(model_, "LogFile", "/no/such/folder/log.txt");
  EXPECT_EQ(callSolver("clp"), 0) << msg_.data();
  EXPECT_NEAR(ztbModelObjective(model_), 2.8, 1e-9);
}

TEST_F(PeerSolves, AFreshRunLeavesTheSolutionInTheModel) {
  for (const char* solver : {"clp", "cbc", "glpk", "CLP"}) {
    EXPECT_EQ(callSolver(solver), 0) << msg_.data();
    EXPECT_STREQ(msg_.data(), "");
    EXPECT_EQ(ztbModelStatus(model_), ztbModelOptimal) << solver;
    EXPECT_NEAR(lib_.call<double(void*, int)>("pbiGetVarLOne", pbi_, 0), 1.6, 1e-9) << solver;
    EXPECT_NEAR(lib_.call<double(void*, int)>("pbiGetEquLOne", pbi_, 0), 2.8, 1e-9) << solver;
  }
}

TEST_F(PeerSolves, AFreshRunThatCannotBeTellsWhy) {
  EXPECT_NE(callSolver("nosuch"), 0);
  EXPECT_THAT(msg_.data(), HasSubstr("there is no solver \"nosuch\""));
  EXPECT_STREQ(ztbModelMessage(model_), msg_.data());
  EXPECT_NE(callSolver(nullptr), 0);
  EXPECT_STREQ(msg_.data(), "no solver was named");
  pbi_ = nullptr;
  EXPECT_NE(callSolver("clp"), 0);
  EXPECT_STREQ(msg_.data(), "there is no model to solve");
}

TEST_F(PeerSolves, AFreshRunKeepsToItsOwnLimits) {
  EXPECT_EQ(callSolver("glpk", 2e300, 0), 0);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveIterationLimit);
  EXPECT_EQ(callSolver("clp", 1e-300), 0);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveTimeLimit);
  ztbModelSetOption(model_, "IterationLimit", "0");
  EXPECT_EQ(callSolver("glpk"), 0);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveIterationLimit);
}

TEST_F(PeerSolves, ARequestToEndHoldsUntilItIsCleared) {
  take(longSearch());
  for (const char* solver : {"cbc", "glpk"}) {
    ztbModelTerminate(model_);
    EXPECT_EQ(callSolver(solver), 0) << msg_.data();
    EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveTerminated) << solver;
  }
  take(corner());
  ztbModelTerminate(model_);
  EXPECT_EQ(callSolver("clp"), 0);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveTerminated);
  lib_.call<void(void*)>("snvTerminateClear", snv_);
  EXPECT_EQ(callSolver("clp"), 0);
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveNormal);
}

TEST_F(PeerSolves, TheCatalogueKnowsItsSolversByNumber) {
  EXPECT_LE(lib_.call<int(void*, const char*)>("CrgyAlgNumber", static_cast<void*>(nullptr), "clp"),
            0);
  ASSERT_EQ(readCatalogue(kFolder + "vltcmpNT.txt", kFolder), 0);
  const auto inPlace = [&](const char* solver) {
    return lib_.call<int(void*, int)>("rgyAlgAllowsModifyProblem", rgy_, number(solver));
  };
  EXPECT_EQ(inPlace("clp"), 1);
  EXPECT_EQ(inPlace("glpk"), 1);
  EXPECT_EQ(inPlace("cbc"), 0);
  EXPECT_EQ(inPlace("ipopt"), 0);
  EXPECT_EQ(inPlace("bonmin"), 0);
  EXPECT_GT(number("Clp"), 0);
  EXPECT_NE(number("clp"), number("glpk"));
  EXPECT_LE(number("nosuch"), 0);
  EXPECT_LE(number(""), 0);
  EXPECT_LE(number(nullptr), 0);
  for (const int none : {0, -1, 6, 1000}) {
    void* alg = &msg_;
    EXPECT_EQ(lib_.call<int(void*, int)>("rgyAlgAllowsModifyProblem", rgy_, none), 0);
    EXPECT_EQ(create(none, &alg), 0);
    EXPECT_EQ(alg, nullptr);
    EXPECT_STRNE(msg_.data(), "");
  }
}

TEST_F(PeerSolves, ACatalogueThatCannotBeReadLeavesTheOneBefore) {
  ASSERT_EQ(readCatalogue(kFolder + "vltcmpNT.txt", kFolder), 0);
  const ztbtest::TempFolder folder;
  EXPECT_NE(readCatalogue(folder.file("vltcmpNT.txt"), folder.file("")), 0);
  EXPECT_GT(number("clp"), 0);
}

TEST_F(PeerSolves, ACatalogueInAFolderOfItsOwnNamesItsOwnSolvers) {
  const ztbtest::TempFolder folder;
  std::ofstream(folder.file("vltcmpNT.txt"))
      << "mine LP no " << kFolder << ZTB_LIBRARY_NAME("ztbglpk") "\n";
  ASSERT_EQ(ztbModelSetOption(model_, "NameSysDir", folder.file("").c_str()), 1);
  EXPECT_EQ(option("NameSysDir"), folder.file(""));
  ASSERT_EQ(readCatalogue(folder.file("vltcmpNT.txt"), folder.file("")), 0);
  EXPECT_EQ(number("mine"), 1);
  EXPECT_LE(number("glpk"), 0);
  EXPECT_EQ(callSolver("mine"), 0) << msg_.data();
  EXPECT_NEAR(ztbModelObjective(model_), 2.8, 1e-9);
  EXPECT_NE(callSolver("glpk"), 0);
}

TEST_F(PeerSolves, ALiveSolverTakesOverWhatChanged) {
  ASSERT_EQ(readCatalogue(kFolder + "vltcmpNT.txt", kFolder), 0);
  for (const char* solver : {"clp", "glpk"}) {
    const int n = number(solver);
    void* alg = nullptr;
    ASSERT_EQ(create(n, &alg), 1) << msg_.data();
    EXPECT_NE(modify(n, alg), 0) << "it holds no model yet";
    EXPECT_NE(run(n, alg), 0) << "it holds no model yet";
    ASSERT_EQ(ready(n, alg), 0);
    ASSERT_EQ(run(n, alg), 0);
    EXPECT_NEAR(ztbModelObjective(model_), 2.8, 1e-9) << solver;
    // x + 2 y <= 5: x = 1.4, y = 1.8.
    lib_.call<void(void*, int, double)>("pbiSetAltRHSOne", pbi_, 1, 5.0);
    lib_.call<void(void*, int)>("pbiAltRHSSet", pbi_, 1);
    ASSERT_EQ(modify(n, alg), 0);
    ASSERT_EQ(run(n, alg), 0);
    EXPECT_NEAR(ztbModelObjective(model_), 3.2, 1e-9) << solver;
    lib_.call<void(void*, int)>("pbiAltRHSSet", pbi_, 0);
    freeSolver(n, &alg);
    EXPECT_EQ(alg, nullptr);
    freeSolver(n, &alg);
  }
}

TEST_F(PeerSolves, ALiveSolverSolvesNoOtherModelThanItWasGiven) {
  ASSERT_EQ(readCatalogue(kFolder + "vltcmpNT.txt", kFolder), 0);
  const int clp = number("clp");
  void* alg = nullptr;
  ASSERT_EQ(create(clp, &alg), 1);
  ASSERT_EQ(ready(clp, alg), 0);
  ztbModel* other = corner();
  EXPECT_NE(lib_.call<int(void*, int, void*, void*)>("rgyAlgCallSolver", rgy_, clp, alg,
                                                     ztbModelPbi(other)),
            0);
  EXPECT_STREQ(ztbModelMessage(other), "the live solver was not given this model");
  EXPECT_EQ(ztbModelStatus(other), ztbModelNoSolution);
  ztbModelFree(&other);
  freeSolver(clp, &alg);
}

TEST_F(PeerSolves, ALiveSolverMayEndAfterItsModel) {
  ASSERT_EQ(readCatalogue(kFolder + "vltcmpNT.txt", kFolder), 0);
  for (const char* solver : {"clp", "glpk"}) {
    void* alg = nullptr;
    ASSERT_EQ(create(number(solver), &alg), 1);
    ASSERT_EQ(ready(number(solver), alg), 0);
    ASSERT_EQ(run(number(solver), alg), 0);
    take(corner());
    freeSolver(number(solver), &alg);
  }
}

TEST_F(PeerSolves, AnotherThreadEndsALongSearch) {
  take(longSearch());
  std::atomic<bool> solved{false};
  std::thread other([&] {
    while (!solved) ztbModelTerminate(model_);
  });
  lib_.call<void(void*)>("snvTerminateClear", snv_);
  const int result = callSolver("cbc");
  solved = true;
  other.join();
  EXPECT_EQ(result, 0) << msg_.data();
  EXPECT_EQ(ztbModelSolveStatus(model_), ztbSolveTerminated);
}

}  // namespace
}  // namespace modeltest
