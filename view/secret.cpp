#include "view/secret.h"

#include <sys/random.h>

#include <array>

#include "tools/text/failure.h"

namespace view {

std::string makeSecret() {
  std::array<unsigned char, 16> bytes{};
  if (getentropy(bytes.data(), bytes.size()) != 0) {
    throw tool::Failure("the system gives no random numbers");
  }
  constexpr std::string_view digits = "0123456789abcdef";
  std::string text;
  for (const unsigned char byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 15U];
  }
  return text;
}

bool isSameSecret(std::string_view given, std::string_view expected) {
  if (given.size() != expected.size()) return false;
  unsigned char differences = 0;
  for (std::size_t at = 0; at < given.size(); ++at) {
    differences =
        static_cast<unsigned char>(differences | (static_cast<unsigned char>(given[at]) ^
                                                  static_cast<unsigned char>(expected[at])));
  }
  return differences == 0;
}

}  // namespace view
