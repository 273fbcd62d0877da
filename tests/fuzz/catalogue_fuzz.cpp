// Solver catalogues of any bytes: rows that a solver can be found by, or refused with a line.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "providers/model/catalogue.h"
#include "providers/model/model_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const auto catalogue = lomu::Catalogue::parse(text, "f", "no folder/");
    for (const auto& row : catalogue.rows()) {
      if (row.name.empty() || row.kinds.empty() || row.library.empty()) std::abort();
    }
  } catch (const lomu::ModelError& error) {
    if (!std::string_view(error.what()).starts_with("f:")) std::abort();
  }
  return 0;
}
