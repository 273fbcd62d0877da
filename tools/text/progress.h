// Tells the user at a terminal what a long run is doing.
#ifndef ZTB_TOOLS_TEXT_PROGRESS_H_
#define ZTB_TOOLS_TEXT_PROGRESS_H_

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tool {

// "3000000 records, 1500000 a second, 12 s left": a rate where at least a second has passed, and
// the time left where a share of the work, from 0 to 1, is known to be done.
std::string recordsText(std::size_t records, double seconds, double share);

// "34.5 MB, 12.1 MB a second", likewise.
std::string bytesText(std::uintmax_t bytes, double seconds);

// Takes the line of progress off the terminal, and none is drawn until what it gives ends: who
// writes lines holds it meanwhile.
[[nodiscard]] std::unique_lock<std::mutex> withoutProgress();

// Shows the present step on standard error once the run has taken a second, and wipes it at the
// end. Nothing is shown unless standard error is a terminal. It draws from a thread of its own, so
// that it goes on while a call of the library runs.
class Progress {
 public:
  // Nothing is shown unless it is to be.
  explicit Progress(bool shown = true);
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress();

  // Begins a step, such as "reading foods.csv".
  void step(const std::string& text);
  // Shows what `detail` gives behind the step, as "solving: gap 3 %", until the object ends; it is
  // asked from another thread.
  class Detail {
   public:
    Detail(Progress& progress, std::function<std::string()> detail);
    Detail(const Detail&) = delete;
    Detail& operator=(const Detail&) = delete;
    ~Detail();

   private:
    Progress& progress_;
  };

  // What part of this step is done, from 0 to 1, where that is known. With it, and the time since
  // the step began, stands what is left.
  void share(double done) { share_.store(done, std::memory_order_relaxed); }
  // Records that this step will have; from then on count() tells its share.
  void expect(std::size_t records) { expected_.store(records, std::memory_order_relaxed); }

  // What is shown now, without what wipes the line before it.
  std::string line();

  // Records done in this step; cheap enough for each record.
  void count(std::size_t records) { records_.store(records, std::memory_order_relaxed); }

 private:
  void run();
  void draw();
  std::string lineNow() const;

  std::mutex mutex_;
  std::condition_variable wake_;
  std::string text_;
  std::function<std::string()> detail_;
  bool ended_ = false;
  std::chrono::steady_clock::time_point stepBegan_ = std::chrono::steady_clock::now();
  std::atomic<std::size_t> records_{0};
  std::atomic<std::size_t> expected_{0};
  std::atomic<double> share_{0};
  std::thread thread_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_PROGRESS_H_
