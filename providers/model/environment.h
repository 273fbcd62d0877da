// The solver environment of a model: options, log, the request to terminate, and the catalogue that
// fresh runs take their solver from.
#ifndef ZTB_PROVIDERS_MODEL_ENVIRONMENT_H_
#define ZTB_PROVIDERS_MODEL_ENVIRONMENT_H_

#include <atomic>
#include <cmath>
#include <memory>
#include <string>
#include <string_view>

#include "providers/model/catalogue.h"
#include "providers/model/options.h"
#include "providers/model/solver.h"

namespace lomu {

// The name of the catalogue file in the system directory.
inline constexpr std::string_view kCatalogueFile = "vltcmpNT.txt";

class Environment {
 public:
  // The system directory is where this library stands until the option is set.
  Environment();

  Options& options() { return options_; }

  // One line to the log file and the screen, as the options say, with control characters of names
  // and texts spelled out. A log file that cannot be written
  // is passed over: a solve does not fail for its log.
  void log(std::string_view text) const noexcept;
  // Whether such a line goes anywhere.
  [[nodiscard]] bool hasLog() const;

  // May be called from a signal handler.
  void terminate() { terminated_.store(true); }
  void clearTerminate() { terminated_.store(false); }

  // Asked during solves, by the thread that solves, whether to end; null: nobody is.
  void setWatch(int (*watch)(void* context), void* context) {
    watch_ = watch;
    watchContext_ = context;
  }

  // How far the running search is, in the terms of its model: the objective of the best point so
  // far, and what no point is better than; infinite as long as they are not known.
  struct Progress {
    double objective;
    double bound;
    [[nodiscard]] bool isKnown() const { return std::isfinite(objective) || std::isfinite(bound); }
  };
  // Begins a solve of a model that maximizes, or not, with this constant in its objective.
  void beginProgress(bool maximize, double constant);
  // May be called from any thread.
  [[nodiscard]] Progress progress() const;

  // The limits of the options, with the request to terminate.
  [[nodiscard]] SolverLimits limits();

  // The catalogue in the system directory, read again when that option was changed, or read now.
  // Both throw ModelError.
  const Catalogue& catalogue();
  const Catalogue& catalogueAsOfNow();

 private:
  Options options_;
  std::atomic<bool> terminated_{false};
  int (*watch_)(void* context) = nullptr;
  void* watchContext_ = nullptr;
  // What the solver, which minimizes, has told; and how that becomes the model's.
  std::atomic<double> bestTold_{kInfinity};
  std::atomic<double> boundTold_{-kInfinity};
  std::atomic<double> sign_{1};
  std::atomic<double> constant_{0};
  std::string catalogueDirectory_;
  std::unique_ptr<Catalogue> catalogue_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_ENVIRONMENT_H_
