// C++20 wrapper of ztb/sweep.h: a model solved for each scenario of a file, in chunks that any
// process on any machine can take. Programs that use it link libztbsweep.so: ztb::sweep in CMake.
//
//   ztb::Sweep sweep;
//   sweep.option("model", "diet.lp").option("scenarios", "prices.rxf").option("over", "s");
//   sweep.open();
//   for (int chunk = 0; chunk < sweep.chunkCount(); ++chunk) {
//     sweep.solve("parts", chunk);
//     sweep.publish("parts");
//   }
//   sweep.find("parts");
//   sweep.collect("sweep.rxf");
//
// What fails throws ztb::Error. ztb/sweep.h tells more of each function.
#ifndef ZTB_SWEEP_HPP_
#define ZTB_SWEEP_HPP_

#include <ztb/sweep.h>

#include <functional>
#include <new>
#include <optional>
#include <string>
#include <utility>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>
#include <ztb/z_string.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

class Sweep {
 public:
  Sweep() {
    if (ztbSweepCreate(&handle_) == 0) throw std::bad_alloc();
  }
  Sweep(const Sweep&) = delete;
  Sweep& operator=(const Sweep&) = delete;
  ~Sweep() { ztbSweepFree(&handle_); }

  Sweep& option(const ZString& name, const ZString& value) {
    require(ztbSweepOption(handle_, name.c_str(), value.c_str()), "ztbSweepOption");
    return *this;
  }
  void open() { require(ztbSweepOpen(handle_), "ztbSweepOpen"); }
  void save(const ZString& folder) {
    require(ztbSweepSave(handle_, folder.c_str()), "ztbSweepSave");
  }
  void load(const ZString& folder) {
    require(ztbSweepLoad(handle_, folder.c_str()), "ztbSweepLoad");
  }

  [[nodiscard]] std::string inputs() const { return ztbSweepInputs(handle_); }
  [[nodiscard]] std::string key() const { return ztbSweepKey(handle_); }
  [[nodiscard]] std::string over() const { return ztbSweepOver(handle_); }
  [[nodiscard]] int scenarioCount() const { return ztbSweepScenarioCount(handle_); }
  [[nodiscard]] std::string scenario(int number) const {
    const char* const label = ztbSweepScenario(handle_, number);
    if (label == nullptr) {
      throw Error("ztbSweepScenario", "there is no scenario " + std::to_string(number),
                  ErrorKind::notFound);
    }
    return label;
  }
  [[nodiscard]] int chunkCount() const { return ztbSweepChunkCount(handle_); }
  // The scenarios of a chunk, from `first` to before `end`.
  struct Range {
    int first = 0;
    int end = 0;
  };
  [[nodiscard]] Range chunk(int number) const {
    Range range;
    if (ztbSweepChunk(handle_, number, &range.first, &range.end) == 0) throw noChunk(number);
    return range;
  }
  // In what the files differ from those that were opened; empty if in nothing.
  [[nodiscard]] std::string difference() {
    return ztbSweepSameInputs(handle_) != 0 ? "" : ztbSweepMessage(handle_);
  }

  // Keeps others from writing this result, as long as this object lives.
  void lock(const ZString& out) { require(ztbSweepLock(handle_, out.c_str()), "ztbSweepLock"); }

  // Is told what ZTB_SWEEP_SOLVED and its like stand for.
  using Watch = std::function<void(int event, int scenario, const char* text)>;
  void setWatch(Watch watch) {
    watch_ = std::move(watch);
    ztbSweepSetWatch(
        handle_,
        [](void* context, int event, int scenario, const char* text) {
          const auto& own = static_cast<const Sweep*>(context)->watch_;
          if (own) own(event, scenario, text);
        },
        this);
  }

  void prepare(const ZString& folder) {
    require(ztbSweepPrepare(handle_, folder.c_str()), "ztbSweepPrepare");
  }
  // False when stop() came before the end of the chunk.
  bool solve(const ZString& folder, int chunk) {
    const int result = ztbSweepSolve(handle_, folder.c_str(), chunk);
    require(result, "ztbSweepSolve");
    return result == 1;
  }
  void publish(const ZString& folder) {
    require(ztbSweepPublish(handle_, folder.c_str()), "ztbSweepPublish");
  }
  void skip(int scenario, const ZString& reason) {
    require(ztbSweepSkip(handle_, scenario, reason.c_str()), "ztbSweepSkip");
  }
  // From any thread, and from a signal handler.
  void stop() noexcept { ztbSweepStop(handle_); }

  void find(const ZString& folder, const ZString& result = "") {
    require(ztbSweepFind(handle_, folder.c_str(), result.c_str()), "ztbSweepFind");
  }
  // Scenarios of a chunk without an outcome, and those whose solve failed.
  struct State {
    int missing = 0;
    int failed = 0;
  };
  [[nodiscard]] State state(int chunk) const {
    State state;
    if (ztbSweepChunkState(handle_, chunk, &state.missing, &state.failed) == 0)
      throw noChunk(chunk);
    return state;
  }
  struct Outcome {
    int status = 0;
    int solveStatus = 0;
    std::optional<double> objective;
  };
  // What was found of a scenario; nothing where there is no outcome.
  [[nodiscard]] std::optional<Outcome> outcome(int scenario) const {
    Outcome outcome;
    double objective = 0;
    const int found =
        ztbSweepOutcome(handle_, scenario, &outcome.status, &outcome.solveStatus, &objective);
    if (found == 0) return std::nullopt;
    if (found == 2) outcome.objective = objective;
    return outcome;
  }
  [[nodiscard]] std::string reason(int scenario) {
    const char* const reason = ztbSweepReason(handle_, scenario);
    return reason == nullptr ? "" : reason;
  }
  // Parameters with records that met no column of the model, with blanks between.
  [[nodiscard]] std::string unmatched() { return ztbSweepUnmatched(handle_); }
  // In what a part of another sweep in the folder differs; empty where there is none.
  [[nodiscard]] std::string foreignPart(const ZString& folder) {
    return text(ztbSweepForeignPart(handle_, folder.c_str()), "ztbSweepForeignPart");
  }
  [[nodiscard]] std::string explain(const ZString& folder, int scenario) {
    return text(ztbSweepExplain(handle_, folder.c_str(), scenario), "ztbSweepExplain");
  }
  void collect(const ZString& out) {
    require(ztbSweepCollect(handle_, out.c_str()), "ztbSweepCollect");
  }
  // Removes the files of this sweep from the folder, or of all.
  void remove(const ZString& folder, bool ofAll = false) {
    require(ztbSweepRemove(handle_, folder.c_str(), ofAll ? 1 : 0), "ztbSweepRemove");
  }

  [[nodiscard]] ztbSweep* handle() const noexcept { return handle_; }

 private:
  void require(int result, const char* operation) const {
    if (result == 0) throw Error(operation, ztbSweepMessage(handle_));
  }
  static Error noChunk(int number) {
    return {"ztbSweepChunk", "there is no chunk " + std::to_string(number), ErrorKind::notFound};
  }
  std::string text(const char* found, const char* operation) const {
    if (found == nullptr) throw Error(operation, ztbSweepMessage(handle_));
    return found;
  }

  ztbSweep* handle_ = nullptr;
  Watch watch_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_SWEEP_HPP_
