// A number in messages, with as many digits as tell it apart.
#ifndef ZTB_PROVIDERS_MODEL_NUMBER_TEXT_H_
#define ZTB_PROVIDERS_MODEL_NUMBER_TEXT_H_

#include <array>
#include <cstdio>
#include <string>

namespace lomu {

inline std::string numberText(double value) {
  std::array<char, 32> text{};
  std::snprintf(text.data(), text.size(), "%.15g", value);
  return text.data();
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_NUMBER_TEXT_H_
