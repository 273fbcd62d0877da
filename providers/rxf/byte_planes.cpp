#include "providers/rxf/byte_planes.h"

#include <bit>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace rxffile {

namespace {

#ifdef __SSE2__

// Sixteen doubles are 128 bytes, whose place is a number of seven bits: record (4), byte (3). One
// round of unpacking register k with register k + 4 rotates these bits left by one; four rounds
// bring the byte number in front, three more bring it back.
constexpr std::size_t kStep = 16;
struct Registers {
  __m128i part[kDoubleBytes];
};

inline Registers rotatePlaces(const Registers& in) {
  Registers out;
  for (std::size_t k = 0; k < 4; ++k) {
    out.part[2 * k] = _mm_unpacklo_epi8(in.part[k], in.part[k + 4]);
    out.part[2 * k + 1] = _mm_unpackhi_epi8(in.part[k], in.part[k + 4]);
  }
  return out;
}

// The part of the values that fills whole steps; its length is the result.
std::size_t splitSteps(const double* values, std::size_t size, std::uint8_t* planes) {
  std::size_t i = 0;
  for (; i + kStep <= size; i += kStep) {
    Registers r;
    for (std::size_t k = 0; k < kDoubleBytes; ++k) {
      r.part[k] = _mm_castpd_si128(_mm_loadu_pd(values + i + 2 * k));
    }
    r = rotatePlaces(rotatePlaces(rotatePlaces(rotatePlaces(r))));
    for (std::size_t k = 0; k < kDoubleBytes; ++k) {
      _mm_storeu_si128(reinterpret_cast<__m128i*>(planes + k * size + i), r.part[k]);
    }
  }
  return i;
}

std::size_t joinSteps(const std::array<const std::uint8_t*, kDoubleBytes>& planes, std::size_t size,
                      double* values) {
  std::size_t i = 0;
  for (; i + kStep <= size; i += kStep) {
    Registers r;
    for (std::size_t k = 0; k < kDoubleBytes; ++k) {
      r.part[k] = _mm_loadu_si128(reinterpret_cast<const __m128i*>(planes[k] + i));
    }
    r = rotatePlaces(rotatePlaces(rotatePlaces(r)));
    for (std::size_t k = 0; k < kDoubleBytes; ++k) {
      _mm_storeu_pd(values + i + 2 * k, _mm_castsi128_pd(r.part[k]));
    }
  }
  return i;
}

#else

std::size_t splitSteps(const double*, std::size_t, std::uint8_t*) {
  return 0;
}

std::size_t joinSteps(const std::array<const std::uint8_t*, kDoubleBytes>&, std::size_t, double*) {
  return 0;
}

#endif

}  // namespace

void splitDoubles(const double* values, std::size_t size, std::uint8_t* planes) {
  for (std::size_t i = splitSteps(values, size, planes); i < size; ++i) {
    const auto bits = std::bit_cast<std::uint64_t>(values[i]);
    for (std::size_t b = 0; b < kDoubleBytes; ++b) {
      planes[b * size + i] = static_cast<std::uint8_t>(bits >> (8 * b));
    }
  }
}

void joinDoubles(const std::array<const std::uint8_t*, kDoubleBytes>& planes, std::size_t size,
                 double* values) {
  for (std::size_t i = joinSteps(planes, size, values); i < size; ++i) {
    std::uint64_t bits = 0;
    for (std::size_t b = 0; b < kDoubleBytes; ++b) {
      bits |= static_cast<std::uint64_t>(planes[b][i]) << (8 * b);
    }
    values[i] = std::bit_cast<double>(bits);
  }
}

}  // namespace rxffile
