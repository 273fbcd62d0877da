// The file formats alone: records come out of the file one after the other and are summed, with no
// store to fill. Ours is the exchange-file library, called as the core calls it.

#include <stdexcept>
#include <string>

#include "bench/contests.h"
#include "bench/exchange_files.h"

extern "C" {
void XCreate(void** object);
void XFree(void** object);
int C__rxfOpenRead(void* rxf, const char* fileName, int* errorNumber);
int C__rxfDataReadRawStart(void* rxf, int symbolNumber, int* recordCount);
int C__rxfDataReadRaw(void* rxf, int* keys, double* values, int* firstChanged);
int C__rxfDataReadDone(void* rxf);
int C__rxfClose(void* rxf);
}

namespace bench {
namespace {

void streamRxf(benchmark::State& state, const Data& data) {
  const std::string& file = exchangeFiles(data).rxf;
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    int error = 0;
    void* rxf = nullptr;
    XCreate(&rxf);
    C__rxfOpenRead(rxf, file.c_str(), &error);
    if (error != 0) {
      throw std::runtime_error("cannot open " + file);
    }
    for (std::size_t symbol = 1; symbol <= symbolCount; ++symbol) {
      int count = 0;
      int firstChanged = 0;
      int keys[dimension];
      double values[5];
      C__rxfDataReadRawStart(rxf, static_cast<int>(symbol), &count);
      for (int record = 0; record < count; ++record) {
        C__rxfDataReadRaw(rxf, keys, values, &firstChanged);
        sum += values[0] + keys[0] + keys[1] + keys[2];
      }
      C__rxfDataReadDone(rxf);
    }
    C__rxfClose(rxf);
    XFree(&rxf);
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

void streamSqlite(benchmark::State& state, const Data& data) {
  const std::string& file = exchangeFiles(data).sqlite;
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    const Sqlite database(file);
    for (std::size_t symbol = 0; symbol < symbolCount; ++symbol) {
      Statement select(database, "SELECT plant, customer, week, value FROM " + symbolName(symbol) +
                                     " ORDER BY plant, customer, week");
      while (select.step()) {
        sum += select.doubleAt(3) + select.intAt(0) + select.intAt(1) + select.intAt(2);
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

void streamHdf5(benchmark::State& state, const Data& data) {
  const std::string& name = exchangeFiles(data).hdf5;
  for ([[maybe_unused]] auto iteration : state) {
    double sum = 0;
    const Hdf5File file(name, Hdf5File::Mode::read);
    Columns columns;
    for (std::size_t symbol = 0; symbol < symbolCount; ++symbol) {
      file.readSymbol(symbolName(symbol), columns);
      for (std::size_t i = 0; i < columns.values.size(); ++i) {
        sum += columns.values[i] + columns.keys[0][i] + columns.keys[1][i] + columns.keys[2][i];
      }
    }
    benchmark::DoNotOptimize(sum);
  }
  countRecords(state, data.size());
}

}  // namespace

Contest exchangeStream() {
  return {"RXF read, no store",
          Clock::wall,
          {{ours, streamRxf}, {sqliteName, streamSqlite}, {hdf5Name, streamHdf5}}};
}

}  // namespace bench
