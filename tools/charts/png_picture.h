// PNG pictures, by a library that is opened when one is made.
#ifndef ZTB_TOOLS_CHARTS_PNG_PICTURE_H_
#define ZTB_TOOLS_CHARTS_PNG_PICTURE_H_

#include <string>

namespace tool {

// Draws an SVG document into the file `path`, twice as wide and high as it says. Throws Failure
// that names the package which is missing where librsvg is not there; the environment variable
// ZTB_RSVG names another one.
void writePng(const std::string& svg, const std::string& path);

}  // namespace tool

#endif  // ZTB_TOOLS_CHARTS_PNG_PICTURE_H_
