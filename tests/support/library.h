// The built core, opened at run time and reached by its exported names only. Each member is the
// address of the exported name that it is called after, with the type that the public header gives
// it, so that a name that is missing or declared differently is noticed at once.
#ifndef ZTB_TESTS_SUPPORT_LIBRARY_H_
#define ZTB_TESTS_SUPPORT_LIBRARY_H_

#include <ztb/ztb.h>

#include <string>

#include "tests/support/exported_names.h"

namespace ztbtest {

struct Library {
  // clang-format off
#define ZTB_TEST_DECLARE(name) decltype(&::name) name = nullptr;
  ZTB_TEST_EXPORTED_NAMES(ZTB_TEST_DECLARE)
#undef ZTB_TEST_DECLARE
  // clang-format on

  // Address of any symbol of the built core; null when it does not export the name.
  void* address(const char* name) const;

  void* handle = nullptr;
};

// The library, opened at the first call and kept to the end of the process. Throws
// std::runtime_error with the loader's text when it cannot be opened or lacks a name.
const Library& lib();

// Any build of the library, opened in the same way; it stays open.
Library openLibrary(const std::string& path);

// Path of the file that lib() opens.
std::string libraryPath();

// Folder in which the core's peer libraries were built.
std::string peerFolder();

}  // namespace ztbtest

#endif  // ZTB_TESTS_SUPPORT_LIBRARY_H_
