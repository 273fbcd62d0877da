#include "bench/store_contests.h"

#include <algorithm>
#include <functional>
#include <memory>
#include <string>

#include "bench/contest.h"
#include "bench/store_rivals.h"

namespace bench {
namespace {

using MeasuredShape = std::function<void(benchmark::State&, const StoreData&)>;

void registerOne(const std::string& operation, const char* contestant, const StoreShape& shape,
                 const MeasuredShape& run) {
  const std::string name = operation + " " + std::to_string(shape.dim) + "d" +
                           std::to_string(shape.slots) + "v/" + contestant + "/" +
                           std::to_string(shape.records);
  setEffort(
      benchmark::RegisterBenchmark(
          name.c_str(), [run, shape](benchmark::State& state) { run(state, storeDataOf(shape)); }),
      shape.records);
}

template <class Holder>
void fill(Holder& holder, const StoreData& data) {
  for (std::size_t record = 0; record < data.shape.records; ++record) {
    holder.append(data.key(record), data.value(record));
  }
}

template <class Holder>
std::unique_ptr<Holder> filled(const StoreData& data) {
  mergeFreedBlocks();
  auto holder = std::make_unique<Holder>();
  fill(*holder, data);
  return holder;
}

// Records that one iteration looks up. On one dimension the trie walks half of them for each, so
// that a sample has to do.
template <class Holder>
std::size_t lookupsOf(const StoreShape& shape) {
  constexpr std::size_t mostSteps = 1'000'000'000;
  return Holder::walksSiblings && shape.dim == 1
             ? std::min(shape.records, mostSteps / shape.records)
             : shape.records;
}

template <class Holder>
void registerHolder(const char* name, const StoreShape& shape) {
  registerOne("sorted load", name, shape, [](benchmark::State& state, const StoreData& data) {
    measureLoad(
        state, data.shape.records, [] { return std::make_unique<Holder>(); },
        [&](Holder& holder) { fill(holder, data); });
  });
  registerOne("walk", name, shape, [](benchmark::State& state, const StoreData& data) {
    const auto holder = filled<Holder>(data);
    for ([[maybe_unused]] auto iteration : state) {
      benchmark::DoNotOptimize(holder->sum());
    }
    countRecords(state, data.shape.records);
  });
  registerOne("lookup", name, shape, [](benchmark::State& state, const StoreData& data) {
    const auto holder = filled<Holder>(data);
    const std::size_t lookups = lookupsOf<Holder>(data.shape);
    for ([[maybe_unused]] auto iteration : state) {
      double sum = 0;
      for (std::size_t lookup = 0; lookup < lookups; ++lookup) {
        sum += holder->find(data.key(data.shuffled[lookup]));
      }
      benchmark::DoNotOptimize(sum);
    }
    countRecords(state, lookups);
  });
}

template <std::size_t dim, std::size_t slots>
void registerShape(const StoreShape& shape) {
  registerOne("walk", "plain arrays", shape, [](benchmark::State& state, const StoreData& data) {
    for ([[maybe_unused]] auto iteration : state) {
      benchmark::DoNotOptimize(sumOfArrays<dim, slots>(data));
    }
    countRecords(state, data.shape.records);
  });
  registerHolder<StdMapHolder<dim, slots>>(bareMap, shape);
  registerHolder<TreeMapStore<dim, slots>>("map store", shape);
  registerHolder<VectorStore<dim, slots>>("vector store", shape);
  registerHolder<TrieStore<dim, slots>>("trie store", shape);
  registerHolder<BtreeHolder<dim, slots>>("absl::btree_map", shape);
  registerHolder<SortedVector<dim, slots>>("std::vector", shape);
}

template <std::size_t dim>
void registerDimension(const StoreShape& shape) {
  if (shape.slots == 1) {
    registerShape<dim, 1>(shape);
  } else {
    registerShape<dim, ztb::dmap::maxSlots>(shape);
  }
}

}  // namespace

void registerStoreContests(const StoreShape& shape) {
  switch (shape.dim) {
    case 1:
      return registerDimension<1>(shape);
    case 3:
      return registerDimension<3>(shape);
    case 6:
      return registerDimension<6>(shape);
    default:
      return registerDimension<ztb::dmap::maxDimension>(shape);
  }
}

}  // namespace bench
