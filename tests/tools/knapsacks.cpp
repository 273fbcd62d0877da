#include "tests/tools/knapsacks.h"

#include <array>

namespace tooltest {

std::string knapsacks() {
  constexpr int kThings = 70;
  unsigned state = 12345;
  const auto next = [&] {
    state = state * 1664525U + 1013904223U;
    return 5 + static_cast<int>(state >> 8) % 995;
  };
  std::array<std::string, 5> rows;
  std::array<int, 5> sizes{};
  std::string worth;
  std::string names;
  for (int thing = 0; thing < kThings; ++thing) {
    const std::string name = " x" + std::to_string(thing);
    int sum = 0;
    for (std::size_t row = 0; row < rows.size(); ++row) {
      const int size = next();
      rows.at(row) += " + " + std::to_string(size) + name + "\n";
      sizes.at(row) += size;
      sum += size;
    }
    worth += " + " + std::to_string(sum / 5 + next() % 100) + name + "\n";
    names += name + "\n";
  }
  std::string text = "Maximize\n worth: " + worth + "Subject To\n";
  for (std::size_t row = 0; row < rows.size(); ++row) {
    text += " r" + std::to_string(row) + ": " + rows.at(row) +
            " <= " + std::to_string(sizes.at(row) / 2) + "\n";
  }
  return text + "Binaries\n" + names + "End\n";
}

}  // namespace tooltest
