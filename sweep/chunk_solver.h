// Solves chunks of neighbouring scenarios on one live model, each as a function of its scenarios
// and of what the sweep is made from alone.
//
// For each chunk the model is put back to how it was opened and solved by a new solver, which
// starts from the basis of the unchanged model where the solver has such a thing, and otherwise
// from nothing; within the chunk it goes on from each scenario to the next.
#ifndef ZTB_SWEEP_CHUNK_SOLVER_H_
#define ZTB_SWEEP_CHUNK_SOLVER_H_

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "sweep/chunk_data.h"
#include "sweep/options.h"
#include "sweep/part_results.h"
#include "sweep/scenario_file.h"
#include "tools/models/model_fills.h"
#include "tools/models/model_session.h"

namespace sweep {

class ChunkSolver {
 public:
  // Is told of each scenario that is through, and why its solve failed, if it did.
  using Done = std::function<void(int scenario, const Outcome& outcome, const std::string& reason)>;

  // Opens the model. `inputs` is what the parts are marked with. Throws Failure.
  ChunkSolver(const Options& options, const ScenarioFile& scenarios, std::string inputs);
  ChunkSolver(const ChunkSolver&) = delete;
  ChunkSolver& operator=(const ChunkSolver&) = delete;

  // What there is to be told of the model.
  [[nodiscard]] std::vector<std::string> notes() const;
  tool::ModelSession& session() { return session_; }
  ChunkData& data() { return data_; }
  [[nodiscard]] const std::string& solver() const { return solver_; }

  // Has chunks start from the basis in this file. Where there is no such file, the unchanged model
  // is solved and the file made, by one of the processes that want it; it says so where there is no
  // basis to be had.
  void prepare(const std::string& basisFile);

  // Puts the model back, and applies what holds for all scenarios.
  void beginChunk(int first, int end);
  // Solves the scenarios from `first` to before `end`, and keeps their results for publish().
  // Those of `skipped` have failed for the reason given there and are not solved. False when
  // stop() came before the end; the results of the scenarios before that are kept.
  bool solve(int first, int end, const std::map<int, std::string>& skipped, const Done& done);
  // The scenarios whose results were kept since the last publish().
  [[nodiscard]] std::pair<int, int> kept() const { return {first_, end_}; }
  // Publishes them as a file.
  void publish(const std::string& file);

  // Ends the running solve and the chunk; may be called by a signal handler.
  void stop();

 private:
  void addReport(const std::string& name);
  // Solves the unchanged model and leaves its basis; false when stop() came before that.
  bool makeBasis(const std::string& basisFile);
  void solveModel();
  [[nodiscard]] Outcome outcomeOf(int scenario, std::string& reason);

  const Options& options_;
  const ScenarioFile& scenarios_;
  std::string inputs_;
  std::optional<tool::ModelFills> fills_;
  tool::ModelSession session_;
  std::string solver_;
  std::vector<std::pair<std::string, int>> reports_;
  ChunkData data_;
  std::string basisFile_;  // empty: there is none
  bool isLinear_ = false;  // as it was opened
  bool isUsed_ = false;    // the model is not as it was opened
  std::unique_ptr<PartResults> results_;
  int first_ = 0;
  int end_ = 0;
  std::atomic<bool> stopped_ = false;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_CHUNK_SOLVER_H_
