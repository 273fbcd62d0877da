#include "tools/sweep_command.h"

#include <fmt/format.h>
#include <ztb/model.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <vector>

#include "tools/failure.h"
#include "tools/model_session.h"
#include "tools/progress.h"
#include "tools/sweep_inputs.h"
#include "tools/sweep_options.h"
#include "tools/sweep_parts.h"
#include "tools/sweep_results.h"
#include "tools/sweep_scenarios.h"
#include "tools/sweep_summary.h"
#include "tools/sweep_worker.h"
#include "tools/whole_number.h"
#include "tools/words.h"
#include "tools/worker_processes.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMaxJobs = 64;

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// One run of the command.
class Sweep {
 public:
  explicit Sweep(const SweepOptions& options)
      : options_(options),
        inputs_(sweepInputs(options)),
        scenarios_(options.scenarios, options.over),
        parts_(options.out) {}

  // Whether all scenarios have a solution.
  bool run() {
    const Clock::time_point start = Clock::now();
    const std::vector<std::size_t> pending = prepare();
    solve(pending);
    SweepResults results(scenarios_.over(), scenarios_.text(), inputs_);
    collect(results);
    results.write(options_.out);
    parts_.remove();
    const std::map<std::string, ScenarioOutcome> outcomes = results.outcomes();
    const SweepSummary summary(scenarios_.scenarios(), outcomes);
    reportUnmatched();
    const bool allSolved = summary.reportUnsolved(reasons_);
    summary.print(scenarios_.scenarios().size() - pending.size(), secondsSince(start));
    return allSolved;
  }

 private:
  // Finds the results of an interrupted run, or removes them, and gives the places of the scenarios
  // that are to be run.
  std::vector<std::size_t> prepare() {
    if (options_.resume) {
      findKept();
    } else {
      parts_.remove();
    }
    SweepResults earlier(scenarios_.over(), scenarios_.text(), inputs_);
    for (const Scenario& scenario : scenarios_.scenarios()) {
      earlier.addScenario(scenario.label, scenario.text);
    }
    for (const std::string& file : kept_) {
      earlier.absorb(file);
    }
    const std::map<std::string, ScenarioOutcome> outcomes = earlier.outcomes();
    std::vector<std::size_t> pending;
    for (std::size_t place = 0; place < scenarios_.scenarios().size(); ++place) {
      const auto found = outcomes.find(scenarios_.scenarios()[place].label);
      // A solve that failed may go well the next time.
      if (found == outcomes.end() || found->second.solveStatus == ztbSolveFailed) {
        pending.push_back(place);
      }
    }
    return pending;
  }

  void findKept() {
    const std::vector<int> numbers = parts_.numbers();
    std::error_code error;
    if (std::filesystem::exists(options_.out, error)) {
      const std::string difference = differenceOf(options_.out);
      if (difference.empty()) {
        kept_.push_back(options_.out);
      } else if (numbers.empty()) {
        refuse(options_.out, difference);
      }
    }
    for (const int number : numbers) {
      const std::string difference = differenceOf(parts_.file(number));
      if (!difference.empty()) {
        refuse(parts_.file(number), difference);
      }
      kept_.push_back(parts_.file(number));
      firstPart_ = number + 1;
    }
  }

  [[nodiscard]] std::string differenceOf(const std::string& file) const {
    return sweepInputsDifference(SweepResults::inputsOf(file), inputs_);
  }

  [[noreturn]] static void refuse(const std::string& file, const std::string& difference) {
    throw Failure(withFile(
        file,
        fmt::format("is from a sweep with {}; without --resume all is solved anew", difference)));
  }

  // Has the scenarios solved by worker processes, a run of neighbours each.
  void solve(const std::vector<std::size_t>& pending) {
    const std::size_t jobs = std::min(static_cast<std::size_t>(options_.jobs), pending.size());
    WorkerProcesses workers;
    std::vector<SweepWork> works(jobs);
    for (std::size_t job = 0; job < jobs; ++job) {
      const auto at = [&](std::size_t number) {
        return pending.begin() + static_cast<std::ptrdiff_t>(number * pending.size() / jobs);
      };
      works[job] = {.chosen = {at(job), at(job + 1)},
                    .firstPart = firstPart_ + static_cast<int>(job),
                    .partStep = static_cast<int>(jobs),
                    .reportsNotes = job == 0};
      workers.start([this, &works, job](const WorkerChannel& channel) {
        runSweepWorker(options_, scenarios_, inputs_, works[job], channel);
      });
    }
    follow(workers, works, pending.size());
  }

  void follow(WorkerProcesses& workers, const std::vector<SweepWork>& works, std::size_t count) {
    const Clock::time_point start = Clock::now();
    Progress progress;
    progress.step("opening " + options_.model);
    std::size_t done = 0;
    while (workers.busy()) {
      const std::optional<WorkerMessage> message = workers.next(std::chrono::milliseconds(200));
      if (!message) {
        // The rate falls while a long scenario is solved.
        if (done > 0) progress.step(progressText(done, count, secondsSince(start)));
        continue;
      }
      switch (message->kind) {
        case SweepMessage::done:
          ++done;
          progress.step(progressText(done, count, secondsSince(start)));
          break;
        case SweepMessage::scenarioFailed: {
          std::size_t length = 0;
          const std::size_t place = std::stoul(message->text, &length);
          reasons_[place] = message->text.substr(length + 1);
          break;
        }
        case SweepMessage::unmatched:
          unmatched_.insert(message->text);
          break;
        case WorkerMessage::died:
          for (const std::size_t place : works[message->worker].chosen) {
            reasons_.try_emplace(place, message->text);
          }
          break;
        default:
          throw Failure(message->text);
      }
    }
  }

  static std::string progressText(std::size_t done, std::size_t count, double seconds) {
    const double rate = static_cast<double>(done) / std::max(seconds, 1e-3);
    return fmt::format("{} of {} solved, {:.{}f} a second, {:.0f} s left", done,
                       counted(count, "scenario"), rate, rate < 10 ? 1 : 0,
                       static_cast<double>(count - done) / rate);
  }

  // Puts together what was kept and what the parts hold; scenarios without any result have failed.
  void collect(SweepResults& results) {
    for (const Scenario& scenario : scenarios_.scenarios()) {
      results.addScenario(scenario.label, scenario.text);
    }
    if (!kept_.empty() && kept_.front() == options_.out) {
      results.absorb(options_.out);
    }
    for (const int number : parts_.numbers()) {
      results.absorb(parts_.file(number));
    }
    const std::map<std::string, ScenarioOutcome> outcomes = results.outcomes();
    for (const Scenario& scenario : scenarios_.scenarios()) {
      if (!outcomes.contains(scenario.label)) {
        results.setOutcome(scenario.label,
                           {.status = ztbModelNoSolution, .solveStatus = ztbSolveFailed});
      }
    }
  }

  void reportUnmatched() const {
    for (const std::string& name : unmatched_) {
      std::fprintf(stderr, "ztb: %s: %s has records that meet no column %s_var of the model\n",
                   options_.scenarios.c_str(), name.c_str(), name.c_str());
    }
  }

  const SweepOptions& options_;
  std::string inputs_;
  SweepScenarios scenarios_;
  SweepParts parts_;
  // Files with results of the interrupted run; the result file comes first.
  std::vector<std::string> kept_;
  int firstPart_ = 1;
  // Why solves failed, by the place of the scenario.
  std::map<std::size_t, std::string> reasons_;
  std::set<std::string> unmatched_;
};

void runSweep(SweepOptions options, int& status) {
  refuseReplacing({options.model, options.modelData, options.scenarios}, options.out);
  if (options.jobs < 1 || options.jobs > kMaxJobs) {
    throw UsageError(fmt::format("--jobs {}: 1 to {} are allowed", options.jobs, kMaxJobs));
  }
  std::vector<std::string> reports;
  for (const std::string& report : options.reports) {
    if (std::ranges::none_of(reports,
                             [&](const std::string& other) { return sameFolded(other, report); })) {
      reports.push_back(report);
    }
  }
  options.reports = std::move(reports);
  if (!Sweep(options).run()) {
    status = exitFailed;
  }
}

}  // namespace

void addSweepCommand(CLI::App& app, int& status) {
  CLI::App* command = app.add_subcommand("sweep", "Solve a model for each scenario of a file");
  auto options = std::make_shared<SweepOptions>();
  command->add_option("MODEL", options->model, "Model file (.lp, .mps, .mps.gz, .mod)")->required();
  command->add_option("--scenarios", options->scenarios, "RXF file with the scenarios")
      ->type_name("FILE")
      ->required();
  command
      ->add_option("--over", options->over,
                   "Set of the scenario file; parameters with it as their first domain drive the "
                   "model")
      ->type_name("SET")
      ->required();
  command->add_option("--out", options->out, "RXF file to make")->type_name("FILE")->required();
  command->add_option("--model-data", options->modelData, "Data file of a .mod")->type_name("FILE");
  command
      ->add_option("--solver", options->solver,
                   "Solver of the catalogue; without it clp for linear models, cbc with integers, "
                   "ipopt with products")
      ->type_name("NAME");
  command
      ->add_option("--report", options->reports,
                   "Variable or equation whose levels and marginals are kept; may be repeated")
      ->type_name("SYMBOL")
      ->expected(1)
      ->take_all();
  command->add_option("--jobs", options->jobs, "Worker processes, 1 to 64; 1")
      ->type_name("N")
      ->check(wholeNumber());
  command->add_flag("--resume", options->resume,
                    "Keep what an interrupted run has solved, and solve the rest");
  command->footer(
      "A parameter price(s, food) of the scenario file drives the columns price_var(food) of the\n"
      "model. The result has sweep_objective(s), sweep_status(s), sweep_solve_status(s), and\n"
      "SYM_level(s, ...) and SYM_marginal(s, ...) of each symbol reported.\n\n"
      "Example:\n"
      "  ztb sweep diet.lp --scenarios prices.rxf --over s --report buy --out sweep.rxf --jobs 2");
  command->callback([options, &status] { runSweep(*options, status); });
}

}  // namespace tool
