#include "tools/sweep/slurm_array.h"

#include <fmt/format.h>
#include <ztb/rxf.h>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string_view>
#include <utility>

#include "tools/files/new_file.h"
#include "tools/files/system_files.h"
#include "tools/sweep/child_program.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

// Seconds before a time limit at which a task is asked to end: a tenth of the limit, and at most
// this.
constexpr long long kMostBefore = 60;

// "1-3,7" of 1, 2, 3, 7.
std::string listOf(const std::vector<int>& numbers) {
  std::string text;
  for (std::size_t at = 0; at < numbers.size();) {
    std::size_t last = at;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    text += fmt::format("{}{}", text.empty() ? "" : ",", numbers[at]);
    if (last > at) text += fmt::format("-{}", numbers[last]);
    at = last + 1;
  }
  return text;
}

// Runs a command of Slurm. Throws Failure where it is not there.
ProgramEnd runSlurm(const std::vector<std::string>& words, const std::string& input = "") {
  try {
    return runProgram(words, input);
  } catch (const NoProgram& error) {
    throw Failure(fmt::format(
        "{}; --slurm needs the commands of Slurm on this machine (Debian package slurm-client)",
        error.what()));
  }
}

std::string lastLine(const std::string& text) {
  const std::size_t end = text.find_last_not_of('\n');
  if (end == std::string::npos) return "";
  const std::size_t before = text.find_last_of('\n', end);
  const std::size_t begin = before == std::string::npos ? 0 : before + 1;
  return text.substr(begin, end + 1 - begin);
}

// An option in a script's comments, where blanks, quotes and # end a word.
std::string directive(const std::string& option) {
  std::string text = "#SBATCH ";
  for (const char c : option) {
    if (std::string_view(" \t\"'\\#").find(c) != std::string_view::npos) text += '\\';
    text += c;
  }
  return text + '\n';
}

std::optional<std::vector<long long>> numbersOf(std::string_view text) {
  std::vector<long long> numbers;
  while (true) {
    const std::size_t colon = std::min(text.find(':'), text.size());
    long long number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + colon, number);
    if (error != std::errc() || end != text.data() + colon || number < 0 || number > 100'000'000) {
      return std::nullopt;
    }
    numbers.push_back(number);
    if (colon == text.size()) return numbers;
    text.remove_prefix(colon + 1);
  }
}

}  // namespace

std::string shellQuoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (c == '\'') {
      quoted += "'\\''";
    } else {
      quoted += c;
    }
  }
  return quoted + '\'';
}

std::optional<long long> slurmSeconds(const std::string& text) {
  if (text == "infinite" || text == "INFINITE" || text == "unlimited" || text == "UNLIMITED") {
    return 0;
  }
  constexpr long long minute = 60;
  constexpr long long hour = 60 * minute;
  constexpr long long day = 24 * hour;
  const std::size_t dash = text.find('-');
  const auto numbers =
      numbersOf(std::string_view(text).substr(dash == std::string::npos ? 0 : dash + 1));
  if (!numbers || numbers->size() > 3) return std::nullopt;
  std::vector<long long> units{hour, minute, 1};
  long long seconds = 0;
  if (dash != std::string::npos) {
    const auto days = numbersOf(text.substr(0, dash));
    if (!days || days->size() != 1) return std::nullopt;
    seconds = days->front() * day;
  } else if (numbers->size() < 3) {
    units = {minute, 1};
  }
  for (std::size_t at = 0; at < numbers->size(); ++at) seconds += (*numbers)[at] * units[at];
  return seconds;
}

SlurmArray::SlurmArray(const SweepOptions& options, std::string folder, std::string key, int tasks)
    : options_(options),
      folder_(nameOf(std::filesystem::absolute(pathOf(folder)))),
      key_(std::move(key)),
      tasks_(tasks) {
  std::ifstream(file(".job")) >> job_;
}

std::string SlurmArray::file(const std::string& ending) const {
  return (std::filesystem::path(folder_) / (key_ + ending)).string();
}

std::string SlurmArray::script(const std::vector<int>& shares) const {
  std::string text = "#!/bin/sh\n";
  text += directive("--job-name=ztb-sweep");
  text += directive("--array=" + listOf(shares));
  text += directive("--ntasks=1");
  text += directive(fmt::format("--cpus-per-task={}", options_.jobs));
  const long long limit = options_.time.empty() ? 0 : slurmSeconds(options_.time).value_or(0);
  // B: the signal goes to the command itself, which is all that a task runs.
  text += directive(fmt::format(
      "--signal=B:TERM@{}", limit == 0 ? kMostBefore : std::clamp(limit / 10, 1LL, kMostBefore)));
  text += directive("--requeue");
  text += directive("--output=/dev/null");
  if (!options_.time.empty()) text += directive("--time=" + options_.time);
  if (!options_.partition.empty()) text += directive("--partition=" + options_.partition);
  for (const std::string& option : options_.sbatch) text += directive(option);
  text += fmt::format("exec >>{}.\"$SLURM_ARRAY_TASK_ID\".log 2>&1\n",
                      shellQuoted((std::filesystem::path(folder_) / key_).string()));
  std::string command =
      "exec " + shellQuoted(std::filesystem::read_symlink("/proc/self/exe").string()) + " sweep";
  for (const auto& [name, value] : options_.ofSweep()) {
    command += (name == "model" ? " " : " --" + name + ' ') + shellQuoted(value);
  }
  if (options_.jobs > 1) command += fmt::format(" --jobs {}", options_.jobs);
  if (options_.stall) command += fmt::format(" --stall {}", *options_.stall);
  const unsigned long long memory = ztbRxfMemoryLimit(0);
  ztbRxfMemoryLimit(memory);
  if (memory > 0) command += fmt::format(" --max-memory {}", memory);
  if (options_.resume) command += " --resume";
  return text + command +
         fmt::format(" --progress none --parts {} --part \"$SLURM_ARRAY_TASK_ID/{}\"\n",
                     shellQuoted(folder_), tasks_);
}

void SlurmArray::submit(const std::vector<int>& shares) {
  for (const int share : shares) {
    std::error_code error;
    std::filesystem::remove(file(fmt::format(".{}.log", share)), error);
  }
  const ProgramEnd end = runSlurm({"sbatch", "--parsable"}, script(shares));
  // "JOB" or "JOB;CLUSTER".
  const std::string job = lastLine(end.output);
  if (end.status != 0 || job.empty()) {
    throw Failure(end.errors.empty() ? fmt::format("sbatch: ended with {}", end.status)
                                     : lastLine(end.errors));
  }
  job_ = job.substr(0, job.find(';'));
  NewFile record(file(".job"));
  std::fputs((job_ + '\n').c_str(), record.stream());
  record.publish();
}

std::optional<SlurmArray::Queue> SlurmArray::queue() const {
  const ProgramEnd end =
      runSlurm({"squeue", "--noheader", "--array", "--jobs", job_, "--format", "%T|%r"});
  if (end.status != 0) {
    // Slurm forgets jobs that are through after some minutes.
    if (end.errors.find("Invalid job id") != std::string::npos) return std::nullopt;
    throw Failure(end.errors.empty() ? fmt::format("squeue: ended with {}", end.status)
                                     : lastLine(end.errors));
  }
  Queue queue;
  bool hasSeveral = false;
  std::istringstream lines(end.output);
  for (std::string line; std::getline(lines, line);) {
    const std::size_t bar = line.find('|');
    if (bar == std::string::npos) continue;
    if (line.substr(0, bar) != "PENDING") {
      ++queue.running;
      continue;
    }
    const std::string reason = line.substr(bar + 1);
    hasSeveral = hasSeveral || (queue.waiting > 0 && reason != queue.reason);
    queue.reason = reason;
    ++queue.waiting;
  }
  if (hasSeveral) queue.reason.clear();
  if (queue.running + queue.waiting == 0) return std::nullopt;
  return queue;
}

std::string SlurmArray::lastWord(int share) const {
  const std::string log = file(fmt::format(".{}.log", share));
  std::ifstream in(log);
  if (!in)
    return "left no word in " + log + ": the machine does not see that folder, or no command";
  std::ostringstream text;
  text << in.rdbuf();
  const std::string last = lastLine(text.str());
  return last.empty() ? "ended without a word" : last;
}

}  // namespace tool
