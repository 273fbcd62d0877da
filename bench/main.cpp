// Measures operations of the library beside what a user would use instead, and prints the ratios.

#include <benchmark/benchmark.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "bench/contest.h"
#include "bench/contests.h"
#include "bench/growth.h"
#include "bench/shapes.h"
#include "bench/summary.h"

namespace {

constexpr double fewestRecords = 1e3;
constexpr double mostRecords = 1e8;

// Hands the options that we offer on to the benchmark library.
void initialize(const std::string& filter, const std::string& jsonFile) {
  std::vector<std::string> words = {"ztb_bench", "--benchmark_filter=" + filter};
  if (!jsonFile.empty()) {
    words.push_back("--benchmark_out=" + jsonFile);
    words.emplace_back("--benchmark_out_format=json");
  }
  std::vector<char*> arguments;
  for (std::string& word : words) {
    arguments.push_back(word.data());
  }
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App app(
      "Operations of ZTB beside what a program would use instead, on records of dimension "
      "3.\nEach row of the table gives our figure of a record, then each rival's figure "
      "and that figure\ndivided by ours: above 1, we are faster or smaller.");
  std::vector<double> sizes = {1e4, 1e5, 1e6};
  bool growth = false;
  std::string jsonFile;
  std::string filter = ".";
  app.add_option("--sizes", sizes, "Record counts, such as 1e4,1e5")
      ->delimiter(',')
      ->check(CLI::Range(fewestRecords, mostRecords))
      ->capture_default_str();
  app.add_option("--filter", filter, "Only the operations that match this regular expression")
      ->capture_default_str();
  app.add_option("--json", jsonFile, "Also write every measurement to this file");
  app.add_flag("--growth", growth,
               "Instead, how load, walk, files and slices grow from 10^4 records to the largest of "
               "--sizes,\nbeside the memory bandwidth of the machine");
  CLI11_PARSE(app, argc, argv);
  try {
    if (growth) {
      bench::printGrowth(static_cast<std::size_t>(*std::ranges::max_element(sizes)));
      return 0;
    }
    bench::keepFreedMemory();
    initialize(filter, jsonFile);
    for (const double size : sizes) {
      for (const auto& contest :
           {bench::sortedLoad, bench::labelLoad, bench::labelLookup, bench::walk,
            bench::sliceByFirst, bench::sliceBySecond, bench::sliceByFirstAndThird,
            bench::clearAndFree, bench::exchangeWrite, bench::exchangeOpen, bench::exchangeReadAll,
            bench::exchangeReadOne, bench::exchangeStream, bench::recordsToCube,
            bench::cubeToRecords, bench::nonzerosToRecords, bench::copyAcross,
            bench::domainCheck}) {
        bench::registerContest(contest(), static_cast<std::size_t>(size));
      }
      bench::registerShapeContests(static_cast<std::size_t>(size));
    }
    bench::SummaryReporter reporter(bench::ours);
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
  } catch (const std::exception& e) {
    std::cerr << "ztb_bench: " << e.what() << '\n';
    return 1;
  }
}
