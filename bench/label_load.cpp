#include <memory>

#include "bench/contests.h"
#include "bench/database.h"
#include "bench/duckdb.h"
#include "bench/ordered_maps.h"
#include "bench/sqlite.h"

namespace bench {
namespace {

void loadDatabase(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(), [] { return std::make_unique<Database>(); },
      [&](Database& database) {
        void* symbol = database.addParameter("supply");
        ztbRec* const handle = database.handle();
        for (const LabelledRecord& record : data.shuffled) {
          const char* labels[dimension];
          for (std::size_t d = 0; d < dimension; ++d) {
            labels[d] = record.labels[d]->c_str();
          }
          void* found = nullptr;
          database.require(c__ztbmergerecord(handle, symbol, labels, &found));
          database.require(c__ztbsetlevel(handle, found, record.value));
          database.require(c__ztbfreesymboliterator(handle, found));
        }
      });
}

template <class Map>
void loadMap(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(), [] { return std::make_unique<LabelledMap<Map>>(); },
      [&](LabelledMap<Map>& target) {
        for (const LabelledRecord& record : data.shuffled) {
          Key key;
          for (std::size_t d = 0; d < dimension; ++d) {
            const int next = static_cast<int>(target.numbers.size()) + 1;
            key[d] = target.numbers.try_emplace(*record.labels[d], next).first->second;
          }
          target.records[key][0] = record.value;
        }
      });
}

void loadSqlite(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(),
      [] {
        auto database = std::make_unique<Sqlite>();
        database->createLabelTable("supply");
        return database;
      },
      [&](Sqlite& database) {
        database.execute("BEGIN");
        database.addByLabels("supply", data);
        database.execute("COMMIT");
      });
}

void loadDuckdb(benchmark::State& state, const Data& data) {
  measureLoad(
      state, data.size(),
      [] {
        auto database = std::make_unique<Duckdb>();
        database->createLabelTable("supply");
        return database;
      },
      [&](Duckdb& database) { database.addByLabels("supply", data); });
  state.counters.erase(heapCounter);  // its memory comes from an allocator of its own
}

}  // namespace

Contest labelLoad() {
  return withDuckdb({"random load by labels",
                     Clock::processor,
                     {{ours, loadDatabase},
                      {stdMapName, loadMap<StdMap>},
                      {btreeMapName, loadMap<BtreeMap>},
                      {sqliteName, loadSqlite}}},
                    loadDuckdb);
}

}  // namespace bench
