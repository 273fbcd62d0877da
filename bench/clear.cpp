#include <memory>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/ordered_maps.h"

namespace bench {
namespace {

void clearDatabase(benchmark::State& state, const Data& data) {
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    auto database = std::make_unique<Database>();
    database->addLabels(data);
    void* symbol = database->addParameter("supply");
    database->addRecords(symbol, data, 0, data.size());
    state.ResumeTiming();
    database->require(c__ztbclearsymbol(database->handle(), symbol));
    database.reset();
  }
  countRecords(state, data.size());
}

template <class Map>
void clearMap(benchmark::State& state, const Data& data) {
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    auto map = std::make_unique<Map>();
    addInOrder(*map, data, 0, data.size());
    state.ResumeTiming();
    map->clear();
    map.reset();
  }
  countRecords(state, data.size());
}

}  // namespace

Contest clearAndFree() {
  return {
      "clear and free",
      Clock::processor,
      {{ours, clearDatabase}, {stdMapName, clearMap<StdMap>}, {btreeMapName, clearMap<BtreeMap>}},
      3};
}

}  // namespace bench
