// LP files of any bytes: read or refused with a place in the file.

#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "providers/model/lp_reader.h"
#include "providers/model/model_error.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  try {
    const auto model = lomu::readLp("f", {reinterpret_cast<const char*>(data), size});
    const auto require = [](int number, const auto& all) {
      if (number < 0 || static_cast<std::size_t>(number) >= all.size()) std::abort();
    };
    for (const auto& term : model.terms) {
      require(term.row, model.rows);
      require(term.column, model.columns);
    }
    for (const auto& product : model.products) {
      require(product.row, model.rows);
      require(product.column1, model.columns);
      require(product.column2, model.columns);
    }
    for (const auto& set : model.sets) {
      for (const auto& member : set.members) require(member.column, model.columns);
    }
  } catch (const lomu::ModelError& error) {
    if (!std::string_view(error.what()).starts_with("f:")) std::abort();
  }
  return 0;
}
