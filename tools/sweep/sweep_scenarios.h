// The scenario file of a sweep: the labels to sweep over, and the parameters that drive the model.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_SCENARIOS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_SCENARIOS_H_

#include <cstddef>
#include <span>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

#include "tools/files/exchange_file.h"

namespace tool {

class ModelSession;

struct Scenario {
  std::string label;
  std::string text;
};

// What the file says of the set swept over. Where there is no set of the name, the labels in the
// first positions that have it as their domain's name stand in for one, in the order of the file's
// labels. Throws Failure if nothing can be swept over.
class SweepScenarios {
 public:
  SweepScenarios(const std::string& path, const std::string& over);

  // The set's name as the file writes it, and its text.
  [[nodiscard]] const std::string& over() const { return over_; }
  [[nodiscard]] const std::string& text() const { return text_; }
  // The elements of the set in their order.
  [[nodiscard]] const std::vector<Scenario>& scenarios() const { return scenarios_; }
  // Names of the parameters whose first domain it is.
  [[nodiscard]] const std::vector<std::string>& driving() const { return driving_; }
  // Names of all other parameters.
  [[nodiscard]] const std::vector<std::string>& others() const { return others_; }

 private:
  void takeLabels(const ExchangeFile& file, const std::string& over);

  std::string over_;
  std::string text_;
  std::vector<Scenario> scenarios_;
  std::vector<std::string> driving_;
  std::vector<std::string> others_;
};

// The records of some scenarios, read into memory in the numbers of a session's database, and
// written into its model scenario by scenario.
class ScenarioData {
 public:
  // Reads what drives the model for scenarios[first, end). Parameters that are not swept over and
  // that the model knows are applied now, once for all. Throws Failure.
  ScenarioData(const std::string& path, const SweepScenarios& scenarios,
               std::span<const std::size_t> chosen, ModelSession& session);

  // Writes the records of the scenario chosen[position] into the model. Throws ztb::Error.
  void apply(std::size_t position);

  // Parameters with records that met no column of the model so far.
  [[nodiscard]] const std::vector<std::string>& unmatched() const { return unmatched_; }

 private:
  struct Records {
    std::vector<int> keys;
    std::vector<double> values;
  };
  struct Parameter {
    ztb::Symbol symbol;
    std::vector<Records> records;  // one for each chosen scenario
  };

  void write(ztb::Symbol symbol, const Records& records);
  int sessionNumber(const ExchangeFile& file, int number);

  ModelSession& session_;
  std::vector<Parameter> parameters_;
  // Numbers of the file's labels in the session's database; 0 where not asked for yet.
  std::vector<int> numbers_;
  std::vector<std::string> unmatched_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_SCENARIOS_H_
