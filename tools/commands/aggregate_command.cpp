#include <array>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/made_file.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/shown_symbol.h"
#include "tools/commands/table_options.h"
#include "tools/files/scratch_folder.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

struct Word {
  const char* option;
  const char* help;
};

constexpr std::array<Word, 5> statistics{{{"sum", "Sum of the values"},
                                          {"mean", "Their sum by their number"},
                                          {"min", "Least value"},
                                          {"max", "Greatest value"},
                                          {"count", "Number of records"}}};

struct AggregateOptions {
  std::string file;
  std::string symbol;
  std::string by;
  std::array<bool, statistics.size()> chosen{};
  std::string field;
  std::string name;
  bool skipsMissing = false;
  std::string out;
  bool csv = false;
  bool json = false;
  TableOptions table;
};

void runAggregate(const AggregateOptions& options) {
  if (!options.out.empty() && (options.csv || options.json)) {
    throw UsageError("--out: prints nothing; leave out --csv and --json");
  }
  FormatsJob job;
  job.option("file", options.file);
  job.option("symbol", options.symbol);
  job.option("by", options.by);
  for (std::size_t word = 0; word < statistics.size(); ++word) {
    if (options.chosen.at(word)) job.option(statistics.at(word).option, "");
  }
  job.option("field", options.field);
  if (options.skipsMissing) job.option("skip-na", "");
  if (!options.out.empty()) {
    job.option("name", options.name);
    makeFile(job, FormatsJob::Making::aggregate, options.out);
    return;
  }
  const ScratchFolder folder;
  const std::string file = folder.file("total.rxf");
  job.option("name", options.name);
  job.option("progress", "");
  job.make(FormatsJob::Making::aggregate, file);
  showLastSymbol(file, {.csv = options.csv, .json = options.json, .table = options.table});
}

}  // namespace

void addAggregateCommand(CommandLine& line) {
  Command command = line.add("aggregate", "Sum up the records of a symbol over some positions");
  auto options = std::make_shared<AggregateOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.text("SYMBOL", options->symbol, "Name of a symbol").required();
  command
      .text("--by", options->by,
            "Positions that stay: names or numbers; without it all records make one number")
      .typeName("POSITION,...")
      .notEmpty();
  for (std::size_t word = 0; word < statistics.size(); ++word) {
    command.flag("--" + std::string(statistics.at(word).option), options->chosen.at(word),
                 statistics.at(word).help);
  }
  command
      .text("--field", options->field,
            "Field of a variable or equation: level (the default), marginal, lower, upper, scale")
      .typeName("FIELD")
      .notEmpty();
  command.flag("--skip-na", options->skipsMissing,
               "Leave out na and other values that are no number");
  command.text("--out", options->out, "RXF file to make, - for standard output")
      .typeName("OUT")
      .notEmpty();
  command.text("--name", options->name, "Name of the new parameter; without it as in price_sum")
      .typeName("NAME")
      .notEmpty();
  const Option csv = command.flag("--csv", options->csv, "Print CSV");
  command.flag("--json", options->json, "Print JSON").excludes(csv);
  addWidthOption(command, options->table);
  addDigitsOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "undef among the values makes undef, na makes na, inf with -inf undef; eps counts as 0, and\n"
      "eps alone makes eps. With --out the file has the parameter and the sets that it is over.\n\n"
      "Examples:\n"
      "  ztb aggregate diet.rxf nutrition --by nutrient --sum\n"
      "  ztb aggregate routes.rxf stops --by airline,from --max --out most.rxf --name most");
  command.action([options] {
    runAggregate(*options);
    return exitFine;
  });
}

}  // namespace tool
