// Tells the user at a terminal what a long run is doing.
#ifndef ZTB_TOOLS_TEXT_PROGRESS_H_
#define ZTB_TOOLS_TEXT_PROGRESS_H_

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace tool {

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

  // Records done in this step; cheap enough for each record.
  void count(std::size_t records) { records_.store(records, std::memory_order_relaxed); }

 private:
  void run();
  void draw();

  std::mutex mutex_;
  std::condition_variable wake_;
  std::string text_;
  std::function<std::string()> detail_;
  bool ended_ = false;
  bool drawn_ = false;
  std::atomic<std::size_t> records_{0};
  std::thread thread_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_PROGRESS_H_
