// Texts given to the library, which takes them zero-terminated.
#ifndef ZTB_Z_STRING_HPP_
#define ZTB_Z_STRING_HPP_

#include <array>
#include <cstddef>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <ztb/cpp20.hpp>
#include <ztb/display_text.hpp>
#include <ztb/error.hpp>
#include <ztb/text.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client {

namespace detail {

// Throws for a text with a zero byte within, which would be cut there.
inline void requireWhole(std::string_view text) {
  if (const void* zero = text.empty() ? nullptr : std::memchr(text.data(), 0, text.size())) {
    throw Error("ZString",
                "A zero byte stands at position " +
                    std::to_string(static_cast<const char*>(zero) - text.data() + 1) + " of >" +
                    displayText(text) + "<, expected none",
                ErrorKind::refused);
  }
}

}  // namespace detail

// A name, label, text or file name for the length of a call: made from a literal, a char pointer
// (which may be null where a function says so), a std::string, a Text or a std::string_view. Only a
// view is copied, without an allocation when it is no longer than a label. One with a zero byte
// within throws Error of kind refused.
class ZString {
 public:
  ZString(const char* text) noexcept : text_(text) {}
  ZString(const std::string& text) : text_(text.c_str()) { detail::requireWhole(text); }
  ZString(const Text& text) noexcept : text_(text.c_str()) {}
  ZString(std::string_view text) {
    detail::requireWhole(text);
    char* copy = room_.data();
    if (text.size() >= room_.size()) {
      longText_ = std::make_unique_for_overwrite<char[]>(text.size() + 1);
      copy = longText_.get();
    }
    copy[text.copy(copy, text.size())] = '\0';
    text_ = copy;
  }
  ZString(const ZString&) = delete;
  ZString& operator=(const ZString&) = delete;
  ~ZString() = default;

  [[nodiscard]] const char* c_str() const noexcept { return text_; }

 private:
  const char* text_;
  std::unique_ptr<char[]> longText_;
  std::array<char, ZTB_MAX_NAME_LENGTH + 1> room_;
};

}  // namespace ztb::inline client

#endif  // ZTB_CPP20

#endif  // ZTB_Z_STRING_HPP_
