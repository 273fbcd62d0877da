/* For tests alone: what they use of <dlfcn.h>, over the calls of Windows. Paths are those of the
 * build folder, which have no character outside of ASCII. */
#ifndef ZTB_TESTS_WINDOWS_DLFCN_H_
#define ZTB_TESTS_WINDOWS_DLFCN_H_

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <stdio.h>
#include <windows.h>
/* Words of the tests that this header takes as macros. */
#undef ERROR
#undef interface
#undef near
#undef far
#undef small

#define RTLD_NOW 1
#define RTLD_LOCAL 2
#define RTLD_NOLOAD 4

static inline void* dlopen(const char* path, int flags) {
  /* Either way the caller has one use more, which it gives back by dlclose. */
  if ((flags & RTLD_NOLOAD) != 0 && GetModuleHandleA(path) == NULL) return NULL;
  return (void*)LoadLibraryA(path);
}

static inline void* dlsym(void* library, const char* name) {
  return (void*)GetProcAddress((HMODULE)library, name);
}

static inline int dlclose(void* library) {
  return FreeLibrary((HMODULE)library) ? 0 : 1;
}

static inline char* dlerror(void) {
  static char text[64];
  snprintf(text, sizeof text, "error %lu of Windows", GetLastError());
  return text;
}

#endif /* ZTB_TESTS_WINDOWS_DLFCN_H_ */
