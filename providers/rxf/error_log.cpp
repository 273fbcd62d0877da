#include "providers/rxf/error_log.h"

#include <cstddef>
#include <limits>
#include <new>

#include "providers/rxf/message_text.h"

namespace rxffile {

void ErrorLog::record(ErrorNumber number, const DetailText& detail) noexcept {
  const auto slot = static_cast<unsigned>(number);
  if (pendingOf_[slot] == 0) details_[slot] = detail;
  if (count_ < std::numeric_limits<int>::max()) ++count_;
  if (!pending_.empty() && pending_.back().number == static_cast<int>(number) &&
      pending_.back().count < std::numeric_limits<std::uint32_t>::max()) {
    ++pending_.back().count;
    ++pendingOf_[slot];
    return;
  }
  try {
    pending_.push_back({static_cast<int>(number), 1});
    ++pendingOf_[slot];
  } catch (const std::bad_alloc&) {
    // The error stays counted; only its place in the queue is lost.
    return;
  }
}

int ErrorLog::takeLatest() {
  if (pending_.empty()) return 0;
  Run& run = pending_.back();
  const int number = run.number;
  --pendingOf_.at(static_cast<unsigned>(number));
  if (--run.count == 0) pending_.pop_back();
  return number;
}

void ErrorLog::compose(int number, char* text) const {
  constexpr std::size_t room = 256;
  const bool known = number > 0 && number < kErrorNumberEnd;
  composeMessage(number, known ? details_.at(static_cast<unsigned>(number)) : DetailText(), text,
                 room);
}

void ErrorLog::clear() {
  pending_.clear();
  pendingOf_.fill(0);
  details_.fill(DetailText());
  count_ = 0;
}

}  // namespace rxffile
