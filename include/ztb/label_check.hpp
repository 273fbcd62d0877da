// Which labels the wrappers let into a database, looked at before any of them enters it.
//
// The library takes a label of blanks alone for no label at all, takes an empty one like any other,
// and keeps the labels before one that it refuses. A wrapper refuses blank labels, and a record
// brings no empty label into being, so that none comes by mistake; one that a file brought or that
// was added by itself is used like any other.
#ifndef ZTB_LABEL_CHECK_HPP_
#define ZTB_LABEL_CHECK_HPP_

#include <ztb/ztb.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <span>
#include <ztb/cpp20.hpp>
#include <ztb/error.hpp>

#ifdef ZTB_CPP20

namespace ztb::inline client::detail {

// The labels of a record or slice: one for each position.
using KeyLabels = std::span<const char* const>;
// The label numbers of a record; as many as its symbol has positions are in use.
using KeyNumbers = std::array<int, ZTB_MAX_DIMENSION>;

// The number of a label that the database does not have yet.
inline constexpr int newLabel = -1;

// Whether a label is blanks alone: of these the library makes the number 0, which no label has.
inline bool isBlank(const char* label) noexcept {
  if (*label != ' ') {
    return false;
  }
  while (*label == ' ') {
    ++label;
  }
  return *label == '\0';
}

// Whether the library surely takes a label; one that only may be taken gives false.
inline bool isPlain(const char* label) noexcept {
  if (label == nullptr || *label == ' ' || *label == '\0') {
    return false;
  }
  const char* at = label;
  for (; *at != '\0'; ++at) {
    if (static_cast<unsigned char>(*at) < ' ' || *at == '"' || *at == '\'') {
      return false;
    }
  }
  return at - label <= ZTB_MAX_NAME_LENGTH;
}

// Number of a label that a record may get, newLabel if it would be a new one. Throws for any other
// label, with nothing added.
inline int requireLabel(ztbRec* database, const char* operation, const char* label) {
  int number = 0;
  if (c__ztbfinduel(database, label, &number) == 0) {
    failLabel(database, operation, label);
  }
  if (number == 0) {
    throw Error(operation, "Label is blank");
  }
  if (number == newLabel && *label == '\0') {
    throw Error(operation, "Label is empty");
  }
  return number;
}

// Throws unless a record may get each of these labels, with nothing added.
inline void requireLabels(ztbRec* database, const char* operation, KeyLabels labels) {
  for (const char* label : labels) {
    if (!isPlain(label)) [[unlikely]] {
      requireLabel(database, operation, label);
    }
  }
}

// Number of a label, the empty one too, added if it is new. Throws for a label that is refused,
// with nothing added.
inline int mergeLabel(ztbRec* database, const char* operation, const char* label) {
  if (!isPlain(label) && (label == nullptr || *label != '\0')) [[unlikely]] {
    requireLabel(database, operation, label);
  }
  int number = 0;
  require(c__ztbmergeuel(database, label, &number), database, operation);
  return number;
}

// Number of a label, newLabel if the database does not have it; a blank one is never there. Throws
// for a label that no database can hold.
inline int findLabel(ztbRec* database, const char* operation, const char* label) {
  int number = 0;
  if (c__ztbfinduel(database, label, &number) == 0) {
    failLabel(database, operation, label);
  }
  return number == 0 ? newLabel : number;
}

// Whether no record can have these labels because one of them is blank, which a store may take for
// any label.
inline bool anyBlank(KeyLabels labels) noexcept {
  return std::ranges::any_of(labels,
                             [](const char* label) { return label != nullptr && isBlank(label); });
}

// Returns if the lookup that just failed says only that there is no such thing; else throws what it
// says.
inline void requireNotFound(ztbRec* database, const char* operation, KeyLabels labels) {
  for (const char* label : labels) {
    findLabel(database, operation, label);
  }
  if (!nothingFound(database)) {
    fail(database, operation);
  }
}

}  // namespace ztb::inline client::detail

#endif  // ZTB_CPP20

#endif  // ZTB_LABEL_CHECK_HPP_
