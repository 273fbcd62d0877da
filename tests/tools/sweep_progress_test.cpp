// ztb sweep: what it tells programs while it goes on.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/endless_sweep.h"
#include "tests/tools/processor_time_limit.h"

namespace {

using tooltest::Outcome;
using SweepProgressTest = tooltest::EndlessSweepTest;

TEST_F(SweepProgressTest, TellsProgramsInLinesOfJson) {
  makeScenarios(6, {4});
  const tooltest::ProcessorTimeLimit limit(60);
  const Outcome outcome = ztb(sweep({"--progress", "json", "--stall", "2"}));
  std::vector<nlohmann::json> lines;
  std::istringstream errors(outcome.errors);
  for (std::string line; std::getline(errors, line);) {
    if (line.starts_with('{')) lines.push_back(nlohmann::json::parse(line));
  }
  ASSERT_GE(lines.size(), 2U) << outcome.errors;
  for (const nlohmann::json& line : lines) {
    EXPECT_EQ(line.size(), 7U);
    EXPECT_EQ(line["count"], 6);
    EXPECT_LE(line["workers"], 1);
    EXPECT_EQ(line["seconds_left"].is_null(), line["done"] == 0);
  }
  EXPECT_EQ(lines.front()["done"], 0);
  // The endless scenario took two processes with it and counts as solved when it is passed over.
  EXPECT_EQ(lines.back()["done"], 6);
  EXPECT_EQ(lines.back()["lost"], 2);
  EXPECT_EQ(lines.back()["failures"], 1);
  EXPECT_EQ(lines.back()["workers"], 0);
}

}  // namespace
