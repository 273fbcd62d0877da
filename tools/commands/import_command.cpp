#include <fmt/format.h>

#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/store_option.h"
#include "tools/files/standard_streams.h"
#include "tools/tables/folder_import.h"
#include "tools/tables/problem_list.h"
#include "tools/tables/record_import.h"
#include "tools/tables/symbol_spec.h"
#include "tools/tables/table_import.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct ImportOptions {
  std::string out;
  std::optional<std::string> folder;
  std::vector<TableSource> sources;
  std::string separator = ",";
  std::string decimal = ".";
  ztb::Store store = ztb::Store::map;
  bool checkDomains = false;
  bool skipEmpty = false;
  std::size_t maxErrors = 20;
};

char separatorOf(const std::string& text) {
  if (text == "tab" || text == "\\t") {
    return '\t';
  }
  if (text.size() != 1 || text == "\"" || text == "\n" || text == "\r") {
    throw UsageError(fmt::format("--separator {}: expected one char, or the word tab", text));
  }
  return text.front();
}

char decimalOf(const std::string& text, char separator) {
  if (text != "." && text != ",") {
    throw UsageError(fmt::format("--decimal {}: expected a point or a comma", text));
  }
  if (text.front() == separator) {
    throw UsageError(
        "--decimal ,: the comma parts the fields; give --separator ';' or tab as well");
  }
  return text.front();
}

void checkUsage(const ImportOptions& options) {
  if (options.folder && !options.sources.empty()) {
    throw UsageError("--dir and --from exclude each other");
  }
  if (!options.folder && options.sources.empty()) {
    throw UsageError(
        "nothing to import: give --from FILE with --set, --parameter or --variable, or --dir DIR");
  }
  for (const TableSource& source : options.sources) {
    if (source.symbols.empty()) {
      throw UsageError(fmt::format(
          "--from {}: no --set, --parameter or --variable behind it reads from it", source.path));
    }
  }
}

// Takes the file that was just written into another store and writes it from there. Records of an
// import come in the order of its tables, which only the tree map takes, and a symbol that is moved
// within a database would lose its domains.
void rewriteFrom(ztb::Store store, const std::string& path, bool checkDomains) {
  ztb::Database database;
  database.selectStore(store);
  database.openFile(path);
  database.closeFile(true);
  database.write(path, checkDomains);
}

void runImport(const ImportOptions& options) {
  checkUsage(options);
  const TableImportOptions tables{.separator = separatorOf(options.separator),
                                  .skipEmpty = options.skipEmpty,
                                  .namesAlone = !options.checkDomains};
  const char decimal = decimalOf(options.decimal, tables.separator);
  OutputFile output(options.out);
  std::optional<Progress> progress(std::in_place);
  ProblemList problems(options.maxErrors);
  ProblemList warnings(options.maxErrors);
  ztb::Database database;
  RecordImport records(database, problems, warnings, *progress);
  if (options.checkDomains) {
    records.checkDomains();
  }
  std::vector<std::string> lostRoles;
  if (options.folder) {
    importFolder(database, *options.folder, records, problems);
  } else {
    records.setDecimalChar(decimal);
    lostRoles = importTables(database, options.sources, tables, records, problems);
  }
  if (problems.empty()) {
    progress->step("writing " + output.name());
    try {
      database.write(output.path(), options.checkDomains);
      if (options.store != ztb::Store::map) {
        rewriteFrom(options.store, output.path(), options.checkDomains);
      }
    } catch (const ztb::Error& error) {
      throw Failure(withFile(output.name(), error.what()));
    }
    output.finish();
  }
  progress.reset();
  if (problems.empty()) {
    for (const std::string& lost : lostRoles) {
      printError("ztb: warning: " + lost);
    }
  }
  std::fputs(warnings.report().c_str(), stderr);
  if (!problems.empty()) {
    std::fputs(problems.report().c_str(), stderr);
    throw Failure(fmt::format("{}: not written: {} in the input", output.name(),
                              counted(problems.count(), "problem")));
  }
  print(fmt::format("{}: {}, {}, {}\n", ztb::displayText(output.name()),
                    counted(static_cast<std::size_t>(database.symbolCount()), "symbol"),
                    counted(static_cast<std::size_t>(database.labelCount()), "label"),
                    counted(records.recordCount(), "record")));
}

// Adds an option that makes a symbol from the file that the --from before it names.
void addSymbolOption(Command command, const std::shared_ptr<ImportOptions>& options, SpecKind kind,
                     const char* help) {
  command
      .each(
          optionOf(kind),
          [options, kind](const std::string& argument) {
            if (options->sources.empty()) {
              throw UsageError(fmt::format("{} {}: a --from FILE must stand before it",
                                           optionOf(kind), argument));
            }
            options->sources.back().symbols.push_back(parseSymbolSpec(kind, argument));
          },
          help)
      .typeName("SPEC");
}

}  // namespace

void addImportCommand(CommandLine& line) {
  Command command = line.add("import", "Make a file from CSV");
  auto options = std::make_shared<ImportOptions>();
  command.text("OUT", options->out, "RXF file to write, - for standard output").required();
  command
      .each(
          "--from",
          [options](const std::string& path) {
            options->sources.push_back({.path = path, .symbols = {}});
          },
          "CSV file, - for standard input; the options that follow read from it")
      .typeName("FILE");
  addSymbolOption(command, options, SpecKind::set,
                  "Make a set: NAME(KEY, ...) : TEXTCOLUMN \"text\"");
  addSymbolOption(command, options, SpecKind::distinctSet,
                  "The same; an element that stands in many rows is taken once");
  addSymbolOption(command, options, SpecKind::parameter,
                  "Make a parameter: NAME(KEY, ...) = VALUECOLUMN \"text\"");
  addSymbolOption(command, options, SpecKind::variable,
                  "Make a variable: [KIND] NAME(KEY, ...) = LEVELCOLUMN \"text\", or = FIELD: "
                  "COLUMN, ...; KIND is free, positive, negative, binary or integer");
  command.text("--dir", options->folder, "Folder that ztb export --csv left").typeName("DIR");
  command.flag("--check-domains", options->checkDomains,
               "Each label must be in the set that is its domain");
  command.flag("--skip-empty", options->skipEmpty, "Leave out values that are empty");
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
      "  ztb import routes.rxf --from routes.csv --parameter 'stops(airline, from, to)'\n"
      "  ztb import copy.rxf --dir exported");
  command.action([options] {
    runImport(*options);
    return exitFine;
  });
}

}  // namespace tool
