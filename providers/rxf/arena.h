// Memory that is handed out in pieces and taken back all at once, for use again.
#ifndef ZTB_PROVIDERS_RXF_ARENA_H_
#define ZTB_PROVIDERS_RXF_ARENA_H_

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

namespace rxffile {

class Arena {
 public:
  // Memory of `size` bytes, not initialised, aligned to 8, valid until reset().
  std::uint8_t* take(std::size_t size) {
    size = (size + 7) & ~std::size_t{7};
    while (current_ < pieces_.size() && pieces_[current_].size - used_ < size) {
      ++current_;
      used_ = 0;
    }
    if (current_ == pieces_.size()) {
      const std::size_t bytes = std::max(size, kPieceBytes);
      pieces_.push_back({std::make_unique_for_overwrite<std::uint8_t[]>(bytes), bytes});
    }
    std::uint8_t* memory = pieces_[current_].memory.get() + used_;
    used_ += size;
    return memory;
  }

  void reset() {
    current_ = 0;
    used_ = 0;
  }

  // Bytes held, in use or not.
  [[nodiscard]] std::size_t held() const {
    std::size_t sum = 0;
    for (const Piece& piece : pieces_) sum += piece.size;
    return sum;
  }

 private:
  static constexpr std::size_t kPieceBytes = std::size_t{1} << 18U;

  struct Piece {
    std::unique_ptr<std::uint8_t[]> memory;
    std::size_t size;
  };

  std::vector<Piece> pieces_;
  std::size_t current_ = 0;
  std::size_t used_ = 0;
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_ARENA_H_
