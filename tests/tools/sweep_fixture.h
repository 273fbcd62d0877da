// A small transport model with scenarios whose optima are worked out by hand.
#ifndef ZTB_TESTS_TOOLS_SWEEP_FIXTURE_H_
#define ZTB_TESTS_TOOLS_SWEEP_FIXTURE_H_

#include <map>
#include <string>
#include <vector>

#include "tests/tools/program.h"

namespace tooltest {

// What a scenario sets, and the best plan for it: the cheaper source first. Source a has 6 to ship,
// source b has 20.
struct ScenarioValues {
  double rateA;
  double rateB;
  double demand;

  static ScenarioValues of(int number);
  double shipA() const;
  double shipB() const { return demand - shipA(); }
  double objective() const { return rateA * shipA() + rateB * shipB(); }
  // The rate of the source that has something left.
  double dearerRate() const;
};

// A folder with the model m.lp.
class SweepTest : public ProgramTest {
 protected:
  void SetUp() override;

  // Makes sc.rxf with scenarios sc1, sc2, ... by import: rate(s, source), demand(s, target) and the
  // scalar extra, which is added to each demand. `demands` stand in for those of some scenarios.
  void makeScenarios(int count, double extra = 0,
                     const std::map<int, std::string>& demands = {}) const;

  // A command line that sweeps over them.
  static std::vector<std::string> sweep(const std::vector<std::string>& more = {},
                                        const std::string& out = "out.rxf");

  // Each scenario has its optimum, but for those left out.
  void expectObjectives(const std::string& file, int count, double extra = 0,
                        const std::vector<int>& without = {}) const;

  // Parts in the folder beside a result file, and the file of the only one.
  int parts(const std::string& out) const;
  std::string onlyPart(const std::string& out) const;
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_SWEEP_FIXTURE_H_
