// One operation, done by ZTB and by each of its rivals on the same data: how the measured functions
// are registered, and what they report beside their time.
#ifndef ZTB_BENCH_CONTEST_H_
#define ZTB_BENCH_CONTEST_H_

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/data.h"

namespace bench {

inline constexpr const char* ours = "ZTB";

// Operations on files also wait for the disk, so that the clock on the wall counts beside the
// processor's time; all others are bound to the processor.
enum class Clock { processor, wall };

// Time and size of one record are per this many records of an iteration.
inline constexpr const char* recordsCounter = "records";
inline constexpr const char* heapCounter = "heap_bytes";
inline constexpr const char* fileCounter = "file_bytes";

using Measured = std::function<void(benchmark::State&, const Data&)>;

struct Contestant {
  std::string name;
  Measured run;
};

struct Contest {
  std::string operation;
  Clock clock;
  std::vector<Contestant> contestants;  // ours first
  // For one whose measured part is short beside what has to be made for it: so many iterations
  // instead of a least time.
  int iterations = 0;
};

// Registers a contest for one record count.
void registerContest(const Contest& contest, std::size_t records);

// How long and how often a benchmark of that many records is run.
void setEffort(benchmark::internal::Benchmark* registered, std::size_t records);

// Bytes that the process has allocated, with the allocator's own overhead.
std::size_t heapInUse();

// Says that an iteration handles that many records.
void countRecords(benchmark::State& state, std::size_t records);

// Keeps freed memory in the process from now on, so that no load pays for fetching it anew.
void keepFreedMemory();

// Merges freed blocks, so that the next load doesn't find a supply of blocks of just its size.
void mergeFreedBlocks();

// Times `load(store)` on a new store in every iteration and reports the memory that it holds
// afterwards; making and freeing the store isn't timed. Every load finds the heap alike. `make()`
// gives a unique_ptr.
template <class Make, class Load>
void measureLoad(benchmark::State& state, std::size_t records, Make&& make, Load&& load) {
  std::size_t bytes = 0;
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    mergeFreedBlocks();
    auto store = make();
    const std::size_t before = heapInUse();
    state.ResumeTiming();
    load(*store);
    state.PauseTiming();
    bytes = heapInUse() - before;
    store.reset();
    state.ResumeTiming();
  }
  state.counters[heapCounter] = static_cast<double>(bytes);
  countRecords(state, records);
}

// A filled store that several contests read: made at the first use for a record count and kept
// until another count asks for one.
template <class Store>
class Shared {
 public:
  template <class Fill>
  Store& get(const Data& data, Fill&& fill) {
    if (store_ == nullptr || records_ != data.size()) {
      store_.reset();
      store_ = fill(data);
      records_ = data.size();
    }
    return *store_;
  }

 private:
  std::unique_ptr<Store> store_;
  std::size_t records_ = 0;
};

}  // namespace bench

#endif  // ZTB_BENCH_CONTEST_H_
