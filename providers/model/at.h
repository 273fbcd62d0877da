// Numbers of rows, columns and entries, which are int everywhere, as indexes of a vector.
#ifndef ZTB_PROVIDERS_MODEL_AT_H_
#define ZTB_PROVIDERS_MODEL_AT_H_

#include <cstddef>

namespace lomu {

constexpr std::size_t at(int number) {
  return static_cast<std::size_t>(number);
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_AT_H_
