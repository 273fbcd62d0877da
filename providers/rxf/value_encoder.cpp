#include "providers/rxf/value_encoder.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <limits>

#include "providers/rxf/byte_planes.h"
#include "providers/rxf/limits.h"
#include "providers/rxf/plane_codec.h"
#include "providers/rxf/value_form.h"

namespace rxffile {

namespace {

// Whole numbers up to here, and their differences, are exact in a double and in 64 bits.
constexpr double kWholeLimit = 4503599627370496.0;

// A dictionary is given up when its beginning shows that hardly a value comes twice, and when it
// grows beyond what the writer keeps room for.
constexpr std::size_t kDictionaryTrial = 2048;
constexpr std::size_t kTrialDistinct = 1600;
constexpr std::size_t kWrittenDictionary = 8192;
constexpr unsigned kPlaceBits = 15;

// Values that are looked at to guess how many decimal places there are.
constexpr std::size_t kDecimalSample = 32;

std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

// True when `value` is exactly what its nearest multiple of 1 / power gives back; `whole` is that
// multiple. -0.0 is not.
bool isWhole(double value, double power, std::int64_t& whole) {
  const double scaled = value * power;
  if (!(std::fabs(scaled) < kWholeLimit)) return false;
  whole = static_cast<std::int64_t>(scaled + (scaled < 0 ? -0.5 : 0.5));
  return bitsOf(static_cast<double>(whole) / power) == bitsOf(value);
}

// Bytes of a number in lowest..highest above lowest; more than 4 when it needs more.
unsigned widthOf(std::int64_t lowest, std::int64_t highest) {
  const std::uint64_t range =
      static_cast<std::uint64_t>(highest) - static_cast<std::uint64_t>(lowest);
  if (range > std::numeric_limits<std::uint32_t>::max()) return kDoubleBytes;
  return planesFor(static_cast<std::uint32_t>(range));
}

}  // namespace

void ValueEncoder::encode(const double* values, std::size_t count, const SpecialTable* specials,
                          Compressor& compressor, Bytes& out) {
  const bool marked = specials != nullptr && markSpecials(values, count, *specials);
  out.push_back(marked ? 1 : 0);
  if (marked) {
    encodePlane(marks_.data(), count, compressor, out);
    values = filled_.data();
  }
  const std::uint64_t first = bitsOf(values[0]);
  if (std::all_of(values, values + count, [&](double v) { return bitsOf(v) == first; })) {
    out.push_back(kFormConstant);
    appendLittle(out, first);
    return;
  }
  const Decimal decimal = asDecimal(values, count);
  if (decimal.fits && decimal.width <= 1) return encodeDecimal(decimal, count, compressor, out);
  const unsigned decimalWidth = decimal.fits ? decimal.width : kDoubleBytes;
  if (fillDictionary(values, count)) {
    const unsigned width = planesFor(static_cast<std::uint32_t>(dictionary_.size() - 1));
    if (width * count + kDoubleBytes * dictionary_.size() < decimalWidth * count) {
      return encodeDictionary(count, compressor, out);
    }
  }
  if (decimal.fits) return encodeDecimal(decimal, count, compressor, out);
  encodePlain(values, count, compressor, out);
}

// Fills marks_ and, at marked places, filled_ with an ordinary value of the neighbourhood.
bool ValueEncoder::markSpecials(const double* values, std::size_t count,
                                const SpecialTable& specials) {
  std::size_t i = 0;
  while (i < count && specials.markOf(values[i]) == 0) ++i;
  if (i == count) return false;
  marks_.assign(count, 0);
  filled_.assign(values, values + count);
  double ordinary = i > 0 ? values[i - 1] : 0.0;
  std::size_t firstOrdinary = i > 0 ? 0 : count;
  for (; i < count; ++i) {
    marks_[i] = specials.markOf(values[i]);
    if (marks_[i] != 0) {
      filled_[i] = ordinary;
    } else {
      ordinary = values[i];
      firstOrdinary = std::min(firstOrdinary, i);
    }
  }
  if (firstOrdinary < count) {
    std::fill_n(filled_.begin(), firstOrdinary, values[firstOrdinary]);
  }
  return true;
}

ValueEncoder::Decimal ValueEncoder::asDecimal(const double* values, std::size_t count) {
  Decimal decimal;
  const std::size_t step = std::max<std::size_t>(1, count / kDecimalSample);
  std::int64_t whole = 0;
  for (std::size_t i = 0; i < count && decimal.exponent < kPowersOfTen.size(); i += step) {
    while (decimal.exponent < kPowersOfTen.size() &&
           !isWhole(values[i], kPowersOfTen[decimal.exponent], whole)) {
      ++decimal.exponent;
    }
  }
  for (;;) {
    if (decimal.exponent >= kPowersOfTen.size()) return decimal;
    const std::size_t fitting = toWholeNumbers(values, count, decimal.exponent);
    if (fitting == count) break;
    do {
      ++decimal.exponent;
    } while (decimal.exponent < kPowersOfTen.size() &&
             !isWhole(values[fitting], kPowersOfTen[decimal.exponent], whole));
  }
  const auto [lowest, highest] =
      std::minmax_element(whole_.begin(), whole_.begin() + static_cast<std::ptrdiff_t>(count));
  std::int64_t lowestStep = std::numeric_limits<std::int64_t>::max();
  std::int64_t highestStep = std::numeric_limits<std::int64_t>::min();
  for (std::size_t i = 1; i < count; ++i) {
    lowestStep = std::min(lowestStep, whole_[i] - whole_[i - 1]);
    highestStep = std::max(highestStep, whole_[i] - whole_[i - 1]);
  }
  const unsigned width = widthOf(*lowest, *highest);
  const unsigned stepWidth = widthOf(lowestStep, highestStep);
  decimal.byDifference = stepWidth < width;
  decimal.width = std::min(width, stepWidth);
  decimal.base = decimal.byDifference ? lowestStep : *lowest;
  decimal.fits = decimal.width <= sizeof(std::uint32_t);
  return decimal;
}

// Sets whole_ and returns how many values from the first on are whole with this exponent.
std::size_t ValueEncoder::toWholeNumbers(const double* values, std::size_t count,
                                         unsigned exponent) {
  whole_.resize(std::max(whole_.size(), count));
  const double power = kPowersOfTen[exponent];
  for (std::size_t i = 0; i < count; ++i) {
    if (!isWhole(values[i], power, whole_[i])) return i;
  }
  return count;
}

void ValueEncoder::encodeDecimal(const Decimal& decimal, std::size_t count, Compressor& compressor,
                                 Bytes& out) {
  out.push_back(kFormDecimal);
  out.push_back(static_cast<std::uint8_t>(decimal.exponent));
  out.push_back(decimal.byDifference ? 1 : 0);
  out.push_back(static_cast<std::uint8_t>(decimal.width));
  appendLittle(out, static_cast<std::uint64_t>(decimal.base));
  numbers_.resize(std::max(numbers_.size(), count));
  planes_.resize(std::max(planes_.size(), count));
  std::size_t numbers = count;
  if (decimal.byDifference) {
    appendLittle(out, static_cast<std::uint64_t>(whole_[0]));
    numbers = count - 1;
    for (std::size_t i = 0; i < numbers; ++i) {
      numbers_[i] = static_cast<std::uint32_t>(whole_[i + 1] - whole_[i] - decimal.base);
    }
  } else {
    for (std::size_t i = 0; i < numbers; ++i) {
      numbers_[i] = static_cast<std::uint32_t>(whole_[i] - decimal.base);
    }
  }
  encodePlanes(numbers_.data(), numbers, decimal.width, planes_.data(), compressor, out);
}

// Lists the distinct values in order of appearance and sets numbers_ to each value's place there.
bool ValueEncoder::fillDictionary(const double* values, std::size_t count) {
  constexpr std::size_t slots = std::size_t{1} << kPlaceBits;
  places_.assign(slots, 0);
  dictionary_.clear();
  numbers_.resize(std::max(numbers_.size(), count));
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint64_t bits = bitsOf(values[i]);
    std::size_t slot = (bits * 0x9E3779B97F4A7C15U) >> (64 - kPlaceBits);
    while (places_[slot] != 0 && dictionary_[places_[slot] - 1U] != bits) {
      slot = (slot + 1) & (slots - 1);
    }
    if (places_[slot] == 0) {
      if (dictionary_.size() == kWrittenDictionary) return false;
      if (i < kDictionaryTrial && dictionary_.size() == kTrialDistinct) return false;
      dictionary_.push_back(bits);
      places_[slot] = static_cast<std::uint16_t>(dictionary_.size());
    }
    numbers_[i] = places_[slot] - 1U;
  }
  return true;
}

void ValueEncoder::encodeDictionary(std::size_t count, Compressor& compressor, Bytes& out) {
  out.push_back(kFormDictionary);
  appendLittle(out, static_cast<std::uint32_t>(dictionary_.size()));
  for (const std::uint64_t bits : dictionary_) appendLittle(out, bits);
  planes_.resize(std::max(planes_.size(), count));
  const unsigned width = planesFor(static_cast<std::uint32_t>(dictionary_.size() - 1));
  encodePlanes(numbers_.data(), count, width, planes_.data(), compressor, out);
}

void ValueEncoder::encodePlain(const double* values, std::size_t count, Compressor& compressor,
                               Bytes& out) {
  out.push_back(kFormPlain);
  planes_.resize(std::max(planes_.size(), count * kDoubleBytes));
  splitDoubles(values, count, planes_.data());
  for (std::size_t b = 0; b < kDoubleBytes; ++b) {
    encodePlane(planes_.data() + b * count, count, compressor, out);
  }
}

}  // namespace rxffile
