#include <memory>
#include <string>
#include <vector>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/made_file.h"
#include "tools/commands/memory_option.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

struct WhereOptions {
  FileAndOut files;
  std::string condition;
  std::vector<std::string> symbols;
};

}  // namespace

void addWhereCommand(CommandLine& line) {
  Command command = line.add("where", "Keep the records of a file that fulfil a condition");
  auto options = std::make_shared<WhereOptions>();
  addFileAndOut(command, options->files);
  command.text("--where", options->condition, "What the records to keep fulfil")
      .typeName("CONDITION")
      .notEmpty()
      .required();
  command
      .texts("--symbol", options->symbols,
             "Look at this symbol only; without it, at all that have what the condition names")
      .typeName("SYMBOL");
  addMemoryOption(command);
  command.footer(
      "Compared with = != < <= > >= and in (...) are the fields value, level, marginal, lower,\n"
      "upper and scale with numbers, and positions, by name or number, and the field text of a "
      "set\n"
      "with labels, in which * stands for any run of chars and \\* for a star, a backslash taking\n"
      "any char behind it as it stands. Between comparisons stand and, or, not and parentheses.\n"
      "Other symbols stay whole.\n\n"
      "Examples:\n"
      "  ztb where diet.rxf dear.rxf --where 'value > 20'\n"
      "  ztb where diet.rxf milk.rxf --where 'food = \"Milk*\" and not value in (na, undef)'\n"
      "  ztb where odd.rxf stars.rxf --where 'food = \"*\\**\"'\n"
      "  ztb where plan.rxf open.rxf --symbol buy --where 'level > 0 or marginal != 0'");
  command.action([options] {
    FormatsJob job;
    job.option("file", options->files.file);
    job.option("where", options->condition);
    for (const std::string& symbol : options->symbols) job.option("symbol", symbol);
    makeFile(job, FormatsJob::Making::where, options->files.out);
    return exitFine;
  });
}

}  // namespace tool
