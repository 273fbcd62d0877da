/* libxlsxwriter puts parts of a workbook together in files that it has from this function of
 * another library, which opens names in the code page of the system. */
#include <errno.h>
#include <fcntl.h>
#include <io.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <wchar.h>
#include <windows.h>

#include "utf8_files.h"
#include "xlsxwriter/third_party/tmpfileplus.h"

/* A new file in a folder that goes when it is closed, or when the process ends; NULL with errno
 * where none can be made. Nothing asks for a prefix, for the name, or to keep it. */
FILE* tmpfileplus(const char* dir, const char* prefix, char** name, int keep) {
  static volatile LONG count = 0;
  const int tries = 100;
  HANDLE handle = INVALID_HANDLE_VALUE;
  DWORD error = ERROR_FILE_EXISTS;
  FILE* file = NULL;
  int descriptor = -1;
  wchar_t* folder = ztb_utf8_wide(dir != NULL ? dir : ".");
  const size_t length = folder != NULL ? wcslen(folder) + 64 : 0;
  wchar_t* path = folder != NULL ? malloc(length * sizeof *path) : NULL;
  (void)prefix;
  (void)name;
  (void)keep;
  if (path == NULL) {
    free(folder);
    return NULL;
  }
  /* In a folder that machines share another process may have the same number. */
  for (int number = 0; error == ERROR_FILE_EXISTS && number < tries; ++number) {
    _snwprintf(path, length, L"%ls\\.ztb-part.%lx.%lx", folder, GetCurrentProcessId(),
               (unsigned long)InterlockedIncrement(&count));
    handle = CreateFileW(path, GENERIC_READ | GENERIC_WRITE | DELETE, FILE_SHARE_DELETE, NULL,
                         CREATE_NEW, FILE_ATTRIBUTE_TEMPORARY | FILE_FLAG_DELETE_ON_CLOSE, NULL);
    error = handle == INVALID_HANDLE_VALUE ? GetLastError() : ERROR_SUCCESS;
  }
  free(path);
  free(folder);
  if (handle == INVALID_HANDLE_VALUE) {
    errno = error == ERROR_PATH_NOT_FOUND ? ENOENT : EACCES;
    return NULL;
  }
  descriptor = _open_osfhandle((intptr_t)handle, _O_BINARY | _O_RDWR);
  if (descriptor < 0) {
    CloseHandle(handle);
    return NULL;
  }
  file = _fdopen(descriptor, "w+b");
  if (file == NULL) _close(descriptor);
  return file;
}
