// What a solve left, told to programs: as JSON and as CSV.
#ifndef ZTB_TOOLS_MODELS_SOLVE_REPORT_H_
#define ZTB_TOOLS_MODELS_SOLVE_REPORT_H_

#include <chrono>
#include <optional>
#include <string>
#include <vector>
#include <ztb/model.hpp>

#include "tools/models/model_session.h"

namespace tool {

// Tells of a running solve the best objective, the bound, the gap of the two and the seconds, as
// far as they are known: "best 9.1, bound 9.5, gap 4.4 %, 12 s".
class SolveProgress {
 public:
  explicit SolveProgress(const ztb::Model& model) : model_(&model) {}
  std::string operator()() const;

 private:
  const ztb::Model* model_;
  std::chrono::steady_clock::time_point begin_ = std::chrono::steady_clock::now();
};

// The distance of a point from the best bound, as a share of its objective; nothing without both.
std::optional<double> gapOf(const ztb::Model& model);

struct SolveReport {
  ModelSession& session;
  std::string solver;
  bool started = false;  // with levels to begin from
  std::string basis;     // whether a saved one was taken; empty where none was named
  // Why there is no solution, where that was asked for.
  std::optional<ztb::Model::Conflict> conflict;
  // How far costs and right-hand sides can move, where that was asked for.
  std::optional<ztb::Model::Ranging> ranging;
  // Variables and equations whose records are told; none where there is no solution.
  std::vector<ztb::Symbol> shown;
};

// Prints one JSON object with everything; records of a symbol stand there as in `ztb show --json`.
void printSolveJson(const SolveReport& report);

// Prints a header and a line with what the solve left.
void printSolveCsv(const SolveReport& report);

// Prints the records of one symbol, as `ztb show --csv` does.
void printRecordsCsv(const ztb::Symbol& symbol);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_SOLVE_REPORT_H_
