// The universe of labels of one database: labels to numbers and back.
//
// Entry 0 is a reserved blank; the first label gets number 1. Labels are checked and normalised on
// every way in: trailing blanks are cut, at most 63 chars stay, ASCII case is folded when labels
// are compared, and the spelling first stored stays. Labels are never removed or changed.
#ifndef ZTB_CORE_UEL_LIST_H_
#define ZTB_CORE_UEL_LIST_H_

#include <cstddef>
#include <cstdint>

#include "core/string_hash_list.h"

namespace ztb::uellist {

inline constexpr std::size_t maxLabelLength = 63;

class IUELList {
 public:
  // Number of a label, -1 if it is not in the list. False, and `*number` not written, if the label
  // is refused.
  [[nodiscard]] virtual bool find(const char* label, int* number) = 0;
  // Number of a label, which is added if it is new. False, and `*number` not written, if the label
  // is refused. A label of blanks is the reserved entry 0.
  [[nodiscard]] virtual bool merge(const char* label, int* number) = 0;
  // Label of a number. REQUIRES: number is from 0 to size() - 1.
  [[nodiscard]] virtual const char* at(int number) const = 0;
  // Entries, the reserved one included.
  [[nodiscard]] virtual int size() const = 0;

 protected:
  ~IUELList() = default;
};

class UELList final : public IUELList {
 public:
  // `message`, `messageSize` chars, receives the text of a refusal, where there is one:
  // "Label with single and double quote not allowed >%s<" or
  // "Label exceeds maximum size of %d: >%s<". A null label and one with a control char are refused
  // without a text. `kind`, unless null, becomes ZTB_ERROR_REFUSED with each refusal.
  UELList(char* message, std::size_t messageSize, int* kind = nullptr);

  [[nodiscard]] bool find(const char* label, int* number) override;
  [[nodiscard]] bool merge(const char* label, int* number) override;
  [[nodiscard]] const char* at(int number) const override { return labels_.textByNumber(number); }
  [[nodiscard]] int size() const override { return labels_.size(); }

  // Label of any number that a record may hold. Throws std::logic_error when the list has no such
  // entry: records stored by unchecked numbers can hold any.
  [[nodiscard]] const char* labelOf(int number) const;

  // Stores all entries of another list in their order, without checking them.
  void assign(const UELList& other);

 private:
  // A label as it is stored: the caller's own chars, or a copy in `room` where blanks were cut.
  struct Normalised {
    const char* text;
    std::size_t length;
    std::uint32_t hash;
    char room[maxLabelLength + 1];
  };

  bool normalise(const char* label, Normalised& result);
  // False, for a refusal, whose text is there already.
  bool refuse();

  rxf::collections::strhash::TXStrHashList<int> labels_;
  char* message_;
  std::size_t messageSize_;
  int* kind_;
};

}  // namespace ztb::uellist

#endif  // ZTB_CORE_UEL_LIST_H_
