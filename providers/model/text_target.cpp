#include "providers/model/text_target.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <system_error>
#include <utility>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"

namespace lomu {

TextTarget::TextTarget(std::string file)
    : file_(std::move(file)),
      temporary_(file_ + "." + std::to_string(platform::processNumber()) + ".tmp"),
      stream_(platform::openFile(temporary_, "wbx")) {
  if (stream_ == nullptr) fail(errno);
}

TextTarget::~TextTarget() {
  if (stream_ == nullptr) return;
  std::fclose(stream_);
  platform::removeFile(temporary_);
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
  if (std::fflush(stream_) != 0) fail(errno);
  if (const int error = platform::syncFile(stream_)) fail(error);
  // Not every system renames a file that is open.
  const int closed = std::fclose(std::exchange(stream_, nullptr)) == 0 ? 0 : errno;
  const int error = closed != 0 ? closed : platform::replaceFile(temporary_, file_);
  if (error == 0) return;
  platform::removeFile(temporary_);
  fail(error);
}

void TextTarget::fail(int error) const {
  throw ModelError(file_ + ": " + std::error_code(error, std::generic_category()).message() +
                       ", expected a file that can be written",
                   ZTB_ERROR_IO);
}

}  // namespace lomu
