#include "tests/bridge/scripted_clock.h"

#include <cstddef>

namespace {

std::vector<std::clock_t>& scriptedReadings() {
  static std::vector<std::clock_t> readings;
  return readings;
}

int readingCount = 0;

}  // namespace

extern "C" __attribute__((visibility("default"))) clock_t clock(void) noexcept {
  const auto place = static_cast<std::size_t>(readingCount++);
  return place < scriptedReadings().size() ? scriptedReadings()[place] : 0;
}

namespace ztbtest {

void setClock(const std::vector<std::clock_t>& readings) {
  scriptedReadings() = readings;
  readingCount = 0;
}

int clockReadings() {
  return readingCount;
}

}  // namespace ztbtest
