#include "tools/check_command.h"

#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "tools/data_file.h"
#include "tools/domain_check.h"
#include "tools/failure.h"
#include "tools/output.h"
#include "tools/progress.h"
#include "tools/words.h"

namespace tool {

namespace {

// Reads every symbol through the exchange-file library and through the database.
class FileCheck {
 public:
  explicit FileCheck(const std::string& path) : file_(path) {}

  void run(Progress& progress) {
    std::size_t position = 0;
    for (const RxfSymbol& symbol : file_.file().symbols()) {
      progress.step(fmt::format("checking {}", symbol.name));
      checkSymbol(symbol, static_cast<int>(position++));
    }
    const int symbols = file_.database().symbolCount();
    if (static_cast<std::size_t>(symbols) != position) {
      problem("", fmt::format("the database has {}, the file {}",
                              counted(static_cast<std::size_t>(symbols), "symbol"), position));
    }
    symbols_ = position;
  }

  [[nodiscard]] const std::vector<std::string>& problems() const { return problems_; }
  [[nodiscard]] std::string summary() const {
    return fmt::format("{}: fine: {}, {}, {}\n", file_.path(), counted(symbols_, "symbol"),
                       counted(static_cast<std::size_t>(file_.labelCount()), "label"),
                       counted(records_, "record"));
  }

 private:
  void checkSymbol(const RxfSymbol& symbol, int position) {
    const std::vector<std::string> errors = file_.file().readRecords(symbol);
    for (const std::string& error : errors) {
      problem(symbol.name, error);
    }
    records_ += static_cast<std::size_t>(symbol.recordCount);
    if (errors.empty() && symbol.type != ZTB_ALIAS) {
      checkDatabase(symbol, position);
    }
  }

  void checkDatabase(const RxfSymbol& symbol, int position) {
    try {
      ztb::Symbol mirrored = file_.database().symbolAt(position);
      const int count = mirrored.recordCount();
      if (count != symbol.recordCount) {
        problem(symbol.name, fmt::format("{} reach the database, expected {}",
                                         counted(static_cast<std::size_t>(count), "record"),
                                         symbol.recordCount));
      }
      mirrored.clear();
    } catch (const ztb::Error& error) {
      problem(symbol.name, error.what());
    }
  }

  void problem(const std::string& symbol, const std::string& text) {
    problems_.push_back(
        withFile(file_.path(), symbol.empty() ? text : fmt::format("{}: {}", symbol, text)));
  }

  DataFile file_;
  std::vector<std::string> problems_;
  std::size_t symbols_ = 0;
  std::size_t records_ = 0;
};

struct CheckOptions {
  std::string path;
  bool domains = false;
  bool json = false;
};

// What the check of an intact file prints; throws Failure otherwise.
std::string checkFile(const std::string& path, std::optional<Progress>& progress) {
  progress->step("opening " + path);
  FileCheck check(path);
  check.run(*progress);
  if (check.problems().empty()) {
    return check.summary();
  }
  progress.reset();
  for (const std::string& problem : check.problems()) {
    printError(problem);
  }
  throw Failure(fmt::format("{}: {} found", path, counted(check.problems().size(), "problem")));
}

void runDomainCheck(const CheckOptions& options, std::optional<Progress>& progress) {
  const DataFile file(options.path);
  const DomainReport report = checkDomains(file, *progress);
  progress.reset();
  if (options.json) {
    printDomainReportJson(file, report);
  } else {
    printDomainReport(file, report);
  }
  if (!report.symbols.empty()) {
    flushOutput();
    throw Failure(fmt::format("{}: {} outside their domains, in {}", options.path,
                              counted(report.recordCount(), "record"),
                              counted(report.symbols.size(), "symbol")));
  }
}

void runCheck(const CheckOptions& options) {
  if (options.json && !options.domains) {
    throw UsageError("--json: goes with --domains");
  }
  std::optional<Progress> progress(std::in_place);
  const std::string summary = checkFile(options.path, progress);
  if (options.domains) {
    runDomainCheck(options, progress);
  }
  progress.reset();
  if (!options.json) {
    print(summary);
  }
}

}  // namespace

void addCheckCommand(CLI::App& app) {
  CLI::App* command = app.add_subcommand("check", "Check that a file is intact");
  auto options = std::make_shared<CheckOptions>();
  command->add_option("FILE", options->path, "RXF file")->required();
  command->add_flag("--domains", options->domains,
                    "Also list every record with a label outside its domain");
  command->add_flag("--json", options->json, "Print these records as JSON");
  command->footer(
      "Opens everything, reads every record and verifies all checksums. What is wrong is told "
      "with\n"
      "the symbol and the place in the file, and the exit code is 1 then. So it is when --domains\n"
      "finds a record; the column \"outside\" has the positions that break, with their domains.\n\n"
      "Examples:\n"
      "  ztb check diet.rxf\n"
      "  ztb check diet.rxf --domains --json");
  command->callback([options] { runCheck(*options); });
}

}  // namespace tool
