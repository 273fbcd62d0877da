#include <algorithm>
#include <memory>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/duckdb.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

void lookUpInDatabase(benchmark::State& state, const Data& data) {
  const FilledDatabase& filled = filledDatabase(data);
  const Database& database = filled.database;
  ztbRec* const handle = database.handle();
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    for (const LabelledRecord& record : data.shuffled) {
      const char* labels[dimension];
      for (std::size_t d = 0; d < dimension; ++d) {
        labels[d] = record.labels[d]->c_str();
      }
      void* found = nullptr;
      double level = 0;
      database.require(c__ztbfindrecord(handle, filled.symbol, labels, &found));
      database.require(c__ztbgetlevel(handle, found, &level));
      database.require(c__ztbfreesymboliterator(handle, found));
      sum += level;
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

template <class Map>
void lookUpInMap(benchmark::State& state, const Data& data) {
  const LabelledMap<Map>& filled = filledMap<Map>(data);
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    for (const LabelledRecord& record : data.shuffled) {
      Key key;
      for (std::size_t d = 0; d < dimension; ++d) {
        key[d] = filled.numbers.find(*record.labels[d])->second;
      }
      sum += filled.records.find(key)->second[0];
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

void lookUpInSqlite(benchmark::State& state, const Data& data) {
  Statement select(filledByLabels(data),
                   "SELECT value FROM supply WHERE plant = ?1 AND customer = ?2 AND week = ?3");
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    for (const LabelledRecord& record : data.shuffled) {
      for (std::size_t d = 0; d < dimension; ++d) {
        select.bind(static_cast<int>(d) + 1, *record.labels[d]);
      }
      select.step();
      sum += select.doubleAt(0);
      select.reset();
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

// A query takes so long that a thousand of them tell as much.
void lookUpInDuckdb(benchmark::State& state, const Data& data) {
  const std::size_t sought = std::min<std::size_t>(1000, data.size());
  DuckdbQuery select(duckdbByLabels(data),
                     "SELECT value FROM supply WHERE plant = ?1 AND customer = ?2 AND week = ?3");
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    for (std::size_t i = 0; i < sought; ++i) {
      for (std::size_t d = 0; d < dimension; ++d) {
        select.bind(static_cast<int>(d) + 1, *data.shuffled[i].labels[d]);
      }
      sum += select.sum();
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, sought);
}

}  // namespace

Contest labelLookup() {
  return withDuckdb({"lookup by labels",
                     Clock::processor,
                     {{ours, lookUpInDatabase},
                      {stdMapName, lookUpInMap<StdMap>},
                      {btreeMapName, lookUpInMap<BtreeMap>},
                      {sqliteName, lookUpInSqlite}}},
                    lookUpInDuckdb);
}

}  // namespace bench
