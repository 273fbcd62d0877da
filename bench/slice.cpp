#include <array>
#include <memory>
#include <string>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/duckdb.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

// Which positions are fixed, each to its label in the key from the middle of the data.
using Fixed = std::array<bool, dimension>;
constexpr Fixed onFirst{true, false, false};
constexpr Fixed onSecond{false, true, false};
constexpr Fixed onFirstAndThird{true, false, true};

void sliceDatabase(benchmark::State& state, const Data& data, Fixed fixed) {
  const FilledDatabase& filled = filledDatabase(data);
  const Database& database = filled.database;
  ztbRec* const handle = database.handle();
  const char* labels[dimension];
  for (std::size_t d = 0; d < dimension; ++d) {
    labels[d] = fixed[d] ? data.label(data.middle[d]).c_str() : " ";
  }
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

bool lies(const Key& key, const Data& data, Fixed fixed) {
  for (std::size_t d = 0; d < dimension; ++d) {
    if (fixed[d] && key[d] != data.middle[d]) {
      return false;
    }
  }
  return true;
}

// A map finds the records of one first label by its order; for any other position it looks at all.
template <class Map>
void sliceMap(benchmark::State& state, const Data& data, Fixed fixed) {
  const LabelledMap<Map>& filled = filledMap<Map>(data);
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    auto record = filled.records.begin();
    auto last = filled.records.end();
    if (fixed[0]) {
      record = filled.records.lower_bound({data.middle[0], 0, 0});
      last = filled.records.lower_bound({data.middle[0] + 1, 0, 0});
    }
    for (; record != last; ++record) {
      if (lies(record->first, data, fixed)) {
        sum += record->second[0];
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

// The query for a slice; its parameters are the fixed positions in their order.
std::string selection(Fixed fixed) {
  constexpr std::array<const char*, dimension> columns{"plant", "customer", "week"};
  std::string sql = "SELECT value FROM supply";
  const char* joint = " WHERE ";
  for (std::size_t d = 0; d < dimension; ++d) {
    if (fixed[d]) {
      sql += std::string(joint) + columns[d] + " = ?";
      joint = " AND ";
    }
  }
  return sql;
}

template <class Query>
void bindFixed(Query& query, const Data& data, Fixed fixed) {
  int parameter = 0;
  for (std::size_t d = 0; d < dimension; ++d) {
    if (fixed[d]) {
      query.bind(++parameter, data.middle[d]);
    }
  }
}

void sliceSqlite(benchmark::State& state, const Data& data, Fixed fixed) {
  Statement select(fixed == onFirstAndThird ? filledWithIndex(data) : filledByNumbers(data),
                   selection(fixed));
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    bindFixed(select, data, fixed);
    while (select.step()) {
      sum += select.doubleAt(0);
    }
    select.reset();
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

void sliceDuckdb(benchmark::State& state, const Data& data, Fixed fixed) {
  DuckdbQuery select(duckdbByNumbers(data), selection(fixed));
  for ([[maybe_unused]] auto iteration : state) {
    bindFixed(select, data, fixed);
    benchmark::DoNotOptimize(select.sum());
  }
  countRecords(state, data.size());
}

template <void (*slice)(benchmark::State&, const Data&, Fixed), Fixed fixed>
void sliceOf(benchmark::State& state, const Data& data) {
  slice(state, data, fixed);
}

template <Fixed fixed>
Contest slice(const char* operation) {
  return withDuckdb({operation,
                     Clock::processor,
                     {{ours, sliceOf<sliceDatabase, fixed>},
                      {stdMapName, sliceOf<sliceMap<StdMap>, fixed>},
                      {btreeMapName, sliceOf<sliceMap<BtreeMap>, fixed>},
                      {sqliteName, sliceOf<sliceSqlite, fixed>}}},
                    sliceOf<sliceDuckdb, fixed>);
}

}  // namespace

Contest sliceByFirst() {
  return slice<onFirst>("slice, 1st position");
}

Contest sliceBySecond() {
  return slice<onSecond>("slice, 2nd position");
}

Contest sliceByFirstAndThird() {
  return slice<onFirstAndThird>("slice, 1st and 3rd");
}

}  // namespace bench
