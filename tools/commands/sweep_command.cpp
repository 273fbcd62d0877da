#include <fmt/format.h>
#include <ztb/rxf.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/models/model_session.h"
#include "tools/sweep/child_program.h"
#include "tools/sweep/slurm_array.h"
#include "tools/sweep/sweep_options.h"
#include "tools/sweep/sweep_run.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr int kMaxJobs = 64;
constexpr int kMostScenarios = 1'000'000;  // of a chunk
constexpr int kMostTasks = 100'000;

// Words of the command line that are looked into before they become options.
struct SweepWords {
  SweepOptions options;
  std::string part;      // "K/M"
  std::string progress;  // empty: where standard error is a terminal
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
  if (!isNumber || otherError != std::errc() || last != end) {
    throw UsageError(
        fmt::format("--part {}: two numbers are expected, as in 2/10", inQuotes(text)));
  }
  if (number < 1 || number > count) {
    throw UsageError(
        fmt::format("--part {}: the first number is that of a share, 1 to the second one", text));
  }
  return {number, count};
}

void requireWhatItTakes(const SweepOptions& options) {
  const bool isShare = options.share.has_value();
  const bool isSaved = !options.parts.empty() && (options.collect || isShare);
  if (options.collect && isShare) {
    throw UsageError("--collect and --part: one of them");
  }
  if ((options.collect || isShare) && options.parts.empty()) {
    throw UsageError(fmt::format("{}: --parts is missing, the folder of the parts",
                                 options.collect ? "--collect" : "--part"));
  }
  if (isShare && !options.out.empty()) {
    throw UsageError("--part makes no result, --collect does; leave --out out");
  }
  if (!isShare && options.out.empty()) throw UsageError("--out is required");
  if (options.model.empty() && !isSaved) throw UsageError("MODEL is required");
  if (options.model.empty() != options.scenarios.empty()) {
    throw UsageError(options.model.empty() ? "--scenarios without MODEL"
                                           : "--scenarios is required");
  }
  if (!options.model.empty() && options.over.empty()) throw UsageError("--over is required");
}

// What --slurm and --dask take and do not take.
void requireEngine(const SweepOptions& options) {
  const std::array<std::pair<const char*, bool>, 6> ofSlurm{
      {{"--array", options.tasks.has_value()},
       {"--time", !options.time.empty()},
       {"--partition", !options.partition.empty()},
       {"--sbatch", !options.sbatch.empty()},
       {"--no-wait", options.noWait},
       {"--dry-run", options.dryRun}}};
  for (const auto& [option, isGiven] : ofSlurm) {
    if (isGiven && !options.slurm) throw UsageError(fmt::format("{} without --slurm", option));
  }
  const std::array<std::pair<const char*, bool>, 4> engines{
      {{"--slurm", options.slurm},
       {"--dask", !options.dask.empty()},
       {"--collect", options.collect},
       {"--part", options.share.has_value()}}};
  if ((options.slurm || !options.dask.empty()) && !startsPrograms()) {
    throw UsageError("--slurm and --dask: clusters are worked with from Linux");
  }
  const char* first = nullptr;
  for (const auto& [option, isGiven] : engines) {
    if (!isGiven) continue;
    if (first != nullptr) throw UsageError(fmt::format("{} and {}: one of them", first, option));
    first = option;
  }
  if (!options.dask.empty() && (options.jobs != 1 || options.stall)) {
    throw UsageError(
        fmt::format("--dask and {}: workers of the cluster solve, no processes of "
                    "this machine",
                    options.stall ? "--stall" : "--jobs"));
  }
  if (!options.dask.empty()) {
    const unsigned long long memory = ztbRxfMemoryLimit(0);
    ztbRxfMemoryLimit(memory);
    if (memory > 0) {
      throw UsageError("--dask and --max-memory: workers are limited where they are started");
    }
  }
  if (options.tasks && (*options.tasks < 1 || *options.tasks > kMostTasks)) {
    throw UsageError(fmt::format("--array {}: 1 to {} are allowed", *options.tasks, kMostTasks));
  }
  if (!options.time.empty() && !slurmSeconds(options.time)) {
    throw UsageError(fmt::format(
        "--time {}: minutes are expected, or as in 1:30:00 for hours, 2-12 for days and hours",
        options.time));
  }
  std::vector<std::string> lines = options.sbatch;
  lines.push_back(options.partition);
  for (const std::string& line : lines) {
    if (line.find('\n') != std::string::npos) {
      throw UsageError(fmt::format("{}: an option of sbatch is one line", inQuotes(line)));
    }
  }
  for (const std::string& option : options.sbatch) {
    if (!option.starts_with("-")) {
      throw UsageError(
          fmt::format("--sbatch {}: an option of sbatch is expected, as in --sbatch=--mem=4G",
                      inQuotes(option)));
    }
  }
}

SweepProgress::Kind progressOf(const std::string& word) {
  if (word.empty() || word == "terminal") return SweepProgress::Kind::terminal;
  if (word == "json") return SweepProgress::Kind::json;
  if (word == "none") return SweepProgress::Kind::none;
  throw UsageError(
      fmt::format("--progress {}: terminal, json or none is expected", inQuotes(word)));
}

int runSweep(const SweepWords& words) {
  SweepOptions options = words.options;
  if (!words.part.empty()) options.share = shareOf(words.part);
  options.progress = progressOf(words.progress);
  requireEngine(options);
  requireWhatItTakes(options);
  refusePipes(options);
  if (!options.out.empty()) {
    refuseReplacing({options.model, options.modelData, options.data, options.scenarios},
                    options.out);
    requirePlace(options.out);
  }
  requireTakesFills(options.data, options.model);
  if (options.chunk && (*options.chunk < 1 || *options.chunk > kMostScenarios)) {
    throw UsageError(
        fmt::format("--chunk {}: 1 to {} are allowed", *options.chunk, kMostScenarios));
  }
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
  SweepRun run(options);
  bool isFine = true;
  if (options.collect) {
    isFine = run.collect();
  } else if (options.share) {
    isFine = run.solveShare(options.share->first, options.share->second);
  } else if (options.dryRun) {
    run.printScript();
  } else if (options.slurm) {
    isFine = run.solveBySlurm();
  } else {
    isFine = run.solveAll();
  }
  return isFine ? exitFine : exitFailed;
}

void addSlurmOptions(Command& command, SweepOptions& options) {
  command.flag("--slurm", options.slurm,
               "Submit an array job of Slurm whose tasks take a share of the sweep each, wait for "
               "it, and make the result; with --resume, of what is missing");
  command
      .number("--array", options.tasks,
              "Tasks of the job; one for four chunks, at most 1000, without it")
      .typeName("N");
  command
      .text("--time", options.time,
            "Time limit of each task, as sbatch takes it; some time before it what is solved is "
            "published")
      .typeName("TIME")
      .notEmpty();
  command.text("--partition", options.partition, "Partition of the job")
      .typeName("NAME")
      .notEmpty();
  command
      .texts("--sbatch", options.sbatch,
             "Another option of sbatch, as in --sbatch=--mem=4G; may be repeated")
      .typeName("OPTION");
  command.flag("--no-wait", options.noWait, "Submit the job and end; --collect makes the result");
  command.flag("--dry-run", options.dryRun, "Print the script that would be submitted, and end");
}

}  // namespace

void addSweepCommand(CommandLine& line) {
  Command command = line.add("sweep", "Solve a model for each scenario of a file");
  const auto words = std::make_shared<SweepWords>();
  SweepOptions* const options = &words->options;
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
      .text("--part", words->part,
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
  command
      .text("--progress", words->progress,
            "How the run tells how it gets on: terminal, a line that is drawn anew where standard "
            "error is a terminal; json, an object on a line of standard error each second; none")
      .typeName("HOW")
      .notEmpty();
  addSlurmOptions(command, *options);
  command
      .text("--dask", options->dask,
            "Have the workers of a Dask cluster solve, whose scheduler has this address, as in "
            "tcp://host:8786; parts come back over the network, or stand in the folder of --parts")
      .typeName("ADDRESS")
      .notEmpty();
  addMemoryOption(command);
  command.footer(
      "A parameter price(s, food) of the scenario file drives the columns price_var(food) of the\n"
      "model, or what --drive \"price(food) = cost of buy\" says. The result has "
      "sweep_objective(s), sweep_status(s), sweep_solve_status(s), and\n"
      "SYM_level(s, ...) and SYM_marginal(s, ...) of each symbol reported.\n\n"
      "Example:\n"
      "  ztb sweep diet.lp --scenarios prices.rxf --over s --report buy --out sweep.rxf --jobs 2");
  command.action([words] { return runSweep(*words); });
}

}  // namespace tool
