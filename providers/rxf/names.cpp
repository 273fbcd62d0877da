#include "providers/rxf/names.h"

#include <algorithm>
#include <ztb/case_folding.hpp>

#include "providers/rxf/limits.h"

namespace rxffile {

namespace {

constexpr bool isNamePart(char c) {
  return ztb::isAsciiLetter(c) || (c >= '0' && c <= '9') || c == '_';
}

}  // namespace

const char* nameRefusal(std::string_view name) {
  if (name.empty()) return "it is empty";
  if (name.size() > kMaxNameLength) return "it has more than 63 characters";
  if (!ztb::isAsciiLetter(name.front())) return "it does not begin with a letter";
  if (!std::all_of(name.begin(), name.end(), isNamePart)) {
    return "it holds something else than letters, digits and underscores";
  }
  return nullptr;
}

std::string_view trimmedLabel(std::string_view label) {
  while (!label.empty() && label.back() == ' ') label.remove_suffix(1);
  return label;
}

const char* labelRefusal(std::string_view label) {
  const std::string_view trimmed = trimmedLabel(label);
  if (trimmed.empty() && !label.empty()) return "it is blank";
  if (trimmed.size() > kMaxLabelLength) return "it has more than 63 bytes";
  bool single = false;
  bool twofold = false;
  bool control = false;
  for (const char c : trimmed) {
    control |= static_cast<unsigned char>(c) < 32;
    single |= c == '\'';
    twofold |= c == '"';
  }
  if (control) return "it holds a control character";
  if (single && twofold) return "it holds both kinds of quote";
  return nullptr;
}

}  // namespace rxffile
