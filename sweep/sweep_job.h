// A sweep with all that its functions work on: what ztb/sweep.h hands out.
#ifndef ZTB_SWEEP_SWEEP_JOB_H_
#define ZTB_SWEEP_SWEEP_JOB_H_

#include <atomic>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "sweep/chunk_solver.h"
#include "sweep/explanation.h"
#include "sweep/options.h"
#include "sweep/part_folder.h"
#include "sweep/part_index.h"
#include "sweep/result_lock.h"
#include "sweep/scenario_file.h"

namespace sweep {

class SweepJob {
 public:
  using Watch = std::function<void(int event, int scenario, const char* text)>;

  // These throw Failure and ztb::Error; ztb/sweep.h tells what they do.
  void setOption(const std::string& name, const std::string& value);
  void open();
  void save(const std::string& folder) const;
  void load(const std::string& folder);
  void requireSameInputs() const;
  void lock(const std::string& out);
  void prepare(const std::string& folder);
  bool solve(const std::string& folder, int chunk);
  void publish(const std::string& folder);
  void skip(int scenario, const std::string& reason);
  void find(const std::string& folder, const std::string& result);
  std::string explain(const std::string& folder, int scenario);
  void collect(const std::string& out) const;
  void remove(const std::string& folder, bool ofAll) const;
  [[nodiscard]] std::string foreign(const std::string& folder) const;

  void setWatch(Watch watch) { watch_ = std::move(watch); }
  void stop();

  [[nodiscard]] bool isOpen() const { return scenarios_ != nullptr; }
  [[nodiscard]] const std::string& inputs() const { return inputs_; }
  [[nodiscard]] const std::string& key() const { return key_; }
  // REQUIRES: isOpen().
  [[nodiscard]] const ScenarioFile& scenarios() const { return *scenarios_; }
  [[nodiscard]] const PartIndex& index() const { return *index_; }
  // Texts with a final zero, which stay.
  [[nodiscard]] const char* label(int scenario) const;

 private:
  // As open(), without a look at the records.
  void openUnlooked();
  [[nodiscard]] int chunkSize() const;
  void requireOpen() const;
  void refuseReplacing(const std::string& out) const;
  void requireChunk(int chunk) const;
  ChunkSolver& solver();

  Options options_;
  std::unique_ptr<ScenarioFile> scenarios_;
  std::string inputs_;
  std::string key_;
  std::string files_;  // which files the checksums are of
  int size_ = 0;       // scenarios of a chunk
  std::optional<PartIndex> index_;
  std::unique_ptr<ChunkSolver> solver_;
  std::atomic<ChunkSolver*> running_ = nullptr;  // solver_, for stop()
  std::atomic<bool> stopped_ = false;
  std::string preparedIn_;  // folder whose basis chunks start from; empty: none yet
  std::map<int, std::string> skipped_;
  std::unique_ptr<ResultLock> lock_;
  std::unique_ptr<Explanation> explanation_;
  Watch watch_;
};

}  // namespace sweep

#endif  // ZTB_SWEEP_SWEEP_JOB_H_
