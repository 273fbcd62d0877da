#include "tools/sweep/sweep_crew.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// Workers that a scenario may take with it.
constexpr int kDeathsAtScenario = 2;
// Workers in a row that a share may lose with nothing published in between.
constexpr int kFruitlessDeaths = 20;

std::string progressText(std::size_t done, std::size_t count, double seconds) {
  const double rate = static_cast<double>(done) / std::max(seconds, 1e-3);
  return fmt::format("{} of {} solved, {:.{}f} a second, {:.0f} s left", done,
                     counted(count, "scenario"), rate, rate < 10 ? 1 : 0,
                     static_cast<double>(count - done) / rate);
}

}  // namespace

void SweepCrew::solve(const std::vector<std::size_t>& pending, int firstPart) {
  const std::size_t jobs = std::min(static_cast<std::size_t>(options_.jobs), pending.size());
  shares_.resize(jobs);
  workerOfShare_.resize(jobs);
  for (std::size_t job = 0; job < jobs; ++job) {
    const auto at = [&](std::size_t number) {
      return pending.begin() + static_cast<std::ptrdiff_t>(number * pending.size() / jobs);
    };
    shares_[job].work = {.chosen = {at(job), at(job + 1)},
                         .firstPart = firstPart + static_cast<int>(job),
                         .partStep = static_cast<int>(jobs),
                         .reportsNotes = job == 0};
    startWorker(job);
  }
  start_ = Clock::now();
  count_ = pending.size();
  progress_.emplace().step("opening " + options_.model);
  while (workers_.busy()) {
    const std::optional<WorkerMessage> message = workers_.next(std::chrono::milliseconds(200));
    if (message) {
      receive(*message);
    }
    endStalledWorkers();
    showProgress();
  }
  progress_.reset();
}

void SweepCrew::startWorker(std::size_t share) {
  shares_[share].heard = Clock::now();
  shares_[share].stalled = false;
  workerOfShare_[share] = shareOfWorker_.size();
  shareOfWorker_.push_back(share);
  workers_.start([this, share](const WorkerChannel& channel) {
    runSweepWorker(options_, scenarios_, inputs_, shares_[share].work, channel);
  });
}

void SweepCrew::receive(const WorkerMessage& message) {
  Share& share = shares_[shareOfWorker_[message.worker]];
  share.heard = Clock::now();
  switch (message.kind) {
    case SweepMessage::done:
      ++share.solved;
      ++done_;
      break;
    case SweepMessage::published:
      share.published = share.solved;
      share.fruitless = 0;
      share.work.firstPart += share.work.partStep;
      break;
    case SweepMessage::scenarioFailed: {
      std::size_t length = 0;
      const std::size_t place = std::stoul(message.text, &length);
      reasons_[place] = message.text.substr(length + 1);
      break;
    }
    case SweepMessage::unmatched:
      unmatched_.insert(message.text);
      break;
    case WorkerMessage::died:
      afterDeath(share, share.stalled
                            ? fmt::format("its worker process solved nothing for {} s (--stall) "
                                          "and was ended",
                                          *options_.stall)
                            : message.text);
      break;
    default:
      throw Failure(message.text);
  }
}

// Gives what the dead worker left to another one, but for a scenario that took enough of them.
void SweepCrew::afterDeath(Share& share, const std::string& how) {
  std::vector<std::size_t>& chosen = share.work.chosen;
  done_ -= share.solved - share.published;
  chosen.erase(chosen.begin(), chosen.begin() + static_cast<std::ptrdiff_t>(share.published));
  // With all solved, publishing them was what the worker was at.
  const std::size_t suspect =
      chosen.empty() ? 0 : std::min(share.solved - share.published, chosen.size() - 1);
  share.solved = 0;
  share.published = 0;
  share.work.reportsNotes = false;
  if (chosen.empty()) {
    return;
  }
  const std::size_t place = chosen[suspect];
  if (++share.fruitless >= kFruitlessDeaths) {
    for (const std::size_t left : chosen) {
      reasons_.try_emplace(left, how);
    }
    return;
  }
  progress_.reset();
  if (++deathsAt_[place] >= kDeathsAtScenario) {
    reasons_[place] = how;
    chosen.erase(chosen.begin() + static_cast<std::ptrdiff_t>(suspect));
    share.work.publishBefore.reset();
  } else {
    printError(fmt::format("ztb: scenario {}: {}; it is solved again",
                           scenarios_.scenarios()[place].label, how));
    share.work.publishBefore = suspect;
  }
  if (!chosen.empty()) {
    // The worker may have published a part more than it could tell.
    share.work.firstPart += share.work.partStep;
    startWorker(static_cast<std::size_t>(&share - shares_.data()));
  }
  progress_.emplace();
}

void SweepCrew::endStalledWorkers() {
  if (!options_.stall) {
    return;
  }
  const auto now = Clock::now();
  for (std::size_t number = 0; number < shares_.size(); ++number) {
    Share& share = shares_[number];
    if (mayBeStalled(share) && now - share.heard >= std::chrono::seconds(*options_.stall)) {
      share.stalled = true;
      workers_.kill(workerOfShare_[number]);
    }
  }
}

void SweepCrew::showProgress() {
  // The rate falls while a long scenario is solved.
  if (done_ > 0) {
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    progress_->step(progressText(done_, count_, seconds));
  }
}

}  // namespace tool
