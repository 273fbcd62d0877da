// Results of scenarios in a database: what the result file of a sweep and its parts hold.
//
//   SET(*)                    the set swept over
//   sweep_inputs              a set without elements; its text says what the results come from
//   sweep_status(SET)         model status of each scenario that was run
//   sweep_solve_status(SET)   its solve status
//   sweep_objective(SET)      objective of each scenario with a solution
//   SYM_level(SET, ...), SYM_marginal(SET, ...)   of each symbol reported
#ifndef ZTB_TOOLS_SWEEP_SWEEP_RESULTS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_RESULTS_H_

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/files/exchange_file.h"

namespace tool {

struct ScenarioOutcome {
  int status = 0;
  int solveStatus = 0;
  std::optional<double> objective = std::nullopt;
};

class SweepResults {
 public:
  // No results yet. `text` is that of the set. Throws Failure for a name that is taken.
  SweepResults(const std::string& over, const std::string& text, const std::string& inputs);
  SweepResults(const SweepResults&) = delete;
  SweepResults& operator=(const SweepResults&) = delete;
  ~SweepResults();

  // The text of sweep_inputs in a file; throws Failure if the file is no sweep's.
  static std::string inputsOf(const std::string& file);

  // Makes SYM_level and SYM_marginal for a symbol of this dimension. Throws Failure if the names
  // are too long or taken.
  void addReport(const std::string& name, int dimension);
  // Makes an element of the set swept over.
  void addScenario(const std::string& label, const std::string& text);

  void setOutcome(const std::string& label, const ScenarioOutcome& outcome);
  // Takes levels and marginals, zeros too, of a reported symbol of the solved database,
  // which is the same one in each call.
  void takeSolution(const std::string& label, const std::string& name, const ztb::Database& solved);
  // Adds all results of another sweep's file.
  void absorb(const std::string& path);

  // Outcome of each scenario that has one, by label.
  [[nodiscard]] std::map<std::string, ScenarioOutcome> outcomes() const;

  // Removes all results; names and the set stay.
  void clear();
  // Publishes the file as a whole.
  void write(const std::string& file);

 private:
  ztb::Symbol add(const std::string& name, int dimension);
  // Label numbers of another database in this one.
  class Labels;
  void absorbParameter(const ExchangeFile& file, const FileSymbol& source, Labels& labels);

  ztb::Database database_;
  ztb::Symbol set_;
  ztb::Symbol status_;
  ztb::Symbol solveStatus_;
  ztb::Symbol objective_;
  std::vector<ztb::Symbol> reported_;
  std::unique_ptr<Labels> solvedLabels_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_RESULTS_H_
