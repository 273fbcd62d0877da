#include "bench/growth.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <memory>
#include <numeric>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "bench/database.h"
#include "bench/scratch_folder.h"

namespace bench {
namespace {

constexpr int plants = 20;
constexpr int weeks = 52;

double secondsOn(clockid_t clock) {
  timespec now{};
  clock_gettime(clock, &now);
  return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

// Seconds of the processor, all threads together, and those of the clock on the wall in `wall`.
template <class Work>
double secondsOf(Work&& work, double* wall = nullptr) {
  const double wallStart = secondsOn(CLOCK_MONOTONIC);
  const double start = secondsOn(CLOCK_PROCESS_CPUTIME_ID);
  std::forward<Work>(work)();
  const double seconds = secondsOn(CLOCK_PROCESS_CPUTIME_ID) - start;
  if (wall != nullptr) {
    *wall = secondsOn(CLOCK_MONOTONIC) - wallStart;
  }
  return seconds;
}

// Two cells in five of a cube, told from each other by their place alone, so that no copy of the
// records takes memory.
template <class Visit>
void forEachRecord(std::size_t records, Visit&& visit) {
  const auto customers = static_cast<int>(records * 5 / 2 / (plants * weeks) + 1);
  std::size_t left = records;
  for (int plant = 1; plant <= plants; ++plant) {
    for (int customer = 1; customer <= customers; ++customer) {
      for (int week = 1; week <= weeks; ++week) {
        if ((week + 2 * customer) % 5 < 2 && left > 0) {
          --left;
          visit(std::array<int, dimension>{plant, plants + customer, plants + customers + week},
                static_cast<double>((plant * 7919 + customer * 31 + week) % 100'000) / 100.0);
        }
      }
    }
  }
}

int labelsFor(std::size_t records) {
  return plants + static_cast<int>(records * 5 / 2 / (plants * weeks) + 1) + weeks;
}

// The figures of one size, in seconds.
struct Times {
  double load = 0;
  double walk = 0;
  double slice = 0;
  double write = 0;
  double read = 0;
  double readWall = 0;
  std::size_t stored = 0;
};

// All records of the symbol from the one that was found on.
double sumFrom(const Database& database, void* record) {
  double sum = 0;
  do {
    double level = 0;
    database.require(c__ztbgetlevel(database.handle(), record, &level));
    sum += level;
  } while (c__ztbrecordmovenext(database.handle(), record) == 1);
  database.require(c__ztbfreesymboliterator(database.handle(), record));
  return sum;
}

Times timesOf(std::size_t records) {
  const std::string file = scratchFolder().file("growth.rxf");
  Times times;
  {
    Database database;
    for (int label = 1; label <= labelsFor(records); ++label) {
      int number = 0;
      database.require(
          c__ztbmergeuel(database.handle(), ("label" + std::to_string(label)).c_str(), &number));
    }
    void* symbol = database.addParameter("supply");
    times.load = secondsOf([&] {
      forEachRecord(records, [&](const std::array<int, dimension>& key, double value) {
        ++times.stored;
        std::array<double, 5> values{value};
        database.require(c__ztbmergerecordint(database.handle(), symbol, key.data(), 0, 0, nullptr,
                                              1, values.data()));
      });
    });
    void* record = nullptr;
    times.walk = secondsOf([&] {
      database.require(c__ztbfindfirstrecord(database.handle(), symbol, &record));
      benchmark::DoNotOptimize(sumFrom(database, record));
    });
    times.write =
        secondsOf([&] { database.require(c__ztbwriterxf(database.handle(), file.c_str(), 1)); });
    // The first slice makes a tree of the list that the load made.
    times.slice = secondsOf([&] {
      std::array<const char*, dimension> labels{" ", "label21", " "};
      database.require(
          c__ztbfindfirstrecordslice(database.handle(), symbol, labels.data(), &record));
      benchmark::DoNotOptimize(sumFrom(database, record));
    });
  }
  {
    Database database;
    times.read = secondsOf(
        [&] {
          database.require(c__ztbinitfromrxf(database.handle(), file.c_str()));
          database.require(c__ztbcloserxf(database.handle(), 1));
        },
        &times.readWall);
  }
  std::filesystem::remove(file);
  return times;
}

void printMemory() {
  constexpr std::size_t size = std::size_t{1} << 28;
  std::vector<char> from(size, 'a');
  std::vector<char> to(size, 'b');
  double copy = 1e9;
  for (int run = 0; run < 5; ++run) {
    copy = std::min(copy, secondsOf([&] {
                      std::memcpy(to.data(), from.data(), size);
                      benchmark::DoNotOptimize(to.data());
                    }));
  }
  // One cycle through all elements in random order: each look waits for the one before.
  constexpr std::size_t steps = std::size_t{1} << 22;
  std::vector<std::uint32_t> order(steps * 4);
  std::iota(order.begin(), order.end(), 0U);
  std::mt19937 random(7);
  for (std::size_t i = order.size() - 1; i > 0; --i) {
    std::swap(order[i], order[random() % i]);
  }
  std::uint32_t place = 0;
  const double wait = secondsOf([&] {
    for (std::size_t step = 0; step < steps; ++step) {
      place = order[place];
    }
    benchmark::DoNotOptimize(place);
  });
  std::printf("memory: copies %.1f GB/s, one dependent look at 64 MB %.0f ns\n",
              static_cast<double>(size) / copy * 1e-9, wait / static_cast<double>(steps) * 1e9);
}

}  // namespace

void printGrowth(std::size_t most) {
  constexpr std::size_t fewest = 10'000;
  constexpr std::size_t repeatedBelow = 3'000'000;
  printMemory();
  std::printf("ns of the processor a record, and of the clock on the wall\n");
  std::printf("%9s %8s %8s %8s %8s %8s %9s\n", "records", "load", "walk", "slice", "write", "read",
              "read wall");
  for (std::size_t records = fewest; records <= most; records *= 10) {
    Times best;
    for (std::size_t run = 0; run < std::clamp<std::size_t>(repeatedBelow / records, 1, 20);
         ++run) {
      const Times times = timesOf(records);
      if (run == 0) {
        best = times;
      }
      for (const auto time : {&Times::load, &Times::walk, &Times::slice, &Times::write,
                              &Times::read, &Times::readWall}) {
        best.*time = std::min(best.*time, times.*time);
      }
    }
    const double unit = 1e9 / static_cast<double>(best.stored);
    std::printf("%9zu %8.1f %8.1f %8.2f %8.1f %8.1f %9.1f\n", best.stored, best.load * unit,
                best.walk * unit, best.slice * unit, best.write * unit, best.read * unit,
                best.readWall * unit);
    std::fflush(stdout);
  }
}

}  // namespace bench
