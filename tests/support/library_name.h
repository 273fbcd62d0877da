// How files of libraries are called on this system.
#ifndef ZTB_TESTS_SUPPORT_LIBRARY_NAME_H_
#define ZTB_TESTS_SUPPORT_LIBRARY_NAME_H_

#include <string>

// The file of the library `name`, which is a literal; libraryName() where it is not.
#ifdef _WIN32
#define ZTB_LIBRARY_NAME(name) name ".dll"
#else
#define ZTB_LIBRARY_NAME(name) "lib" name ".so"
#endif

inline std::string libraryName(const std::string& name) {
#ifdef _WIN32
  return name + ".dll";
#else
  return "lib" + name + ".so";
#endif
}

#endif  // ZTB_TESTS_SUPPORT_LIBRARY_NAME_H_
