#include "exchange/special_values.h"

namespace ztb {

SpecialValueMode modeOf(const SpecialValues& values) {
  for (std::size_t code = 0; code < epsilonCode; ++code) {
    if (!sameBits(values[code], internalSpecialValues[code])) {
      return SpecialValueMode::all;
    }
  }
  return sameBits(values[epsilonCode], internalSpecialValues[epsilonCode])
             ? SpecialValueMode::none
             : SpecialValueMode::epsilon;
}

}  // namespace ztb
