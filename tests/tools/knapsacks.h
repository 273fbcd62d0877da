// A model that no solver comes to the end of.
#ifndef ZTB_TESTS_TOOLS_KNAPSACKS_H_
#define ZTB_TESTS_TOOLS_KNAPSACKS_H_

#include <string>

namespace tooltest {

// Things of much the same worth a size in five knapsacks: a point is found at once, and the proof
// that one is best takes longer than anybody waits.
std::string knapsacks();

}  // namespace tooltest

#endif  // ZTB_TESTS_TOOLS_KNAPSACKS_H_
