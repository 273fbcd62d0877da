// Zstandard for one thread: contexts that are made once and used for every piece.
#ifndef ZTB_PROVIDERS_RXF_ZSTD_CODEC_H_
#define ZTB_PROVIDERS_RXF_ZSTD_CODEC_H_

#include <cstddef>
#include <cstdint>
#include <memory>

#include "providers/rxf/bytes.h"

struct ZSTD_CCtx_s;
struct ZSTD_DCtx_s;

namespace rxffile {

class Compressor {
 public:
  Compressor();

  // Appends one Zstandard frame of `size` bytes to `out` and returns its length; 0, with nothing
  // appended, when the frame would not be shorter than the bytes. Throws std::bad_alloc.
  std::size_t append(const void* data, std::size_t size, int level, Bytes& out);

 private:
  struct Free {
    void operator()(ZSTD_CCtx_s* context) const;
  };
  std::unique_ptr<ZSTD_CCtx_s, Free> context_;
};

class Decompressor {
 public:
  Decompressor();

  // Decompresses frames that hold exactly `size` bytes. Throws Malformed when they do not,
  // std::bad_alloc.
  void decompress(const void* data, std::size_t length, void* to, std::size_t size);

 private:
  struct Free {
    void operator()(ZSTD_DCtx_s* context) const;
  };
  std::unique_ptr<ZSTD_DCtx_s, Free> context_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_ZSTD_CODEC_H_
