#include "formats/json/json_text.h"

#include <fmt/format.h>

#include <cmath>
#include <ztb/display_text.hpp>

#include "formats/tables/exact_text.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"

namespace formats {

void JsonText::name(std::string_view name) {
  separate();
  quoted(name);
  chars_ += ':';
  comma_ = false;
}

void JsonText::text(std::string_view text) {
  separate();
  quoted(text);
}

void JsonText::number(double value) {
  const tool::NumberText text(value);
  if (tool::isSpecial(value) || !std::isfinite(value)) {
    this->text(text.view());
    return;
  }
  separate();
  chars_ += text.view();
  // Readers take "-0" for a whole number, which has no sign.
  if (text.view() == "-0") chars_ += ".0";
}

void JsonText::count(std::size_t value) {
  separate();
  chars_ += std::to_string(value);
}

void JsonText::boolean(bool value) {
  separate();
  chars_ += value ? "true" : "false";
}

void JsonText::null() {
  separate();
  chars_ += "null";
}

void JsonText::json(std::string_view value) {
  separate();
  chars_ += value;
}

void JsonText::clear() {
  comma_ = false;
  chars_.clear();
}

void JsonText::begin(char bracket) {
  separate();
  chars_ += bracket;
  comma_ = false;
}

void JsonText::end(char bracket) {
  chars_ += bracket;
  comma_ = true;
}

void JsonText::separate() {
  if (comma_) chars_ += ',';
  comma_ = true;
}

void JsonText::quoted(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  if (texts_ == Texts::spelledOut) {
    text = spelled(text, TextForm::json, room_);
  } else if (!isUtf8(text)) {
    throw tool::Failure(
        fmt::format("text '{}' is no UTF-8, which JSON is", ztb::displayText(text)));
  }
  chars_ += '"';
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
      chars_ += '\\';
      chars_ += c;
    } else if (byte < ' ') {
      chars_ += "\\u00";
      chars_ += digits[byte >> 4U];
      chars_ += digits[byte & 15U];
    } else {
      chars_ += c;
    }
  }
  chars_ += '"';
}

}  // namespace formats
