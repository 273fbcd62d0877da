#include "providers/model/live_solver.h"

#include <time.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <string_view>
#include <system_error>

#include "providers/model/model_error.h"
#include "providers/model/solver_library.h"
#include "providers/model/status_texts.h"

namespace lomu {

namespace {

double clockSeconds(clockid_t clock) {
  timespec time{};
  clock_gettime(clock, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

// A solver's reason with names in the place of its numbers of columns and rows.
std::string withNames(const Model& model, std::string reason) {
  const auto name = [&](std::string_view mark, int count, const auto& nameOf) {
    for (std::size_t begin = 0; (begin = reason.find(mark, begin)) != std::string::npos;) {
      begin += mark.size();
      int number = 0;
      const char* const first = reason.data() + begin;
      const auto read = std::from_chars(first, reason.data() + reason.size(), number);
      if (read.ec != std::errc{} || number < 0 || number >= count) continue;
      // The "#" as well.
      reason.replace(begin - 1, static_cast<std::size_t>(read.ptr - first) + 1, nameOf(number));
    }
  };
  name("column #", model.instance.columnCount(), [&](int j) { return model.columnName(j); });
  name("row #", model.instance.rowCount() - 1, [&](int i) { return model.rowName(i + 1); });
  return reason;
}

}  // namespace

LiveSolver::LiveSolver(const CatalogueRow& row)
    : row_(row), solver_(SolverLibrary::makeSolver(row.library)) {}

bool LiveSolver::takes(const Instance& instance) const {
  const std::string_view kind = kindOf(instance.type());
  return std::find(row_.kinds.begin(), row_.kinds.end(), kind) != row_.kinds.end();
}

void LiveSolver::load(Model& model) {
  model.requireUsableData();
  if (!takes(model.instance)) {
    std::string kinds;
    for (const std::string& kind : row_.kinds) kinds += (kinds.empty() ? "" : ", ") + kind;
    const SolverProblem problem = model.instance.solverProblem();
    const bool hasSets = problem.isSemiContinuous != nullptr || problem.setCount > 0;
    throw ModelError(
        "solver \"" + row_.name + "\" solves " + kinds + "; the model is " +
        std::string(kindOf(model.instance.type())) +
        (hasSets ? ": it has semi-continuous columns or special ordered sets, which cbc solves"
                 : ""));
  }
  const bool wantsStart = model.environment->options().number(OptionId::useStart) != 0;
  model.instance.useLevelsAsStart(wantsStart);
  std::string reason;
  if (!solver_.load(model.instance.solverProblem(), reason)) {
    throw ModelError("solver \"" + row_.name + "\" refused the model: " + withNames(model, reason));
  }
  model_ = &model;
}

bool LiveSolver::update() {
  // The solve refuses such data, and the solver lives on for others.
  if (model_ != nullptr && model_->instance.unusableCarrier() >= 0) return true;
  return model_ != nullptr && takes(model_->instance) &&
         solver_.update(model_->instance.solverProblem());
}

void LiveSolver::logResult() const {
  const Instance& instance = model_->instance;
  // The objective of a solve without a point would be that of an older one.
  std::array<char, 48> objective{};
  if (result_.hasPoint) {
    std::snprintf(objective.data(), objective.size(), ", objective %.15g", instance.row(0).level);
  }
  std::array<char, 160> line{};
  std::snprintf(line.data(), line.size(), "%.40s: %s, %s%s, %.0f iterations", row_.name.c_str(),
                modelStatusText(instance.modelStatus()), solveStatusText(instance.solveStatus()),
                objective.data(), result_.iterations);
  model_->environment->log(line.data());
}

void LiveSolver::solve(const SolverLimits& limits) {
  model_->requireUsableData();
  Instance& instance = model_->instance;
  result_.begin(static_cast<std::size_t>(instance.solverColumnCount()),
                static_cast<std::size_t>(instance.rowCount()) - 1);
  model_->environment->beginProgress(instance.maximizes(), -instance.plainRhs(0));
  const double begin = clockSeconds(CLOCK_MONOTONIC);
  const double processorBegin = clockSeconds(CLOCK_THREAD_CPUTIME_ID);
  solver_.solve(limits, result_);
  model_->seconds = clockSeconds(CLOCK_MONOTONIC) - begin;
  model_->processorSeconds = clockSeconds(CLOCK_THREAD_CPUTIME_ID) - processorBegin;
  if (!solver_.doubt().empty()) {
    ++model_->coldSolves;
    model_->environment->log(row_.name + ": " + withNames(*model_, solver_.doubt()) +
                             "; solved once more from the beginning");
  }
  instance.takeResult(result_);
  model_->solver = row_.name;
  const bool beganAtBasis = instance.beginsAtBasis() && instance.type() == ModelType::linear;
  model_->basisTaken = beganAtBasis && result_.startTaken;
  model_->startTaken = !beganAtBasis && result_.startTaken;
  instance.beginAtBasis({});

  if (model_->environment->hasLog()) logResult();
  if (result_.outcome == Outcome::failed) {
    throw ModelError("solver \"" + row_.name + "\" failed: " + withNames(*model_, result_.reason));
  }
}

}  // namespace lomu
