#include "bindings/python/native/errors.h"

#include <pybind11/pybind11.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "bindings/python/native/connection.h"
#include "bindings/python/native/strings.h"

namespace python {

namespace {

constexpr std::string_view missing = "No such file: ";
// What the exchange-file library finds wrong with the bytes of a file.
constexpr std::array<std::string_view, 4> damages = {"Not an RXF file", "File is cut short",
                                                     "File is damaged",
                                                     "File was changed while it was open"};

// Whether a text says this of a file: by itself, or behind what the database was about.
bool tells(std::string_view text, std::string_view what) {
  const std::size_t at = text.find(what);
  return at == 0 || (at != std::string_view::npos && text.substr(0, at).ends_with(": "));
}

// The library's own number of an error goes no further than the text that is made of it.
const char* classOf(const ztb::Error& error) {
  const std::string_view text = error.text();
  if (tells(text, missing)) {
    return "MissingFileError";
  }
  const bool damaged =
      std::ranges::any_of(damages, [&](std::string_view damage) { return tells(text, damage); });
  return damaged ? "DamagedFileError" : "Error";
}

void raise(const char* className, const ztb::Error& error) {
  const py::object type = py::module_::import("ztb.errors").attr(className);
  const py::object exception =
      type(toPython(error.what()), error.operation(), toPython(error.text()));
  PyErr_SetObject(type.ptr(), exception.ptr());
}

}  // namespace

void translateError(std::exception_ptr thrown) {
  try {
    std::rethrow_exception(std::move(thrown));
  } catch (const NotFound& error) {
    raise("NotFoundError", error);
  } catch (const ztb::Error& error) {
    raise(classOf(error), error);
  }
}

}  // namespace python
