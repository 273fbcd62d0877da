#include "providers/model/text_target.h"

#include <array>
#include <cerrno>
#include <charconv>
#include <filesystem>
#include <system_error>
#include <utility>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"

namespace lomu {

namespace {

// A link or a device would be replaced by an ordinary file.
std::string checkedPlace(std::string file) {
  std::error_code ignored;
  const auto type = std::filesystem::symlink_status(platform::pathOf(file), ignored).type();
  const char* kind = nullptr;
  if (type == std::filesystem::file_type::symlink) {
    kind = "is a symbolic link, nothing is written through it";
  } else if (type == std::filesystem::file_type::directory) {
    kind = "is a folder";
  } else if (type == std::filesystem::file_type::block ||
             type == std::filesystem::file_type::character ||
             type == std::filesystem::file_type::fifo ||
             type == std::filesystem::file_type::socket || platform::isDeviceName(file)) {
    kind = "is no ordinary file, nothing is written to it";
  }
  if (kind != nullptr) {
    throw ModelError(file + ": " + kind + ", expected a file or a new name", ZTB_ERROR_IO);
  }
  return file;
}

}  // namespace

TextTarget::TextTarget(std::string file)
    : file_(checkedPlace(std::move(file))),
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
