// Runs over exchange files as sets of data: from their options, in words, to a new exchange file.
#ifndef ZTB_FORMATS_SETS_SETS_RUN_H_
#define ZTB_FORMATS_SETS_SETS_RUN_H_

#include <string>

#include "formats/sets/set_options.h"

namespace formats {

class SetsRun {
 public:
  // Takes an option by its name without hyphens; the first one is a "file". False for a name that
  // is none; throws UsageError for a bad value.
  bool option(const std::string& name, const std::string& value);

  [[nodiscard]] bool hasFiles() const { return !options_.files.empty(); }
  // The file that was given last; empty for none.
  [[nodiscard]] std::string lastFile() const {
    return hasFiles() ? options_.files.back() : std::string();
  }

  // Each makes an exchange file, which may be one of those that it is made of. Throws UsageError,
  // Failure or Conflict, and nothing is written then; `result` has the problems.
  void merge(const std::string& path, bool shows, RunResult& result) const;
  void concatenate(const std::string& path, bool shows, RunResult& result) const;
  void rename(const std::string& path, bool shows, RunResult& result) const;
  void where(const std::string& path, bool shows, RunResult& result) const;
  void aggregate(const std::string& path, bool shows, RunResult& result) const;

 private:
  void requireOneFile() const;
  void run(void (*make)(const SetRun& run), const std::string& path, bool shows,
           RunResult& result) const;

  SetOptions options_;
};

}  // namespace formats

#endif  // ZTB_FORMATS_SETS_SETS_RUN_H_
