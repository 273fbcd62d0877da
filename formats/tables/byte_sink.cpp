#include "formats/tables/byte_sink.h"

#include <fmt/format.h>
#include <zlib.h>
#include <zstd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <utility>
#include <vector>

#include "formats/tables/packing.h"
#include "tools/files/new_file.h"
#include "tools/text/failure.h"

namespace formats {

namespace {

class FileSink : public ByteSink {
 public:
  explicit FileSink(const std::string& path) : name_(path == "-" ? "standard output" : path) {
    if (path != "-") owned_.emplace(path);
    file_ = owned_ ? owned_->stream() : stdout;
  }

  void write(std::string_view bytes) override {
    if (std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size()) fail();
  }
  void finish() override {
    if (std::fflush(file_) != 0) fail();
    if (owned_) owned_->publish();
  }

 private:
  [[noreturn]] void fail() const { throw tool::systemFailure(name_, "cannot be written", errno); }

  std::string name_;
  std::optional<tool::NewFile> owned_;
  std::FILE* file_;
};

class GzipSink : public ByteSink {
 public:
  explicit GzipSink(const std::string& path) : file_(path), packed_(std::size_t{1} << 16U) {
    constexpr int gzip = 16 + MAX_WBITS;
    constexpr int level = 6;
    constexpr int memory = 8;
    if (deflateInit2(&stream_, level, Z_DEFLATED, gzip, memory, Z_DEFAULT_STRATEGY) != Z_OK) {
      throw std::bad_alloc();
    }
  }
  ~GzipSink() override { deflateEnd(&stream_); }

  void write(std::string_view bytes) override { pack(bytes, Z_NO_FLUSH); }
  void finish() override {
    pack({}, Z_FINISH);
    file_.finish();
  }

 private:
  void pack(std::string_view bytes, int flush) {
    // zlib takes the bytes without const and leaves them alone.
    stream_.next_in = const_cast<Bytef*>(reinterpret_cast<const Bytef*>(bytes.data()));
    stream_.avail_in = static_cast<uInt>(bytes.size());
    do {
      stream_.next_out = reinterpret_cast<Bytef*>(packed_.data());
      stream_.avail_out = static_cast<uInt>(packed_.size());
      deflate(&stream_, flush);
      file_.write({packed_.data(), packed_.size() - stream_.avail_out});
    } while (stream_.avail_out == 0);
  }

  FileSink file_;
  z_stream stream_{};
  std::vector<char> packed_;
};

class ZstdSink : public ByteSink {
 public:
  explicit ZstdSink(const std::string& path)
      : file_(path), stream_(ZSTD_createCCtx()), packed_(ZSTD_CStreamOutSize()) {
    if (stream_ == nullptr) throw std::bad_alloc();
    ZSTD_CCtx_setParameter(stream_, ZSTD_c_checksumFlag, 1);
  }
  ~ZstdSink() override { ZSTD_freeCCtx(stream_); }

  void write(std::string_view bytes) override {
    ZSTD_inBuffer input{bytes.data(), bytes.size(), 0};
    while (input.pos < input.size) pack(input, ZSTD_e_continue);
  }
  void finish() override {
    ZSTD_inBuffer input{nullptr, 0, 0};
    while (pack(input, ZSTD_e_end) != 0) {
    }
    file_.finish();
  }

 private:
  std::size_t pack(ZSTD_inBuffer& input, ZSTD_EndDirective directive) {
    ZSTD_outBuffer output{packed_.data(), packed_.size(), 0};
    const std::size_t left = ZSTD_compressStream2(stream_, &output, &input, directive);
    if (ZSTD_isError(left) != 0) throw tool::Failure(ZSTD_getErrorName(left));
    file_.write({packed_.data(), output.pos});
    return left;
  }

  FileSink file_;
  ZSTD_CCtx* stream_;
  std::vector<char> packed_;
};

}  // namespace

std::unique_ptr<ByteSink> makeBytes(const std::string& path) {
  switch (packingOf(path)) {
    case Packing::gzip:
      return std::make_unique<GzipSink>(path);
    case Packing::zstd:
      return std::make_unique<ZstdSink>(path);
    default:
      return std::make_unique<FileSink>(path);
  }
}

}  // namespace formats
