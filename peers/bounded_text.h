// A text composed piece by piece into a buffer of fixed size. Each piece is cut to the room that is
// left, and the buffer always ends in a zero.

#ifndef ZTB_PEERS_BOUNDED_TEXT_H_
#define ZTB_PEERS_BOUNDED_TEXT_H_

#include <string_view>

namespace ztb::peers {

class BoundedText {
 public:
  // Begins with the empty text. With `size` below 1 nothing is ever written to `buffer`.
  BoundedText(char* buffer, int size) noexcept;

  BoundedText& append(std::string_view piece) noexcept;
  [[nodiscard]] int length() const noexcept { return length_; }

 private:
  char* buffer_;
  int size_;
  int length_ = 0;
};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_BOUNDED_TEXT_H_
