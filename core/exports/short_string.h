// Strings of clients that carry a length byte, turned into zero-terminated ones and back.
//
// A short string has 256 bytes: its length, then the chars, with no terminator. Arrays of them, and
// flat arrays of zero-terminated strings, have 20 entries 256 bytes apart.
#ifndef ZTB_CORE_EXPORTS_SHORT_STRING_H_
#define ZTB_CORE_EXPORTS_SHORT_STRING_H_

#include <ztb/types.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>

namespace ztb::exports {

inline constexpr std::size_t shortStringSize = ZTB_TEXT_BUFFER_SIZE;
inline constexpr int stringArraySize = ZTB_MAX_DIMENSION;

using TextBuffer = std::array<char, shortStringSize>;

// Entries of an array of strings that a client's count may address.
constexpr int entriesIn(int count) {
  return std::clamp(count, 0, stringArraySize);
}

inline void fromShortString(const char* shortString, TextBuffer& text) {
  const std::size_t length = static_cast<unsigned char>(shortString[0]);
  std::memcpy(text.data(), shortString + 1, length);
  text[length] = '\0';
}

inline void toShortString(const TextBuffer& text, char* shortString) {
  const std::size_t length = std::min(std::strlen(text.data()), shortStringSize - 1);
  std::memcpy(shortString + 1, text.data(), length);
  shortString[0] = static_cast<char>(length);
}

// A string argument. A null pointer stays one.
class ShortStringIn {
 public:
  explicit ShortStringIn(const char* shortString) : isNull_(shortString == nullptr) {
    if (shortString != nullptr) {
      fromShortString(shortString, text_);
    }
  }
  operator const char*() const { return isNull_ ? nullptr : text_.data(); }

 private:
  bool isNull_;
  TextBuffer text_;
};

// A string result: the operation fills a buffer, which goes to the caller at the end of the call.
class ShortStringOut {
 public:
  explicit ShortStringOut(char* shortString) : out_(shortString) {}
  ShortStringOut(const ShortStringOut&) = delete;
  ShortStringOut& operator=(const ShortStringOut&) = delete;
  ~ShortStringOut() {
    if (out_ != nullptr) {
      toShortString(text_, out_);
    }
  }
  operator char*() { return text_.data(); }

 private:
  char* out_;
  TextBuffer text_ = {};
};

// An array of strings as argument, of which `count` entries are taken. A null pointer stays one.
class ShortStringsIn {
 public:
  ShortStringsIn(const char* shortStrings, int count) : isNull_(shortStrings == nullptr) {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      pointers_[i] = texts_[i].data();
      if (!isNull_ && static_cast<int>(i) < entriesIn(count)) {
        fromShortString(shortStrings + i * shortStringSize, texts_[i]);
      } else {
        texts_[i][0] = '\0';
      }
    }
  }
  ShortStringsIn(const ShortStringsIn&) = delete;
  ShortStringsIn& operator=(const ShortStringsIn&) = delete;
  operator const char**() { return isNull_ ? nullptr : pointers_.data(); }

 private:
  bool isNull_;
  std::array<TextBuffer, stringArraySize> texts_;
  std::array<const char*, stringArraySize> pointers_;
};

// An array of strings as result, of which `count` entries go to the caller at the end of the call.
class ShortStringsOut {
 public:
  ShortStringsOut(char* shortStrings, int count) : out_(shortStrings), count_(entriesIn(count)) {
    for (std::size_t i = 0; i < texts_.size(); ++i) {
      pointers_[i] = texts_[i].data();
      texts_[i][0] = '\0';
    }
  }
  ShortStringsOut(const ShortStringsOut&) = delete;
  ShortStringsOut& operator=(const ShortStringsOut&) = delete;
  ~ShortStringsOut() {
    for (std::size_t i = 0; i < static_cast<std::size_t>(count_); ++i) {
      toShortString(texts_[i], out_ + i * shortStringSize);
    }
  }
  operator char**() { return pointers_.data(); }

 private:
  char* out_;
  int count_;
  std::array<TextBuffer, stringArraySize> texts_;
  std::array<char*, stringArraySize> pointers_;
};

}  // namespace ztb::exports

#endif  // ZTB_CORE_EXPORTS_SHORT_STRING_H_
