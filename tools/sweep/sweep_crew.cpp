#include "tools/sweep/sweep_crew.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

#include "tools/sweep/sweep_worker.h"
#include "tools/sweep/worker_request.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// Workers that a scenario may take with it.
constexpr int kDeathsAtScenario = 2;
// Workers in a row that a share may lose with nothing published in between.
constexpr int kFruitlessDeaths = 20;

}  // namespace

void SweepCrew::solve(const std::vector<int>& chunks) {
  const std::size_t jobs = std::min(static_cast<std::size_t>(plan_.options.jobs), chunks.size());
  shares_.resize(jobs);
  workerOfShare_.resize(jobs);
  for (std::size_t job = 0; job < jobs; ++job) {
    const auto at = [&](std::size_t number) {
      return chunks.begin() + static_cast<std::ptrdiff_t>(number * chunks.size() / jobs);
    };
    shares_[job].chunks = {at(job), at(job + 1)};
    shares_[job].tellsNotes = job == 0;
  }
  if (jobs > 0) startWorker(0);
  progress_.step("opening " + plan_.options.model);
  while (workers_.busy()) {
    const std::optional<WorkerMessage> message = workers_.next(std::chrono::milliseconds(200));
    if (message) receive(*message);
    if (!isStopping_ && plan_.stops()) {
      isStopping_ = true;
      workers_.askToStop();
    }
    endStalledWorkers();
    counts_.workers = workers_.running();
    progress_.show(counts_);
  }
  progress_.pause();
}

int SweepCrew::scenarioCount(const std::vector<int>& chunks) const {
  int count = 0;
  for (const int chunk : chunks) {
    const ztb::Sweep::Range range = sweep_.chunk(chunk);
    count += range.end - range.first;
  }
  return count;
}

void SweepCrew::startWorker(std::size_t share) {
  shares_[share].heard = Clock::now();
  shares_[share].stalled = false;
  workerOfShare_[share] = shareOfWorker_.size();
  shareOfWorker_.push_back(share);
  const Share& own = shares_[share];
  const SweepWork work{own.chunks, own.careful, own.tellsNotes, plan_.stops};
  workers_.start({.work =
                      [&](const WorkerChannel& channel) {
                        runSweepWorker(sweep_, plan_.folder, work, channel);
                      },
                  .request =
                      [&] {
                        return workerRequest(plan_.options, sweep_.key(), plan_.folder, work,
                                             skipped_);
                      }});
}

void SweepCrew::receive(const WorkerMessage& message) {
  Share& share = shares_[shareOfWorker_[message.worker]];
  share.heard = Clock::now();
  switch (message.kind) {
    case SweepMessage::prepared:
      // The others find the basis that the first worker has left.
      if (!isShared_) {
        isShared_ = true;
        progress_.pause();
        for (std::size_t other = 1; other < shares_.size() && !isStopping_; ++other) {
          startWorker(other);
        }
      }
      break;
    case SweepMessage::done:
      ++share.solved;
      ++counts_.done;
      break;
    case SweepMessage::failed:
      ++share.failed;
      ++counts_.failures;
      break;
    case SweepMessage::published:
      share.published = share.solved;
      share.failed = 0;
      share.fruitless = 0;
      break;
    case WorkerMessage::died:
      afterDeath(share, share.stalled
                            ? fmt::format("its worker process solved nothing for {} s (--stall) "
                                          "and was ended",
                                          *plan_.options.stall)
                            : message.text);
      break;
    default:
      throw Failure(message.text);
  }
}

// Gives what the dead worker left to another one, but for a scenario that took enough of them.
void SweepCrew::afterDeath(Share& share, const std::string& how) {
  ++counts_.lost;
  counts_.failures -= share.failed;
  share.failed = 0;
  counts_.done -= share.solved - share.published;
  int solved = share.solved - share.published;
  for (int left = share.published; left > 0;) {
    const ztb::Sweep::Range range = sweep_.chunk(share.chunks.front());
    left -= range.end - range.first;
    share.chunks.erase(share.chunks.begin());
  }
  share.solved = 0;
  share.published = 0;
  share.tellsNotes = false;
  if (share.chunks.empty() || isStopping_) return;
  // With all solved, publishing them was what the worker was at.
  solved = std::min(solved, scenarioCount(share.chunks) - 1);
  int scenario = 0;
  for (const int chunk : share.chunks) {
    const ztb::Sweep::Range range = sweep_.chunk(chunk);
    scenario = range.first + solved;
    share.careful = chunk;
    solved -= range.end - range.first;
    if (solved < 0) break;
  }
  if (++share.fruitless >= kFruitlessDeaths) {
    for (const int chunk : share.chunks) {
      const ztb::Sweep::Range range = sweep_.chunk(chunk);
      for (int left = range.first; left < range.end; ++left) deaths_.try_emplace(left, how);
    }
    return;
  }
  progress_.pause();
  if (++deathsAt_[scenario] >= kDeathsAtScenario) {
    deaths_[scenario] = how;
    skipped_[scenario] = how;
    sweep_.skip(scenario, how);
  } else {
    printError(
        fmt::format("ztb: scenario {}: {}; it is solved again", sweep_.scenario(scenario), how));
  }
  startWorker(static_cast<std::size_t>(&share - shares_.data()));
}

void SweepCrew::endStalledWorkers() {
  if (!plan_.options.stall) return;
  const auto now = Clock::now();
  for (std::size_t number = 0; number < shares_.size(); ++number) {
    Share& share = shares_[number];
    const bool hasWorker = std::ranges::find(shareOfWorker_, number) != shareOfWorker_.end();
    if (!hasWorker || share.stalled || share.solved >= scenarioCount(share.chunks)) continue;
    if (now - share.heard >= std::chrono::seconds(*plan_.options.stall)) {
      share.stalled = true;
      workers_.kill(workerOfShare_[number]);
    }
  }
}

}  // namespace tool
