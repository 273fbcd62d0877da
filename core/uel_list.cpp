#include "core/uel_list.h"

#include <ztb/errors.h>

#include <cctype>
#include <cstdio>
#include <cstring>
#include <stdexcept>
#include <string>

namespace ztb::uellist {

UELList::UELList(char* message, std::size_t messageSize, int* kind)
    : message_(message), messageSize_(messageSize), kind_(kind) {
  labels_.store(" ", 1, 0);
}

bool UELList::refuse() {
  if (kind_ != nullptr) {
    *kind_ = ZTB_ERROR_REFUSED;
  }
  return false;
}

bool UELList::normalise(const char* label, Normalised& result) {
  if (label == nullptr) {
    return refuse();
  }
  // What a label cannot hold, and its hash, in one pass.
  rxf::collections::strhash::Hash hash;
  char quote = '\0';
  const char* end = label;
  for (; *end != '\0'; ++end) {
    if (static_cast<unsigned char>(*end) < 32) {
      return refuse();
    }
    if (*end == '\'' || *end == '"') {
      if (quote != '\0' && quote != *end) {
        std::snprintf(message_, messageSize_, "Label with single and double quote not allowed >%s<",
                      label);
        return refuse();
      }
      quote = *end;
    }
    hash.add(*end);
  }
  const char* last = end;
  while (last != label && std::isspace(static_cast<unsigned char>(last[-1])) != 0) {
    --last;
  }
  auto length = static_cast<std::size_t>(last - label);
  if (length > maxLabelLength) {
    std::snprintf(message_, messageSize_, "Label exceeds maximum size of %d: >%s<",
                  static_cast<int>(maxLabelLength), label);
    return refuse();
  }
  if (length == 0 && end != label) {
    length = 1;
  }
  result.length = length;
  result.text = label;
  result.hash = hash.value();
  if (label[length] != '\0') {
    std::memcpy(result.room, label, length);
    result.room[length] = '\0';
    result.text = result.room;
    result.hash = rxf::collections::strhash::hashOf(result.room);
  }
  return true;
}

bool UELList::find(const char* label, int* number) {
  Normalised normalised;
  if (!normalise(label, normalised)) {
    return false;
  }
  *number = labels_.indexOf(normalised.text, normalised.length, normalised.hash);
  return true;
}

bool UELList::merge(const char* label, int* number) {
  Normalised normalised;
  if (!normalise(label, normalised)) {
    return false;
  }
  *number = labels_.store(normalised.text, normalised.length, normalised.hash, 0);
  return true;
}

const char* UELList::labelOf(int number) const {
  if (number < 0 || number >= size()) {
    throw std::logic_error("label number " + std::to_string(number) + " is outside [0," +
                           std::to_string(size() - 1) + "]");
  }
  return at(number);
}

void UELList::assign(const UELList& other) {
  if (this == &other) {
    return;
  }
  for (int number = 0; number < other.size(); ++number) {
    const char* label = other.at(number);
    labels_.store(label, std::strlen(label), 0);
  }
}

}  // namespace ztb::uellist
