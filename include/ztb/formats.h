/* Tables and whole databases in the files of other programs: which formats there are, and jobs that
 * bring data in and out, or make exchange files of others.
 *
 *   ztbFormatsJob* job;
 *   if (!ztbFormatsCreate(&job)) return 1;
 *   if (!ztbFormatsOption(job, "from", "plan.xlsx#Prices") ||
 *       !ztbFormatsOption(job, "parameter", "price(food) = cents") ||
 *       !ztbFormatsImport(job, "plan.rxf")) {
 *     printf("%s%s\n", ztbFormatsProblems(job), ztbFormatsMessage(job));
 *   }
 *   ztbFormatsFree(&job);
 *
 * The functions stand in libztbformats.so; link with it, or open it at run time. Third-party
 * libraries stand behind it and nowhere else. One that was missing when it was built drops its
 * format, which then tells the package that it needs.
 */
#ifndef ZTB_FORMATS_H_
#define ZTB_FORMATS_H_

#include <ztb/errors.h>
#include <ztb/ztb.h>

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

/* A job: options, then one run. Used by one thread at a time; several may run at once. */
typedef struct ztbFormatsJobRec ztbFormatsJob;

/* 1, or 0 without memory. */
int ztbFormatsCreate(ztbFormatsJob** job);
/* Ends the job and sets *job to null. */
void ztbFormatsFree(ztbFormatsJob** job);

/* Sets an option of ztb import or ztb export under its name there, without hyphens; the reference
 * of the command tells them all. Options that belong to a source follow its "from", and a symbol of
 * an export is the option "symbol". The value of one that has none is left alone. Moreover
 * "progress" has a long run tell on a terminal what it does, and "chunk-bytes" is how much of a CSV
 * file, 4 MiB, one processor reads at once: a file of less than twice as much is read by one. 0 for
 * an option that there is not, or a value that it does not take. */
int ztbFormatsOption(ztbFormatsJob* job, const char* name, const char* value);

/* Makes an exchange file from the sources. With problems in the input nothing is written. */
int ztbFormatsImport(ztbFormatsJob* job, const char* path);

/* Adds the symbols to a database, which has none of their names; its sets may be their domains.
 * With problems in the input nothing is added, and of labels none either. The database is not used
 * meanwhile. */
int ztbFormatsImportInto(ztbFormatsJob* job, ztbRec* database);

/* Writes from an exchange file ("-" is standard input), or from a database, which is written to a
 * temporary exchange file first. */
int ztbFormatsExport(ztbFormatsJob* job, const char* path);
int ztbFormatsExportDatabase(ztbFormatsJob* job, ztbRec* database);

/* Exchange files as sets of data: each makes one of others, block by block, in constant memory
 * however many records there are. The options are the files, each as "file", first, then those of
 * the command of the same name; the symbol of ztb aggregate is "symbol", and each OLD = NEW of ztb
 * rename is "rename". The new file may be one of those that it is made of, and without success
 * stays as it was. */
int ztbFormatsMerge(ztbFormatsJob* job, const char* path);
int ztbFormatsConcat(ztbFormatsJob* job, const char* path);
int ztbFormatsRename(ztbFormatsJob* job, const char* path);
int ztbFormatsWhere(ztbFormatsJob* job, const char* path);
int ztbFormatsAggregate(ztbFormatsJob* job, const char* path);

/* Each of the functions above that fails gives 0. Then these tell the reason, its kind, a
 * ZTB_ERROR_ code, and whether the options made no sense. Texts stay until the next call for the
 * job. */
const char* ztbFormatsMessage(const ztbFormatsJob* job);
int ztbFormatsErrorKind(const ztbFormatsJob* job);
int ztbFormatsIsUsage(const ztbFormatsJob* job);

/* What is wrong with the input, a line for each problem with its place, and what is worth a word
 * although it is no problem; empty, or each line with its end. */
const char* ztbFormatsProblems(const ztbFormatsJob* job);
const char* ztbFormatsWarnings(const ztbFormatsJob* job);

/* What the run counted. */
enum {
  ZTB_FORMATS_SYMBOLS = 0,
  ZTB_FORMATS_LABELS = 1,
  ZTB_FORMATS_RECORDS = 2,
  ZTB_FORMATS_PROBLEMS = 3
};
long long ztbFormatsCounted(const ztbFormatsJob* job, int what);

#ifdef __cplusplus
}
#endif

#endif /* ZTB_FORMATS_H_ */
