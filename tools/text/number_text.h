// Numbers as text and back, without loss of a single bit.
//
// Ordinary numbers are written with the fewest digits that read back to the same double. The
// special values are words: undef, na, inf, -inf, eps. Any other NaN is its bit pattern, as in
// nan:0x7ff8000000000001.
#ifndef ZTB_TOOLS_TEXT_NUMBER_TEXT_H_
#define ZTB_TOOLS_TEXT_NUMBER_TEXT_H_

#include <array>
#include <string>
#include <string_view>

namespace tool {

// A number as text, held in place.
class NumberText {
 public:
  // `digits` is the most digits of an ordinary number, 0 for as many as it takes.
  explicit NumberText(double value, int digits = 0);
  [[nodiscard]] std::string_view view() const { return {chars_.data(), size_}; }

 private:
  std::array<char, 32> chars_{};
  std::size_t size_ = 0;
};

// Whether value is no ordinary number: one of the five special values, or any NaN.
bool isSpecial(double value);

// Whether both have the same bits.
bool sameBits(double left, double right);

// Reads a number or a word for a special value, the letters in either case, with blanks or a plus
// sign in front allowed. `decimal` stands where the fraction begins; a point does so no longer when
// it is another char. A number nearer to zero than any double is zero. On failure problem says what
// is wrong with text, else it stays empty.
double parseNumber(std::string_view text, std::string& problem, char decimal = '.');

}  // namespace tool

#endif  // ZTB_TOOLS_TEXT_NUMBER_TEXT_H_
