#include "providers/rxf/detail_text.h"

#include <cstdarg>
#include <cstdio>

namespace rxffile {

DetailText::DetailText(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text_.data(), text_.size(), format, arguments);
  va_end(arguments);
}

}  // namespace rxffile
