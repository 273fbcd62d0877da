#include "sweep/sweep_job.h"

#include <fmt/format.h>
#include <ztb/sweep.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

#include "sweep/collection.h"
#include "sweep/inputs.h"
#include "tools/files/new_file.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace sweep {

using tool::Failure;
using tool::withFile;

namespace {

constexpr int kMostScenarios = 1'000'000;
constexpr int kChunks = 64;
constexpr int kMostByDefault = 1000;
constexpr const char* kFirstLine = "ztb sweep 1";

struct TextOption {
  const char* name;
  std::string Options::*member;
  bool isFile;
};

constexpr std::array<TextOption, 7> kTextOptions{{{"model", &Options::model, true},
                                                  {"model-data", &Options::modelData, true},
                                                  {"data", &Options::data, true},
                                                  {"scenarios", &Options::scenarios, true},
                                                  {"over", &Options::over, false},
                                                  {"solver", &Options::solver, false},
                                                  {"time-limit", &Options::timeLimit, false}}};

int wholeNumber(const std::string& name, const std::string& value, int least, int most) {
  int number = 0;
  const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
  if (error != std::errc() || end != value.data() + value.size() || number < least ||
      number > most) {
    throw Failure(fmt::format("--{} {}: {} to {} are allowed", name, value, least, most));
  }
  return number;
}

// A value on one line: what would end it, or stands for that, has a backslash in front.
std::string written(const std::string& value) {
  std::string text;
  for (const char c : value) {
    if (c == '\n' || c == '\\') text += '\\';
    text += c == '\n' ? 'n' : c;
  }
  return text;
}

std::string unwritten(const std::string& text) {
  std::string value;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const bool isEscape = text[at] == '\\' && at + 1 < text.size();
    if (isEscape) ++at;
    value += isEscape && text[at] == 'n' ? '\n' : text[at];
  }
  return value;
}

}  // namespace

void SweepJob::setOption(const std::string& name, const std::string& value) {
  if (isOpen()) throw Failure(fmt::format("{}: the sweep is open already", name));
  for (const TextOption& option : kTextOptions) {
    if (name == option.name) {
      options_.*option.member = value;
      return;
    }
  }
  if (name == "drive") {
    options_.drives.push_back(value);
  } else if (name == "report") {
    options_.reports.push_back(value);
  } else if (name == "chunk") {
    options_.chunk = wholeNumber(name, value, 1, kMostScenarios);
  } else {
    throw Failure(fmt::format("a sweep has no option {}", name));
  }
}

void SweepJob::open() {
  openUnlooked();
  try {
    scenarios_->requireNumbers();
  } catch (...) {
    scenarios_.reset();
    throw;
  }
}

void SweepJob::openUnlooked() {
  if (isOpen()) throw Failure("the sweep is open already");
  std::string files = filesOf(options_);
  std::string inputs = inputsOf(options_);
  auto scenarios = std::make_unique<ScenarioFile>(options_.scenarios, options_.over);
  if (filesOf(options_) != files) {
    throw Failure("a file of the sweep was changed while it was opened");
  }
  size_ = options_.chunk ? *options_.chunk
                         : std::clamp(scenarios->count() / kChunks, 1, kMostByDefault);
  scenarios_ = std::move(scenarios);
  inputs_ = std::move(inputs) + chunkWord(size_);
  key_ = keyOf(inputs_);
  files_ = std::move(files);
  index_.emplace(*scenarios_, size_);
}

void SweepJob::requireOpen() const {
  if (!isOpen()) throw Failure("the sweep is not open");
}

void SweepJob::requireChunk(int chunk) const {
  requireOpen();
  if (chunk < 0 || chunk >= index_->chunkCount()) {
    throw Failure(
        fmt::format("there is no chunk {}: the sweep has {}", chunk, index_->chunkCount()));
  }
}

void SweepJob::save(const std::string& folder) const {
  requireOpen();
  const PartFolder parts(folder, key_);
  parts.make();
  std::string text = fmt::format("{}\n", kFirstLine);
  const auto add = [&](const char* name, const std::string& value) {
    text += fmt::format("{}={}\n", name, written(value));
  };
  for (const TextOption& option : kTextOptions) {
    const std::string& value = options_.*option.member;
    if (value.empty()) continue;
    add(option.name,
        option.isFile ? tool::nameOf(std::filesystem::absolute(tool::pathOf(value))) : value);
  }
  for (const std::string& drive : options_.drives) add("drive", drive);
  for (const std::string& report : options_.reports) add("report", report);
  add("chunk", std::to_string(size_));
  tool::NewFile file(PartFolder::saved(folder, key_));
  std::fputs(text.c_str(), file.stream());
  file.publish();
}

void SweepJob::load(const std::string& folder) {
  const std::vector<std::string> saved = PartFolder::saved(folder);
  if (saved.empty()) throw Failure(withFile(folder, "has the options of no sweep"));
  if (saved.size() > 1) {
    throw Failure(withFile(
        folder, fmt::format("has the options of {} sweeps: {}, {}{}; name model "
                            "and scenarios",
                            saved.size(), saved[0], saved[1], saved.size() > 2 ? ", ..." : "")));
  }
  std::ifstream in(tool::pathOf(saved.front()), std::ios::binary);
  std::string line;
  if (!std::getline(in, line) || line != kFirstLine) {
    throw Failure(withFile(saved.front(), "does not hold the options of a sweep"));
  }
  while (std::getline(in, line)) {
    const std::size_t equals = std::min(line.find('='), line.size());
    setOption(line.substr(0, equals),
              equals < line.size() ? unwritten(line.substr(equals + 1)) : "");
  }
  // Who saved the options has looked at the records.
  openUnlooked();
  if (PartFolder::saved(folder, key_) != saved.front()) {
    scenarios_.reset();
    throw Failure(withFile(saved.front(), "is of a sweep with other files: they have changed"));
  }
}

void SweepJob::requireSameInputs() const {
  requireOpen();
  if (filesOf(options_) == files_) return;
  const std::string now = inputsOf(options_) + chunkWord(size_);
  const std::string difference = inputsDifference(now, inputs_);
  if (!difference.empty()) throw Failure(difference);
}

// The result must not take the place of a file that the sweep is made from.
void SweepJob::refuseReplacing(const std::string& out) const {
  requireOpen();
  if (out.empty()) throw Failure("the result has no name");
  for (const TextOption& option : kTextOptions) {
    const std::string& file = options_.*option.member;
    std::error_code error;
    if (option.isFile && !file.empty() &&
        std::filesystem::equivalent(tool::pathOf(file), tool::pathOf(out), error)) {
      throw Failure(withFile(out, "would be replaced by the results; name another --out"));
    }
  }
}

void SweepJob::lock(const std::string& out) {
  refuseReplacing(out);
  lock_.reset();
  lock_ = std::make_unique<ResultLock>(out);
}

// The model file may be another one by now: what was read is held against the checksums.
ChunkSolver& SweepJob::solver() {
  requireOpen();
  if (!solver_) {
    auto opened = std::make_unique<ChunkSolver>(options_, *scenarios_, inputs_);
    try {
      requireSameInputs();
    } catch (const Failure& error) {
      throw Failure(fmt::format("{} stood in its place while the sweep ran", error.what()));
    }
    solver_ = std::move(opened);
    running_ = solver_.get();
    if (stopped_) solver_->stop();
    if (watch_) {
      for (const std::string& note : solver_->notes()) watch_(ZTB_SWEEP_NOTE, -1, note.c_str());
    }
  }
  return *solver_;
}

void SweepJob::prepare(const std::string& folder) {
  if (folder.empty()) throw Failure("the folder of the parts has no name");
  ChunkSolver& solver = this->solver();
  if (preparedIn_ == folder) return;
  const PartFolder parts(folder, key_);
  parts.make();
  solver.prepare(parts.basis());
  preparedIn_ = folder;
}

bool SweepJob::solve(const std::string& folder, int chunk) {
  requireChunk(chunk);
  prepare(folder);
  const auto [first, end] = solver_->kept();
  if (first < end && end != index_->begin(chunk)) {
    throw Failure(fmt::format("chunk {} does not follow the one whose results are kept", chunk));
  }
  return solver_->solve(index_->begin(chunk), index_->end(chunk), skipped_,
                        [this](int scenario, const Outcome& outcome, const std::string& reason) {
                          if (!watch_) return;
                          if (outcome.hasFailed()) {
                            watch_(ZTB_SWEEP_FAILED, scenario, reason.c_str());
                          }
                          watch_(ZTB_SWEEP_SOLVED, scenario, "");
                        });
}

void SweepJob::publish(const std::string& folder) {
  requireOpen();
  if (!solver_) return;
  const auto [first, end] = solver_->kept();
  if (first == end) return;
  const PartFolder parts(folder, key_);
  parts.make();
  solver_->publish(parts.part(first, end));
}

void SweepJob::skip(int scenario, const std::string& reason) {
  requireOpen();
  if (scenario < 0 || scenario >= scenarios_->count()) {
    throw Failure(fmt::format("there is no scenario {}", scenario));
  }
  skipped_[scenario] = reason;
}

void SweepJob::stop() {
  stopped_ = true;
  if (ChunkSolver* const running = running_) running->stop();
}

void SweepJob::find(const std::string& folder, const std::string& result) {
  requireOpen();
  index_.emplace(*scenarios_, size_);
  if (!result.empty()) index_->takeResult(result, inputs_);
  for (const Part& part : PartFolder(folder, key_).parts()) {
    try {
      index_->take(part.file, part.first, part.end, inputs_);
    } catch (const std::exception& error) {
      throw Failure(withFile(part.file, std::string(error.what()) + kRemovePart));
    }
  }
}

std::string SweepJob::foreign(const std::string& folder) const {
  requireOpen();
  const std::optional<std::string> part = PartFolder(folder, key_).foreign();
  if (!part) return "";
  const std::string difference =
      inputsDifference(PartIndex::inputsOf(tool::ExchangeFile(*part)), inputs_);
  return difference.empty()
             ? ""
             : withFile(*part, fmt::format("is from a sweep with {}; without --resume all is "
                                           "solved anew",
                                           difference));
}

std::string SweepJob::explain(const std::string& folder, int scenario) {
  prepare(folder);
  if (!explanation_) explanation_ = std::make_unique<Explanation>(*scenarios_);
  return explanation_->of(scenario, *index_, *solver_);
}

void SweepJob::collect(const std::string& out) const {
  refuseReplacing(out);
  sweep::collect(*index_, *scenarios_, inputs_, out);
}

void SweepJob::remove(const std::string& folder, bool ofAll) const {
  requireOpen();
  PartFolder(folder, key_).remove(ofAll);
}

const char* SweepJob::label(int scenario) const {
  return ztbRxfLabel(scenarios_->file().file().handle(), scenarios_->number(scenario));
}

}  // namespace sweep
