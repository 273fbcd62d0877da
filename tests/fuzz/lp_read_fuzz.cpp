// LP files of any bytes: read or refused with a place in the file.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "providers/model/lp_reader.h"
#include "providers/model/model_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto model = lomu::readLp("f", {reinterpret_cast<const char*>(data), size});
    for (const auto& term : model.terms) {
      if (term.row < 0 || static_cast<std::size_t>(term.row) >= model.rows.size()) std::abort();
      if (term.column < 0 || static_cast<std::size_t>(term.column) >= model.columns.size()) {
        std::abort();
      }
    }
  } catch (const lomu::ModelError& error) {
    if (!std::string_view(error.what()).starts_with("f:")) std::abort();
  }
  return 0;
}
