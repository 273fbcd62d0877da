#include <fmt/format.h>
#include <ztb/model.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <filesystem>
#include <memory>
#include <set>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/models/model_session.h"
#include "tools/sweep/sweep_crew.h"
#include "tools/sweep/sweep_explanation.h"
#include "tools/sweep/sweep_inputs.h"
#include "tools/sweep/sweep_lock.h"
#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_parts.h"
#include "tools/sweep/sweep_results.h"
#include "tools/sweep/sweep_scenarios.h"
#include "tools/sweep/sweep_summary.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

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
        parts_(options.out),
        lock_(options.out) {}

  // Whether all scenarios have a solution.
  bool run() {
    const Clock::time_point start = Clock::now();
    const std::vector<std::size_t> pending = prepare();
    SweepCrew crew(options_, scenarios_, inputs_);
    try {
      crew.solve(pending, firstPart_);
    } catch (const Failure&) {
      requireSameInputs();
      throw;
    }
    requireSameInputs();
    SweepResults results(scenarios_.over(), scenarios_.text(), inputs_);
    collect(results);
    try {
      results.write(options_.out);
    } catch (const Failure& error) {
      throw Failure(fmt::format(
          "{}; what was solved stays in {} and its like; --resume takes them once they are named "
          "as the parts of another --out",
          error.what(), parts_.file(1)));
    }
    parts_.remove();
    const std::map<std::string, ScenarioOutcome> outcomes = results.outcomes();
    const SweepSummary summary(scenarios_.scenarios(), outcomes);
    reportUnmatched(crew.unmatched());
    std::map<std::size_t, std::string> reasons = crew.reasons();
    if (options_.explain) {
      reasons.merge(explainScenarios(options_, scenarios_, outcomes));
    }
    const bool allSolved = summary.reportUnsolved(reasons);
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
    const std::string misnumbered = parts_.misnumbered();
    if (!misnumbered.empty()) {
      throw Failure(withFile(
          misnumbered, fmt::format("is no part of a sweep: parts have numbers from 1 to {}; move "
                                   "it away or sweep without --resume",
                                   SweepParts::kLargestNumber)));
    }
    const std::vector<int> numbers = parts_.numbers();
    std::error_code error;
    if (std::filesystem::exists(options_.out, error)) {
      findKeptResult(numbers.empty());
    }
    for (const int number : numbers) {
      requireFitting(parts_.file(number));
      kept_.push_back(parts_.file(number));
      firstPart_ = number + 1;
    }
    if (firstPart_ > SweepParts::kLargestNumber / 2) {
      throw Failure(withFile(
          parts_.file(numbers.back()),
          fmt::format("its number leaves no room for further parts (at most {}); rename it to {}",
                      SweepParts::kLargestNumber, parts_.file(1))));
    }
  }

  // Keeps the scenarios of the result file, if it is of these inputs. Any other one is what an
  // interrupted sweep was to replace, when that has left parts, and otherwise no sweep to resume.
  void findKeptResult(bool isAlone) {
    try {
      requireFitting(options_.out);
      kept_.push_back(options_.out);
    } catch (const Failure&) {
      if (isAlone) {
        throw;
      }
    }
  }

  void requireFitting(const std::string& file) const {
    const std::string difference = differenceOf(file);
    if (!difference.empty()) {
      refuse(file, difference);
    }
  }

  // The workers have read the files after their checksums were taken: a file that has changed since
  // leaves nobody knowing what the results are of.
  void requireSameInputs() const {
    const std::string difference = sweepInputsDifference(sweepInputs(options_), inputs_);
    if (!difference.empty()) {
      for (const int number : parts_.numbers()) {
        if (number >= firstPart_) {
          parts_.remove(number);
        }
      }
      throw Failure(withFile(options_.out,
                             fmt::format("{} stood in its place while the sweep ran; what this run "
                                         "solved is dropped",
                                         difference)));
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

  // Puts together what was kept and what the parts hold; scenarios without any result have failed.
  void collect(SweepResults& results) {
    for (const Scenario& scenario : scenarios_.scenarios()) {
      results.addScenario(scenario.label, scenario.text);
    }
    if (!kept_.empty() && kept_.front() == options_.out) {
      results.absorb(options_.out);
    }
    for (const int number : parts_.numbers()) {
      requireFitting(parts_.file(number));
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

  void reportUnmatched(const std::set<std::string>& unmatched) const {
    for (const std::string& name : unmatched) {
      printError(fmt::format("ztb: {}: {} has records that meet no column {}_var of the model",
                             options_.scenarios, name, name));
    }
  }

  const SweepOptions& options_;
  std::string inputs_;
  SweepScenarios scenarios_;
  SweepParts parts_;
  // Files with results of the interrupted run; the result file comes first.
  std::vector<std::string> kept_;
  int firstPart_ = 1;
  SweepLock lock_;
};

// Other processes read the files of a sweep as well, and results stand beside the one that is made.
void refusePipes(const SweepOptions& options) {
  const std::array<std::pair<const char*, const std::string*>, 5> files{
      {{"MODEL", &options.model},
       {"--data", &options.data},
       {"--model-data", &options.modelData},
       {"--scenarios", &options.scenarios},
       {"--out", &options.out}}};
  for (const auto& [option, path] : files) {
    if (*path == "-") {
      throw UsageError(fmt::format(
          "{} -: a sweep takes no pipe, its processes each read the files; give the name of a file",
          option));
    }
  }
}

int runSweep(SweepOptions options) {
  refusePipes(options);
  refuseReplacing({options.model, options.modelData, options.data, options.scenarios}, options.out);
  requirePlace(options.out);
  requireTakesFills(options.data, options.model);
  if (options.stall == 0) {
    throw UsageError("--stall 0: at least 1 is expected");
  }
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
  return Sweep(options).run() ? exitFine : exitFailed;
}

}  // namespace

void addSweepCommand(CommandLine& line) {
  Command command = line.add("sweep", "Solve a model for each scenario of a file");
  auto options = std::make_shared<SweepOptions>();
  command.text("MODEL", options->model, "Model file (.lp, .mps, .mps.gz, .mod)").required();
  command.text("--scenarios", options->scenarios, "RXF file with the scenarios")
      .typeName("FILE")
      .required();
  command
      .text("--over", options->over,
            "Set of the scenario file, or the name of first positions; parameters with it as "
            "their first domain drive the model")
      .typeName("SET")
      .required();
  command.text("--out", options->out, "RXF file to make").typeName("FILE").required().notEmpty();
  command.text("--model-data", options->modelData, "Data file of a .mod")
      .typeName("FILE")
      .notEmpty();
  command
      .text("--data", options->data,
            "RXF file that fills the sets and parameters of the same names of a .mod")
      .typeName("FILE")
      .notEmpty();
  command
      .texts("--drive", options->drives,
             "What a parameter drives in a model without columns NAME_var, as in \"price(food) = "
             "cost of buy\"; may be repeated")
      .typeName("STATEMENT");
  command
      .text("--solver", options->solver,
            "Solver of the catalogue; without it clp for linear models, cbc with integers, "
            "ipopt with products")
      .typeName("NAME")
      .notEmpty();
  command
      .texts("--report", options->reports,
             "Variable or equation whose levels and marginals are kept; may be repeated")
      .typeName("SYMBOL");
  command.number("--jobs", options->jobs, "Worker processes, 1 to 64; 1");
  command
      .number("--stall", options->stall,
              "End a worker process that solves nothing for so long; never without it")
      .typeName("SECONDS");
  command.flag("--explain", options->explain,
               "Tell of the first infeasible scenarios which rows and bounds cannot hold together, "
               "and in what they differ from the nearest one with a solution");
  command.flag("--resume", options->resume,
               "Keep what an interrupted run has solved, and solve the rest");
  addMemoryOption(command);
  command.footer(
      "A parameter price(s, food) of the scenario file drives the columns price_var(food) of the\n"
      "model, or what --drive \"price(food) = cost of buy\" says. The result has "
      "sweep_objective(s), sweep_status(s), sweep_solve_status(s), and\n"
      "SYM_level(s, ...) and SYM_marginal(s, ...) of each symbol reported.\n\n"
      "Example:\n"
      "  ztb sweep diet.lp --scenarios prices.rxf --over s --report buy --out sweep.rxf --jobs 2");
  command.action([options] { return runSweep(*options); });
}

}  // namespace tool
