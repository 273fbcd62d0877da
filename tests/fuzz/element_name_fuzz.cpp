// Names of rows and columns of any bytes: a symbol of its own, and labels that are not empty.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "providers/model/element_name.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view name(reinterpret_cast<const char*>(data), size);
  const auto element = lomu::parseElementName(name);
  if (element.labels.size() > 20) std::abort();
  if (element.labels.empty() && element.symbol != name) std::abort();
  if (!name.starts_with(element.symbol)) std::abort();
  for (const auto& label : element.labels) {
    if (label.empty()) std::abort();
  }
  return 0;
}
