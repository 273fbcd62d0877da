#include "tests/tools/sweep_fixture.h"

#include <algorithm>
#include <filesystem>
#include <ztb/ztb.hpp>

namespace tooltest {

namespace {

constexpr const char* kModel = R"(\ two sources, one target
Minimize
 total: [ 2 rate_var(a) * ship(a,x) + 2 rate_var(b) * ship(b,x) ] / 2
Subject To
 need(x): ship(a,x) + ship(b,x) - demand_var(x) - extra_var >= 0
Bounds
 rate_var(a) = 3
 rate_var(b) = 5
 demand_var(x) = 10
 extra_var = 0
 ship(a,x) <= 6
 ship(b,x) <= 20
End
)";

}  // namespace

ScenarioValues ScenarioValues::of(int number) {
  // The rates never meet, and the demand never meets what one source has.
  return {.rateA = 1.0 + number * 7 % 11,
          .rateB = 1.5 + number * 5 % 13,
          .demand = 1.25 + number * 3 % 17};
}

double ScenarioValues::shipA() const {
  return rateA < rateB ? std::min(6.0, demand) : std::max(0.0, demand - 20);
}

double ScenarioValues::dearerRate() const {
  return shipA() > 0 && shipA() < 6 ? rateA : rateB;
}

void SweepTest::SetUp() {
  write("m.lp", kModel);
}

void SweepTest::makeScenarios(int count, double extra,
                              const std::map<int, std::string>& demands) const {
  std::string names = "s,note\n";
  std::string rates = "s,source,rate\n";
  std::string needs = "s,target,demand\n";
  for (int number = 1; number <= count; ++number) {
    const ScenarioValues values = ScenarioValues::of(number);
    const std::string label = "sc" + std::to_string(number);
    names += label + ",note " + std::to_string(number) + "\n";
    rates += label + ",a," + std::to_string(values.rateA) + "\n";
    rates += label + ",b," + std::to_string(values.rateB) + "\n";
    const auto own = demands.find(number);
    needs +=
        label + ",x," + (own == demands.end() ? std::to_string(values.demand) : own->second) + "\n";
  }
  write("names.csv", names);
  write("rates.csv", rates);
  write("needs.csv", needs);
  write("extra.csv", "extra\n" + std::to_string(extra) + "\n");
  ztbFine({"import", "sc.rxf", "--from", "names.csv", "--set", "s : note \"Scenarios\"", "--from",
           "rates.csv", "--parameter", "rate(s, source)", "--from", "needs.csv", "--parameter",
           "demand(s, target)", "--from", "extra.csv", "--parameter", "extra()"});
}

std::vector<std::string> SweepTest::sweep(const std::vector<std::string>& more,
                                          const std::string& out) {
  std::vector<std::string> arguments{"sweep",  "m.lp", "--scenarios", "sc.rxf",
                                     "--over", "S",    "--out",       out};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

void SweepTest::expectObjectives(const std::string& file, int count, double extra,
                                 const std::vector<int>& without) const {
  const ztb::Database out = ztb::Database::open(path(file));
  const ztb::Symbol objective = out.symbol("sweep_objective");
  EXPECT_EQ(objective.recordCount(), count - static_cast<int>(without.size()));
  EXPECT_EQ(out.symbol("sweep_status").recordCount(), count);
  for (int number = 1; number <= count; ++number) {
    if (std::ranges::find(without, number) != without.end()) {
      continue;
    }
    ScenarioValues values = ScenarioValues::of(number);
    values.demand += extra;
    const auto record = objective.find("sc" + std::to_string(number));
    ASSERT_TRUE(record) << number;
    EXPECT_NEAR(record->level(), values.objective(), 1e-9 * values.objective()) << number;
  }
}

int SweepTest::parts(const std::string& out) const {
  if (!exists(out + ".parts")) return 0;
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(path(out + ".parts"))) {
    count += entry.path().extension() == ".rxf" ? 1 : 0;
  }
  return count;
}

std::string SweepTest::onlyPart(const std::string& out) const {
  EXPECT_EQ(parts(out), 1);
  for (const auto& entry : std::filesystem::directory_iterator(path(out + ".parts"))) {
    if (entry.path().extension() == ".rxf")
      return out + ".parts/" + entry.path().filename().string();
  }
  return "";
}

}  // namespace tooltest
