#include "providers/model/solver_library.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <limits>
#include <map>
#include <mutex>
#include <new>
#include <string_view>
#include <utility>
#include <vector>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"

namespace lomu {

namespace {

// The table of a library, of whatever version.
const ztbSolverFunctions& opened(const std::string& path) {
  void* library = platform::openLibrary(path);
  if (library == nullptr)
    throw ModelError("the solver cannot be opened: " + platform::openErrorText(path));
  void* found = platform::findSymbol(library, "ztbSolverLibrary");
  if (found == nullptr) {
    throw ModelError(path + " is no solver library: it has no ztbSolverLibrary");
  }
  const ztbSolverFunctions* functions = reinterpret_cast<decltype(&ztbSolverLibrary)>(found)();
  if (functions == nullptr) throw ModelError(path + " gives no table of functions");
  return *functions;
}

// The same; what was opened once is not looked for again, which each solve would do otherwise.
const ztbSolverFunctions& open(const std::string& path) {
  static std::mutex mutex;
  static std::map<std::string, const ztbSolverFunctions*> known;
  const std::lock_guard lock(mutex);
  const auto found = known.find(path);
  if (found != known.end()) return *found->second;
  const ztbSolverFunctions& functions = opened(path);
  known.emplace(path, &functions);
  return functions;
}

// Calls the functions of a library, and takes results out of its plain arrays.
class LibrarySolver : public Solver {
 public:
  explicit LibrarySolver(const ztbSolverFunctions& functions)
      : functions_(functions), solver_(functions.make()) {
    if (solver_ == nullptr) throw std::bad_alloc();
  }
  ~LibrarySolver() override { functions_.free(solver_); }

  bool load(const SolverProblem& problem, std::string& reason) override {
    const bool taken =
        told(functions_.load(solver_, &problem, reason_.data(), static_cast<int>(reason_.size())));
    if (!taken) reason = reason_.data();
    return taken;
  }

  bool update(const SolverProblem& problem) override {
    return told(functions_.update(solver_, &problem));
  }

  void solve(const SolverLimits& limits, SolverResult& result) override {
    position_.assign(result.position.size(), ztbSolverBasic);
    rowPosition_.assign(result.rowPosition.size(), ztbSolverBasic);
    result.columnRay.assign(result.level.size(), 0.0);
    result.rowRay.assign(result.rowMarginal.size(), 0.0);
    reason_[0] = '\0';
    ztbSolverResult plain = {.outcome = ztbSolverFailed,
                             .hasPoint = 0,
                             .iterations = 0,
                             .bound = -std::numeric_limits<double>::infinity(),
                             .startTaken = 0,
                             .level = result.level.data(),
                             .position = position_.data(),
                             .rowMarginal = result.rowMarginal.data(),
                             .rowPosition = rowPosition_.data(),
                             .hasColumnRay = 0,
                             .hasRowRay = 0,
                             .columnRay = result.columnRay.data(),
                             .rowRay = result.rowRay.data(),
                             .reason = reason_.data(),
                             .reasonSize = static_cast<int>(reason_.size())};
    functions_.solve(solver_, &limits, &plain);
    result.outcome = static_cast<Outcome>(plain.outcome);
    result.hasPoint = plain.hasPoint != 0;
    result.iterations = plain.iterations;
    result.bound = plain.bound;
    result.startTaken = plain.startTaken != 0;
    if (plain.hasColumnRay == 0) result.columnRay.clear();
    if (plain.hasRowRay == 0) result.rowRay.clear();
    takePositions(position_, result.position);
    takePositions(rowPosition_, result.rowPosition);
    result.reason = reason_.data();
    if (plain.outcome < ztbSolverOptimal || plain.outcome > ztbSolverFailed) {
      result.outcome = Outcome::failed;
      result.hasPoint = false;
      result.reason = "it gave outcome " + std::to_string(plain.outcome) + ", expected " +
                      std::to_string(ztbSolverOptimal) + " to " + std::to_string(ztbSolverFailed);
    }
  }

  bool ranges(SolverRanges& ranges) override {
    return functions_.ranges != nullptr && told(functions_.ranges(solver_, &ranges));
  }

 private:
  static bool told(int answer) {
    if (answer == ztbSolverNoMemory) throw std::bad_alloc();
    return answer == ztbSolverYes;
  }

  static void takePositions(const std::vector<std::int32_t>& from, std::vector<Position>& to) {
    std::transform(from.begin(), from.end(), to.begin(), [](std::int32_t position) {
      const bool known = position >= ztbSolverAtLower && position <= ztbSolverSuperbasic;
      return known ? static_cast<Position>(position) : Position::superbasic;
    });
  }

  const ztbSolverFunctions& functions_;
  void* solver_;
  std::array<char, 1024> reason_{};
  // Kept, so that repeated solves allocate nothing.
  std::vector<std::int32_t> position_, rowPosition_;
};

// Of each library of ours the package of the solver behind it.
constexpr std::array<std::pair<std::string_view, std::string_view>, 5> kPackages{{
    {"libztbclp.so", "coinor-libclp1"},
    {"libztbcbc.so", "coinor-libcbc3"},
    {"libztbglpk.so", "libglpk40"},
    {"libztbipopt.so", "coinor-libipopt1v5"},
    {"libztbbonmin.so", "coinor-libbonmin4"},
}};

std::string packageOf(const std::string& path) {
  const auto found =
      std::ranges::find(kPackages, std::string_view(path).substr(path.rfind('/') + 1),
                        &std::pair<std::string_view, std::string_view>::first);
  if (found == kPackages.end()) return "";
  std::error_code ignored;
  const std::string package(
      std::filesystem::exists(platform::pathOf(path), ignored) ? found->second : "ztb-solvers");
  return " (package " + package + ")";
}

}  // namespace

bool SolverLibrary::canOpen(const std::string& path) {
  return whyNot(path).empty();
}

std::string SolverLibrary::whyNot(const std::string& path) {
  try {
    open(path);
    return "";
  } catch (const ModelError& error) {
    return error.what() + packageOf(path);
  }
}

std::unique_ptr<Solver> SolverLibrary::makeSolver(const std::string& path) {
  const ztbSolverFunctions& functions = open(path);
  if (functions.version != ztbSolverVersion) {
    throw ModelError(path + " has version " + std::to_string(functions.version) +
                     " of the interface to solvers, expected version " +
                     std::to_string(ztbSolverVersion));
  }
  return std::make_unique<LibrarySolver>(functions);
}

}  // namespace lomu
