#include <charconv>
#include <cstdlib>
#include <string_view>

#include "providers/rxf/system_calls.h"

namespace rxffile {

unsigned threadsAsked() {
  const char* const set = std::getenv("ZTB_RXF_THREADS");
  const std::string_view text = set == nullptr ? std::string_view() : set;
  unsigned number = 0;
  const auto end = std::from_chars(text.data(), text.data() + text.size(), number);
  return end.ec == std::errc() && end.ptr == text.data() + text.size() ? number : 0;
}

}  // namespace rxffile
