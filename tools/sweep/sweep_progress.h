// Tells how a sweep gets on, whoever solves it: at a terminal as one line that is drawn anew, and
// for programs as lines of JSON on standard error.
//
// A line of JSON is an object with, in this order,
//   done          scenarios that this run has solved, with or without a solution
//   count         scenarios that it has to solve
//   rate          scenarios a second since it began
//   seconds_left  at this rate; null as long as none is done
//   failures      scenarios whose solve failed
//   lost          processes and workers that died or gave a chunk back
//   workers       those that work at present
// There is one a second at most, and one at the end.
#ifndef ZTB_TOOLS_SWEEP_SWEEP_PROGRESS_H_
#define ZTB_TOOLS_SWEEP_SWEEP_PROGRESS_H_

#include <chrono>
#include <optional>
#include <string>

#include "tools/text/progress.h"

namespace tool {

struct SweepCounts {
  int done = 0;
  int failures = 0;
  int lost = 0;
  int workers = 0;
};

class SweepProgress {
 public:
  enum class Kind { terminal, json, none };

  // Of a run that has `count` scenarios to solve, and begins now.
  SweepProgress(Kind kind, int count);
  SweepProgress(const SweepProgress&) = delete;
  SweepProgress& operator=(const SweepProgress&) = delete;
  // Tells where the run stands at its end.
  ~SweepProgress();

  // What is done before the first scenario, as "opening diet.lp"; for a terminal alone.
  void step(const std::string& text);
  void show(const SweepCounts& counts);
  // Nothing draws until the next step() or show(), so that a process may be forked and lines be
  // written.
  void pause() { drawn_.reset(); }

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const std::string& text);
  void tell();

  Kind kind_;
  int count_;
  SweepCounts counts_;
  bool hasUntold_ = true;
  Clock::time_point start_ = Clock::now();
  std::optional<Clock::time_point> told_;
  std::optional<Progress> drawn_;
};

}  // namespace tool

#endif  // ZTB_TOOLS_SWEEP_SWEEP_PROGRESS_H_
