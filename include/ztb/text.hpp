// Strings across the ZTB interface: arguments without a copy, results without an allocation.
#ifndef ZTB_TEXT_HPP_
#define ZTB_TEXT_HPP_

#include <ztb/types.h>

#include <array>
#include <cstring>
#include <ostream>
#include <string>
#include <string_view>

namespace ztb::inline client {

// A zero-terminated string given to the library; made from a literal, a char pointer or a
// std::string, and valid as long as that. A std::string_view is refused, since it need not end
// in a zero.
class ZString {
 public:
  ZString(const char* text) noexcept : text_(text) {}
  ZString(const std::string& text) noexcept : text_(text.c_str()) {}
  ZString(std::string_view) = delete;

  [[nodiscard]] const char* c_str() const noexcept { return text_; }

 private:
  const char* text_;
};

// A name, label or explanatory text that the library handed out, held in place: no allocation.
class Text {
 public:
  Text() noexcept { chars_[0] = '\0'; }

  [[nodiscard]] std::string_view view() const noexcept { return {chars_.data()}; }
  [[nodiscard]] const char* c_str() const noexcept { return chars_.data(); }
  [[nodiscard]] bool empty() const noexcept { return chars_[0] == '\0'; }
  [[nodiscard]] std::string str() const { return std::string(view()); }
  operator std::string_view() const noexcept { return view(); }
  operator ZString() const noexcept { return {chars_.data()}; }

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

#endif  // ZTB_TEXT_HPP_
