#include <fmt/format.h>
#include <ztb/model.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <system_error>
#include <utility>
#include <vector>
#include <ztb/sweep.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/models/model_session.h"
#include "tools/sweep/sweep_crew.h"
#include "tools/sweep/sweep_lock.h"
#include "tools/sweep/sweep_summary.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kMaxJobs = 64;
constexpr int kExplained = 20;

struct SweepOptions {
  std::string model;
  std::string modelData;
  std::string data;
  std::vector<std::string> drives;
  std::string scenarios;
  std::string over;
  std::string solver;
  std::string out;
  std::vector<std::string> reports;
  std::optional<int> chunk;
  std::string timeLimit;
  std::string parts;
  std::string part;  // "K/M"
  int jobs = 1;
  std::optional<int> stall;
  bool collect = false;
  bool resume = false;
  bool explain = false;
};

double secondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

// Whether the system asked the sweep to end, as it does before a time limit.
volatile std::sig_atomic_t wasAskedToEnd = 0;

void open(ztb::Sweep& sweep, const SweepOptions& options) {
  if (options.model.empty()) {
    sweep.load(options.parts);
    return;
  }
  const auto give = [&](const char* name, const std::string& value) {
    if (!value.empty()) sweep.option(name, value);
  };
  give("model", options.model);
  give("model-data", options.modelData);
  give("data", options.data);
  give("scenarios", options.scenarios);
  give("over", options.over);
  give("solver", options.solver);
  give("time-limit", options.timeLimit);
  if (options.chunk) give("chunk", std::to_string(*options.chunk));
  for (const std::string& drive : options.drives) give("drive", drive);
  for (const std::string& report : options.reports) give("report", report);
  sweep.open();
}

// One run of the command.
class SweepRun {
 public:
  explicit SweepRun(const SweepOptions& options)
      : options_(options), folder_(options.parts.empty() ? options.out + ".parts" : options.parts) {
    open(sweep_, options);
  }

  // Solves all scenarios and makes the result; whether all have a solution.
  bool solveAll() {
    const SweepLock lock(options_.out);
    const bool hasResult = findKept();
    const std::vector<int> pending = pendingChunks(0, sweep_.chunkCount(), true);
    if (!pending.empty()) sweep_.save(folder_);
    std::map<int, std::string> deaths;
    try {
      deaths = solve(pending);
    } catch (const Failure&) {
      requireSameInputs();
      throw;
    }
    requireSameInputs();
    if (wasAskedToEnd != 0) return tellOfEnd();
    sweep_.find(folder_, hasResult ? options_.out : "");
    std::error_code error;
    if (!hasResult || std::filesystem::exists(folder_, error)) makeResult();
    const bool allSolved = report(all(), "failed", deaths, pending);
    if (options_.parts.empty()) sweep_.remove(folder_, true);
    return allSolved;
  }

  // Solves a share and leaves its parts; whether all of its scenarios have a solution.
  bool solveShare(int number, int count) {
    sweep_.save(folder_);
    sweep_.find(folder_);
    const auto at = [&](int share) {
      return static_cast<int>(static_cast<long long>(sweep_.chunkCount()) * share / count);
    };
    const std::vector<int> pending = pendingChunks(at(number - 1), at(number), options_.resume);
    const std::map<int, std::string> deaths = solve(pending);
    if (wasAskedToEnd != 0) return tellOfEnd();
    sweep_.find(folder_);
    const ztb::Sweep::Range range = at(number - 1) == at(number)
                                        ? ztb::Sweep::Range{}
                                        : ztb::Sweep::Range{sweep_.chunk(at(number - 1)).first,
                                                            sweep_.chunk(at(number) - 1).end};
    return report(range, "failed", deaths, pending);
  }

  // Puts the parts together that are there; whether all scenarios have a solution.
  bool collect() {
    const SweepLock lock(options_.out);
    sweep_.find(folder_);
    makeResult();
    return report(all(), "missing", {}, {});
  }

 private:
  [[nodiscard]] ztb::Sweep::Range all() const { return {0, sweep_.scenarioCount()}; }

  // Finds the results of an interrupted run, or removes them; whether the result file is one.
  bool findKept() {
    if (!options_.resume) {
      sweep_.remove(folder_, options_.parts.empty());
      return false;
    }
    const std::string foreign = options_.parts.empty() ? sweep_.foreignPart(folder_) : "";
    if (!foreign.empty()) throw Failure(foreign);
    std::error_code error;
    if (std::filesystem::exists(options_.out, error)) {
      try {
        sweep_.find(folder_, options_.out);
        return true;
      } catch (const ztb::Error&) {
        // What an interrupted sweep was to replace, when that has left parts, and otherwise no
        // sweep to resume.
        if (!std::filesystem::exists(folder_, error)) throw;
      }
    }
    sweep_.find(folder_);
    return false;
  }

  // The chunks, of those from `first` to before `end`, that are not there as a whole; with those in
  // which solves have failed, which may go well the next time.
  [[nodiscard]] std::vector<int> pendingChunks(int first, int end, bool withFailed) const {
    std::vector<int> pending;
    for (int chunk = first; chunk < end; ++chunk) {
      const ztb::Sweep::State state = sweep_.state(chunk);
      if (state.missing > 0 || (withFailed && state.failed > 0)) pending.push_back(chunk);
    }
    return pending;
  }

  // Has the chunks solved; of what scenarios died at which processes were ended.
  std::map<int, std::string> solve(const std::vector<int>& pending) {
    std::signal(SIGTERM, [](int) { wasAskedToEnd = 1; });
    const SweepCrew::Plan plan{.model = options_.model,
                               .folder = folder_,
                               .jobs = options_.jobs,
                               .stall = options_.stall,
                               .stops = [] { return wasAskedToEnd != 0; }};
    SweepCrew crew(sweep_, plan);
    crew.solve(pending);
    return crew.deaths();
  }

  bool tellOfEnd() {
    sweep_.find(folder_);
    int left = 0;
    for (int chunk = 0; chunk < sweep_.chunkCount(); ++chunk) left += sweep_.state(chunk).missing;
    printError(fmt::format(
        "ztb: was asked to end; {} of {} are not solved yet, what is solved stands "
        "in {}",
        left, counted(static_cast<std::size_t>(sweep_.scenarioCount()), "scenario"), folder_));
    return false;
  }

  // Each process opens the model by itself, and others may read the files once the sweep is done.
  void requireSameInputs() {
    const std::string difference = sweep_.difference();
    if (difference.empty()) return;
    if (options_.parts.empty()) sweep_.remove(folder_);
    throw Failure(withFile(options_.out,
                           fmt::format("{} stood in its place while the sweep ran; what this run "
                                       "solved is dropped",
                                       difference)));
  }

  void makeResult() {
    try {
      sweep_.collect(options_.out);
    } catch (const ztb::Error& error) {
      throw Failure(
          fmt::format("{}; what was solved stays in {}: --collect --parts {} with another "
                      "--out takes it",
                      error.what(), folder_, folder_));
    }
  }

  bool report(ztb::Sweep::Range range, const std::string& missing,
              const std::map<int, std::string>& deaths, const std::vector<int>& solved) {
    reportUnmatched();
    std::map<int, std::string> reasons = deaths;
    if (options_.explain) reasons.merge(explanations(range));
    const SweepSummary summary(sweep_, range, missing);
    const bool allSolved = summary.reportUnsolved(reasons);
    int kept = range.end - range.first;
    for (const int chunk : solved) kept -= sweep_.chunk(chunk).end - sweep_.chunk(chunk).first;
    summary.print(options_.collect ? 0 : kept, secondsSince(start_));
    return allSolved;
  }

  void reportUnmatched() {
    const std::string names = sweep_.unmatched();
    for (std::size_t at = 0; at < names.size();) {
      const std::size_t blank = std::min(names.find(' ', at), names.size());
      const std::string name = names.substr(at, blank - at);
      printError(fmt::format("ztb: {}: {} has records that meet no column {}_var of the model",
                             options_.scenarios, name, name));
      at = blank + 1;
    }
  }

  // Why the first infeasible scenarios are so.
  std::map<int, std::string> explanations(ztb::Sweep::Range range) {
    std::map<int, std::string> texts;
    int explained = 0;
    for (int scenario = range.first; scenario < range.end && explained < kExplained; ++scenario) {
      const auto outcome = sweep_.outcome(scenario);
      if (!outcome || outcome->status != ztbModelInfeasible) continue;
      texts[scenario] = sweep_.explain(folder_, scenario);
      ++explained;
    }
    return texts;
  }

  const SweepOptions& options_;
  std::string folder_;
  ztb::Sweep sweep_;
  Clock::time_point start_ = Clock::now();
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

// K and M of "K/M".
std::pair<int, int> shareOf(const std::string& text) {
  int number = 0;
  int count = 0;
  const char* const end = text.data() + text.size();
  const auto [slash, error] = std::from_chars(text.data(), end, number);
  const bool isNumber = error == std::errc() && slash != end && *slash == '/';
  const auto [last, otherError] = std::from_chars(isNumber ? slash + 1 : end, end, count);
  if (!isNumber || otherError != std::errc() || last != end || number < 1 || number > count) {
    throw UsageError(fmt::format("--part {}: two numbers are expected, as in 2/10", text));
  }
  return {number, count};
}

void requireWhatItTakes(const SweepOptions& options) {
  const bool isSaved = !options.parts.empty() && (options.collect || !options.part.empty());
  if (options.collect && !options.part.empty()) {
    throw UsageError("--collect and --part: one of them");
  }
  if ((options.collect || !options.part.empty()) && options.parts.empty()) {
    throw UsageError(fmt::format("{}: --parts is missing, the folder of the parts",
                                 options.collect ? "--collect" : "--part"));
  }
  if (!options.part.empty() && !options.out.empty()) {
    throw UsageError("--part makes no result, --collect does; leave --out out");
  }
  if (options.part.empty() && options.out.empty()) throw UsageError("--out is required");
  if (options.model.empty() && !isSaved) throw UsageError("MODEL is required");
  if (options.model.empty() != options.scenarios.empty()) {
    throw UsageError(options.model.empty() ? "--scenarios without MODEL"
                                           : "--scenarios is required");
  }
  if (!options.model.empty() && options.over.empty()) throw UsageError("--over is required");
}

int runSweep(SweepOptions options) {
  requireWhatItTakes(options);
  refusePipes(options);
  if (!options.out.empty()) {
    refuseReplacing({options.model, options.modelData, options.data, options.scenarios},
                    options.out);
    requirePlace(options.out);
  }
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
  const std::pair<int, int> share = options.part.empty() ? std::pair(0, 0) : shareOf(options.part);
  SweepRun run(options);
  bool isFine = false;
  if (options.collect) {
    isFine = run.collect();
  } else if (!options.part.empty()) {
    isFine = run.solveShare(share.first, share.second);
  } else {
    isFine = run.solveAll();
  }
  return isFine ? exitFine : exitFailed;
}

}  // namespace

void addSweepCommand(CommandLine& line) {
  Command command = line.add("sweep", "Solve a model for each scenario of a file");
  const auto options = std::make_shared<SweepOptions>();
  command.text("MODEL", options->model, "Model file (.lp, .mps, .mps.gz, .mod)");
  command.text("--scenarios", options->scenarios, "RXF file with the scenarios").typeName("FILE");
  command
      .text("--over", options->over,
            "Set of the scenario file, or the name of first positions; parameters with it as "
            "their first domain drive the model")
      .typeName("SET");
  command.text("--out", options->out, "RXF file to make").typeName("FILE").notEmpty();
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
            "ipopt with products, bonmin with both")
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
  command
      .number("--chunk", options->chunk,
              "Scenarios that one live model solves after the other, from the basis of the "
              "unchanged model; a sixty-fourth of the sweep, 1 to 1000, without it")
      .typeName("N");
  command
      .text("--time-limit", options->timeLimit,
            "Seconds that a solve may take; no limit without it")
      .typeName("SECONDS")
      .notEmpty();
  command
      .text("--parts", options->parts,
            "Folder of the parts that results stand in until the end, OUT.parts without it; parts "
            "in a folder that was named stay")
      .typeName("FOLDER")
      .notEmpty();
  command
      .text("--part", options->part,
            "Solve the share K of M into the folder of --parts, and make no result; without MODEL, "
            "of the sweep that was begun there")
      .typeName("K/M")
      .notEmpty();
  command.flag("--collect", options->collect,
               "Put the parts of --parts together as --out, and tell what is missing and what "
               "failed; without MODEL, of the sweep that was begun there");
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
