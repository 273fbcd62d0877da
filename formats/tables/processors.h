// How many threads a piece of work is shared among.
#ifndef ZTB_FORMATS_TABLES_PROCESSORS_H_
#define ZTB_FORMATS_TABLES_PROCESSORS_H_

#include <algorithm>
#include <thread>

namespace formats {

inline unsigned processors() {
  return std::clamp(std::thread::hardware_concurrency(), 1U, 16U);
}

}  // namespace formats

#endif  // ZTB_FORMATS_TABLES_PROCESSORS_H_
