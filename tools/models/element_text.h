// An element of a symbol as a user types it: demand[oslo], ship['a b',7], budget.
#ifndef ZTB_TOOLS_MODELS_ELEMENT_TEXT_H_
#define ZTB_TOOLS_MODELS_ELEMENT_TEXT_H_

#include <string>
#include <string_view>
#include <vector>

namespace tool {

struct ElementText {
  std::string symbol;
  std::vector<std::string> labels;
};

// Reads an element; labels stand in [] or (), may be quoted with ' or ", and a quote doubled inside
// stands for itself. On failure `problem` says what is wrong, else it stays empty.
ElementText parseElement(std::string_view text, std::string& problem);

}  // namespace tool

#endif  // ZTB_TOOLS_MODELS_ELEMENT_TEXT_H_
