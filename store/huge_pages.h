// Memory in the system's huge pages, where it has them and they are to be asked for: filling such
// memory for the first time takes a fraction of the time, and so does giving it back.
#ifndef ZTB_STORE_HUGE_PAGES_H_
#define ZTB_STORE_HUGE_PAGES_H_

#include <cstddef>

namespace ztb::dmap {

inline constexpr std::size_t hugePage = std::size_t{1} << 21;

// Asks for huge pages for what lies between the first and the last boundary of one in
// [from, from + size), if anything does. Whether they are given shows in nothing but time.
void askForHugePages(void* from, std::size_t size) noexcept;

}  // namespace ztb::dmap

#endif  // ZTB_STORE_HUGE_PAGES_H_
