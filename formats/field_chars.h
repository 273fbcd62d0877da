// The chars that part fields and fractions, as options name them.
#ifndef ZTB_FORMATS_FIELD_CHARS_H_
#define ZTB_FORMATS_FIELD_CHARS_H_

#include <string>

namespace formats {

// The char of --separator: any one but a quote and the end of a line, or the word "tab". Throws
// UsageError for anything else.
char separatorOf(const std::string& text);
// That of --decimal: a point or a comma.
char decimalOf(const std::string& text);
// Throws UsageError where fields and fractions would be parted by the same char.
void requireDifferent(char separator, char decimal);

}  // namespace formats

#endif  // ZTB_FORMATS_FIELD_CHARS_H_
