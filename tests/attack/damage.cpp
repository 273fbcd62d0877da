#include "tests/attack/damage.h"

#include <algorithm>
#include <array>
#include <utility>

#include "tests/rxf/reseal.h"

namespace attack {

namespace {

// Sizes and places as docs/reference/rxf-format.md gives them.
constexpr std::size_t kHeader = 96;
constexpr std::size_t kHead = 40;
constexpr std::size_t kBodyLengthAt = 16;

std::size_t numberAt(const std::string& bytes, std::size_t at) {
  std::size_t number = 0;
  for (std::size_t i = 4; i-- > 0;) {
    number = number << 8U | static_cast<unsigned char>(bytes[at + i]);
  }
  return number;
}

void put(std::string& bytes, std::size_t at, std::uint64_t number, std::size_t length) {
  for (std::size_t i = 0; i < length && at + i < bytes.size(); ++i, number >>= 8U) {
    bytes[at + i] = static_cast<char>(number & 0xFFU);
  }
}

}  // namespace

Damager::Damager(std::string base, std::uint64_t seed) : base_(std::move(base)), random_(seed) {
  for (std::size_t at = kHeader; base_.size() - at >= kHead;) {
    const std::size_t length = kHead + numberAt(base_, at + kBodyLengthAt);
    frames_.push_back({at, length});
    at += length;
  }
}

std::size_t Damager::place() {
  if (below(2) == 0) {
    return below(base_.size());
  }
  const std::size_t chosen = below(frames_.size() + 2);
  if (chosen < 2) {
    return below(std::min(kHeader, base_.size()));
  }
  const Frame& frame = frames_[chosen - 2];
  return frame.at + below(std::min<std::size_t>(frame.length, 2 * kHead));
}

std::string Damager::withBlocksSwapped() {
  std::size_t one = below(frames_.size());
  std::size_t other = below(frames_.size());
  if (one > other) {
    std::swap(one, other);
  }
  const Frame& first = frames_[one];
  const Frame& second = frames_[other];
  if (one == other) {
    return base_;
  }
  const std::size_t between = first.at + first.length;
  return base_.substr(0, first.at) + base_.substr(second.at, second.length) +
         base_.substr(between, second.at - between) + base_.substr(first.at, first.length) +
         base_.substr(second.at + second.length);
}

std::string Damager::altered(const char*& kind) {
  std::string bytes = base_;
  switch (below(9)) {
    case 0:
    case 1: {
      kind = "one bit flipped";
      bytes[place()] ^= static_cast<char>(1U << below(8));
      break;
    }
    case 2: {
      kind = "several bits flipped";
      for (std::size_t bits = 2 + below(7); bits > 0; --bits) {
        bytes[place()] ^= static_cast<char>(1U << below(8));
      }
      break;
    }
    case 3: {
      kind = "noise";
      const std::size_t at = place();
      for (std::size_t i = at; i < std::min(bytes.size(), at + 1 + below(64)); ++i) {
        bytes[i] = static_cast<char>(below(256));
      }
      break;
    }
    case 4: {
      kind = "zeroed range";
      const std::size_t at = place();
      const std::size_t length =
          std::min(bytes.size() - at, 1 + below(std::size_t{1} << below(16)));
      std::fill_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), length, '\0');
      break;
    }
    case 5:
      kind = "cut";
      bytes.resize(below(bytes.size()));
      break;
    case 6:
      kind = "longer";
      bytes.append(1 + below(4096), static_cast<char>(below(256)));
      break;
    case 7: {
      kind = "range repeated";
      const std::size_t at = place();
      const std::size_t length = std::min(bytes.size() - at, 1 + below(4096));
      bytes.insert(at, bytes.substr(at, length));
      break;
    }
    default:
      kind = "blocks swapped";
      bytes = withBlocksSwapped();
      break;
  }
  return bytes;
}

Variant Damager::damaged() {
  Variant variant;
  do {
    variant.bytes = altered(variant.kind);
  } while (variant.bytes == base_);
  return variant;
}

Variant Damager::forged() {
  static constexpr std::array<std::uint64_t, 12> kNumbers{
      0, 1, 2, 20, 21, 63, 64, 255, 65535, 65536, 0x7FFFFFFF, 0xFFFFFFFFFFFFFFFF};
  Variant variant;
  if (below(3) == 0) {
    variant.bytes = altered(variant.kind);
  } else {
    variant.kind = "numbers";
    variant.bytes = base_;
    for (std::size_t count = 1 + below(4); count > 0; --count) {
      const std::size_t length = std::size_t{1} << below(4);
      const std::size_t at = place();
      const std::uint64_t number =
          below(2) == 0 ? kNumbers.at(below(kNumbers.size()))
                        : static_cast<unsigned char>(variant.bytes[at]) + below(5) - 2;
      put(variant.bytes, at, number, length);
    }
  }
  rxftest::reseal(variant.bytes);
  return variant;
}

}  // namespace attack
