// The C functions of ztb/formats.h that run jobs.

#include <ztb/formats.h>

#include <new>

#include "formats/job.h"

#define FORMATS_EXPORT extern "C" [[gnu::visibility("default")]]

struct ztbFormatsJobRec {
  formats::Job job;
};

FORMATS_EXPORT int ztbFormatsCreate(ztbFormatsJob** job) {
  if (job == nullptr) return 0;
  *job = new (std::nothrow) ztbFormatsJob;
  return *job == nullptr ? 0 : 1;
}

FORMATS_EXPORT void ztbFormatsFree(ztbFormatsJob** job) {
  if (job == nullptr) return;
  delete *job;
  *job = nullptr;
}

FORMATS_EXPORT int ztbFormatsOption(ztbFormatsJob* job, const char* name, const char* value) {
  return job != nullptr && job->job.option(name, value) ? 1 : 0;
}

FORMATS_EXPORT int ztbFormatsImport(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.import(path) ? 1 : 0;
}

FORMATS_EXPORT int ztbFormatsImportInto(ztbFormatsJob* job, ztbRec* database) {
  return job != nullptr && database != nullptr && job->job.importInto(database) ? 1 : 0;
}

FORMATS_EXPORT int ztbFormatsExport(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.exportFile(path) ? 1 : 0;
}

FORMATS_EXPORT int ztbFormatsExportDatabase(ztbFormatsJob* job, ztbRec* database) {
  return job != nullptr && database != nullptr && job->job.exportDatabase(database) ? 1 : 0;
}

FORMATS_EXPORT int ztbFormatsMerge(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.makeFile(&formats::SetsRun::merge, path);
}

FORMATS_EXPORT int ztbFormatsConcat(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr &&
         job->job.makeFile(&formats::SetsRun::concatenate, path);
}

FORMATS_EXPORT int ztbFormatsRename(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.makeFile(&formats::SetsRun::rename, path);
}

FORMATS_EXPORT int ztbFormatsWhere(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.makeFile(&formats::SetsRun::where, path);
}

FORMATS_EXPORT int ztbFormatsAggregate(ztbFormatsJob* job, const char* path) {
  return job != nullptr && path != nullptr && job->job.makeFile(&formats::SetsRun::aggregate, path);
}

FORMATS_EXPORT const char* ztbFormatsMessage(const ztbFormatsJob* job) {
  return job == nullptr ? "" : job->job.message().c_str();
}

FORMATS_EXPORT int ztbFormatsErrorKind(const ztbFormatsJob* job) {
  return job == nullptr ? ZTB_ERROR_NONE : job->job.kind();
}

FORMATS_EXPORT int ztbFormatsIsUsage(const ztbFormatsJob* job) {
  return job != nullptr && job->job.isUsage() ? 1 : 0;
}

FORMATS_EXPORT const char* ztbFormatsProblems(const ztbFormatsJob* job) {
  return job == nullptr ? "" : job->job.result().problems.c_str();
}

FORMATS_EXPORT const char* ztbFormatsWarnings(const ztbFormatsJob* job) {
  return job == nullptr ? "" : job->job.result().warnings.c_str();
}

FORMATS_EXPORT long long ztbFormatsCounted(const ztbFormatsJob* job, int what) {
  if (job == nullptr) return -1;
  const formats::RunResult& result = job->job.result();
  switch (what) {
    case ZTB_FORMATS_SYMBOLS:
      return static_cast<long long>(result.symbols);
    case ZTB_FORMATS_LABELS:
      return static_cast<long long>(result.labels);
    case ZTB_FORMATS_RECORDS:
      return static_cast<long long>(result.records);
    case ZTB_FORMATS_PROBLEMS:
      return static_cast<long long>(result.problemCount);
    default:
      return -1;
  }
}
