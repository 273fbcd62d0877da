#include <memory>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/duckdb.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

void loadDatabase(benchmark::State& state, const Data& data) {
  struct Target {
    Database database;
    void* symbol = nullptr;
  };
  measureLoad(
      state, data.size(),
      [&] {
        auto target = std::make_unique<Target>();
        target->database.addLabels(data);
        target->symbol = target->database.addParameter("supply");
        return target;
      },
      [&](Target& target) { target.database.addRecords(target.symbol, data, 0, data.size()); });
}

template <class Map>
void loadMap(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(), [] { return std::make_unique<Map>(); },
      [&](Map& map) { addInOrder(map, data, 0, data.size()); });
}

void loadSqlite(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(),
      [] {
        auto database = std::make_unique<Sqlite>();
        database->createNumberTable("supply");
        return database;
      },
      [&](Sqlite& database) {
        database.execute("BEGIN");
        database.addByNumbers("supply", data, 0, data.size());
        database.execute("COMMIT");
      });
}

void loadDuckdb(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(),
      [] {
        auto database = std::make_unique<Duckdb>();
        database->createNumberTable("supply");
        return database;
      },
      [&](Duckdb& database) { database.addByNumbers("supply", data, 0, data.size()); });
  state.counters.erase(heapCounter);  // its memory comes from an allocator of its own
}

}  // namespace

Contest sortedLoad() {
  return withDuckdb({"sorted load by numbers",
                     Clock::processor,
                     {{ours, loadDatabase},
                      {stdMapName, loadMap<StdMap>},
                      {btreeMapName, loadMap<BtreeMap>},
                      {sqliteName, loadSqlite}}},
                    loadDuckdb);
}

}  // namespace bench
