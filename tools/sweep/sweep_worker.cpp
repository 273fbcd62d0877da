#include "tools/sweep/sweep_worker.h"

#include <fmt/format.h>

#include <chrono>
#include <exception>
#include <optional>

#include "tools/models/model_session.h"
#include "tools/sweep/sweep_inputs.h"
#include "tools/sweep/sweep_parts.h"
#include "tools/sweep/sweep_results.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kScenariosInPart = 100;
constexpr std::chrono::seconds kTimeOfPart{5};
// Publishing waits for the disk; it takes at most about a tenth of the time.
constexpr int kRestBetweenParts = 10;

// No scenario can be solved.
class NoSuchSolver : public Failure {
 public:
  using Failure::Failure;
};

class SweepWorker {
 public:
  SweepWorker(const SweepOptions& options, const SweepScenarios& scenarios,
              const std::string& inputs, const SweepWork& work, const WorkerChannel& channel)
      : options_(options),
        scenarios_(scenarios),
        inputs_(inputs),
        work_(work),
        channel_(channel),
        fills_(fillsOf(options.data, options.model)),
        session_(options.model, options.modelData, fills_ ? &*fills_ : nullptr, options.drives),
        solver_(options.solver.empty() ? session_.standardSolverOfParameters() : options.solver),
        results_(scenarios.over(), scenarios.text(), inputs),
        parts_(options.out),
        part_(work.firstPart) {
    for (const std::size_t place : work.chosen) {
      const Scenario& scenario = scenarios.scenarios()[place];
      results_.addScenario(scenario.label, scenario.text);
    }
    for (const std::string& name : options.reports) {
      addReport(name);
    }
    if (work.reportsNotes) {
      session_.reportNotes(false);
      if (fills_) fills_->reportLeft();
    }
  }

  void run() {
    ScenarioData data(options_.scenarios, scenarios_, work_.chosen, session_);
    requireSameInputs();
    for (std::size_t place = 0; place < work_.chosen.size(); ++place) {
      if (place == work_.publishBefore && unpublished_ > 0) {
        publish();
      }
      runScenario(data, place);
      channel_.send(SweepMessage::done);
      ++unpublished_;
      if (isPartDue()) {
        publish();
      }
    }
    if (unpublished_ > 0) {
      publish();
    }
    for (const std::string& name : data.unmatched()) {
      channel_.send(SweepMessage::unmatched, name);
    }
  }

 private:
  // This worker opened the files by itself, and maybe long after the sweep began: others may stand
  // in their places, and the ones of before again at the end.
  void requireSameInputs() const {
    const std::string difference = sweepInputsDifference(sweepInputs(options_), inputs_);
    if (!difference.empty()) {
      throw Failure(withFile(options_.out,
                             fmt::format("{} stood in its place while the sweep ran", difference)));
    }
  }

  void addReport(const std::string& name) {
    const auto symbol = session_.database().findSymbol(name);
    if (!symbol ||
        (symbol->type() != ztb::Type::variable && symbol->type() != ztb::Type::equation)) {
      throw Failure(withFile(
          session_.file(),
          fmt::format("the model has no variable or equation {}{}", name, session_.solvedText())));
    }
    reports_.push_back(symbol->name().str());
    results_.addReport(reports_.back(), symbol->dimension());
  }

  void solve() {
    try {
      session_.tie().solve(solver_);
    } catch (const ztb::Error& error) {
      if (error.kind() != ztb::ErrorKind::notFound) throw;
      throw NoSuchSolver(withFile(session_.file(), error.what()));
    }
  }

  void runScenario(ScenarioData& data, std::size_t place) {
    const std::string& label = scenarios_.scenarios()[work_.chosen[place]].label;
    ScenarioOutcome outcome{.status = ztbModelNoSolution, .solveStatus = ztbSolveFailed};
    try {
      // What a scenario comes to must not depend on the ones that this worker had before.
      session_.model().resetLevels();
      data.apply(place);
      solve();
      const ztb::Model& model = session_.model();
      outcome = {.status = model.status(), .solveStatus = model.solveStatus()};
      if (model.hasSolution()) {
        outcome.objective = model.objective();
      }
    } catch (const NoSuchSolver&) {
      throw;
    } catch (const std::exception& error) {
      channel_.send(SweepMessage::scenarioFailed,
                    fmt::format("{} {}", work_.chosen[place], error.what()));
    }
    results_.setOutcome(label, outcome);
    if (outcome.objective) {
      for (const std::string& report : reports_) {
        results_.takeSolution(label, report, session_.database());
      }
    }
  }

  [[nodiscard]] bool isPartDue() const {
    const Clock::duration time = Clock::now() - published_;
    return time >= kTimeOfPart ||
           (unpublished_ >= kScenariosInPart && time >= kRestBetweenParts * publishing_);
  }

  void publish() {
    const Clock::time_point start = Clock::now();
    results_.write(parts_.file(part_));
    results_.clear();
    part_ += work_.partStep;
    unpublished_ = 0;
    published_ = Clock::now();
    publishing_ = published_ - start;
    channel_.send(SweepMessage::published);
  }

  const SweepOptions& options_;
  const SweepScenarios& scenarios_;
  const std::string& inputs_;
  const SweepWork& work_;
  const WorkerChannel& channel_;
  std::optional<ModelFills> fills_;
  ModelSession session_;
  std::string solver_;
  SweepResults results_;
  SweepParts parts_;
  std::vector<std::string> reports_;
  int part_;
  int unpublished_ = 0;
  // When the last part was published, and how long that took.
  Clock::time_point published_ = Clock::now();
  Clock::duration publishing_{0};
};

}  // namespace

void runSweepWorker(const SweepOptions& options, const SweepScenarios& scenarios,
                    const std::string& inputs, const SweepWork& work,
                    const WorkerChannel& channel) {
  SweepWorker(options, scenarios, inputs, work, channel).run();
}

}  // namespace tool
