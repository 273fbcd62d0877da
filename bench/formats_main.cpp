// Measures databases of 10^6 records on their way into SQLite and back beside a loop of prepared
// statements that a program would have written itself, to the same table and index, from and to the
// same exchange file; into Arrow batches beside a copy of the same columns by hand; and into
// Parquet files and back beside DuckDB's own copy from one to another.

#include <sqlite3.h>
#include <ztb/arrow.h>
#include <ztb/formats.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>
#include <ztb/arrow.hpp>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "bench/scratch_folder.h"
#include "formats/parquet/duckdb_session.h"

namespace {

constexpr int runs = 9;

void check(int result, sqlite3* file) {
  if (result != SQLITE_OK && result != SQLITE_DONE && result != SQLITE_ROW) {
    throw std::runtime_error(sqlite3_errmsg(file));
  }
}

void run(sqlite3* file, const char* sql) {
  check(sqlite3_exec(file, sql, nullptr, nullptr, nullptr), file);
}

void makeFile(const std::string& path, int records) {
  ztb::Database database;
  ztb::Symbol symbol = database.addParameter("flow", {"from", "to", "year"});
  const int width = 100;
  std::vector<int> labels;
  for (int number = 0; number < 2 * width + records / width / width; ++number) {
    labels.push_back(database.mergeLabel("label " + std::to_string(number)));
  }
  for (int record = 0; record < records; ++record) {
    const std::array<int, 3> keys{labels[static_cast<std::size_t>(record / width / width)],
                                  labels[static_cast<std::size_t>(record / width % width)],
                                  labels[static_cast<std::size_t>(record % width)]};
    symbol.put(keys, record * 0.37);
  }
  database.write(path);
}

void writeByHand(const std::string& from, const std::string& to) {
  std::filesystem::remove(to);
  const ztb::RxfFile source(from);
  sqlite3* file = nullptr;
  check(sqlite3_open(to.c_str(), &file), file);
  run(file, "pragma journal_mode = off; pragma synchronous = off; begin");
  run(file,
      "create table flow(\"from\" text not null, \"to\" text not null, year text not null, "
      "value any) strict");
  sqlite3_stmt* insert = nullptr;
  check(sqlite3_prepare_v2(file, "insert into flow values (?, ?, ?, ?)", -1, &insert, nullptr),
        file);
  ztb::RxfRecords records(source, source.symbol("flow"));
  while (records.next()) {
    for (std::size_t at = 0; at < records.size(); ++at) {
      for (int position = 0; position < 3; ++position) {
        const std::string_view label = source.label(records.keys(position)[at]);
        sqlite3_bind_text(insert, position + 1, label.data(), static_cast<int>(label.size()),
                          SQLITE_STATIC);
      }
      sqlite3_bind_double(insert, 4, records.values(0)[at]);
      check(sqlite3_step(insert), file);
      sqlite3_reset(insert);
    }
  }
  sqlite3_finalize(insert);
  run(file, "create unique index keys on flow(\"from\", \"to\", year); commit");
  sqlite3_close(file);
}

void readByHand(const std::string& from, const std::string& to) {
  sqlite3* file = nullptr;
  check(sqlite3_open_v2(from.c_str(), &file, SQLITE_OPEN_READONLY, nullptr), file);
  sqlite3_stmt* select = nullptr;
  check(sqlite3_prepare_v2(file, "select * from flow", -1, &select, nullptr), file);
  ztb::Database database;
  ztb::Symbol symbol = database.addParameter("flow", {"from", "to", "year"});
  const auto text = [&](int column) {
    return reinterpret_cast<const char*>(sqlite3_column_text(select, column));
  };
  while (sqlite3_step(select) == SQLITE_ROW) {
    symbol.add(text(0), text(1), text(2)).setLevel(sqlite3_column_double(select, 3));
  }
  sqlite3_finalize(select);
  sqlite3_close(file);
  database.write(to);
}

void runJob(const std::vector<std::pair<const char*, std::string>>& options,
            int (*job)(ztbFormatsJob*, const char*), const std::string& path) {
  ztbFormatsJob* handle = nullptr;
  bool good = ztbFormatsCreate(&handle) == 1;
  for (const auto& [name, value] : options) {
    good = good && ztbFormatsOption(handle, name, value.c_str()) == 1;
  }
  good = good && job(handle, path.c_str()) == 1;
  const std::string message = ztbFormatsMessage(handle);
  ztbFormatsFree(&handle);
  if (!good) throw std::runtime_error(message);
}

// All batches of a symbol at once, as a reader of whole tables has them.
void readArrow(const ztb::Symbol& symbol) {
  ztb::ArrowStream stream = ztb::toArrow(symbol);
  std::vector<ArrowArray> batches(1);
  while (stream.get()->get_next(stream.get(), &batches.back()) == 0 &&
         batches.back().release != nullptr) {
    batches.emplace_back();
  }
  for (ArrowArray& batch : batches) {
    if (batch.release != nullptr) batch.release(&batch);
  }
}

// The same columns as a program copies them that has no use for labels.
void copyColumns(const ztb::Symbol& symbol) {
  constexpr int most = 65536;
  struct Block {
    std::array<std::vector<int>, 3> keys;
    std::vector<double> values;
  };
  std::vector<Block> blocks;
  void* record = nullptr;
  c__ztbfindfirstrecord(symbol.database(), symbol.handle(), &record);
  do {
    Block& block = blocks.emplace_back();
    for (std::vector<int>& keys : block.keys) keys.resize(most);
    block.values.resize(most);
    const std::array<int*, 3> keys{block.keys[0].data(), block.keys[1].data(),
                                   block.keys[2].data()};
    double* values = block.values.data();
    ztbReadRecords(symbol.database(), record, most, keys.data(), &values);
  } while (c__ztbrecordmovenext(symbol.database(), record) == 1);
  c__ztbfreesymboliterator(symbol.database(), record);
}

// By the clock, and by the processors' own, which other work of the machine tells less of.
struct Times {
  double wall = 0;
  double processor = 0;
};

Times timed(const std::function<void()>& body) {
  const auto begin = std::chrono::steady_clock::now();
  const std::clock_t used = std::clock();
  body();
  const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - begin;
  return {.wall = passed.count(),
          .processor = static_cast<double>(std::clock() - used) / CLOCKS_PER_SEC};
}

double median(std::vector<double> values) {
  std::ranges::sort(values);
  return values[values.size() / 2];
}

// Prints the median times of some runs of each, in turns, and the medians of their ratios.
class Contests {
 public:
  // Those alone whose name has this in it.
  explicit Contests(std::string part) : part_(std::move(part)) {}

  void run(const std::string& name, const char* rivalName, const std::function<void()>& ours,
           const std::function<void()>& rival) const {
    if (name.find(part_) == std::string::npos) return;
    std::vector<Times> own;
    std::vector<Times> rivals;
    for (int round = 0; round < runs; ++round) {
      own.push_back(timed(ours));
      rivals.push_back(timed(rival));
    }
    std::printf("%-18s beside %-13s", name.c_str(), rivalName);
    for (double Times::*clock : {&Times::wall, &Times::processor}) {
      std::vector<double> mine;
      std::vector<double> theirs;
      std::vector<double> ratios;
      for (std::size_t round = 0; round < own.size(); ++round) {
        mine.push_back(own[round].*clock);
        theirs.push_back(rivals[round].*clock);
        ratios.push_back(mine.back() / theirs.back());
      }
      std::printf("   %s %6.3f s, %6.3f s, %5.2f", clock == &Times::wall ? "clock" : "processor",
                  median(mine), median(theirs), median(ratios));
    }
    std::printf("\n");
  }

 private:
  std::string part_;
};

}  // namespace

int main(int argc, char** argv) {
  try {
    const int records = argc > 1 ? std::atoi(argv[1]) : 1000000;
    const bench::ScratchFolder folder;
    const std::string source = folder.file("a.rxf");
    makeFile(source, records);
    const Contests contests(argc > 2 ? argv[2] : "");
    std::printf("%d records of dimension 3, medians of %d runs in turn\n", records, runs);
    contests.run(
        "SQLite, out", "by hand",
        [&] {
          runJob({{"all", ""}, {"to", folder.file("a.db")}}, ztbFormatsExport, source);
        },
        [&] { writeByHand(source, folder.file("b.db")); });
    // Also where the contest before is left out.
    runJob({{"all", ""}, {"to", folder.file("a.db")}}, ztbFormatsExport, source);
    writeByHand(source, folder.file("b.db"));
    contests.run(
        "SQLite, in", "by hand",
        [&] {
          runJob({{"from", folder.file("a.db")}}, ztbFormatsImport, folder.file("b.rxf"));
        },
        [&] { readByHand(folder.file("b.db"), folder.file("c.rxf")); });
    ztb::Database database = ztb::Database::open(source);
    const ztb::Symbol onMap = database["flow"];
    contests.run(
        "Arrow, of a map", "its columns", [&] { readArrow(onMap); }, [&] { copyColumns(onMap); });
    const ztb::Symbol onVector = database.moveTo(onMap, ztb::Store::vector);
    contests.run(
        "Arrow, of a vector", "its columns", [&] { readArrow(onVector); },
        [&] { copyColumns(onVector); });
    formats::DuckdbSession duckdb;
    const auto copyFrom = [&](const std::string& from, const std::string& to) {
      duckdb.run("copy (from '" + folder.file(from) + "') to '" + folder.file(to) +
                     "' (format parquet, compression zstd)",
                 "the copy");
    };
    // Of a file with the groups of rows that DuckDB makes itself.
    const auto copy = [&] { copyFrom("own.parquet", "copy.parquet"); };
    const auto writeParquet = [&] {
      runJob({{"all", ""}, {"to", folder.file("parquet")}, {"format", "parquet"}}, ztbFormatsExport,
             source);
    };
    writeParquet();
    copyFrom("parquet/flow.parquet", "own.parquet");
    contests.run("Parquet, out", "DuckDB's copy", writeParquet, copy);
    contests.run(
        "Parquet, in", "DuckDB's copy",
        [&] {
          runJob({{"from", folder.file("parquet")}}, ztbFormatsImport, folder.file("d.rxf"));
        },
        copy);
    // The same rows as a table of somebody's, which knows of no database.
    contests.run(
        "Parquet, a table", "DuckDB's copy",
        [&] {
          runJob({{"from", folder.file("parquet/flow.parquet")},
                  {"parameter", "flow(from, to, year) = value"}},
                 ztbFormatsImport, folder.file("e.rxf"));
        },
        copy);
  } catch (const std::exception& error) {
    std::fprintf(stderr, "%s\n", error.what());
    return EXIT_FAILURE;
  }
}
