#include "tools/sweep/sweep_run.h"

#include <fmt/format.h>
#include <ztb/model.h>

#include <algorithm>
#include <cstddef>
#include <filesystem>
#include <system_error>
#include <thread>

#include "tools/files/system_files.h"
#include "tools/sweep/dask_workers.h"
#include "tools/sweep/end_request.h"
#include "tools/sweep/sweep_crew.h"
#include "tools/sweep/sweep_summary.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr int kExplained = 20;
// Chunks of a task of Slurm without --array, and the numbers that Slurm allows by default.
constexpr int kChunksOfTask = 4;
constexpr int kMostTasks = 1000;
constexpr int kTasksShown = 20;

std::string scenarios(int count) {
  return counted(static_cast<std::size_t>(count), "scenario");
}

}  // namespace

SweepRun::SweepRun(const SweepOptions& options)
    : options_(options), folder_(options.parts.empty() ? options.out + ".parts" : options.parts) {
  options.open(sweep_);
}

bool SweepRun::solveAll() {
  sweep_.lock(options_.out);
  const bool hasResult = findKept();
  const std::vector<int> pending = pendingChunks(0, sweep_.chunkCount(), true);
  if (!pending.empty()) sweep_.save(folder_);
  std::map<int, std::string> deaths;
  try {
    deaths = solve(pending);
  } catch (const Failure&) {
    requireSameInputs();
    leaveNoEmptyFolder();
    throw;
  }
  requireSameInputs();
  sweep_.find(folder_, hasResult ? options_.out : "");
  if (isAskedToEnd()) return tellOfEnd("was asked to end");
  return finish(hasResult, deaths, pending);
}

bool SweepRun::finish(bool hasResult, const std::map<int, std::string>& deaths,
                      const std::vector<int>& solved) {
  std::error_code error;
  if (!hasResult || std::filesystem::exists(pathOf(folder_), error)) makeResult();
  const bool allSolved = report(all(), "failed", deaths, solved);
  if (options_.parts.empty()) sweep_.remove(folder_, true);
  return allSolved;
}

bool SweepRun::solveShare(int number, int count) {
  sweep_.save(folder_);
  sweep_.find(folder_);
  const ztb::Sweep::Range chunks = chunksOf(number, count);
  const std::vector<int> pending = pendingChunks(chunks.first, chunks.end, options_.resume);
  const std::map<int, std::string> deaths = solve(pending);
  sweep_.find(folder_);
  if (isAskedToEnd()) return tellOfEnd("was asked to end");
  const ztb::Sweep::Range range =
      chunks.first == chunks.end
          ? ztb::Sweep::Range{}
          : ztb::Sweep::Range{sweep_.chunk(chunks.first).first, sweep_.chunk(chunks.end - 1).end};
  return report(range, "failed", deaths, pending);
}

bool SweepRun::collect() {
  sweep_.lock(options_.out);
  sweep_.find(folder_);
  makeResult();
  return report(all(), "missing", {}, {});
}

ztb::Sweep::Range SweepRun::chunksOf(int number, int count) const {
  const auto at = [&](int share) {
    return static_cast<int>(static_cast<long long>(sweep_.chunkCount()) * share / count);
  };
  return {at(number - 1), at(number)};
}

bool SweepRun::findKept() {
  if (!options_.resume) {
    sweep_.remove(folder_, options_.parts.empty());
    return false;
  }
  const std::string foreign = options_.parts.empty() ? sweep_.foreignPart(folder_) : "";
  if (!foreign.empty()) throw Failure(foreign);
  std::error_code error;
  if (std::filesystem::exists(pathOf(options_.out), error)) {
    try {
      sweep_.find(folder_, options_.out);
      return true;
    } catch (const ztb::Error&) {
      // What an interrupted sweep was to replace, when that has left parts, and otherwise no
      // sweep to resume.
      if (!std::filesystem::exists(pathOf(folder_), error)) throw;
    }
  }
  sweep_.find(folder_);
  return false;
}

std::vector<int> SweepRun::pendingChunks(int first, int end, bool withFailed) const {
  std::vector<int> pending;
  for (int chunk = first; chunk < end; ++chunk) {
    const ztb::Sweep::State state = sweep_.state(chunk);
    if (state.missing > 0 || (withFailed && state.failed > 0)) pending.push_back(chunk);
  }
  return pending;
}

int SweepRun::scenarioCount(const std::vector<int>& chunks) const {
  int count = 0;
  for (const int chunk : chunks) {
    const ztb::Sweep::Range range = sweep_.chunk(chunk);
    count += range.end - range.first;
  }
  return count;
}

std::map<int, std::string> SweepRun::solve(const std::vector<int>& pending) {
  watchForEnd(options_.dask.empty());
  SweepProgress progress(options_.progress, scenarioCount(pending));
  if (!options_.dask.empty()) {
    if (!pending.empty()) solveWithDask(options_, folder_, pending, progress, isAskedToEnd);
    return {};
  }
  const SweepCrew::Plan plan{.options = options_, .folder = folder_, .stops = isAskedToEnd};
  SweepCrew crew(sweep_, plan, progress);
  crew.solve(pending);
  return crew.deaths();
}

// Where nothing was solved the folder holds nothing to go on from.
void SweepRun::leaveNoEmptyFolder() {
  if (!options_.parts.empty()) return;
  try {
    sweep_.find(folder_);
    if (missingCount() == sweep_.scenarioCount()) sweep_.remove(folder_);
  } catch (const ztb::Error&) {
    // What ended the sweep is to be told, and not this.
  }
}

int SweepRun::missingCount() const {
  int missing = 0;
  for (int chunk = 0; chunk < sweep_.chunkCount(); ++chunk) missing += sweep_.state(chunk).missing;
  return missing;
}

bool SweepRun::tellOfEnd(const std::string& how) {
  printError(
      fmt::format("ztb: {}; {} of {} are not solved yet, what is solved stands "
                  "in {}",
                  how, missingCount(), scenarios(sweep_.scenarioCount()), folder_));
  return false;
}

void SweepRun::requireSameInputs() {
  const std::string difference = sweep_.difference();
  if (difference.empty()) return;
  if (options_.parts.empty()) sweep_.remove(folder_);
  throw Failure(
      withFile(options_.out, fmt::format("{} stood in its place while the sweep ran; what this run "
                                         "solved is dropped",
                                         difference)));
}

void SweepRun::makeResult() {
  try {
    sweep_.collect(options_.out);
  } catch (const ztb::Error& error) {
    throw Failure(fmt::format("{}; what was solved stays in {}: {} with another --out takes it",
                              error.what(), folder_, "--collect --parts " + folder_));
  }
}

bool SweepRun::report(ztb::Sweep::Range range, const std::string& missing,
                      const std::map<int, std::string>& deaths, const std::vector<int>& solved) {
  reportUnmatched();
  std::map<int, std::string> reasons = deaths;
  if (options_.explain) reasons.merge(explanations(range));
  const SweepSummary summary(sweep_, range, missing);
  const bool allSolved = summary.reportUnsolved(reasons);
  const int kept = range.end - range.first - scenarioCount(solved);
  summary.print(options_.collect ? 0 : kept,
                std::chrono::duration<double>(Clock::now() - start_).count());
  return allSolved;
}

void SweepRun::reportUnmatched() {
  const std::string names = sweep_.unmatched();
  for (std::size_t at = 0; at < names.size();) {
    const std::size_t blank = std::min(names.find(' ', at), names.size());
    const std::string name = names.substr(at, blank - at);
    printError(fmt::format("ztb: {}: {} has records that meet no column {}_var of the model",
                           options_.scenarios, name, name));
    at = blank + 1;
  }
}

std::map<int, std::string> SweepRun::explanations(ztb::Sweep::Range range) {
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

int SweepRun::taskCount() const {
  if (options_.tasks) return *options_.tasks;
  return std::clamp(sweep_.chunkCount() / kChunksOfTask, 1, kMostTasks);
}

SlurmArray SweepRun::slurmArray() const {
  return {options_, folder_, sweep_.key(), taskCount()};
}

std::vector<int> SweepRun::sharesOf(const std::vector<int>& chunks) const {
  const int count = taskCount();
  std::vector<int> shares;
  for (int share = 1; share <= count; ++share) {
    const ztb::Sweep::Range range = chunksOf(share, count);
    const auto found = std::ranges::lower_bound(chunks, range.first);
    if (found != chunks.end() && *found < range.end) shares.push_back(share);
  }
  return shares;
}

void SweepRun::printScript() {
  if (options_.resume) {
    findKept();
  }
  const std::vector<int> pending = pendingChunks(0, sweep_.chunkCount(), true);
  if (pending.empty()) {
    printError("ztb: nothing is left to solve, no job would be submitted");
    return;
  }
  print(slurmArray().script(sharesOf(pending)));
}

bool SweepRun::solveBySlurm() {
  sweep_.lock(options_.out);
  SlurmArray array = slurmArray();
  const bool isQueued = !array.job().empty() && array.queue();
  if (isQueued && !options_.resume) {
    throw Failure(
        fmt::format("job {} of this sweep is in the queue still: --resume waits for it, "
                    "'scancel {}' ends it",
                    array.job(), array.job()));
  }
  const bool hasResult = findKept();
  const std::vector<int> pending = pendingChunks(0, sweep_.chunkCount(), true);
  if (!pending.empty()) {
    sweep_.save(folder_);
    if (!isQueued) array.submit(sharesOf(pending));
    if (options_.noWait) {
      print(fmt::format("job {}: {} with {}\nztb sweep --collect --parts {} --out {}\n",
                        array.job(), counted(sharesOf(pending).size(), "task"),
                        scenarios(scenarioCount(pending)), shellQuoted(folder_),
                        shellQuoted(options_.out)));
      return true;
    }
    await(array, pending);
  }
  requireSameInputs();
  sweep_.find(folder_, hasResult ? options_.out : "");
  if (isAskedToEnd()) {
    return tellOfEnd(
        fmt::format("was asked to end; job {} goes on, and --resume waits for it", array.job()));
  }
  const std::vector<int> left = pendingChunks(0, sweep_.chunkCount(), false);
  if (left.empty()) return finish(hasResult, {}, pending);
  const std::vector<int> shares = sharesOf(left);
  for (std::size_t at = 0; at < shares.size() && at < kTasksShown; ++at) {
    printError(fmt::format("ztb: task {}: {}", shares[at], array.lastWord(shares[at])));
  }
  return tellOfEnd(fmt::format("{} of job {} did not end well, --resume submits them again",
                               counted(shares.size(), "task"), array.job()));
}

void SweepRun::await(const SlurmArray& array, const std::vector<int>& pending) {
  watchForEnd(true);
  SweepProgress progress(options_.progress, scenarioCount(pending));
  SweepCounts counts;
  std::string told;
  const auto tellOnce = [&](const std::string& text) {
    if (text == told) return;
    told = text;
    progress.pause();
    if (!text.empty()) printError("ztb: " + text);
  };
  const auto look = [&] {
    sweep_.find(folder_);
    counts.done = counts.failures = 0;
    for (const int chunk : pending) {
      const ztb::Sweep::Range range = sweep_.chunk(chunk);
      const ztb::Sweep::State state = sweep_.state(chunk);
      counts.done += range.end - range.first - state.missing;
      counts.failures += state.failed;
    }
    progress.show(counts);
  };
  while (!isAskedToEnd()) {
    const Clock::time_point before = Clock::now();
    try {
      const auto queue = array.queue();
      if (!queue) {
        counts.workers = 0;
        break;
      }
      counts.workers = queue->running;
      const bool isHeld = queue->running == 0 && queue->reason.find("eld") != std::string::npos;
      tellOnce(isHeld ? fmt::format("job {} is held: {}; 'scontrol release {}' lets it go on",
                                    array.job(), queue->reason, array.job())
                      : "");
      progress.step(fmt::format("job {}: {} at work, {} waiting{}", array.job(),
                                counted(static_cast<std::size_t>(queue->running), "task"),
                                queue->waiting,
                                queue->reason.empty() ? "" : " (" + queue->reason + ")"));
    } catch (const Failure& error) {
      tellOnce(fmt::format("{}; job {} is waited for", error.what(), array.job()));
    }
    look();
    // Neither the scheduler nor the storage is to be kept busy by being asked.
    const auto rest = std::clamp<Clock::duration>(10 * (Clock::now() - before),
                                                  std::chrono::seconds(1), std::chrono::minutes(1));
    const Clock::time_point until = Clock::now() + rest;
    while (Clock::now() < until && !isAskedToEnd()) {
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
  }
  look();
}

}  // namespace tool
