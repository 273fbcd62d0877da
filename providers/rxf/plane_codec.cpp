#include "providers/rxf/plane_codec.h"

#include <cstring>

namespace rxffile {

namespace {

// Higher levels gain little on planes and cost much time.
constexpr int kPlaneLevel = 1;

// Shorter planes do not pay for the head of a frame.
constexpr std::size_t kShortestCompressed = 48;

}  // namespace

void encodePlane(const std::uint8_t* plane, std::size_t size, Compressor& compressor, Bytes& out) {
  if (size == 0) return;
  if (std::memcmp(plane, plane + 1, size - 1) == 0) {
    out.push_back(kPlaneConstant);
    out.push_back(plane[0]);
    return;
  }
  if (size >= kShortestCompressed) {
    const std::size_t at = out.size();
    out.push_back(kPlaneZstd);
    appendLittle(out, std::uint32_t{0});
    const std::size_t length = compressor.append(plane, size, kPlaneLevel, out);
    if (length != 0) {
      storeLittle(out.data() + at + 1, static_cast<std::uint32_t>(length));
      return;
    }
    out.resize(at);
  }
  out.push_back(kPlanePlain);
  out.insert(out.end(), plane, plane + size);
}

const std::uint8_t* decodePlane(ByteReader& in, std::size_t size, Decompressor& decompressor,
                                Arena& arena) {
  if (size == 0) return nullptr;
  const auto form = in.number<std::uint8_t>();
  if (form == kPlanePlain) return in.bytes(size);
  std::uint8_t* plane = arena.take(size);
  if (form == kPlaneConstant) {
    std::memset(plane, in.number<std::uint8_t>(), size);
  } else if (form == kPlaneZstd) {
    const auto length = in.number<std::uint32_t>();
    decompressor.decompress(in.bytes(length), length, plane, size);
  } else {
    throw Malformed(DetailText("plane of form %u, expected 0 to 2", static_cast<unsigned>(form)));
  }
  return plane;
}

void encodePlanes(const std::uint32_t* numbers, std::size_t size, unsigned width,
                  std::uint8_t* scratch, Compressor& compressor, Bytes& out) {
  for (unsigned byte = 0; byte < width; ++byte) {
    const unsigned shift = 8 * byte;
    for (std::size_t i = 0; i < size; ++i) {
      scratch[i] = static_cast<std::uint8_t>(numbers[i] >> shift);
    }
    encodePlane(scratch, size, compressor, out);
  }
}

void joinPlanes(const std::uint8_t* const* planes, unsigned width, std::size_t from,
                std::size_t count, std::uint32_t* numbers) {
  const std::uint8_t* low = planes[0] + from;
  if (width == 1) {
    for (std::size_t i = 0; i < count; ++i) numbers[i] = low[i];
    return;
  }
  const std::uint8_t* second = planes[1] + from;
  for (std::size_t i = 0; i < count; ++i) {
    numbers[i] = low[i] | (static_cast<std::uint32_t>(second[i]) << 8U);
  }
  for (unsigned byte = 2; byte < width; ++byte) {
    const std::uint8_t* plane = planes[byte] + from;
    for (std::size_t i = 0; i < count; ++i) {
      numbers[i] |= static_cast<std::uint32_t>(plane[i]) << (8 * byte);
    }
  }
}

}  // namespace rxffile
