// The labels of a one-dimensional set that was written, kept for use as a domain.
//
// Labels are kept as runs of consecutive numbers or as one bit each, whichever is smaller, so a set
// never takes more than about an eighth of a byte per label of the universe.
#ifndef ZTB_PROVIDERS_RXF_LABEL_SET_H_
#define ZTB_PROVIDERS_RXF_LABEL_SET_H_

#include <cstddef>
#include <cstdint>
#include <vector>

namespace rxffile {

// One bit a label; label 0 is never set.
class LabelBits {
 public:
  void set(std::uint32_t label);
  [[nodiscard]] bool holds(std::uint32_t label) const {
    const std::size_t word = label / 64;
    return word < words_.size() && ((words_[word] >> (label % 64)) & 1U) != 0;
  }
  [[nodiscard]] std::size_t bytes() const { return words_.size() * sizeof(std::uint64_t); }

 private:
  std::vector<std::uint64_t> words_;
};

class LabelSet {
 public:
  // Adds labels in ascending order.
  void add(const std::int32_t* labels, std::size_t count);

  // The set as bits.
  [[nodiscard]] LabelBits bits() const;

 private:
  struct Run {
    std::uint32_t first;
    std::uint32_t last;
  };

  void addOne(std::uint32_t label);

  bool asBits_ = false;
  std::vector<Run> runs_;
  LabelBits bits_;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_LABEL_SET_H_
