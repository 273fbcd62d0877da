#include "bench/contest.h"

#include <malloc.h>

#include <cstdlib>
#include <limits>

namespace bench {

void setEffort(benchmark::internal::Benchmark* registered, std::size_t records) {
  // The slowest rival takes minutes for the largest counts, and noise matters least there.
  constexpr std::size_t repeatedBelow = 5'000'000;
  constexpr double secondsOfRepetition = 0.1;
  registered->Repetitions(records < repeatedBelow ? 3 : 1)->MinTime(secondsOfRepetition);
}

void registerContest(const Contest& contest, std::size_t records) {
  for (const Contestant& contestant : contest.contestants) {
    const std::string name =
        contest.operation + "/" + contestant.name + "/" + std::to_string(records);
    benchmark::internal::Benchmark* registered = benchmark::RegisterBenchmark(
        name.c_str(),
        [run = contestant.run, records](benchmark::State& state) { run(state, dataOf(records)); });
    if (contest.iterations > 0) {
      registered->Repetitions(3)->Iterations(contest.iterations);
    } else {
      setEffort(registered, records);
    }
    if (contest.clock == Clock::wall) {
      registered->UseRealTime();
    }
  }
}

std::size_t heapInUse() {
  const struct mallinfo2 info = mallinfo2();
  return info.uordblks + info.hblkhd;
}

void keepFreedMemory() {
  mallopt(M_TRIM_THRESHOLD, std::numeric_limits<int>::max());
  mallopt(M_MMAP_MAX, 0);
}

void mergeFreedBlocks() {
  // The allocator does so when a block of this size is freed.
  constexpr std::size_t mergingSize = 1 << 20;
  void* volatile block = std::malloc(mergingSize);
  std::free(block);
}

void countRecords(benchmark::State& state, std::size_t records) {
  state.counters[recordsCounter] = static_cast<double>(records);
}

}  // namespace bench
