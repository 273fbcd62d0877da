// What callers read of an error: its general text, and behind a colon what it was about.
#ifndef ZTB_PROVIDERS_RXF_MESSAGE_TEXT_H_
#define ZTB_PROVIDERS_RXF_MESSAGE_TEXT_H_

#include <array>
#include <cstddef>

#include "providers/rxf/detail_text.h"
#include "providers/rxf/error_table.h"

namespace rxffile {

// Writes the text of an error to `text`, cut to `size` bytes with the final zero; "Unknown error
// number N" for a number that is not in the table.
void composeMessage(int number, const DetailText& detail, char* text, std::size_t size);

// The same, kept in place.
class MessageText {
 public:
  MessageText() = default;
  MessageText(ErrorNumber number, const DetailText& detail) {
    composeMessage(static_cast<int>(number), detail, text_.data(), text_.size());
  }

  [[nodiscard]] const char* c_str() const { return text_.data(); }

 private:
  // Room for every general text and a whole detail.
  std::array<char, 320> text_{};
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_MESSAGE_TEXT_H_
