#include "formats/tables/exact_text.h"

#include <fmt/format.h>

#include <cstddef>

namespace formats {

namespace {

constexpr std::string_view hexDigits = "0123456789ABCDEF";

// The length of the UTF-8 sequence that text begins with, which XML takes too; 0 for none.
std::size_t sequenceLength(std::string_view text) {
  const auto byte = [&](std::size_t at) {
    return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
  };
  const auto follows = [&](std::size_t at) { return (byte(at) & 0xC0U) == 0x80U; };
  const unsigned first = byte(0);
  if (first < 0x80) return 1;
  if (first >= 0xC2 && first <= 0xDF) return follows(1) ? 2 : 0;
  if (first >= 0xE0 && first <= 0xEF) {
    const bool tooLong = first == 0xE0 && byte(1) < 0xA0;
    const bool surrogate = first == 0xED && byte(1) >= 0xA0;
    const bool noChar = first == 0xEF && byte(1) == 0xBF && byte(2) >= 0xBE;
    return follows(1) && follows(2) && !tooLong && !surrogate && !noChar ? 3 : 0;
  }
  if (first >= 0xF0 && first <= 0xF4) {
    const bool tooLong = first == 0xF0 && byte(1) < 0x90;
    const bool beyond = first == 0xF4 && byte(1) >= 0x90;
    return follows(1) && follows(2) && follows(3) && !tooLong && !beyond ? 4 : 0;
  }
  return 0;
}

// The length of what can stand at the beginning of text; 0 where its first byte cannot.
std::size_t standing(std::string_view text, TextForm form) {
  const std::size_t length = sequenceLength(text);
  if (form == TextForm::json || length != 1) return length;
  const auto c = static_cast<unsigned char>(text.front());
  if ((c < ' ' && c != '\n' && c != '\t') || c == 0x7F) return 0;
  return text.starts_with("_x") ? 0 : 1;
}

int valueOf(char digit) {
  const std::size_t found = hexDigits.find(digit);
  return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

}  // namespace

bool isUtf8(std::string_view text) {
  while (!text.empty()) {
    const std::size_t length = sequenceLength(text);
    if (length == 0) return false;
    text.remove_prefix(length);
  }
  return true;
}

std::string_view spelled(std::string_view text, TextForm form, std::string& room) {
  bool plain = !text.starts_with('\\') && (form == TextForm::json || !text.empty());
  for (std::size_t at = 0; plain && at < text.size();) {
    const std::size_t length = standing(text.substr(at), form);
    plain = length > 0;
    at += length;
  }
  if (plain) return text;
  room.assign(1, '\\');
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t length = standing(text.substr(at), form);
    if (length == 0) {
      room += fmt::format("\\x{:02X}", static_cast<unsigned char>(text[at++]));
    } else if (text[at] == '\\') {
      room.append(2, '\\');
      ++at;
    } else {
      room.append(text.data() + at, length);
      at += length;
    }
  }
  return room;
}

std::optional<std::string> unspelled(std::string_view text) {
  if (!text.starts_with('\\')) return std::string(text);
  std::string result;
  for (std::size_t at = 1; at < text.size(); ++at) {
    if (text[at] != '\\') {
      result += text[at];
    } else if (at + 1 < text.size() && text[at + 1] == '\\') {
      result += '\\';
      ++at;
    } else {
      if (at + 3 >= text.size() || text[at + 1] != 'x' || valueOf(text[at + 2]) < 0 ||
          valueOf(text[at + 3]) < 0) {
        return std::nullopt;
      }
      result += static_cast<char>(valueOf(text[at + 2]) * 16 + valueOf(text[at + 3]));
      at += 3;
    }
  }
  return result;
}

}  // namespace formats
