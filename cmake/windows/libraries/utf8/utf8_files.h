/* Goes in front of each file of libraries that open files by the functions of C: names are UTF-8 to
 * them, as they are to all of ZTB, and not in the code page of the system. */
#ifndef ZTB_WINDOWS_UTF8_FILES_H_
#define ZTB_WINDOWS_UTF8_FILES_H_

#include <stdio.h>

/* A name as Windows has it, which the caller frees; NULL with errno where it is no UTF-8. */
wchar_t* ztb_utf8_wide(const char* text);
FILE* ztb_utf8_fopen(const char* name, const char* mode);

#undef fopen64
#define fopen ztb_utf8_fopen
#define fopen64 ztb_utf8_fopen

#endif /* ZTB_WINDOWS_UTF8_FILES_H_ */
