// A text of at most 255 bytes that is composed without allocating, for use on error paths.
#ifndef ZTB_PROVIDERS_RXF_DETAIL_TEXT_H_
#define ZTB_PROVIDERS_RXF_DETAIL_TEXT_H_

#include <array>

namespace rxffile {

class DetailText {
 public:
  DetailText() = default;

  // Formats as printf does and cuts what goes beyond 255 bytes.
  [[gnu::format(printf, 2, 3)]] explicit DetailText(const char* format, ...);

  [[nodiscard]] const char* c_str() const { return text_.data(); }
  [[nodiscard]] bool empty() const { return text_[0] == '\0'; }

 private:
  std::array<char, 256> text_{};
};

}  // namespace rxffile

#endif  // ZTB_PROVIDERS_RXF_DETAIL_TEXT_H_
