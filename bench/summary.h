// Turns the measurements into one table: operation, records, the time of a record of the reference,
// which is the contestant that was registered first, each other's and its ratio to that; the same
// for memory and file bytes of a record.
#ifndef ZTB_BENCH_SUMMARY_H_
#define ZTB_BENCH_SUMMARY_H_

#include <benchmark/benchmark.h>

#include <cstdint>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace bench {

// Takes the best of a benchmark's repetitions: the machine can only add to the time of the work.
class SummaryReporter final : public benchmark::BenchmarkReporter {
 public:
  // `reference` heads the column of the contestant that stands first.
  explicit SummaryReporter(std::string reference) : reference_(std::move(reference)) {}

  bool ReportContext(const Context& context) override;
  void ReportRuns(const std::vector<Run>& runs) override;
  void Finalize() override;

 private:
  // What was measured of one contestant, per record; a negative figure is none.
  struct Figures {
    std::string contestant;
    std::int64_t place = 0;       // in the order of registration, in which benchmarks need not run
    double wallNanoseconds = -1;  // only of operations on files
    double nanoseconds = -1;      // of the processor
    double heapBytes = -1;
    double fileBytes = -1;
  };
  struct Row {
    std::string operation;
    std::string records;
    std::vector<Figures> contestants;
  };

  Figures& figuresOf(const std::string& benchmarkName, std::int64_t place);
  void sort();
  void printRow(const Row& row, const char* what, double Figures::*figure);

  std::string reference_;
  std::vector<Row> rows_;
};

}  // namespace bench

#endif  // ZTB_BENCH_SUMMARY_H_
