#include "providers/model/environment.h"

#include <cstdio>
#include <new>
#include <ztb/display_text.hpp>

#include "providers/model/platform.h"

namespace lomu {

Environment::Environment() {
  options_.set("NameSysDir", platform::ownFolder());
}

bool Environment::hasLog() const {
  return options_.number(OptionId::logScreen) != 0 || !options_.text(OptionId::logFile).empty();
}

void Environment::log(std::string_view text) const noexcept {
  std::string spelledOut;
  if (!ztb::isDisplayable(text)) {
    try {
      spelledOut = ztb::displayText(text);
    } catch (const std::bad_alloc&) {
      return;
    }
    text = spelledOut;
  }
  if (options_.number(OptionId::logScreen) != 0) {
    std::printf("%.*s\n", static_cast<int>(text.size()), text.data());
    std::fflush(stdout);
  }
  const std::string& file = options_.text(OptionId::logFile);
  if (file.empty()) return;
  std::FILE* stream = platform::openFile(file, "a");
  if (stream == nullptr) return;
  std::fprintf(stream, "%.*s\n", static_cast<int>(text.size()), text.data());
  std::fclose(stream);
}

void Environment::beginProgress(bool maximize, double constant) {
  sign_.store(maximize ? -1 : 1);
  constant_.store(constant);
  bestTold_.store(kInfinity);
  boundTold_.store(-kInfinity);
}

Environment::Progress Environment::progress() const {
  const double sign = sign_.load();
  const double constant = constant_.load();
  return {sign * bestTold_.load() + constant, sign * boundTold_.load() + constant};
}

SolverLimits Environment::limits() {
  SolverLimits limits;
  limits.seconds = options_.number(OptionId::timeLimit);
  limits.iterations = static_cast<int>(options_.number(OptionId::iterationLimit));
  limits.relativeGap = options_.number(OptionId::relativeGap);
  limits.terminated = [](void* context) -> std::int32_t {
    const auto* environment = static_cast<Environment*>(context);
    if (environment->terminated_.load()) return 1;
    return environment->watch_ != nullptr && environment->watch_(environment->watchContext_) != 0
               ? 1
               : 0;
  };
  // What solvers take for infinite differs.
  limits.progress = [](void* context, double objective, double bound) {
    constexpr double kBeyondNumbers = 1e30;
    auto* environment = static_cast<Environment*>(context);
    environment->bestTold_.store(objective < kBeyondNumbers ? objective : kInfinity);
    environment->boundTold_.store(bound > -kBeyondNumbers ? bound : -kInfinity);
  };
  limits.context = this;
  return limits;
}

const Catalogue& Environment::catalogue() {
  const std::string& directory = options_.text(OptionId::nameSysDir);
  if (catalogue_ == nullptr || catalogueDirectory_ != directory) {
    const std::string file = directory + std::string(kCatalogueFile);
    catalogue_ = std::make_unique<Catalogue>(Catalogue::read(file, directory));
    catalogueDirectory_ = directory;
  }
  return *catalogue_;
}

const Catalogue& Environment::catalogueAsOfNow() {
  catalogue_.reset();
  return catalogue();
}

}  // namespace lomu
