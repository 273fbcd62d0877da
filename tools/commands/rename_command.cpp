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

struct RenameOptions {
  FileAndOut files;
  std::vector<std::string> symbols;
  std::vector<std::string> labels;
};

}  // namespace

void addRenameCommand(CommandLine& line) {
  Command command = line.add("rename", "Give symbols and labels of a file other names");
  auto options = std::make_shared<RenameOptions>();
  addFileAndOut(command, options->files);
  command.texts("RENAME", options->symbols, "Names of a symbol: 'OLD = NEW'");
  command.texts("--label", options->labels, "The same of a label").typeName("'OLD = NEW'");
  addMemoryOption(command);
  command.footer(
      "All names change at once, so that two can change places. Symbols over a set that is "
      "renamed\n"
      "follow. A name with an = in it stands in double quotes.\n\n"
      "Examples:\n"
      "  ztb rename diet.rxf diet2.rxf 'price = cost' 'food = dish'\n"
      "  ztb rename diet.rxf diet.rxf --label 'Milk = Whole milk'");
  command.action([options] {
    FormatsJob job;
    job.option("file", options->files.file);
    for (const std::string& symbol : options->symbols) job.option("rename", symbol);
    for (const std::string& label : options->labels) job.option("label", label);
    makeFile(job, FormatsJob::Making::rename, options->files.out);
    return exitFine;
  });
}

}  // namespace tool
