#include "formats/tables/csv_text.h"

#include <algorithm>
#include <ztb/display_text.hpp>

#include "tools/text/number_text.h"

namespace formats {

namespace {

// All that stands in numbers and in the words of special values.
constexpr std::string_view charsOfNumbers = "0123456789.+-:abcdefinpsuxE";

}  // namespace

CsvText::CsvText(CsvForm form, bool spellsOut)
    : form_(form),
      spellsOut_(spellsOut),
      plainNumbers_(form.decimal == '.' &&
                    charsOfNumbers.find(form.separator) == std::string::npos) {}

bool CsvText::needsQuotes(std::string_view text) const {
  const auto parts = [this](char c) {
    return c == form_.separator || c == '"' || c == '\r' || c == '\n';
  };
  return std::ranges::any_of(text, parts) || text.front() == ' ' || text.back() == ' ';
}

void CsvText::quoted(std::string_view text) {
  chars_ += '"';
  for (const char c : text) {
    if (c == '"') chars_ += '"';
    chars_ += c;
  }
  chars_ += '"';
}

void CsvText::text(std::string_view text) {
  std::string shown;
  if (spellsOut_ && !ztb::isDisplayable(text)) {
    shown = ztb::displayText(text);
    text = shown;
  }
  separate();
  if (!text.empty() && needsQuotes(text)) {
    quoted(text);
  } else {
    chars_ += text;
  }
}

void CsvText::label(std::string_view label) {
  if (label.empty()) {
    field("\"\"");
  } else {
    text(label);
  }
}

void CsvText::number(double value) {
  const tool::NumberText number(value);
  if (plainNumbers_) return field(number.view());
  std::string shown(number.view());
  std::ranges::replace(shown, '.', form_.decimal);
  text(shown);
}

}  // namespace formats
