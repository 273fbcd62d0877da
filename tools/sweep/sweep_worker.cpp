#include "tools/sweep/sweep_worker.h"

#include <chrono>

#include "tools/sweep/end_request.h"
#include "tools/text/output.h"

namespace tool {

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kScenariosInPart = 100;
constexpr std::chrono::seconds kTimeOfPart{5};
// Publishing waits for the disk; it takes at most about a tenth of the time.
constexpr int kRestBetweenParts = 10;

// The sweep that is stopped on request: a process has one.
ztb::Sweep* stoppedOnRequest = nullptr;

class SweepWorker {
 public:
  SweepWorker(ztb::Sweep& sweep, const std::string& folder, const WorkerChannel& channel)
      : sweep_(sweep), folder_(folder), channel_(channel) {}

  void run(const SweepWork& work) {
    sweep_.setWatch([&](int event, int, const char* text) {
      if (event == ZTB_SWEEP_SOLVED) {
        ++unpublished_;
        channel_.send(SweepMessage::done);
      } else if (event == ZTB_SWEEP_FAILED) {
        channel_.send(SweepMessage::failed);
      } else if (event == ZTB_SWEEP_NOTE && work.tellsNotes) {
        printError(std::string("ztb: ") + text);
      }
    });
    stoppedOnRequest = &sweep_;
    ztbSweepStop(nullptr);  // finds the function, which a signal handler must not
    whenAskedToStop([] { stoppedOnRequest->stop(); });
    if (work.stops()) sweep_.stop();
    sweep_.prepare(folder_);
    channel_.send(SweepMessage::prepared);
    int last = -1;
    for (const int chunk : work.chunks) {
      if (unpublished_ > 0 && (chunk == work.careful || chunk != last + 1 || isPartDue())) {
        publish();
      }
      if (!sweep_.solve(folder_, chunk)) break;
      last = chunk;
    }
    publish();
  }

 private:
  [[nodiscard]] bool isPartDue() const {
    const Clock::duration time = Clock::now() - published_;
    return time >= kTimeOfPart ||
           (unpublished_ >= kScenariosInPart && time >= kRestBetweenParts * publishing_);
  }

  void publish() {
    const Clock::time_point start = Clock::now();
    sweep_.publish(folder_);
    unpublished_ = 0;
    published_ = Clock::now();
    publishing_ = published_ - start;
    channel_.send(SweepMessage::published);
  }

  ztb::Sweep& sweep_;
  const std::string& folder_;
  const WorkerChannel& channel_;
  int unpublished_ = 0;
  // When the last part was published, and how long that took.
  Clock::time_point published_ = Clock::now();
  Clock::duration publishing_{0};
};

}  // namespace

void runSweepWorker(ztb::Sweep& sweep, const std::string& folder, const SweepWork& work,
                    const WorkerChannel& channel) {
  SweepWorker(sweep, folder, channel).run(work);
}

}  // namespace tool
