// A scenario in a process of its own. A peer family becomes ready once in a process, so tests that
// make one ready cannot share a process.

#ifndef ZTB_TESTS_PEERS_CHILD_PROCESS_H_
#define ZTB_TESTS_PEERS_CHILD_PROCESS_H_

#include <functional>
#include <string>

namespace peertest {

struct ChildResult {
  int exitCode;        // minus the signal's number if a signal ended the process
  std::string output;  // all of standard output and standard error
};

// Runs `scenario` in a copy of this process, which then ends by exit(), with 0, or with 1 if an
// expectation of the scenario failed or an exception came out of it.
ChildResult inChild(const std::function<void()>& scenario);

// Expects that the scenario comes to its end without a failure.
void expectPassesInChild(const std::function<void()>& scenario);

}  // namespace peertest

#endif  // ZTB_TESTS_PEERS_CHILD_PROCESS_H_
