// A model some scenarios of which no solver comes to an end with, so that a sweep over them can be
// met in the middle of its work.
#ifndef ZTB_TESTS_TOOLS_ENDLESS_SWEEP_H_
#define ZTB_TESTS_TOOLS_ENDLESS_SWEEP_H_

#include <array>
#include <set>
#include <string>
#include <vector>

#include "tests/tools/program.h"

namespace tooltest {

// Items to be chosen so that the weights of each of several kinds come to exactly what is wanted:
// nothing is chosen at once where nothing is wanted (the objective is then 0), while half of all
// takes a search without end. The model is m.lp, the scenario file sc.rxf.
class EndlessSweepTest : public ProgramTest {
 protected:
  void SetUp() override;

  // Scenarios sc1, sc2, ... of which those named take half of all and the others take nothing.
  void makeScenarios(int count, const std::set<int>& endless) const;

  // A command line that sweeps over them with GLPK.
  static std::vector<std::string> sweep(const std::vector<std::string>& more = {},
                                        const std::string& out = "out.rxf");

 private:
  static constexpr std::size_t kRows = 6;

  std::array<int, kRows> half_{};
};

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_ENDLESS_SWEEP_H_
