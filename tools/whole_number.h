// A check for options that take a count.
#ifndef ZTB_TOOLS_WHOLE_NUMBER_H_
#define ZTB_TOOLS_WHOLE_NUMBER_H_

#include <CLI/CLI.hpp>
#include <algorithm>
#include <string>

namespace tool {

// Lets digits through; a sign, a fraction or a word is wrong usage.
inline CLI::Validator wholeNumber() {
  return {[](std::string& text) {
            const bool digits = !text.empty() && std::ranges::all_of(text, [](char c) {
              return c >= '0' && c <= '9';
            });
            return digits ? std::string() : "'" + text + "' is no whole number of at least 0";
          },
          ""};
}

}  // namespace tool

#endif  // ZTB_TOOLS_WHOLE_NUMBER_H_
