#include "formats/sets/open_files.h"

#include <fmt/format.h>

#include <cerrno>
#include <optional>

#include "formats/file_name.h"
#include "formats/import_run.h"
#include "formats/tables/problem_list.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace formats {

std::vector<std::unique_ptr<tool::ExchangeFile>> openFiles(const SetRun& run) {
  std::vector<std::unique_ptr<tool::ExchangeFile>> files;
  ProblemList problems(run.options.maxErrors);
  for (const std::string& path : run.options.files) {
    problems.attempt([&] {
      if (path != "-" && !isThere(path)) {
        throw tool::systemFailure(path, "cannot be read", ENOENT);
      }
      run.progress.step("opening " + path);
      files.push_back(std::make_unique<tool::ExchangeFile>(path));
    });
  }
  if (const std::optional<tool::Failure> failure = problems.onlyFailure()) throw *failure;
  run.result.problems = problems.report();
  run.result.problemCount = problems.count();
  if (!problems.empty()) {
    throw tool::Failure(fmt::format("{}: not written: {} cannot be read", run.shownName,
                                    tool::counted(problems.count(), "file")),
                        problems.kind());
  }
  return files;
}

}  // namespace formats
