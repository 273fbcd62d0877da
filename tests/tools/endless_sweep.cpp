#include "tests/tools/endless_sweep.h"

#include <random>
#include <ztb/ztb.hpp>

namespace tooltest {

namespace {

constexpr int kColumns = 50;

}  // namespace

void EndlessSweepTest::SetUp() {
  std::mt19937 random(3);
  std::string rows;
  std::string items;
  std::string bounds;
  for (int item = 1; item <= kColumns; ++item) {
    items += " item(" + std::to_string(item) + ")\n";
  }
  for (std::size_t row = 1; row <= kRows; ++row) {
    const std::string label = std::to_string(row);
    rows += " exactly(" + label + "):";
    int all = 0;
    for (int item = 1; item <= kColumns; ++item) {
      const int weight = static_cast<int>(random() % 100);
      all += weight;
      rows += " + " + std::to_string(weight) + " item(" + std::to_string(item) + ")\n";
    }
    rows += " - wanted_var(" + label + ") = 0\n";
    bounds += " wanted_var(" + label + ") = 0\n";
    half_[row - 1] = all / 2;
  }
  write("m.lp", "Minimize\n first: item(1)\nSubject To\n" + rows + "Bounds\n" + bounds +
                    "Binaries\n" + items + "End\n");
}

void EndlessSweepTest::makeScenarios(int count, const std::set<int>& endless) const {
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*"});
  ztb::Symbol wanted = database.addParameter("wanted", {s, "*"});
  for (int number = 1; number <= count; ++number) {
    const std::string label = "sc" + std::to_string(number);
    s.add(label);
    for (std::size_t row = 1; row <= kRows; ++row) {
      wanted.add(label, std::to_string(row))
          .setLevel(endless.contains(number) ? half_[row - 1] : 0);
    }
  }
  database.write(path("sc.rxf"));
}

std::vector<std::string> EndlessSweepTest::sweep(const std::vector<std::string>& more,
                                                 const std::string& out) {
  std::vector<std::string> arguments{"sweep", "m.lp",  "--scenarios", "sc.rxf",   "--over",
                                     "s",     "--out", out,           "--solver", "glpk"};
  arguments.insert(arguments.end(), more.begin(), more.end());
  return arguments;
}

}  // namespace tooltest
