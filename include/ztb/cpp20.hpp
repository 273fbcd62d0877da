// Says what is missing where a compiler reads the C++ headers as an older language.
#ifndef ZTB_CPP20_HPP_
#define ZTB_CPP20_HPP_

#if !defined(__cplusplus) || __cplusplus < 202002L
#error \
    "The C++ headers of ztb need C++20: compile with -std=c++20, or set cxx_std_20 in CMake. \
The C headers, such as ztb/ztb.h, are usable from older C++ and from C99."
#else
// The other headers have nothing without it, so that this one error stands alone.
#define ZTB_CPP20
#endif

#endif  // ZTB_CPP20_HPP_
