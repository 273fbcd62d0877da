#include "providers/rxf/message_text.h"

#include <cstdio>

namespace rxffile {

void composeMessage(int number, const DetailText& detail, char* text, std::size_t size) {
  const char* general = generalErrorText(number);
  if (general == nullptr) {
    std::snprintf(text, size, "Unknown error number %d", number);
  } else if (detail.empty()) {
    std::snprintf(text, size, "%s", general);
  } else {
    std::snprintf(text, size, "%s: %s", general, detail.c_str());
  }
}

}  // namespace rxffile
