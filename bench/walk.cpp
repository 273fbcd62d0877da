#include <memory>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

void walkDatabase(benchmark::State& state, const Data& data) {
  const FilledDatabase& filled = filledDatabase(data);
  const Database& database = filled.database;
  ztbRec* const handle = database.handle();
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    void* record = nullptr;
    database.require(c__ztbfindfirstrecord(handle, filled.symbol, &record));
    do {
      double level = 0;
      database.require(c__ztbgetlevel(handle, record, &level));
      sum += level;
    } while (c__ztbrecordmovenext(handle, record) == 1);
    database.require(c__ztbfreesymboliterator(handle, record));
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

template <class Map>
void walkMap(benchmark::State& state, const Data& data) {
  const LabelledMap<Map>& filled = filledMap<Map>(data);
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    for (const auto& [key, slots] : filled.records) {
      sum += slots[0];
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

void walkSqlite(benchmark::State& state, const Data& data) {
  Statement select(filledByNumbers(data),
                   "SELECT value FROM supply ORDER BY plant, customer, week");
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    while (select.step()) {
      sum += select.doubleAt(0);
    }
    select.reset();
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

}  // namespace

Contest walk() {
  return {"full walk",
          Clock::processor,
          {{ours, walkDatabase},
           {stdMapName, walkMap<StdMap>},
           {btreeMapName, walkMap<BtreeMap>},
           {sqliteName, walkSqlite}}};
}

}  // namespace bench
