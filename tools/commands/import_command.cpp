#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/made_file.h"
#include "tools/commands/store_option.h"
#include "tools/files/formats_library.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

struct ImportOptions {
  std::string out;
  // Options of the sources in their order.
  std::vector<std::pair<std::string, std::string>> inOrder;
  std::optional<std::string> folder;
  std::string separator = ",";
  std::string decimal = ".";
  ztb::Store store = ztb::Store::map;
  bool checkDomains = false;
  bool skipEmpty = false;
  std::size_t maxErrors = 20;
};

void runImport(const ImportOptions& options) {
  FormatsJob job;
  for (const auto& [name, value] : options.inOrder) job.option(name, value);
  if (options.folder) job.option("dir", *options.folder);
  job.option("separator", options.separator);
  job.option("decimal", options.decimal);
  job.option("store", std::string(storeWord(options.store)));
  if (options.checkDomains) job.option("check-domains", "");
  if (options.skipEmpty) job.option("skip-empty", "");
  job.option("max-errors", std::to_string(options.maxErrors));
  makeFile(job, options.out, [&job](const std::string& path) { job.import(path); });
}

// Adds an option whose place among those of the sources counts.
Option addInOrder(Command command, const std::shared_ptr<ImportOptions>& options,
                  const std::string& name, const char* help) {
  return command.each(
      "--" + name,
      [options, name](const std::string& value) { options->inOrder.emplace_back(name, value); },
      help);
}

}  // namespace

void addImportCommand(CommandLine& line) {
  Command command = line.add("import", "Make a file from tables or a database of another program");
  auto options = std::make_shared<ImportOptions>();
  command.text("OUT", options->out, "RXF file to write, - for standard output").required();
  addInOrder(command, options, "from",
             "Table or database; the options that follow read from it. Behind a # a table, sheet, "
             "range or query; - is standard input")
      .typeName("SOURCE");
  addInOrder(command, options, "format", "Format of the source, which its ending tells otherwise")
      .typeName("FORMAT");
  addInOrder(command, options, "set", "Make a set: NAME(KEY, ...) : TEXTCOLUMN \"text\"")
      .typeName("SPEC");
  addInOrder(command, options, "distinct-set",
             "The same; an element that stands in many rows is taken once")
      .typeName("SPEC");
  addInOrder(command, options, "parameter",
             "Make a parameter: NAME(KEY, ...) = VALUECOLUMN \"text\"")
      .typeName("SPEC");
  addInOrder(command, options, "variable",
             "Make a variable: [KIND] NAME(KEY, ...) = LEVELCOLUMN \"text\", or = FIELD: "
             "COLUMN, ...; KIND is free, positive, negative, binary or integer")
      .typeName("SPEC");
  addInOrder(command, options, "wide",
             "Turn the columns that no key names, or these, into labels of a key NAME, with their "
             "cells as values")
      .typeName("NAME[: COLUMN, ...]");
  addInOrder(command, options, "rename", "Call a column of the source by another name")
      .typeName("OLD=NEW");
  addInOrder(command, options, "units",
             "Multiply the numbers of a column, as in tons=1000 or cents=1/100")
      .typeName("COLUMN=NUMBER");
  addInOrder(command, options, "dates",
             "Take dates as ISO labels: day, month and year of the source in this order")
      .typeName("dmy|mdy|ymd");
  command.text("--dir", options->folder, "Folder that ztb export --csv left").typeName("DIR");
  command.flag("--check-domains", options->checkDomains,
               "Each label must be in the set that is its domain");
  command.flag("--skip-empty", options->skipEmpty,
               "Leave out values that are empty; beside others, an empty field keeps its default");
  command
      .text("--separator", options->separator, "Char between the fields of FILE, or the word tab")
      .typeName("CHAR");
  command.text("--decimal", options->decimal, "Char where the fraction of a number begins: . or ,")
      .typeName(".|,");
  addStoreOption(command, options->store);
  command.number("--max-errors", options->maxErrors, "Problems to print, the rest is counted")
      .defaultText(std::to_string(options->maxErrors));
  command.footer(
      "KEY is the name of a column, whose fields are the labels of that position; KEY in SET "
      "names\n"
      "its domain, and makes COLUMN an alias of it, so that the name is kept. Without it the "
      "domain\n"
      "is the one-dimensional set of the column's name, if it was made before, or the name alone.\n"
      "--set NAME is short for --set NAME(NAME). A scalar is NAME() = COLUMN.\n"
      "Names and texts with one of ( ) , : = in them stand in quotes.\n"
      "Numbers may be the words undef, na, inf, -inf, eps. Nothing is written if a file has a\n"
      "problem: each is shown with file, line and column.\n\n"
      "Examples:\n"
      "  ztb import diet.rxf \\\n"
      "    --from foods.csv        --set 'food : unit \"Foods and the unit they are sold in\"' \\\n"
      "                            --parameter 'price(food) = price_cents_1939 \"Cents a unit\"' "
      "\\\n"
      "    --from requirements.csv --set nutrient \\\n"
      "                            --parameter 'requirement(nutrient) = daily_allowance' \\\n"
      "    --from nutrition.csv    --parameter 'nutrition(food, nutrient) = per_dollar' \\\n"
      "    --check-domains\n"
      "  ztb import plan.rxf --from plan.xlsx#Prices --wide year --parameter 'price(food, year)'\n"
      "  ztb import stock.rxf --from stock.db\n"
      "  ztb import routes.rxf --from routes.csv --parameter 'stops(airline, from, to)'\n"
      "  ztb import copy.rxf --dir exported");
  command.action([options] {
    runImport(*options);
    return exitFine;
  });
}

}  // namespace tool
