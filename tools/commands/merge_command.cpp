#include <iterator>
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

struct MergeOptions {
  // The files, and behind them the target.
  std::vector<std::string> words;
  std::string caseSet;
  std::string preferred;
  std::size_t maxErrors = 20;
};

// Adds the words and options that both commands have.
void addFiles(Command command, const std::shared_ptr<MergeOptions>& options) {
  command
      .words("FILE", options->words, 3,
             "RXF files, - for standard input, and OUT, the RXF file to make, - for standard "
             "output; it may be one of the files")
      .typeName("... OUT")
      .required();
  command.number("--max-errors", options->maxErrors, "Conflicts to print, the rest is counted")
      .defaultText(std::to_string(options->maxErrors));
}

void putTogether(const MergeOptions& options, FormatsJob::Making making) {
  FormatsJob job;
  for (auto file = options.words.begin(); file != std::prev(options.words.end()); ++file) {
    job.option("file", *file);
  }
  if (!options.caseSet.empty()) job.option("case", options.caseSet);
  if (!options.preferred.empty()) job.option("prefer", options.preferred);
  job.option("max-errors", std::to_string(options.maxErrors));
  makeFile(job, making, options.words.back());
}

}  // namespace

void addMergeCommand(CommandLine& line) {
  Command command = line.add("merge", "Put the symbols of several files together in one");
  auto options = std::make_shared<MergeOptions>();
  addFiles(command, options);
  const Option cases =
      command
          .text("--case", options->caseSet,
                "Give symbols a first position for the file, and make the set NAME of the files' "
                "names")
          .typeName("NAME")
          .notEmpty();
  command
      .text("--prefer", options->preferred,
            "Take the value of the first or last file where they have different ones")
      .typeName("first|last")
      .notEmpty()
      .excludes(cases);
  addMemoryOption(command);
  command.footer(
      "A record may stand in several files with the same values. All conflicts are told, and\n"
      "nothing is written then.\n\n"
      "Examples:\n"
      "  ztb merge sets.rxf prices.rxf demand.rxf all.rxf\n"
      "  ztb merge base.rxf update.rxf base.rxf --prefer last\n"
      "  ztb merge low.rxf high.rxf cases.rxf --case scenario");
  command.action([options] {
    putTogether(*options, FormatsJob::Making::merge);
    return exitFine;
  });
}

void addConcatCommand(CommandLine& line) {
  Command command = line.add("concat", "Append the records of files that are parts of one whole");
  auto options = std::make_shared<MergeOptions>();
  addFiles(command, options);
  addMemoryOption(command);
  command.footer(
      "Every file has the same symbols, and a record stands in one file only; sets are united, "
      "and\n"
      "scalars are the same in all.\n\n"
      "Example:\n"
      "  ztb concat january.rxf february.rxf march.rxf quarter.rxf");
  command.action([options] {
    putTogether(*options, FormatsJob::Making::concat);
    return exitFine;
  });
}

}  // namespace tool
