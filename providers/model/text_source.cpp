#include "providers/model/text_source.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <new>
#include <string_view>
#include <system_error>
#include <utility>
#include <ztb/case_folding.hpp>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"

namespace lomu {

namespace {

constexpr unsigned kReadBlock = 1U << 18U;
constexpr std::size_t kMaxText = std::numeric_limits<int>::max();

[[noreturn]] void failReading(const std::string& file, const std::error_code& error) {
  throw ModelError(
      file + ": " + error.message() + ", expected a file that can be read",
      error == std::errc::no_such_file_or_directory ? ZTB_ERROR_NO_FILE : ZTB_ERROR_IO);
}

std::uintmax_t checkedSize(const std::string& file) {
  std::error_code error;
  const std::filesystem::path path = platform::pathOf(file);
  const auto status = std::filesystem::status(path, error);
  if (error) failReading(file, error);
  if (std::filesystem::is_directory(status)) {
    throw ModelError(file + ": this is a folder, expected a file", ZTB_ERROR_IO);
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw ModelError(file + ": this is no ordinary file, expected one", ZTB_ERROR_IO);
  }
  const std::uintmax_t size = std::filesystem::file_size(path, error);
  if (error) failReading(file, error);
  return size;
}

// A descriptor of the file, which has something in it.
int openChecked(const std::string& file, std::size_t& size) {
  size = static_cast<std::size_t>(checkedSize(file));
  const int descriptor = platform::openDescriptor(file);
  if (descriptor < 0) failReading(file, {errno, std::generic_category()});
  if (size == 0) {
    platform::closeDescriptor(descriptor);
    throw ModelError(file + ":1:1: the file is empty, expected text", ZTB_ERROR_DAMAGED_FILE);
  }
  return descriptor;
}

gzFile streamOf(void* stream) {
  return static_cast<gzFile>(stream);
}

}  // namespace

void checkReadable(const std::string& file) {
  std::size_t size = 0;
  platform::closeDescriptor(openChecked(file, size));
}

bool hasEnding(const std::string& file, const std::string& ending) {
  return file.size() > ending.size() &&
         ztb::sameFolded(std::string_view(file).substr(file.size() - ending.size()), ending);
}

TextSource::TextSource(std::string file)
    : file_(std::move(file)), descriptor_(openChecked(file_, size_)) {
  try {
    readAhead();
  } catch (...) {
    platform::closeDescriptor(descriptor_);
    throw;
  }
}

TextSource::~TextSource() {
  if (stream_ != nullptr) {
    gzclose(streamOf(stream_));
  } else {
    platform::closeDescriptor(descriptor_);
  }
}

// Packed files go through zlib. Plain ones do not, though it lets them pass: it would copy them
// twice.
void TextSource::readAhead() {
  constexpr std::string_view kPacked = "\x1f\x8b";
  std::array<char, kPacked.size()> begin{};
  const bool isPacked = readPlain(begin.data(), begin.size()) == begin.size() &&
                        std::string_view(begin.data(), begin.size()) == kPacked;
  if (!isPacked && hasEnding(file_, ".gz")) {
    throw ModelError(file_ + ": the file is not packed, expected what gzip writes",
                     ZTB_ERROR_DAMAGED_FILE);
  }
  if (platform::rewindDescriptor(descriptor_) != 0) {
    failReading(file_, {errno, std::generic_category()});
  }
  if (!isPacked) return;
  const gzFile stream = gzdopen(descriptor_, "rb");
  if (stream == nullptr) throw std::bad_alloc();
  gzbuffer(stream, kReadBlock);
  stream_ = stream;
}

std::size_t TextSource::read(char* bytes, std::size_t size) {
  return stream_ == nullptr ? readPlain(bytes, size) : readPacked(bytes, size);
}

std::size_t TextSource::readPlain(char* bytes, std::size_t size) {
  std::size_t got = 0;
  while (got < size) {
    const auto wanted = static_cast<unsigned>(std::min<std::size_t>(size - got, kMaxText));
    const long count = platform::readDescriptor(descriptor_, bytes + got, wanted);
    if (count < 0) failReading(file_, {errno, std::generic_category()});
    if (count == 0) break;
    got += static_cast<std::size_t>(count);
  }
  return got;
}

std::size_t TextSource::readPacked(char* bytes, std::size_t size) {
  std::size_t got = 0;
  while (got < size) {
    const auto wanted = static_cast<unsigned>(std::min<std::size_t>(size - got, kReadBlock));
    errno = 0;
    const int count = gzread(streamOf(stream_), bytes + got, wanted);
    int code = Z_OK;
    const char* const text = gzerror(streamOf(stream_), &code);
    if (code == Z_ERRNO) failReading(file_, {errno, std::generic_category()});
    if (code == Z_MEM_ERROR) throw std::bad_alloc();
    if (code != Z_OK && code != Z_STREAM_END) {
      throw ModelError(file_ + ": the packed file is damaged or cut off (" + text +
                           "), expected what gzip writes",
                       ZTB_ERROR_DAMAGED_FILE);
    }
    if (count <= 0) break;
    got += static_cast<std::size_t>(count);
  }
  return got;
}

std::string readText(const std::string& file) {
  TextSource source(file);
  std::string text;
  std::size_t size = 0;
  do {
    if (size > kMaxText) {
      throw ModelError(file + ": the file has more than " + std::to_string(kMaxText) +
                       " bytes of text, expected at most that");
    }
    // Room for a byte more than there is tells that there is no more.
    text.resize(std::min(std::max(2 * size, source.fileSize() + 1), kMaxText + 1));
    size += source.read(text.data() + size, text.size() - size);
  } while (size == text.size());
  text.resize(size);
  return text;
}

}  // namespace lomu
