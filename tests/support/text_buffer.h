// Buffers for the texts that cross the boundary. They have exactly the size that the interface
// promises to stay within, and are full of a filler before a call, so that a missing terminator or
// an untouched buffer shows.
#ifndef ZTB_TESTS_SUPPORT_TEXT_BUFFER_H_
#define ZTB_TESTS_SUPPORT_TEXT_BUFFER_H_

#include <ztb/types.h>

#include <array>
#include <cstring>
#include <stdexcept>
#include <string>
#include <string_view>

namespace ztbtest {

inline constexpr char textFiller = '#';

// A zero-terminated text of at most 255 chars.
class TextBuffer {
 public:
  TextBuffer() { chars_.fill(textFiller); }

  operator char*() { return chars_.data(); }

  // The text; throws when the terminator is missing.
  std::string str() const {
    const void* const end = std::memchr(chars_.data(), 0, chars_.size());
    if (end == nullptr) {
      throw std::runtime_error("text without a terminator");
    }
    return chars_.data();
  }

  bool untouched() const {
    for (const char c : chars_) {
      if (c != textFiller) {
        return false;
      }
    }
    return true;
  }

 private:
  std::array<char, ZTB_TEXT_BUFFER_SIZE> chars_{};
};

// Twenty zero-terminated texts, each in a buffer of its own, as an array of pointers.
class TextBuffers {
 public:
  TextBuffers() {
    for (size_t i = 0; i < buffers_.size(); ++i) {
      pointers_[i] = buffers_[i];
    }
  }

  TextBuffers(const TextBuffers&) = delete;
  TextBuffers& operator=(const TextBuffers&) = delete;

  operator char**() { return pointers_.data(); }

  TextBuffer& operator[](size_t i) { return buffers_.at(i); }

 private:
  std::array<TextBuffer, ZTB_MAX_DIMENSION> buffers_{};
  std::array<char*, ZTB_MAX_DIMENSION> pointers_{};
};

// A short string: a length byte and up to 255 chars, no terminator.
class ShortString {
 public:
  ShortString() { bytes_.fill(textFiller); }

  explicit ShortString(std::string_view text) : ShortString() { assign(bytes_.data(), text); }

  operator char*() { return bytes_.data(); }
  operator const char*() const { return bytes_.data(); }

  std::string str() const { return read(bytes_.data()); }

  static void assign(char* place, std::string_view text) {
    if (text.size() > 255) {
      throw std::runtime_error("short strings hold at most 255 chars");
    }
    place[0] = static_cast<char>(static_cast<unsigned char>(text.size()));
    std::memcpy(place + 1, text.data(), text.size());
  }

  static std::string read(const char* place) {
    return {place + 1, static_cast<unsigned char>(place[0])};
  }

 private:
  std::array<char, 256> bytes_{};
};

// Twenty places of 256 bytes in one block: a short-string array or a flat string array, by the way
// it is written and read.
class StringBlock {
 public:
  StringBlock() { bytes_.fill(textFiller); }

  static StringBlock shortStrings(std::initializer_list<std::string_view> texts) {
    StringBlock block;
    size_t i = 0;
    for (const std::string_view text : texts) {
      ShortString::assign(block.place(i++), text);
    }
    return block;
  }

  operator char*() { return bytes_.data(); }

  std::string shortString(size_t i) { return ShortString::read(place(i)); }

  // Throws when the place has no terminator.
  std::string flatString(size_t i) {
    if (std::memchr(place(i), 0, 256) == nullptr) {
      throw std::runtime_error("flat string without a terminator");
    }
    return place(i);
  }

  bool untouched(size_t i) {
    const std::string_view bytes(place(i), 256);
    return bytes.find_first_not_of(textFiller) == std::string_view::npos;
  }

 private:
  char* place(size_t i) { return bytes_.data() + 256 * i; }

  std::array<char, size_t{256} * ZTB_MAX_DIMENSION> bytes_{};
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_TEXT_BUFFER_H_
