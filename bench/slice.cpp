#include <limits>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

enum Position : std::size_t { first = 0, second = 1 };

template <Position position>
void sliceDatabase(benchmark::State& state, const Data& data) {
  const FilledDatabase& filled = filledDatabase(data);
  const Database& database = filled.database;
  ztbRec* const handle = database.handle();
  const char* labels[dimension] = {" ", " ", " "};
  labels[position] = data.label(data.middle[position]).c_str();
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    void* record = nullptr;
    database.require(c__ztbfindfirstrecordslice(handle, filled.symbol, labels, &record));
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

// A map finds the records of one first label by its order; for any other position it looks at all.
template <class Map, Position position>
void sliceMap(benchmark::State& state, const Data& data) {
  const LabelledMap<Map>& filled = filledMap<Map>(data);
  const int label = data.middle[position];
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    auto record = filled.records.begin();
    auto last = filled.records.end();
    if constexpr (position == first) {
      record = filled.records.lower_bound({label, 0, 0});
      last = filled.records.lower_bound({label + 1, 0, 0});
    }
    for (; record != last; ++record) {
      if (record->first[position] == label) {
        sum += record->second[0];
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

template <Position position>
void sliceSqlite(benchmark::State& state, const Data& data) {
  const char* sql = position == first ? "SELECT value FROM supply WHERE plant = ?1"
                                      : "SELECT value FROM supply WHERE customer = ?1";
  Statement select(filledByNumbers(data), sql);
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    select.bind(1, data.middle[position]);
    while (select.step()) {
      sum += select.doubleAt(0);
    }
    select.reset();
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

template <Position position>
Contest slice(const char* operation) {
  return {operation,
          Clock::processor,
          {{ours, sliceDatabase<position>},
           {stdMapName, sliceMap<StdMap, position>},
           {btreeMapName, sliceMap<BtreeMap, position>},
           {sqliteName, sliceSqlite<position>}}};
}

}  // namespace

Contest sliceByFirst() {
  return slice<first>("slice, 1st position");
}

Contest sliceBySecond() {
  return slice<second>("slice, 2nd position");
}

}  // namespace bench
