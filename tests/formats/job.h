// Jobs of ztb/formats.h, as a program in C runs them.
#ifndef ZTB_TESTS_FORMATS_JOB_H_
#define ZTB_TESTS_FORMATS_JOB_H_

#include <gtest/gtest.h>
#include <ztb/formats.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/support/temp_folder.h"

namespace formatstest {

using Options = std::vector<std::pair<std::string, std::string>>;

class Job {
 public:
  explicit Job(const Options& options = {}) {
    EXPECT_EQ(ztbFormatsCreate(&job_), 1);
    for (const auto& [name, value] : options) {
      good_ = good_ && ztbFormatsOption(job_, name.c_str(), value.c_str()) == 1;
    }
  }
  Job(const Job&) = delete;
  Job& operator=(const Job&) = delete;
  ~Job() { ztbFormatsFree(&job_); }

  bool import(const std::string& path) {
    return good_ && ztbFormatsImport(job_, path.c_str()) == 1;
  }
  bool importInto(ztbRec* database) { return good_ && ztbFormatsImportInto(job_, database) == 1; }
  bool exportFile(const std::string& path) {
    return good_ && ztbFormatsExport(job_, path.c_str()) == 1;
  }
  bool exportDatabase(ztbRec* database) {
    return good_ && ztbFormatsExportDatabase(job_, database) == 1;
  }

  // Problems and message, without the folder in front of the names of files.
  std::string errors(const ztbtest::TempFolder& folder) const {
    return without(folder, std::string(ztbFormatsProblems(job_)) + ztbFormatsMessage(job_));
  }
  std::string warnings(const ztbtest::TempFolder& folder) const {
    return without(folder, ztbFormatsWarnings(job_));
  }
  int kind() const { return ztbFormatsErrorKind(job_); }
  bool isUsage() const { return ztbFormatsIsUsage(job_) == 1; }
  long long counted(int what) const { return ztbFormatsCounted(job_, what); }

 private:
  static std::string without(const ztbtest::TempFolder& folder, std::string text) {
    const std::string prefix = folder.file("");
    for (std::size_t at = 0; (at = text.find(prefix)) != std::string::npos;) {
      text.erase(at, prefix.size());
    }
    return text;
  }

  ztbFormatsJob* job_ = nullptr;
  bool good_ = true;
};

}  // namespace formatstest

#endif  // ZTB_TESTS_FORMATS_JOB_H_
