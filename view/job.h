// The work for one request: how far it is, and whether it is still wanted.
#ifndef ZTB_VIEW_JOB_H_
#define ZTB_VIEW_JOB_H_

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <utility>

#include "view/parameters.h"

namespace view {

class Job {
 public:
  // So many records are to be read, more than what was announced before.
  void expect(std::size_t records) { expected_ += records; }
  // So many more were read. Throws RequestError when the work is no longer wanted; to be called for
  // each block at least.
  void count(std::size_t records) {
    records_ += records;
    if (cancelled_) throw RequestError(499, "The request was cancelled.");
  }
  // Work beyond the reading, in the same unit as records.
  void work(std::size_t amount) {
    worked_ += amount;
    count(0);
  }
  // How far it is, in words, where records do not tell it.
  void tell(std::string words) {
    const std::lock_guard lock(mutex_);
    words_ = std::move(words);
  }
  void cancel() { cancelled_ = true; }

  [[nodiscard]] std::size_t records() const { return records_; }
  [[nodiscard]] std::string words() const {
    const std::lock_guard lock(mutex_);
    return words_;
  }
  // From 0 to 1.
  [[nodiscard]] double done() const {
    const std::size_t expected = expected_;
    if (expected == 0) return 0;
    const std::size_t done = records_ + worked_;
    const double share = static_cast<double>(done) / static_cast<double>(expected);
    return share < 1 ? share : 1;
  }

 private:
  std::atomic<std::size_t> expected_{0};
  std::atomic<std::size_t> records_{0};
  std::atomic<std::size_t> worked_{0};
  std::atomic<bool> cancelled_{false};
  mutable std::mutex mutex_;
  std::string words_;
};

// The jobs that run, by the names that the page gave them.
class Jobs {
 public:
  // Runs as long as it lives. A job without a name runs too, but cannot be found.
  class Running {
   public:
    Running(Jobs& jobs, std::string name) : jobs_(jobs), name_(std::move(name)) {
      const std::lock_guard lock(jobs_.mutex_);
      if (jobs_.ended_) job_->cancel();
      place_ = jobs_.running_.emplace(name_, job_);
    }
    Running(const Running&) = delete;
    Running& operator=(const Running&) = delete;
    ~Running() {
      const std::lock_guard lock(jobs_.mutex_);
      jobs_.running_.erase(place_);
    }
    Job& job() { return *job_; }

   private:
    Jobs& jobs_;
    std::string name_;
    std::shared_ptr<Job> job_ = std::make_shared<Job>();
    std::unordered_multimap<std::string, std::shared_ptr<Job>>::iterator place_;
  };

  // A job of this name; null for none.
  std::shared_ptr<Job> find(const std::string& name) {
    const std::lock_guard lock(mutex_);
    const auto found = name.empty() ? running_.end() : running_.find(name);
    return found == running_.end() ? nullptr : found->second;
  }
  // Ends all that run, and whatever begins from then on.
  void end() {
    const std::lock_guard lock(mutex_);
    ended_ = true;
    for (const auto& [name, job] : running_) job->cancel();
  }

 private:
  std::mutex mutex_;
  bool ended_ = false;
  std::unordered_multimap<std::string, std::shared_ptr<Job>> running_;
};

}  // namespace view

#endif  // ZTB_VIEW_JOB_H_
