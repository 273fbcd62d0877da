#include "utf8_files.h"

#include <errno.h>
#include <stdlib.h>
#include <windows.h>

wchar_t* ztb_utf8_wide(const char* text) {
  const int length = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, NULL, 0);
  wchar_t* wide = length > 0 ? malloc((size_t)length * sizeof *wide) : NULL;
  if (wide == NULL) {
    errno = length > 0 ? ENOMEM : EINVAL;
    return NULL;
  }
  MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, text, -1, wide, length);
  return wide;
}

FILE* ztb_utf8_fopen(const char* name, const char* mode) {
  wchar_t* wide_name = ztb_utf8_wide(name);
  wchar_t* wide_mode = ztb_utf8_wide(mode);
  FILE* file = wide_name != NULL && wide_mode != NULL ? _wfopen(wide_name, wide_mode) : NULL;
  free(wide_mode);
  free(wide_name);
  return file;
}
