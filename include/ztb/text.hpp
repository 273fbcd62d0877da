// Texts that the library hands out, without an allocation.
#ifndef ZTB_TEXT_HPP_
#define ZTB_TEXT_HPP_

#include <ztb/types.h>

#include <array>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>
#include <ztb/cpp20.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

// A name, label or explanatory text that the library handed out, held in place: no allocation.
class Text {
 public:
  Text() noexcept { chars_[0] = '\0'; }

  [[nodiscard]] std::string_view view() const noexcept { return {chars_.data()}; }
  [[nodiscard]] const char* c_str() const noexcept { return chars_.data(); }
  [[nodiscard]] bool empty() const noexcept { return chars_[0] == '\0'; }
  [[nodiscard]] std::string str() const { return std::string(view()); }
  operator std::string_view() const noexcept { return view(); }

  // Where the library writes: ZTB_TEXT_BUFFER_SIZE chars.
  [[nodiscard]] char* buffer() noexcept { return chars_.data(); }

  friend bool operator==(const Text& left, const Text& right) noexcept {
    return left.view() == right.view();
  }
  friend bool operator==(const Text& left, std::string_view right) noexcept {
    return left.view() == right;
  }
  friend bool operator==(const Text& left, const char* right) noexcept {
    return left.view() == right;
  }
  friend std::ostream& operator<<(std::ostream& out, const Text& text) {
    return out << text.view();
  }

 private:
  std::array<char, ZTB_TEXT_BUFFER_SIZE> chars_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_TEXT_HPP_
