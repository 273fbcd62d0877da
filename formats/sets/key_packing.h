// Label numbers of a record put together in as few words as they fit in, so that records compare
// as words do: the first position is the most significant.
#ifndef ZTB_FORMATS_SETS_KEY_PACKING_H_
#define ZTB_FORMATS_SETS_KEY_PACKING_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <span>

namespace formats {

class KeyPacking {
 public:
  // Of so many positions with label numbers up to labelCount.
  KeyPacking(std::size_t dimension, int labelCount)
      : dimension_(dimension),
        bits_(std::max<unsigned>(std::bit_width(static_cast<unsigned>(labelCount)), 1)),
        perWord_(wordBits / bits_) {}

  [[nodiscard]] std::size_t dimension() const { return dimension_; }
  [[nodiscard]] std::size_t words() const { return (dimension_ + perWord_ - 1) / perWord_; }

  // Puts the number of a position, from 0, in; the words are zero before the first one.
  void put(std::uint64_t* words, std::size_t position, int label) const {
    words[position / perWord_] |= static_cast<std::uint64_t>(label) << shift(position);
  }
  void pack(std::span<const int> keys, std::uint64_t* words) const {
    std::fill_n(words, this->words(), 0);
    for (std::size_t position = 0; position < dimension_; ++position) {
      put(words, position, keys[position]);
    }
  }
  [[nodiscard]] int label(const std::uint64_t* words, std::size_t position) const {
    return static_cast<int>((words[position / perWord_] >> shift(position)) &
                            ((std::uint64_t{1} << bits_) - 1));
  }

 private:
  static constexpr unsigned wordBits = 64;

  [[nodiscard]] unsigned shift(std::size_t position) const {
    return bits_ * static_cast<unsigned>(perWord_ - 1 - position % perWord_);
  }

  std::size_t dimension_;
  unsigned bits_;
  std::size_t perWord_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_KEY_PACKING_H_
