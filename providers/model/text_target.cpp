#include "providers/model/text_target.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <utility>

#include "providers/model/model_error.h"

namespace lomu {

TextTarget::TextTarget(std::string file)
    : file_(std::move(file)),
      temporary_(file_ + "." + std::to_string(getpid()) + ".tmp"),
      stream_(std::fopen(temporary_.c_str(), "wbx")) {
  if (stream_ == nullptr) fail(errno);
}

TextTarget::~TextTarget() {
  if (stream_ == nullptr) return;
  std::fclose(stream_);
  unlink(temporary_.c_str());
}

TextTarget& TextTarget::operator<<(std::string_view text) {
  if (std::fwrite(text.data(), 1, text.size(), stream_) != text.size()) fail(errno);
  return *this;
}

TextTarget& TextTarget::operator<<(double number) {
  std::array<char, 32> text{};
  const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
  return *this << std::string_view(text.data(), end);
}

void TextTarget::publish() {
  if (std::fflush(stream_) != 0 || fsync(fileno(stream_)) != 0) fail(errno);
  if (std::rename(temporary_.c_str(), file_.c_str()) != 0) fail(errno);
  std::fclose(std::exchange(stream_, nullptr));
}

void TextTarget::fail(int error) const {
  throw ModelError(file_ + ": " + std::error_code(error, std::generic_category()).message() +
                       ", expected a file that can be written",
                   ZTB_ERROR_IO);
}

}  // namespace lomu
