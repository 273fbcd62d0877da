// A job of ztb/formats.h: options in words, a run, and what it left.
#ifndef ZTB_FORMATS_JOB_H_
#define ZTB_FORMATS_JOB_H_

#include <ztb/errors.h>

#include <functional>
#include <string>

#include "formats/export_run.h"
#include "formats/import_run.h"
#include "formats/sets/sets_run.h"

namespace formats {

class Job {
 public:
  // Each gives false when it failed; message() and kind() tell why then, and no exception passes.
  bool option(const char* name, const char* value) noexcept;
  bool import(const char* path) noexcept;
  bool importInto(ztbRec* database) noexcept;
  bool exportFile(const char* path) noexcept;
  bool exportDatabase(ztbRec* database) noexcept;
  // One of the functions of SetsRun.
  bool makeFile(void (SetsRun::*make)(const std::string&, bool, RunResult&) const,
                const char* path) noexcept;

  [[nodiscard]] const std::string& message() const { return message_; }
  [[nodiscard]] int kind() const { return kind_; }
  // Whether it failed because the options make no sense.
  [[nodiscard]] bool isUsage() const { return usage_; }
  [[nodiscard]] const RunResult& result() const { return result_; }

 private:
  // run(), and afterwards all texts name files as their user knows them.
  bool attempt(const std::function<void()>& body) noexcept;
  bool run(const std::function<void()>& body) noexcept;

  ImportRun import_;
  ExportRun export_;
  SetsRun sets_;
  bool shows_ = false;
  RunResult result_;
  std::string message_;
  int kind_ = ZTB_ERROR_NONE;
  bool usage_ = false;
};

}  // namespace formats

#endif  // ZTB_FORMATS_JOB_H_
