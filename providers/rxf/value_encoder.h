// One value slot of a block to bytes, in the shortest of four forms, without loss of a single bit.
#ifndef ZTB_PROVIDERS_RXF_VALUE_ENCODER_H_
#define ZTB_PROVIDERS_RXF_VALUE_ENCODER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "providers/rxf/bytes.h"
#include "providers/rxf/special_table.h"
#include "providers/rxf/zstd_codec.h"

namespace rxffile {

class ValueEncoder {
 public:
  // Appends `count` (at least 1) values. With `specials`, values of that table are stored as codes.
  void encode(const double* values, std::size_t count, const SpecialTable* specials,
              Compressor& compressor, Bytes& out);

 private:
  // Values as whole numbers divided by a power of ten.
  struct Decimal {
    bool fits = false;
    unsigned exponent = 0;
    bool byDifference = false;
    unsigned width = 0;
    std::int64_t base = 0;  // least number, or least difference
  };

  bool markSpecials(const double* values, std::size_t count, const SpecialTable& specials);
  Decimal asDecimal(const double* values, std::size_t count);
  std::size_t toWholeNumbers(const double* values, std::size_t count, unsigned exponent);
  bool fillDictionary(const double* values, std::size_t count);
  void encodeDecimal(const Decimal& decimal, std::size_t count, Compressor& compressor, Bytes& out);
  void encodeDictionary(std::size_t count, Compressor& compressor, Bytes& out);
  void encodePlain(const double* values, std::size_t count, Compressor& compressor, Bytes& out);

  Bytes marks_;
  Bytes planes_;
  std::vector<double> filled_;
  std::vector<std::int64_t> whole_;
  std::vector<std::uint32_t> numbers_;
  std::vector<std::uint64_t> dictionary_;
  std::vector<std::uint16_t> places_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_VALUE_ENCODER_H_
