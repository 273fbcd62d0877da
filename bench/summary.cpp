#include "bench/summary.h"

#include <algorithm>
#include <cstdio>
#include <stdexcept>

#include "bench/contest.h"

namespace bench {
namespace {

void lower(double& figure, double candidate) {
  if (figure < 0 || candidate < figure) {
    figure = candidate;
  }
}

}  // namespace

bool SummaryReporter::ReportContext(const Context& context) {
  PrintBasicContext(&GetErrorStream(), context);
  return true;
}

SummaryReporter::Figures& SummaryReporter::figuresOf(const std::string& benchmarkName,
                                                     std::int64_t place) {
  const std::size_t afterOperation = benchmarkName.find('/');
  const std::size_t afterContestant = benchmarkName.find('/', afterOperation + 1);
  const std::string operation = benchmarkName.substr(0, afterOperation);
  const std::string contestant =
      benchmarkName.substr(afterOperation + 1, afterContestant - afterOperation - 1);
  const std::string records = benchmarkName.substr(afterContestant + 1);
  auto row = std::ranges::find_if(rows_, [&](const Row& candidate) {
    return candidate.operation == operation && candidate.records == records;
  });
  if (row == rows_.end()) {
    row = rows_.insert(row, {operation, records, {}});
  }
  auto figures = std::ranges::find(row->contestants, contestant, &Figures::contestant);
  if (figures == row->contestants.end()) {
    figures = row->contestants.insert(figures, {.contestant = contestant, .place = place});
  }
  return *figures;
}

void SummaryReporter::ReportRuns(const std::vector<Run>& runs) {
  for (const Run& run : runs) {
    if (run.run_type != Run::RT_Iteration) {
      continue;
    }
    if (run.error_occurred) {
      throw std::runtime_error(run.benchmark_name() + ": " + run.error_message);
    }
    std::fprintf(stderr, "%s\n", run.benchmark_name().c_str());
    Figures& figures = figuresOf(run.run_name.function_name, run.family_index);
    const double records = run.counters.at(recordsCounter);
    lower(figures.nanoseconds, run.GetAdjustedCPUTime() / records);
    if (run.run_name.time_type == "real_time") {
      lower(figures.wallNanoseconds, run.GetAdjustedRealTime() / records);
    }
    if (const auto heap = run.counters.find(heapCounter); heap != run.counters.end()) {
      lower(figures.heapBytes, heap->second / records);
    }
    if (const auto file = run.counters.find(fileCounter); file != run.counters.end()) {
      lower(figures.fileBytes, file->second / records);
    }
  }
}

void SummaryReporter::printRow(const Row& row, const char* what, double Figures::*figure) {
  const double reference = row.contestants.front().*figure;
  if (reference < 0) {
    return;
  }
  std::printf("%-24s %9s  %-13s %10.2f", row.operation.c_str(), row.records.c_str(), what,
              reference);
  for (std::size_t i = 1; i < row.contestants.size(); ++i) {
    const Figures& rival = row.contestants[i];
    if (rival.*figure >= 0) {
      std::printf("  %15s %10.2f %7.2f", rival.contestant.c_str(), rival.*figure,
                  rival.*figure / reference);
    }
  }
  std::printf("\n");
}

void SummaryReporter::sort() {
  for (Row& row : rows_) {
    std::ranges::sort(row.contestants, {}, &Figures::place);
  }
  std::ranges::sort(rows_, {}, [](const Row& row) { return row.contestants.front().place; });
}

void SummaryReporter::Finalize() {
  sort();
  std::printf("%-24s %9s  %-13s %10s  %s\n", "operation", "records", "per record",
              reference_.c_str(), "each other: its figure, and its figure divided by that");
  for (const Row& row : rows_) {
    printRow(row, "ns", &Figures::nanoseconds);
    printRow(row, "ns with waits", &Figures::wallNanoseconds);
    printRow(row, "memory bytes", &Figures::heapBytes);
    printRow(row, "file bytes", &Figures::fileBytes);
  }
}

}  // namespace bench
