#include "formats/json/text_lines.h"

#include <fmt/format.h>

#include <cstring>

#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

constexpr std::size_t longestLine = std::size_t{1} << 26U;

}  // namespace

TextLines::TextLines(const std::string& path)
    : name_(tool::inputName(path)), bytes_(openBytes(path)), buffer_(std::size_t{1} << 18U, '\0') {}

bool TextLines::next() {
  do {
    line_.clear();
    if (!fillLine()) return false;
    ++number_;
    if (line_.ends_with('\r')) line_.pop_back();
    if (number_ == 1 && line_.starts_with("\xEF\xBB\xBF")) line_.erase(0, 3);
  } while (line_.find_first_not_of(" \t") == std::string::npos);
  return true;
}

bool TextLines::fillLine() {
  bool any = false;
  for (;;) {
    if (begin_ == end_) {
      begin_ = 0;
      end_ = bytes_->read(buffer_.data(), buffer_.size());
      if (end_ == 0) return any;
    }
    any = true;
    const char* first = buffer_.data() + begin_;
    const auto* stop = static_cast<const char*>(std::memchr(first, '\n', end_ - begin_));
    const std::size_t count =
        stop == nullptr ? end_ - begin_ : static_cast<std::size_t>(stop - first);
    line_.append(first, count);
    begin_ += count + (stop == nullptr ? 0 : 1);
    if (stop != nullptr) return true;
    if (line_.size() > longestLine) {
      throw tool::Failure(fmt::format("{}:{}: the line has more than {} MiB", name_, number_ + 1,
                                      longestLine >> 20U),
                          ZTB_ERROR_LIMIT);
    }
  }
}

}  // namespace formats
