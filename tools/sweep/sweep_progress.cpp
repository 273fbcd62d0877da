#include "tools/sweep/sweep_progress.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>

#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

constexpr std::chrono::seconds kBetweenLines{1};

std::string terminalText(const SweepCounts& counts, int count, double rate) {
  std::string text = fmt::format("{} of {} solved, {:.{}f} a second, {:.0f} s left", counts.done,
                                 counted(static_cast<std::size_t>(count), "scenario"), rate,
                                 rate < 10 ? 1 : 0, (count - counts.done) / rate);
  if (counts.failures > 0) text += fmt::format(", {} failed", counts.failures);
  if (counts.lost > 0)
    text += fmt::format(", {} lost", counted(static_cast<std::size_t>(counts.lost), "worker"));
  return text + ", " + counted(static_cast<std::size_t>(counts.workers), "worker");
}

}  // namespace

SweepProgress::SweepProgress(Kind kind, int count) : kind_(kind), count_(count) {}

SweepProgress::~SweepProgress() {
  pause();
  if (kind_ == Kind::json && hasUntold_) tell();
}

void SweepProgress::step(const std::string& text) {
  if (kind_ == Kind::terminal) draw(text);
}

void SweepProgress::show(const SweepCounts& counts) {
  counts_ = counts;
  hasUntold_ = true;
  if (kind_ == Kind::json) {
    if (!told_ || Clock::now() - *told_ >= kBetweenLines) tell();
  } else if (kind_ == Kind::terminal && counts.done > 0) {
    // The rate falls while a long scenario is solved.
    const double seconds = std::chrono::duration<double>(Clock::now() - start_).count();
    draw(terminalText(counts, count_, counts.done / std::max(seconds, 1e-3)));
  }
}

void SweepProgress::draw(const std::string& text) {
  if (!drawn_) drawn_.emplace();
  drawn_->step(text);
}

void SweepProgress::tell() {
  told_ = Clock::now();
  hasUntold_ = false;
  const double seconds = std::chrono::duration<double>(*told_ - start_).count();
  const double rate = counts_.done / std::max(seconds, 1e-3);
  const std::string left =
      counts_.done > 0 ? fmt::format("{:.1f}", (count_ - counts_.done) / rate) : "null";
  printError(fmt::format(R"({{"done": {}, "count": {}, "rate": {:.3f}, "seconds_left": {}, )"
                         R"("failures": {}, "lost": {}, "workers": {}}})",
                         counts_.done, count_, rate, left, counts_.failures, counts_.lost,
                         counts_.workers));
}

}  // namespace tool
