#include "sweep/chunk_solver.h"

#include <fmt/format.h>

#include <exception>
#include <filesystem>
#include <fstream>
#include <random>

#include "sweep/basis_lock.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace sweep {

using tool::Failure;
using tool::withFile;

namespace {

// What stands in the place of a basis where there is none to be had.
constexpr const char* kNoBasis = "none";

// A file of no other process, on no other machine either that shares the folder.
std::string nameBeside(const std::string& file) {
  const std::filesystem::path path = tool::pathOf(file);
  std::random_device random;
  return tool::nameOf(path.parent_path() /
                      tool::pathOf(fmt::format(".{}.{:08x}{:08x}", tool::nameOf(path.filename()),
                                               random(), random())));
}

// No scenario can be solved.
class NoSuchSolver : public Failure {
 public:
  using Failure::Failure;
};

}  // namespace

ChunkSolver::ChunkSolver(const Options& options, const ScenarioFile& scenarios, std::string inputs)
    : options_(options),
      scenarios_(scenarios),
      inputs_(std::move(inputs)),
      fills_(tool::fillsOf(options.data, options.model)),
      session_(options.model, options.modelData, fills_ ? &*fills_ : nullptr, options.drives),
      solver_(options.solver.empty() ? session_.standardSolverOfParameters() : options.solver),
      data_(scenarios, session_) {
  isLinear_ = session_.model().updatedKind() == ztbKindLinear;
  for (const std::string& name : options.reports) addReport(name);
  // Names that the result cannot have are told before anything is solved.
  PartResults(scenarios_.over(), inputs_, reports_);
  if (!options.timeLimit.empty()) {
    try {
      session_.model().setOption("TimeLimit", options.timeLimit);
    } catch (const ztb::Error& error) {
      throw Failure(fmt::format("--time-limit {}: {}", options.timeLimit, error.what()));
    }
  }
}

void ChunkSolver::addReport(const std::string& name) {
  const auto symbol = session_.database().findSymbol(name);
  if (!symbol || (symbol->type() != ztb::Type::variable && symbol->type() != ztb::Type::equation)) {
    throw Failure(withFile(
        session_.file(),
        fmt::format("the model has no variable or equation {}{}", name, session_.solvedText())));
  }
  reports_.emplace_back(symbol->name().str(), symbol->dimension());
}

std::vector<std::string> ChunkSolver::notes() const {
  std::vector<std::string> notes = session_.notes(false);
  if (fills_) {
    for (std::string& note : fills_->notes()) notes.push_back(std::move(note));
  }
  return notes;
}

bool ChunkSolver::makeBasis(const std::string& basisFile) {
  const std::string made = nameBeside(basisFile);
  bool hasBasis = isLinear_;
  if (hasBasis) {
    if (isUsed_) session_.renew();
    isUsed_ = true;
    try {
      solveModel();
      // Where a solve was ended, its basis is that of a moment and not of the model.
      if (stopped_) return false;
      hasBasis = session_.model().solveStatus() == ztbSolveNormal;
      if (hasBasis) session_.model().writeBasis(made);
    } catch (const ztb::Error&) {
      hasBasis = false;
    }
  }
  if (!hasBasis && !(std::ofstream(tool::pathOf(made), std::ios::binary) << kNoBasis << '\n'
                                                                         << std::flush)) {
    throw Failure(withFile(made, "cannot be written"));
  }
  if (posix::rename(made.c_str(), basisFile.c_str()) != 0) {
    throw Failure(withFile(basisFile, "cannot be made: " + tool::systemText(errno)));
  }
  return true;
}

void ChunkSolver::prepare(const std::string& basisFile) {
  std::error_code error;
  const std::filesystem::path path = tool::pathOf(basisFile);
  if (!std::filesystem::exists(path, error)) {
    const BasisLock lock(basisFile, stopped_);
    if (stopped_) return;
    if (!std::filesystem::exists(path, error) && !makeBasis(basisFile)) return;
  }
  std::string line;
  std::getline(std::ifstream(path, std::ios::binary), line);
  basisFile_ = line == kNoBasis ? "" : basisFile;
}

void ChunkSolver::solveModel() {
  try {
    session_.tie().solve(solver_);
  } catch (const ztb::Error& error) {
    if (error.kind() != ztb::ErrorKind::notFound) throw;
    throw NoSuchSolver(withFile(session_.file(), error.what()));
  }
}

void ChunkSolver::beginChunk(int first, int end) {
  if (isUsed_) session_.renew();
  isUsed_ = true;
  if (results_) results_->changeDatabase();
  data_.begin(first, end);
  if (basisFile_.empty()) return;
  try {
    session_.model().readBasis(basisFile_);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(
        basisFile_, fmt::format("{}; remove this file, and it is made again", error.what())));
  }
}

bool ChunkSolver::solve(int first, int end, const std::map<int, std::string>& skipped,
                        const Done& done) {
  beginChunk(first, end);
  if (!results_) {
    results_ = std::make_unique<PartResults>(scenarios_.over(), inputs_, reports_);
    first_ = end_ = first;
  }
  for (int scenario = first; scenario < end; ++scenario) {
    std::string reason;
    Outcome outcome{.status = ztbModelNoSolution, .solveStatus = ztbSolveFailed};
    if (const auto found = skipped.find(scenario); found != skipped.end()) {
      reason = found->second;
    } else {
      outcome = outcomeOf(scenario, reason);
    }
    if (stopped_) return false;
    results_->add(scenarios_.label(scenario), scenarios_.elementText(scenario), outcome, reason);
    if (outcome.objective) results_->takeSolution(session_.database());
    end_ = scenario + 1;
    done(scenario, outcome, reason);
  }
  return true;
}

Outcome ChunkSolver::outcomeOf(int scenario, std::string& reason) {
  try {
    // A solver that begins at the levels must not begin at those of the scenario before.
    session_.model().resetLevels();
    data_.apply(scenario);
    if (!stopped_) solveModel();
    const ztb::Model& model = session_.model();
    Outcome outcome{.status = model.status(), .solveStatus = model.solveStatus()};
    if (model.hasSolution()) outcome.objective = model.objective();
    return outcome;
  } catch (const NoSuchSolver&) {
    throw;
  } catch (const std::exception& error) {
    reason = error.what();
    return {.status = ztbModelNoSolution, .solveStatus = ztbSolveFailed};
  }
}

void ChunkSolver::publish(const std::string& file) {
  if (!results_) return;
  results_->write(file, data_.unmatched());
  results_.reset();
  first_ = end_ = 0;
  data_.forgetUnmatched();
}

void ChunkSolver::stop() {
  stopped_ = true;
  ztbModelTerminate(session_.model().handle());
}

}  // namespace sweep
