// The parts of a row's or column's name: x[seville,oslo] is element (seville, oslo) of x.
#ifndef ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_
#define ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_

#include <string>
#include <string_view>
#include <vector>

namespace lomu {

struct ElementName {
  std::string symbol;
  std::vector<std::string> labels;  // none: a scalar
};

// Takes names such as x[seville,oslo], x(seville,oslo) and x['a b',7] apart. Blanks around a label
// fall off unless it is quoted, in single or double quotes; a quote doubled inside stands for
// itself. Brackets inside a label have to be balanced. A name with an empty label, more than 20
// labels, nothing before the bracket or a bracket left open is a plain name, labels none.
ElementName parseElementName(std::string_view name);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_
