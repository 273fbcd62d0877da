// What a live solver claims without a proof is not told: it is asked once more from the beginning.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <ztb/model.hpp>

#include "tests/support/temp_folder.h"

namespace {

// A solver that claims, after every change, that no point exists.
class ColdSolve : public testing::Test {
 protected:
  ColdSolve() {
    std::ofstream(folder_.file("vltcmpNT.txt")) << "liar LP yes " << ZTB_PLAIN_LIAR << "\n";
    model_.setOption("NameSysDir", folder_.file(""));
    model_.setOption("LogFile", folder_.file("log"));
    model_.addTerm(0, model_.addColumn("size_var", 2, 2), 1);
    model_.addTerm(0, model_.addColumn("y", 1, 5), 1);
  }

  std::string log() {
    std::ostringstream text;
    text << std::ifstream(folder_.file("log")).rdbuf();
    return text.str();
  }

  ztbtest::TempFolder folder_;
  ztb::Model model_;
};

constexpr const char* kTold =
    "liar: it claims that no point exists, without a proof that holds; solved once more from the "
    "beginning\n";

TEST_F(ColdSolve, FollowsAClaimWithoutAProofAndIsCounted) {
  ztb::Database database;
  ztb::ModelTie tie(database, model_);
  ztb::Symbol size = database.addParameter("size", {});
  for (int step = 0; step < 4; ++step) {
    size.put({}, 2.0 + step);
    tie.update(size, ztb::Action::fix, size, ztb::Missing::base);
    tie.solve("liar");
    EXPECT_EQ(model_.status(), ztbModelOptimal);
    EXPECT_EQ(model_.objective(), 3 + step);
    EXPECT_EQ(model_.bound(), 3 + step);
    // The first solve is a fresh one, and so is each that replaced a claim; it needs no proof.
    EXPECT_EQ(model_.coldSolves(), step);
  }
  const std::string log = this->log();
  std::size_t told = 0;
  for (std::size_t at = log.find(kTold); at != std::string::npos; at = log.find(kTold, at + 1)) {
    ++told;
  }
  EXPECT_EQ(told, 3) << log;
}

TEST_F(ColdSolve, HappensOnTheExportedNamesToo) {
  ztb::Database database;
  void* pbi = model_.pbi();
  ASSERT_EQ(c__ztbinitfromdict(database.handle(), pbi), 1);
  ASSERT_EQ(c__ztbinitupdate(database.handle(), pbi), 1);
  for (int solve = 0; solve < 3; ++solve) {
    ASSERT_EQ(c__ztbcallsolver(database.handle(), "liar"), 1);
    EXPECT_EQ(ztbModelStatus(model_.handle()), ztbModelOptimal);
    EXPECT_EQ(ztbModelColdSolves(model_.handle()), solve);
  }
}

TEST_F(ColdSolve, TimesAreThoseOfTheSolve) {
  ztb::Database database;
  ztb::ModelTie tie(database, model_);
  EXPECT_EQ(model_.seconds(), 0);
  tie.solve("liar");
  EXPECT_GT(model_.seconds(), 0);
  EXPECT_GE(model_.processorSeconds(), 0);
}

}  // namespace
