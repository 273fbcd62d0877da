#include <memory>
#include <vector>

#include "bench/contests.h"
#include "bench/exchange_files.h"
#include "bench/ordered_maps.h"

namespace bench {
namespace {

// What the two contests that load records end with: one map for each symbol that was read.
using Symbols = std::vector<StdMap>;

std::vector<std::string> labelsOf(const Sqlite& database) {
  std::vector<std::string> labels;
  Statement select(database, "SELECT label FROM labels ORDER BY number");
  while (select.step()) {
    labels.push_back(select.textAt(0));
  }
  return labels;
}

std::vector<std::string> symbolsOf(const Sqlite& database) {
  std::vector<std::string> names;
  Statement select(database, "SELECT name FROM sqlite_schema WHERE name <> 'labels'");
  while (select.step()) {
    names.push_back(select.textAt(0));
  }
  return names;
}

void readInto(StdMap& map, const Sqlite& database, const std::string& symbol) {
  Statement select(database, "SELECT plant, customer, week, value FROM " + symbol +
                                 " ORDER BY plant, customer, week");
  while (select.step()) {
    map.insert(map.end(),
               {{select.intAt(0), select.intAt(1), select.intAt(2)}, {select.doubleAt(3)}});
  }
}

void readInto(StdMap& map, const Hdf5File& file, const std::string& symbol) {
  Columns columns;
  file.readSymbol(symbol, columns);
  for (std::size_t i = 0; i < columns.values.size(); ++i) {
    map.insert(map.end(),
               {{columns.keys[0][i], columns.keys[1][i], columns.keys[2][i]}, {columns.values[i]}});
  }
}

// Ours, in every iteration: opens the file and does `work(database)`.
template <class Work>
void measureDatabase(benchmark::State& state, const Data& data, std::size_t records, Work&& work) {
  const std::string& file = exchangeFiles(data).rxf;
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    mergeFreedBlocks();
    auto database = std::make_unique<Database>();
    state.ResumeTiming();
    database->require(c__ztbinitfromrxf(database->handle(), file.c_str()));
    work(*database);
    state.PauseTiming();
    database.reset();
    state.ResumeTiming();
  }
  countRecords(state, records);
}

// A rival's, in every iteration: `work(symbols)` opens the file and fills the maps.
template <class Work>
void measureRival(benchmark::State& state, std::size_t records, Work&& work) {
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    mergeFreedBlocks();
    auto symbols = std::make_unique<Symbols>();
    state.ResumeTiming();
    work(*symbols);
    state.PauseTiming();
    symbols.reset();
    state.ResumeTiming();
  }
  countRecords(state, records);
}

std::size_t recordsOfOne(const Data& data) {
  const Share share = shareOf(oneSymbol, data);
  return share.last - share.first;
}

void openDatabase(benchmark::State& state, const Data& data) {
  measureDatabase(state, data, 1, [](Database&) {});
}

void openSqlite(benchmark::State& state, const Data& data) {
  const std::string& file = exchangeFiles(data).sqlite;
  measureRival(state, 1, [&](Symbols&) {
    const Sqlite database(file);
    benchmark::DoNotOptimize(labelsOf(database));
    benchmark::DoNotOptimize(symbolsOf(database));
  });
}

void openHdf5(benchmark::State& state, const Data& data) {
  const std::string& name = exchangeFiles(data).hdf5;
  measureRival(state, 1, [&](Symbols&) {
    const Hdf5File file(name, Hdf5File::Mode::read);
    benchmark::DoNotOptimize(file.readLabels());
    benchmark::DoNotOptimize(file.symbolNames());
  });
}

void readAllIntoDatabase(benchmark::State& state, const Data& data) {
  measureDatabase(state, data, data.size(), [](Database& database) {
    database.require(c__ztbcloserxf(database.handle(), 1));
  });
}

void readAllFromSqlite(benchmark::State& state, const Data& data) {
  const std::string& file = exchangeFiles(data).sqlite;
  measureRival(state, data.size(), [&](Symbols& symbols) {
    const Sqlite database(file);
    benchmark::DoNotOptimize(labelsOf(database));
    for (const std::string& name : symbolsOf(database)) {
      readInto(symbols.emplace_back(), database, name);
    }
  });
}

void readAllFromHdf5(benchmark::State& state, const Data& data) {
  const std::string& name = exchangeFiles(data).hdf5;
  measureRival(state, data.size(), [&](Symbols& symbols) {
    const Hdf5File file(name, Hdf5File::Mode::read);
    benchmark::DoNotOptimize(file.readLabels());
    for (const std::string& symbol : file.symbolNames()) {
      readInto(symbols.emplace_back(), file, symbol);
    }
  });
}

void readOneIntoDatabase(benchmark::State& state, const Data& data) {
  const std::string name = symbolName(oneSymbol);
  measureDatabase(state, data, recordsOfOne(data), [&](Database& database) {
    void* symbol = nullptr;
    void* record = nullptr;
    database.require(c__ztbfindsymbol(database.handle(), name.c_str(), &symbol));
    database.require(c__ztbfindfirstrecord(database.handle(), symbol, &record));
    database.require(c__ztbfreesymboliterator(database.handle(), record));
  });
}

void readOneFromSqlite(benchmark::State& state, const Data& data) {
  const std::string& file = exchangeFiles(data).sqlite;
  measureRival(state, recordsOfOne(data), [&](Symbols& symbols) {
    const Sqlite database(file);
    benchmark::DoNotOptimize(labelsOf(database));
    readInto(symbols.emplace_back(), database, symbolName(oneSymbol));
  });
}

void readOneFromHdf5(benchmark::State& state, const Data& data) {
  const std::string& name = exchangeFiles(data).hdf5;
  measureRival(state, recordsOfOne(data), [&](Symbols& symbols) {
    const Hdf5File file(name, Hdf5File::Mode::read);
    benchmark::DoNotOptimize(file.readLabels());
    readInto(symbols.emplace_back(), file, symbolName(oneSymbol));
  });
}

// Copies tables of the file into a database in memory.
void readFromDuckdb(benchmark::State& state, const Data& data, std::size_t records,
                    const std::vector<std::string>& tables) {
  const std::string& file = exchangeFiles(data).duckdb;
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    auto database = std::make_unique<Duckdb>();
    state.ResumeTiming();
    database->execute("ATTACH '" + file + "' AS file (READ_ONLY)");
    for (const std::string& table : tables) {
      database->execute("CREATE TABLE " + table + " AS SELECT * FROM file." + table);
    }
    state.PauseTiming();
    database.reset();
    state.ResumeTiming();
  }
  countRecords(state, records);
}

void readAllFromDuckdb(benchmark::State& state, const Data& data) {
  std::vector<std::string> tables = {"labels"};
  for (std::size_t i = 0; i < symbolCount; ++i) {
    tables.push_back(symbolName(i));
  }
  readFromDuckdb(state, data, data.size(), tables);
}

void readOneFromDuckdb(benchmark::State& state, const Data& data) {
  readFromDuckdb(state, data, recordsOfOne(data),
                 std::vector<std::string>{"labels", symbolName(oneSymbol)});
}

}  // namespace

Contest exchangeOpen() {
  return {"RXF open, whole file",
          Clock::wall,
          {{ours, openDatabase}, {sqliteName, openSqlite}, {hdf5Name, openHdf5}}};
}

Contest exchangeReadAll() {
  return withDuckdb(
      {"RXF read all",
       Clock::wall,
       {{ours, readAllIntoDatabase}, {sqliteName, readAllFromSqlite}, {hdf5Name, readAllFromHdf5}}},
      readAllFromDuckdb);
}

Contest exchangeReadOne() {
  return withDuckdb(
      {"RXF read 1 of 100",
       Clock::wall,
       {{ours, readOneIntoDatabase}, {sqliteName, readOneFromSqlite}, {hdf5Name, readOneFromHdf5}}},
      readOneFromDuckdb);
}

}  // namespace bench
