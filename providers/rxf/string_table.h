// A numbered list of texts, kept in one piece of memory, each with a zero behind it. Numbers count
// from 1 in order of adding.
#ifndef ZTB_PROVIDERS_RXF_STRING_TABLE_H_
#define ZTB_PROVIDERS_RXF_STRING_TABLE_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

namespace rxffile {

class StringTable {
 public:
  [[nodiscard]] std::uint32_t size() const { return static_cast<std::uint32_t>(ends_.size()); }

  // Adds a text at the end. Either it is added whole or, when memory ran out, nothing changed.
  void add(std::string_view text) {
    const std::size_t begin = characters_.size();
    ends_.push_back(begin + text.size());
    try {
      characters_.resize(begin + text.size() + 1);
      std::copy(text.begin(), text.end(), characters_.begin() + static_cast<std::ptrdiff_t>(begin));
    } catch (...) {
      ends_.pop_back();
      throw;
    }
  }

  // Text of a number. REQUIRES: 1 <= number <= size(). The view is valid until the next add,
  // and a zero follows it.
  [[nodiscard]] std::string_view at(std::uint32_t number) const {
    const std::size_t begin = number == 1 ? 0 : ends_[number - 2] + 1;
    return {characters_.data() + begin, ends_[number - 1] - begin};
  }

 private:
  std::vector<char> characters_;
  std::vector<std::size_t> ends_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_STRING_TABLE_H_
