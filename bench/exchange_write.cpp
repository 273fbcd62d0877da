#include <filesystem>
#include <string>

#include "bench/contests.h"
#include "bench/exchange_files.h"
#include "bench/scratch_folder.h"

namespace bench {
namespace {

// Times `write(file)` on a file that doesn't exist, in every iteration.
template <class Write>
void measureWrite(benchmark::State& state, const Data& data, const char* name, Write&& write) {
  const std::string file = scratchFolder().file(name);
  for ([[maybe_unused]] auto iteration : state) {
    state.PauseTiming();
    std::filesystem::remove(file);
    state.ResumeTiming();
    write(file);
  }
  state.counters[fileCounter] = static_cast<double>(std::filesystem::file_size(file));
  countRecords(state, data.size());
  std::filesystem::remove(file);
}

void writeRxf(benchmark::State& state, const Data& data) {
  const Database& database = exchangeDatabase(data);
  measureWrite(state, data, "write.rxf", [&](const std::string& file) {
    database.require(c__ztbwriterxf(database.handle(), file.c_str(), 1));
  });
}

void writeSqlite(benchmark::State& state, const Data& data) {
  measureWrite(state, data, "write.sqlite",
               [&](const std::string& file) { writeSqliteFile(file, data); });
}

void writeHdf5(benchmark::State& state, const Data& data) {
  measureWrite(state, data, "write.h5",
               [&](const std::string& file) { writeHdf5File(file, data); });
}

void writeDuckdb(benchmark::State& state, const Data& data) {
  Duckdb& database = exchangeDuckdb(data);
  measureWrite(state, data, "write.duckdb",
               [&](const std::string& file) { writeDuckdbFile(database, file); });
}

}  // namespace

Contest exchangeWrite() {
  return withDuckdb({"RXF write",
                     Clock::wall,
                     {{ours, writeRxf}, {sqliteName, writeSqlite}, {hdf5Name, writeHdf5}}},
                    writeDuckdb);
}

}  // namespace bench
