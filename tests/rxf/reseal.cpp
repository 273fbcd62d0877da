#include "tests/rxf/reseal.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace rxftest {

namespace {

// Sizes and places as docs/reference/rxf-format.md gives them.
constexpr std::size_t kHeader = 96;
constexpr std::size_t kHead = 40;
constexpr std::size_t kBodyLengthAt = 16;
constexpr std::size_t kBodyChecksumAt = 24;
constexpr std::size_t kHeadChecksumAt = 32;

void putChecksum(std::string& bytes, std::size_t at, std::size_t from, std::size_t length) {
  std::uint64_t sum = XXH3_64bits(bytes.data() + from, length);
  for (std::size_t i = 0; i < sizeof sum; ++i, sum >>= 8U) {
    bytes[at + i] = static_cast<char>(sum & 0xFFU);
  }
}

}  // namespace

void reseal(std::string& bytes) {
  if (bytes.size() < kHeader) return;
  putChecksum(bytes, kHeader - 8, 0, kHeader - 8);
  std::size_t at = kHeader;
  while (bytes.size() - at >= kHead) {
    std::size_t length = 0;
    for (std::size_t i = 4; i-- > 0;) {
      length = length << 8U | static_cast<unsigned char>(bytes[at + kBodyLengthAt + i]);
    }
    if (length > bytes.size() - at - kHead) return;
    putChecksum(bytes, at + kBodyChecksumAt, at + kHead, length);
    putChecksum(bytes, at + kHeadChecksumAt, at, kHeadChecksumAt);
    at += kHead + length;
  }
}

void forgeFile(const std::string& path, const std::string& from, const std::string& to) {
  std::ifstream in(path, std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  const std::size_t at = bytes.find(from);
  if (at == std::string::npos || bytes.find(from, at + 1) != std::string::npos) {
    throw std::runtime_error("the bytes to be forged do not stand once in " + path);
  }
  reseal(bytes.replace(at, from.size(), to));
  std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
}

std::string ascendingTexts(char step) {
  // No special values; decimal, exponent 0, order 1, width 0; what is added, the first.
  const std::string zeros(7, '\0');
  return std::string("\0\1\0\1\0", 5) + step + zeros + '\1' + zeros;
}

}  // namespace rxftest
