// Which labels a --slice argument asks for, position by position.
#ifndef ZTB_TOOLS_FILES_SLICE_PATTERN_H_
#define ZTB_TOOLS_FILES_SLICE_PATTERN_H_

#include <string>
#include <string_view>
#include <vector>

namespace tool {

// One position of a slice. In a plain one each "*" stands for any run of chars; a quoted one is
// taken as it stands. The case of ASCII letters does not matter.
struct PositionPattern {
  std::string text;
  bool quoted = false;

  // Whether every label matches.
  [[nodiscard]] bool any() const;
  // Whether only the label text itself matches.
  [[nodiscard]] bool exact() const;
  [[nodiscard]] bool matches(std::string_view label) const;
};

// Reads patterns separated by commas, such as  wheat*,*  or  "Ham, smoked",*  (a quote inside
// quotes is written twice). Blanks around a plain pattern do not count. Throws UsageError for an
// empty plain pattern, a quote that is not closed, or a char behind a closing quote.
std::vector<PositionPattern> parseSlice(std::string_view slice);

}  // namespace tool

#endif  // ZTB_TOOLS_FILES_SLICE_PATTERN_H_
