// Progress lines of the loaders on standard output, by the trace level.
#ifndef ZTB_EXCHANGE_PROGRESS_H_
#define ZTB_EXCHANGE_PROGRESS_H_

#include <cstdio>

#include "core/ztb.h"

namespace ztb {

// A line at trace level 1 and above.
inline void printProgress(const char* line) {
  if (traceLevel() > 0) {
    std::puts(line);
  }
}

// A line, indented by two blanks, at trace level 2 and above.
inline void printDetail(const char* line, const char* subject = "") {
  if (traceLevel() > 1) {
    std::printf("  %s%s\n", line, subject);
  }
}

}  // namespace ztb

#endif  // ZTB_EXCHANGE_PROGRESS_H_
