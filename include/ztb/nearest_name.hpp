// Which name a misspelt one most likely stands for.
#ifndef ZTB_NEAREST_NAME_HPP_
#define ZTB_NEAREST_NAME_HPP_

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/case_folding.hpp>
#include <ztb/cpp20.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// How many letters must be put in, left out or exchanged to make one word of the other.
inline std::size_t wordDistance(std::string_view left, std::string_view right) {
  std::vector<std::size_t> row(right.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 0; i < left.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i + 1;
    for (std::size_t j = 0; j < right.size(); ++j) {
      const std::size_t exchanged = diagonal + (left[i] == right[j] ? 0 : 1);
      diagonal = row[j + 1];
      row[j + 1] = std::min({exchanged, row[j] + 1, row[j + 1] + 1});
    }
  }
  return row.back();
}

// ", is NAME meant?" with the nearest of the names, in any case of letters; nothing when none is
// near.
inline std::string suggestion(std::string_view word, const std::vector<std::string>& names) {
  const std::string wanted = folded(word);
  const auto nearest = std::ranges::min_element(
      names, {}, [&](const std::string& name) { return wordDistance(wanted, folded(name)); });
  if (nearest == names.end()) return "";
  const std::size_t distance = wordDistance(wanted, folded(*nearest));
  if (distance > 2 || distance >= word.size()) return "";
  return ", is " + *nearest + " meant?";
}

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_NEAREST_NAME_HPP_
