// Replaces the processor clock of the whole process, the library under test included. An executable
// that links scripted_clock.cpp must export its symbols.
#ifndef ZTB_TESTS_BRIDGE_SCRIPTED_CLOCK_H_
#define ZTB_TESTS_BRIDGE_SCRIPTED_CLOCK_H_

#include <ctime>
#include <vector>

namespace ztbtest {

// The clock gives these readings one after the other from now on, and 0 behind the last. Forgets
// how often it was read.
void setClock(const std::vector<std::clock_t>& readings);

// How often the clock was read since.
int clockReadings();

}  // namespace ztbtest

#endif  // ZTB_TESTS_BRIDGE_SCRIPTED_CLOCK_H_
