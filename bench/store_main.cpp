// Measures the three record stores beside each other and beside what a program would use instead.

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/store_contests.h"
#include "bench/summary.h"

namespace {

constexpr double fewestRecords = 1e3;
constexpr double mostRecords = 1e7;

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "The record stores beside each other and beside standard containers, driven by their\n"
      "classes. An operation is named with its dimension and values a record, as 3d1v. Each row\n"
      "gives the figure of the reference for a record - std::map, the plain arrays for a walk,\n"
      "the tree map for a lazy load - then each other's figure and its ratio to that.");
  std::vector<double> sizes = {1e4, 1e5, 1e6};
  std::vector<int> dimensions = {1, 3, 6, 20};
  std::vector<int> slots = {1, 5};
  std::string filter = ".";
  app.add_option("--sizes", sizes, "Record counts, such as 1e4,1e7")
      ->delimiter(',')
      ->check(CLI::Range(fewestRecords, mostRecords))
      ->capture_default_str();
  app.add_option("--dimensions", dimensions, "Dimensions")
      ->delimiter(',')
      ->check(CLI::IsMember({1, 3, 6, 20}))
      ->capture_default_str();
  app.add_option("--values", slots, "Values of a record")
      ->delimiter(',')
      ->check(CLI::IsMember({1, 5}))
      ->capture_default_str();
  app.add_option("--filter", filter, "Only the operations that match this regular expression")
      ->capture_default_str();
  CLI11_PARSE(app, argc, argv);
  try {
    bench::keepFreedMemory();
    std::string name = "ztb_store_bench";
    std::string filterOption = "--benchmark_filter=" + filter;
    std::vector<char*> arguments = {name.data(), filterOption.data()};
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    for (const double size : sizes) {
      for (const int dim : dimensions) {
        for (const int slotsOfRecord : slots) {
          const bench::StoreShape shape{static_cast<std::size_t>(dim),
                                        static_cast<std::size_t>(slotsOfRecord),
                                        static_cast<std::size_t>(size)};
          bench::registerStoreContests(shape);
          bench::registerLazyLoad(shape);
        }
      }
    }
    bench::SummaryReporter reporter("reference");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "ztb_store_bench: " << e.what() << '\n';
    return 1;
  }
}
