// The errors of one exchange-file object: how many there were, which numbers are pending, and what
// each was about.
//
// Pending numbers are kept as runs of equal numbers, so that millions of refused records cost a few
// bytes. The detail kept for a number is that of its earliest pending error; once all errors of the
// number were taken, the detail stays until the next error of that number. Recording never throws.
#ifndef ZTB_PROVIDERS_RXF_ERROR_LOG_H_
#define ZTB_PROVIDERS_RXF_ERROR_LOG_H_

#include <array>
#include <cstdint>
#include <vector>

#include "providers/rxf/detail_text.h"
#include "providers/rxf/error_table.h"

namespace rxffile {

class ErrorLog {
 public:
  // Counts an error and queues its number.
  void record(ErrorNumber number, const DetailText& detail) noexcept;

  // The same for an error whose detail is only composed when it would be kept.
  template <typename Compose>
  void recordLazily(ErrorNumber number, const Compose& compose) noexcept {
    record(number, keepsDetail(number) ? compose() : DetailText());
  }

  // Errors since the last clear, at most 2^31 - 1. Taking errors does not lower it.
  [[nodiscard]] int count() const { return count_; }

  // The latest pending number, 0 when none is left.
  [[nodiscard]] int latest() const { return pending_.empty() ? 0 : pending_.back().number; }

  // Gives and removes the latest pending number; 0 when none is left.
  int takeLatest();

  // Text of an error number as an object shows it: general text and detail, "Unknown error number
  // N" otherwise. `text` has room for 256 bytes.
  void compose(int number, char* text) const;

  // Forgets everything.
  void clear();

 private:
  struct Run {
    int number;
    std::uint32_t count;
  };

  [[nodiscard]] bool keepsDetail(ErrorNumber number) const {
    return pendingOf_.at(static_cast<unsigned>(number)) == 0;
  }

  std::vector<Run> pending_;
  std::array<std::uint64_t, kErrorNumberEnd> pendingOf_{};
  std::array<DetailText, kErrorNumberEnd> details_;
  int count_ = 0;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_ERROR_LOG_H_
