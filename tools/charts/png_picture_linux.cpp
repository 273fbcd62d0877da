#include <fmt/format.h>

#include <cstdlib>
#include <memory>

#include "tools/charts/png_picture.h"
#include "tools/files/shared_library.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

// What is called of librsvg, and of cairo and GObject, which it has opened; types are opaque.
struct RsvgLibrary {
  void* (*open)(const char* data, std::size_t size, void** error);
  int (*size)(void* handle, double* width, double* height);
  int (*render)(void* handle, void* cairo, const double* viewport, void** error);
  void (*unref)(void* object);
  void* (*makeSurface)(int format, int width, int height);
  void* (*makeCairo)(void* surface);
  int (*write)(void* surface, const char* path);
  void (*destroyCairo)(void* cairo);
  void (*destroySurface)(void* surface);
};

template <class Function>
void find(void* library, const char* name, Function& function) {
  function = reinterpret_cast<Function>(functionOf(library, name));
  if (function == nullptr) {
    throw Failure(
        fmt::format("librsvg has no function {}: a version from 2.52 on is expected", name));
  }
}

RsvgLibrary openRsvg() {
  const char* named = std::getenv("ZTB_RSVG");
  if (named == nullptr || *named == '\0') named = "librsvg-2.so.2";
  std::string reason;
  void* const library = openLibrary(named, reason);
  if (library == nullptr) {
    throw Failure(
        fmt::format("a PNG picture is made by librsvg, which cannot be opened: {}; install "
                    "Debian's librsvg2-2, or write SVG",
                    reason));
  }
  // Names are looked for in the libraries that a library needs, too.
  RsvgLibrary rsvg{};
  find(library, "rsvg_handle_new_from_data", rsvg.open);
  find(library, "rsvg_handle_get_intrinsic_size_in_pixels", rsvg.size);
  find(library, "rsvg_handle_render_document", rsvg.render);
  find(library, "g_object_unref", rsvg.unref);
  find(library, "cairo_image_surface_create", rsvg.makeSurface);
  find(library, "cairo_create", rsvg.makeCairo);
  find(library, "cairo_surface_write_to_png", rsvg.write);
  find(library, "cairo_destroy", rsvg.destroyCairo);
  find(library, "cairo_surface_destroy", rsvg.destroySurface);
  return rsvg;
}

}  // namespace

void writePng(const std::string& svg, const std::string& path) {
  const RsvgLibrary rsvg = openRsvg();
  using Held = std::unique_ptr<void, void (*)(void*)>;
  const auto require = [&](bool isFine) {
    if (!isFine) throw Failure(withFile(path, "librsvg could not draw the picture"));
  };
  const Held picture(rsvg.open(svg.data(), svg.size(), nullptr), rsvg.unref);
  require(picture != nullptr);
  double viewport[4] = {0, 0, 0, 0};  // x, y, width, height
  require(rsvg.size(picture.get(), &viewport[2], &viewport[3]) != 0);
  viewport[2] *= 2;
  viewport[3] *= 2;
  constexpr int argb32 = 0;
  const Held surface(
      rsvg.makeSurface(argb32, static_cast<int>(viewport[2]), static_cast<int>(viewport[3])),
      rsvg.destroySurface);
  const Held cairo(rsvg.makeCairo(surface.get()), rsvg.destroyCairo);
  require(rsvg.render(picture.get(), cairo.get(), viewport, nullptr) != 0);
  if (rsvg.write(surface.get(), path.c_str()) != 0) {
    throw Failure(withFile(path, "cannot be written"));
  }
}

}  // namespace tool
