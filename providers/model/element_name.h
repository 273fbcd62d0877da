// The parts of a row's or column's name: x[seville,oslo] is element (seville, oslo) of x.
#ifndef ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_
#define ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_

#include <string>
#include <string_view>
#include <ztb/model_names.hpp>

namespace lomu {

using ElementName = ztb::ElementText;

// Takes names such as x[seville,oslo], x(seville,oslo) and x['a b',7] apart. A name that is no
// element, with an empty label, say, or a bracket left open, is a plain name, labels none.
inline ElementName parseElementName(std::string_view name) {
  std::string problem;
  ElementName element = ztb::readElement(name, problem);
  if (!problem.empty()) return {.symbol = std::string(name), .labels = {}};
  return element;
}

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_ELEMENT_NAME_H_
