#include "tools/text/progress.h"

#include <fmt/format.h>

#include <chrono>
#include <cstdio>
#include <utility>
#include <ztb/display_text.hpp>

#include "tools/text/console.h"

namespace tool {

namespace {

constexpr std::chrono::milliseconds beforeFirst{1000};
constexpr std::chrono::milliseconds betweenDrawings{200};
constexpr const char* wipeLine = "\r\x1b[K";
// Between these a terminal cuts what does not fit into the line. What goes on in the next one would
// not be wiped.
constexpr const char* cutLines = "\x1b[?7l";
constexpr const char* wrapLines = "\x1b[?7h";

// Who holds it writes to the terminal.
std::mutex screen;
bool lineIsDrawn = false;

}  // namespace

std::unique_lock<std::mutex> withoutProgress() {
  std::unique_lock lock(screen);
  if (lineIsDrawn) {
    std::fputs(wipeLine, stderr);
    std::fflush(stderr);
    lineIsDrawn = false;
  }
  return lock;
}

std::string recordsText(std::size_t records, double seconds, double share) {
  std::string text = fmt::format("{} records", records);
  if (seconds < 1) return text;
  text += fmt::format(", {:.0f} a second", static_cast<double>(records) / seconds);
  if (share <= 0 || share > 1) return text;
  return text + fmt::format(", {:.0f} s left", seconds * (1 - share) / share);
}

std::string bytesText(std::uintmax_t bytes, double seconds) {
  constexpr double megabyte = 1e6;
  const double size = static_cast<double>(bytes) / megabyte;
  const std::string text = fmt::format("{:.1f} MB", size);
  return seconds < 1 ? text : text + fmt::format(", {:.1f} MB a second", size / seconds);
}

Progress::Progress(bool shown) {
  if (shown && isTerminal(2)) {
    thread_ = std::thread([this] { run(); });
  }
}

Progress::~Progress() {
  if (!thread_.joinable()) {
    return;
  }
  {
    const std::lock_guard lock(mutex_);
    ended_ = true;
  }
  wake_.notify_one();
  thread_.join();
  static_cast<void>(withoutProgress());
}

void Progress::step(const std::string& text) {
  const std::lock_guard lock(mutex_);
  text_ = ztb::displayText(text);
  stepBegan_ = std::chrono::steady_clock::now();
  count(0);
  expect(0);
  share(0);
}

Progress::Detail::Detail(Progress& progress, std::function<std::string()> detail)
    : progress_(progress) {
  const std::lock_guard lock(progress_.mutex_);
  progress_.detail_ = std::move(detail);
}

Progress::Detail::~Detail() {
  const std::lock_guard lock(progress_.mutex_);
  progress_.detail_ = nullptr;
}

void Progress::run() {
  std::unique_lock lock(mutex_);
  auto pause = beforeFirst;
  while (!wake_.wait_for(lock, pause, [this] { return ended_; })) {
    draw();
    pause = betweenDrawings;
  }
}

std::string Progress::line() {
  const std::lock_guard lock(mutex_);
  return lineNow();
}

std::string Progress::lineNow() const {
  const std::size_t records = records_.load(std::memory_order_relaxed);
  std::string line = text_;
  if (detail_) {
    line += ": " + ztb::displayText(detail_());
  } else if (records > 0) {
    const std::size_t expected = expected_.load(std::memory_order_relaxed);
    const double share = expected > 0 ? static_cast<double>(records) / static_cast<double>(expected)
                                      : share_.load(std::memory_order_relaxed);
    const std::chrono::duration<double> passed = std::chrono::steady_clock::now() - stepBegan_;
    line += ": " + recordsText(records, passed.count(), share);
  }
  return line;
}

void Progress::draw() {
  const std::string line = std::string(wipeLine) + cutLines + lineNow() + wrapLines;
  const std::lock_guard lock(screen);
  std::fputs(line.c_str(), stderr);
  std::fflush(stderr);
  lineIsDrawn = true;
}

}  // namespace tool
