/* Tables and whole databases in the files of other programs: which formats there are.
 *
 * The functions stand in libztbformats.so; link with it, or open it at run time. Third-party
 * libraries stand behind it and nowhere else. One that was missing when it was built drops its
 * format, which then tells the package that it needs.
 */
#ifndef ZTB_FORMATS_H_
#define ZTB_FORMATS_H_

#include <ztb/errors.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What can be done with a format. */
enum {
  ZTB_FORMAT_READS_TABLES = 1,
  ZTB_FORMAT_WRITES_TABLES = 2,
  ZTB_FORMAT_READS_DATABASES = 4,
  ZTB_FORMAT_WRITES_DATABASES = 8
};

typedef struct ztbFormatInfo {
  const char* name;    /* as the option --format takes it */
  const char* endings; /* of files, with blanks between: ".csv .csv.gz" */
  int abilities;       /* ZTB_FORMAT_ codes, added */
  const char*
      missingToRead; /* what has to be installed for reading; empty when nothing is missing */
  const char* missingToWrite; /* the same for writing */
} ztbFormatInfo;

/* The formats that this version knows, by number from 0. */
int ztbFormatCount(void);

/* Fills *info; 0 when there is no such format. Texts stay as long as the program. */
int ztbFormat(int number, ztbFormatInfo* info);

/* The number of the format that the ending of a file's name tells, in letters of either case; -1
 * when none does. */
int ztbFormatOfFile(const char* path);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_FORMATS_H_ */
