#include "peers/bounded_text.h"

#include <algorithm>

namespace ztb::peers {

BoundedText::BoundedText(char* buffer, int size) noexcept : buffer_(buffer), size_(size) {
  if (size_ > 0) *buffer_ = '\0';
}

BoundedText& BoundedText::append(std::string_view piece) noexcept {
  if (size_ < 1) return *this;
  const auto room = static_cast<std::size_t>(size_ - 1 - length_);
  const std::size_t taken = std::min(room, piece.size());
  std::copy_n(piece.data(), taken, buffer_ + length_);
  length_ += static_cast<int>(taken);
  buffer_[length_] = '\0';
  return *this;
}

}  // namespace ztb::peers
