#include "providers/rxf/zstd_codec.h"

#include <zstd.h>
#include <zstd_errors.h>

#include <new>

namespace rxffile {

Compressor::Compressor() : context_(ZSTD_createCCtx()) {
  if (!context_) throw std::bad_alloc();
}

void Compressor::Free::operator()(ZSTD_CCtx_s* context) const {
  ZSTD_freeCCtx(context);
}

std::size_t Compressor::append(const void* data, std::size_t size, int level, Bytes& out) {
  const std::size_t at = out.size();
  out.resize(at + ZSTD_compressBound(size));
  const std::size_t length =
      ZSTD_compressCCtx(context_.get(), out.data() + at, out.size() - at, data, size, level);
  if (ZSTD_isError(length) != 0U) {
    out.resize(at);
    throw std::bad_alloc();
  }
  if (length >= size) {
    out.resize(at);
    return 0;
  }
  out.resize(at + length);
  return length;
}

Decompressor::Decompressor() : context_(ZSTD_createDCtx()) {
  if (!context_) throw std::bad_alloc();
}

void Decompressor::Free::operator()(ZSTD_DCtx_s* context) const {
  ZSTD_freeDCtx(context);
}

void Decompressor::decompress(const void* data, std::size_t length, void* to, std::size_t size) {
  const std::size_t got = ZSTD_decompressDCtx(context_.get(), to, size, data, length);
  if (ZSTD_isError(got) != 0U) {
    if (ZSTD_getErrorCode(got) == ZSTD_error_memory_allocation) throw std::bad_alloc();
    throw Malformed(DetailText("compressed content: %s", ZSTD_getErrorName(got)));
  }
  if (got != size) {
    throw Malformed(DetailText("compressed content gives %zu bytes, expected %zu", got, size));
  }
}

}  // namespace rxffile
