#include "bench/exchange_files.h"

#include <cstdio>
#include <filesystem>
#include <memory>

#include "bench/contest.h"
#include "bench/scratch_folder.h"

namespace bench {

std::string symbolName(std::size_t symbol) {
  return "supply" + std::to_string(symbol);
}

Share shareOf(std::size_t symbol, const Data& data) {
  return {data.size() * symbol / symbolCount, data.size() * (symbol + 1) / symbolCount};
}

Database& exchangeDatabase(const Data& data) {
  static Shared<Database> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = std::make_unique<Database>();
    database->addLabels(wanted);
    for (std::size_t i = 0; i < symbolCount; ++i) {
      const Share share = shareOf(i, wanted);
      database->addRecords(database->addParameter(symbolName(i).c_str()), wanted, share.first,
                           share.last);
    }
    return database;
  });
}

void writeSqliteFile(const std::string& file, const Data& data) {
  Sqlite database(file);
  database.execute("BEGIN");
  database.execute("CREATE TABLE labels(number INTEGER PRIMARY KEY, label TEXT)");
  {
    Statement insert(database, "INSERT INTO labels VALUES(?1, ?2)");
    for (std::size_t i = 0; i < data.labels.size(); ++i) {
      insert.bind(1, static_cast<int>(i) + 1);
      insert.bind(2, data.labels[i]);
      insert.step();
      insert.reset();
    }
  }
  for (std::size_t i = 0; i < symbolCount; ++i) {
    const Share share = shareOf(i, data);
    database.createNumberTable(symbolName(i));
    database.addByNumbers(symbolName(i), data, share.first, share.last);
  }
  database.execute("COMMIT");
}

void writeHdf5File(const std::string& file, const Data& data) {
  Hdf5File target(file, Hdf5File::Mode::create);
  target.writeLabels(data.labels);
  for (std::size_t i = 0; i < symbolCount; ++i) {
    const Share share = shareOf(i, data);
    Columns columns;
    for (std::size_t record = share.first; record < share.last; ++record) {
      for (std::size_t d = 0; d < dimension; ++d) {
        columns.keys[d].push_back(data.keys[record][d]);
      }
      columns.values.push_back(data.values[record]);
    }
    target.writeSymbol(symbolName(i), columns);
  }
}

Duckdb& exchangeDuckdb(const Data& data) {
  static Shared<Duckdb> shared;
  return shared.get(data, [](const Data& wanted) {
    auto database = std::make_unique<Duckdb>();
    database->addLabels(wanted);
    for (std::size_t i = 0; i < symbolCount; ++i) {
      const Share share = shareOf(i, wanted);
      database->createNumberTable(symbolName(i));
      database->addByNumbers(symbolName(i), wanted, share.first, share.last);
    }
    return database;
  });
}

void writeDuckdbFile(Duckdb& database, const std::string& file) {
  database.execute("ATTACH '" + file + "' AS file");
  database.execute("COPY FROM DATABASE memory TO file");
  database.execute("DETACH file");
}

const ExchangeFiles& exchangeFiles(const Data& data) {
  static Shared<ExchangeFiles> shared;
  return shared.get(data, [](const Data& wanted) {
    const ScratchFolder& folder = scratchFolder();
    auto files = std::make_unique<ExchangeFiles>(
        ExchangeFiles{folder.file("read.rxf"), folder.file("read.sqlite"), folder.file("read.h5"),
                      folder.file("read.duckdb")});
    const Database& database = exchangeDatabase(wanted);
    database.require(c__ztbwriterxf(database.handle(), files->rxf.c_str(), 1));
    std::filesystem::remove(files->sqlite);
    writeSqliteFile(files->sqlite, wanted);
    writeHdf5File(files->hdf5, wanted);
    if (Duckdb::isThere()) {
      std::filesystem::remove(files->duckdb);
      writeDuckdbFile(exchangeDuckdb(wanted), files->duckdb);
    }
    return files;
  });
}

}  // namespace bench
