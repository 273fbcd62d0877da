#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/domain_check.h"
#include "tools/files/exchange_file.h"
#include "tools/files/standard_streams.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/words.h"

namespace tool {

namespace {

// What is wrong with the records of a file, in the order of its symbols.
std::vector<std::string> findProblems(const ExchangeFile& file, Progress& progress) {
  std::vector<std::string> problems;
  for (const FileSymbol& symbol : file.symbols()) {
    if (symbol.isAlias()) {
      continue;
    }
    progress.step("checking " + symbol.name);
    ztb::RxfRecords records(file.file(), file.file().symbol(symbol.number));
    std::size_t checked = 0;
    for (bool more = true; more;) {
      try {
        more = records.next();
        checked += records.size();
        progress.count(checked);
      } catch (const ztb::Error& error) {
        problems.push_back(withFile(file.path(), fmt::format("{}: {}", symbol.name, error.what())));
        more = records.skipDamage();
      }
    }
  }
  return problems;
}

std::string summary(const ExchangeFile& file) {
  std::size_t records = 0;
  for (const FileSymbol& symbol : file.symbols()) {
    records += symbol.isAlias() ? 0 : symbol.recordCount;
  }
  return fmt::format("{}: fine: {}, {}, {}", ztb::displayText(file.path()),
                     counted(file.symbols().size(), "symbol"),
                     counted(static_cast<std::size_t>(file.labelCount()), "label"),
                     counted(records, "record"));
}

struct CheckOptions {
  std::string path;
  bool domains = false;
  bool json = false;
  TableOptions table;
};

// Tells every problem of the records, and throws Failure if there was one.
void requireIntact(const ExchangeFile& file, std::optional<Progress>& progress) {
  const std::vector<std::string> problems = findProblems(file, *progress);
  if (problems.empty()) {
    return;
  }
  progress.reset();
  for (const std::string& problem : problems) {
    printError(problem);
  }
  throw Failure(fmt::format("{}: {} found", file.path(), counted(problems.size(), "problem")));
}

void runDomainCheck(const ExchangeFile& file, const CheckOptions& options,
                    std::optional<Progress>& progress) {
  DomainCheck check(file, *progress);
  progress.reset();
  if (options.json) {
    check.printJson();
  } else {
    check.print(options.table.style());
  }
  if (check.symbolCount() != 0) {
    flushOutput();
    throw Failure(fmt::format("{}: {} outside their domains, in {}", file.path(),
                              counted(check.recordCount(), "record"),
                              counted(check.symbolCount(), "symbol")));
  }
}

void runCheck(const CheckOptions& options) {
  if (options.json && !options.domains) {
    throw UsageError("--json: goes with --domains");
  }
  std::optional<Progress> progress(std::in_place);
  progress->step("opening " + inputName(options.path));
  const ExchangeFile file(options.path);
  requireIntact(file, progress);
  if (options.domains) {
    runDomainCheck(file, options, progress);
  }
  progress.reset();
  if (!options.json) {
    print(options.table.line(summary(file)));
  }
}

}  // namespace

void addCheckCommand(CommandLine& line) {
  Command command = line.add("check", "Check that a file is intact");
  auto options = std::make_shared<CheckOptions>();
  command.text("FILE", options->path, "RXF file, - for standard input").required();
  command.flag("--domains", options->domains,
               "Also list every record with a label outside its domain");
  command.flag("--json", options->json, "Print these records as JSON");
  addWidthOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "Opens everything, reads every record and verifies all checksums. What is wrong is told "
      "with\n"
      "the symbol and the place in the file, and the exit code is 1 then. So it is when --domains\n"
      "finds a record; the column \"outside\" has the positions that break, with their domains.\n\n"
      "Examples:\n"
      "  ztb check diet.rxf\n"
      "  ztb check diet.rxf --domains --json");
  command.action([options] {
    runCheck(*options);
    return exitFine;
  });
}

}  // namespace tool
