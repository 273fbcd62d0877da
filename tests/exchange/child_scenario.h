// A test body in a child process of its own: the families of the parent stay not ready.
#ifndef ZTB_TESTS_EXCHANGE_CHILD_SCENARIO_H_
#define ZTB_TESTS_EXCHANGE_CHILD_SCENARIO_H_

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdlib>

namespace ztb::exchangetest {

// Runs the scenario and ends the process: 0 if nothing in it failed. What it prints goes to
// standard error, where the death tests look.
template <class Scenario>
[[noreturn]] void runAsChild(const Scenario& scenario) {
  dup2(STDERR_FILENO, STDOUT_FILENO);
  scenario();
  std::exit(testing::Test::HasFailure() ? 1 : 0);
}

template <class Scenario>
void expectPassesInChild(const Scenario& scenario) {
  EXPECT_EXIT(runAsChild(scenario), testing::ExitedWithCode(0), "");
}

}  // namespace ztb::exchangetest

#endif  // ZTB_TESTS_EXCHANGE_CHILD_SCENARIO_H_
