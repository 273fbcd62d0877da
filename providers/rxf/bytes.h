// Little-endian numbers in byte sequences: appending them, and taking them out with every length
// checked first.
#ifndef ZTB_PROVIDERS_RXF_BYTES_H_
#define ZTB_PROVIDERS_RXF_BYTES_H_

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "providers/rxf/failure.h"

namespace rxffile {

using Bytes = std::vector<std::uint8_t>;

template <std::unsigned_integral T>
void storeLittle(std::uint8_t* to, T value) {
  for (std::size_t i = 0; i < sizeof(T); ++i) to[i] = static_cast<std::uint8_t>(value >> (8 * i));
}

template <std::unsigned_integral T>
T loadLittle(const std::uint8_t* from) {
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    value = static_cast<T>(value | (static_cast<T>(from[i]) << (8 * i)));
  }
  return value;
}

template <std::unsigned_integral T>
void appendLittle(Bytes& out, T value) {
  const std::size_t at = out.size();
  out.resize(at + sizeof(T));
  storeLittle(out.data() + at, value);
}

// One length byte and the characters; REQUIRES: at most 255 of them.
inline void appendText(Bytes& out, std::string_view text) {
  out.push_back(static_cast<std::uint8_t>(text.size()));
  out.insert(out.end(), text.begin(), text.end());
}

// Takes values from the front of a byte sequence. Throws Malformed where the sequence is too short.
class ByteReader {
 public:
  ByteReader(const std::uint8_t* data, std::size_t size) : at_(data), left_(size) {}

  [[nodiscard]] std::size_t left() const { return left_; }

  const std::uint8_t* bytes(std::size_t count) {
    if (count > left_) {
      throw Malformed(DetailText("content ends %zu bytes too early", count - left_));
    }
    const std::uint8_t* from = at_;
    at_ += count;
    left_ -= count;
    return from;
  }

  template <std::unsigned_integral T>
  T number() {
    return loadLittle<T>(bytes(sizeof(T)));
  }

  std::string_view text() {
    const std::size_t length = number<std::uint8_t>();
    return {reinterpret_cast<const char*>(bytes(length)), length};
  }

 private:
  const std::uint8_t* at_;
  std::size_t left_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_BYTES_H_
