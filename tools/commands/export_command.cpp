#include <fmt/format.h>
#include <ztb/formats.h>

#include <memory>
#include <string>
#include <vector>
#include <ztb/display_text.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/files/formats_library.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct ExportOptions {
  std::string file;
  std::vector<std::string> symbols;
  bool all = false;
  std::string folder;
  std::string target;
  std::string format;
  std::string wide;
  std::string separator = ",";
  std::string decimal = ".";
};

void runExport(const ExportOptions& options) {
  FormatsJob job;
  for (const std::string& symbol : options.symbols) job.option("symbol", symbol);
  if (options.all) job.option("all", "");
  if (!options.folder.empty()) job.option("csv", options.folder);
  if (!options.target.empty()) job.option("to", options.target);
  job.option("format", options.format);
  job.option("wide", options.wide);
  job.option("separator", options.separator);
  job.option("decimal", options.decimal);
  job.option("progress", "");
  job.exportFile(options.file);
  printErrors(job.warnings());
  const std::string& target = options.folder.empty() ? options.target : options.folder;
  if (target != "-") {
    print(fmt::format("{}: {}, {}, {}\n", ztb::displayText(target),
                      counted(job.counted(ZTB_FORMATS_SYMBOLS), "symbol"),
                      counted(job.counted(ZTB_FORMATS_LABELS), "label"),
                      counted(job.counted(ZTB_FORMATS_RECORDS), "record")));
  }
}

}  // namespace

void addExportCommand(CommandLine& line) {
  Command command =
      line.add("export", "Write symbols out as tables, or a database of another program");
  auto options = std::make_shared<ExportOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.texts("SYMBOL", options->symbols, "Symbols to export");
  command.flag("--all", options->all, "Export all symbols");
  const Option csv =
      command
          .text("--csv", options->folder,
                "Folder of CSV files to write to, made if it is not there; - for one table to "
                "standard output")
          .typeName("DIR");
  command
      .text("--to", options->target,
            "File to write to, whose ending tells the format; - is standard output")
      .typeName("TARGET")
      .notEmpty()
      .excludes(csv);
  command.text("--format", options->format, "Format of TARGET, whatever its ending")
      .typeName("FORMAT");
  command
      .text("--wide", options->wide,
            "Write one symbol with the labels of this position as columns: its name, or number "
            "from 1")
      .typeName("POSITION");
  command.text("--separator", options->separator, "Char between the fields of CSV, or the word tab")
      .typeName("CHAR");
  command.text("--decimal", options->decimal, "Char where the fraction of a number begins: . or ,")
      .typeName(".|,");
  addMemoryOption(command);
  command.footer(
      "TARGET is a table of one symbol (.csv, .tsv, also .gz and .zst) or takes many. With --csv, "
      "a\n"
      "folder gets NAME.csv for each symbol, _labels.csv with all labels in the order of their\n"
      "numbers, and _symbols.csv. ztb import reads either back, every value bit for bit.\n\n"
      "Examples:\n"
      "  ztb export diet.rxf --all --csv exported\n"
      "  ztb export diet.rxf food price --csv exported\n"
      "  ztb import copy.rxf --dir exported\n"
      "  ztb export diet.rxf price --to price.csv.gz");
  command.action([options] {
    runExport(*options);
    return exitFine;
  });
}

}  // namespace tool
