#include "formats/tables/byte_source.h"

#include <fmt/format.h>
#include <zlib.h>
#include <zstd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "formats/tables/packing.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

[[noreturn]] void failRead(const std::string& name) {
  throw tool::systemFailure(name, "cannot be read", errno);
}

class FileBytes : public ByteSource {
 public:
  explicit FileBytes(const std::string& path)
      : name_(path == "-" ? "standard input" : path),
        file_(path == "-" ? stdin : tool::openStream(path, "rb")) {
    if (file_ == nullptr) failRead(path);
  }
  ~FileBytes() override {
    if (file_ != stdin) std::fclose(file_);
  }

  std::size_t read(char* into, std::size_t size) override {
    const std::size_t count = std::fread(into, 1, size, file_);
    if (std::ferror(file_) != 0) failRead(name_);
    return count;
  }

 private:
  std::string name_;
  std::FILE* file_;
};

// What packed files share: a block of packed bytes, and an end that has to come.
class PackedBytes : public ByteSource {
 protected:
  explicit PackedBytes(const std::string& path)
      : name_(path), file_(path), packed_(std::size_t{1} << 16U) {}

  // Reads more packed bytes; false at the end of the file.
  bool refill() {
    begin_ = 0;
    end_ = file_.read(packed_.data(), packed_.size());
    return end_ > 0;
  }
  [[noreturn]] void failDamaged(const char* reason) const {
    throw tool::Failure(fmt::format("{}: cannot be unpacked: {}", name_, reason),
                        ZTB_ERROR_DAMAGED_FILE);
  }

  std::string name_;
  FileBytes file_;
  std::vector<char> packed_;
  std::size_t begin_ = 0;
  std::size_t end_ = 0;
  // Whether the file may end here: behind a whole member.
  bool whole_ = false;
};

class GzipBytes : public PackedBytes {
 public:
  explicit GzipBytes(const std::string& path) : PackedBytes(path) {
    constexpr int gzipOnly = 16 + MAX_WBITS;
    if (inflateInit2(&stream_, gzipOnly) != Z_OK) throw std::bad_alloc();
  }
  ~GzipBytes() override { inflateEnd(&stream_); }

  std::size_t read(char* into, std::size_t size) override {
    stream_.next_out = reinterpret_cast<Bytef*>(into);
    stream_.avail_out = static_cast<uInt>(size);
    while (stream_.avail_out == size) {
      if (begin_ == end_ && !refill()) {
        if (!whole_) failDamaged("the file is cut short");
        return 0;
      }
      if (whole_) {
        inflateReset(&stream_);
        whole_ = false;
      }
      stream_.next_in = reinterpret_cast<Bytef*>(packed_.data() + begin_);
      stream_.avail_in = static_cast<uInt>(end_ - begin_);
      const int result = inflate(&stream_, Z_NO_FLUSH);
      begin_ = end_ - stream_.avail_in;
      if (result == Z_STREAM_END) {
        whole_ = true;
      } else if (result != Z_OK && result != Z_BUF_ERROR) {
        failDamaged(stream_.msg == nullptr ? "it is damaged" : stream_.msg);
      }
    }
    return size - stream_.avail_out;
  }

 private:
  z_stream stream_{};
};

class ZstdBytes : public PackedBytes {
 public:
  explicit ZstdBytes(const std::string& path) : PackedBytes(path), stream_(ZSTD_createDStream()) {
    if (stream_ == nullptr) throw std::bad_alloc();
  }
  ~ZstdBytes() override { ZSTD_freeDStream(stream_); }

  std::size_t read(char* into, std::size_t size) override {
    ZSTD_outBuffer output{into, size, 0};
    while (output.pos == 0) {
      if (begin_ == end_ && !refill()) {
        if (!whole_) failDamaged("the file is cut short");
        return 0;
      }
      ZSTD_inBuffer input{packed_.data() + begin_, end_ - begin_, 0};
      const std::size_t result = ZSTD_decompressStream(stream_, &output, &input);
      if (ZSTD_isError(result) != 0) failDamaged(ZSTD_getErrorName(result));
      begin_ += input.pos;
      whole_ = result == 0;
    }
    return output.pos;
  }

 private:
  ZSTD_DStream* stream_;
};

}  // namespace

std::unique_ptr<ByteSource> openBytes(const std::string& path) {
  switch (packingOf(path)) {
    case Packing::gzip:
      return std::make_unique<GzipBytes>(path);
    case Packing::zstd:
      return std::make_unique<ZstdBytes>(path);
    default:
      return std::make_unique<FileBytes>(path);
  }
}

}  // namespace formats
