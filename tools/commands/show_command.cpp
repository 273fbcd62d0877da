#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>
#include <ztb/column_names.hpp>

#include "formats/tables/csv_writer.h"
#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/field_option.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/shown_symbol.h"
#include "tools/commands/store_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/exchange_file.h"
#include "tools/files/record_order.h"
#include "tools/files/record_walk.h"
#include "tools/files/slice_filter.h"
#include "tools/files/standard_streams.h"
#include "tools/files/system_files.h"
#include "tools/text/failure.h"
#include "tools/text/json_text.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct ShowOptions {
  std::string file;
  std::string symbol;
  std::optional<std::string> slice;
  std::optional<std::string> fields;
  RowLimit limit;
  std::string sortColumn;
  bool descending = false;
  ztb::Store store = ztb::Store::map;
  bool csv = false;
  bool json = false;
  TableOptions table;
};

// The records of one symbol as cells: labels first, then text or values.
class ShownRecords {
 public:
  explicit ShownRecords(const ShowOptions& options)
      : file_(options.file),
        symbol_(file_.resolved(file_.symbol(options.symbol))),
        store_(options.store),
        head_(options.limit.rows(!options.csv && !options.json)),
        digits_(options.table.digits),
        keyColumns_(ztb::keyColumns(symbol_.name, symbol_.type, domainNames(symbol_))),
        walk_(file_, symbol_) {
    chooseContent(options.fields);
    if (!options.sortColumn.empty()) {
      order_ = {.slot = slotToSort(options.sortColumn),
                .descending = options.descending,
                .most = head_ == RowLimit::none ? head_ : head_ + 1};
    } else if (options.descending) {
      throw UsageError("--descending: goes with --sort");
    }
    if (options.slice) {
      filter_ = SliceFilter(*options.slice, file_, symbol_);
    }
  }

  [[nodiscard]] const ExchangeFile& file() const { return file_; }
  [[nodiscard]] const FileSymbol& symbol() const { return symbol_; }
  [[nodiscard]] const std::vector<std::string>& keyColumns() const { return keyColumns_; }
  [[nodiscard]] const std::vector<std::string>& contentColumns() const { return contentColumns_; }
  [[nodiscard]] bool hasTexts() const {
    return symbol_.type == ztb::Type::set && !symbol_.isUniverse();
  }
  [[nodiscard]] ztb::Store store() const { return store_; }
  // A value as it is shown.
  [[nodiscard]] NumberText number(double value) const { return NumberText(value, digits_); }
  // Places of contentColumns() among the values of a record.
  [[nodiscard]] const std::vector<std::size_t>& fields() const { return fields_; }

  // Reads the first block, so that its damage is told before anything is printed.
  void requireFirstBlock() {
    walk_.next();
    walk_.rewind();
  }

  // Visits the records that are to be shown, from the first on; gives how many there were, and
  // whether others follow.
  struct Walked {
    std::size_t records = 0;
    bool more = false;
  };
  Walked walk(const std::function<void(const ShownRecord&)>& visit) {
    Walked walked;
    const auto show = [&](const ShownRecord& record) {
      walked.more = walked.records == head_;
      if (!walked.more) {
        ++walked.records;
        visit(record);
      }
      return !walked.more;
    };
    walk_.rewind();
    if (order_) {
      walkInOrder(
          walk_, symbol_, *order_,
          [this](std::span<const int> keys) { return filter_.matches(keys); }, show);
      return walked;
    }
    while (walk_.next()) {
      if (filter_.matches(walk_.keys()) && !show({walk_.keys(), walk_.values()})) {
        break;
      }
    }
    return walked;
  }
  // The text of an element of a set.
  [[nodiscard]] std::string_view text(const ShownRecord& record) const {
    return file_.file().text(static_cast<int>(record.values[0]));
  }

 private:
  // The value that --sort names.
  [[nodiscard]] std::size_t slotToSort(const std::string& column) const {
    const bool isValue = sameFolded(column, "value");
    if (symbol_.type == ztb::Type::set || (symbol_.type == ztb::Type::parameter && !isValue)) {
      throw UsageError(fmt::format(
          "--sort {}: {} is a {}{}", column, signature(symbol_), typeWord(symbol_.type),
          symbol_.type == ztb::Type::set ? ", which has no values" : ", whose values are value"));
    }
    const auto* field = std::ranges::find_if(
        ztb::fieldNames, [&](std::string_view known) { return sameFolded(known, column); });
    if (!isValue && field == ztb::fieldNames.end()) {
      throw UsageError(fmt::format(
          "--sort {}: is no field, expected level, marginal, lower, upper or scale", column));
    }
    return isValue ? 0 : static_cast<std::size_t>(field - ztb::fieldNames.begin());
  }

  void chooseContent(const std::optional<std::string>& chosen) {
    if (!chosen) {
      contentColumns_ =
          symbol_.isUniverse() ? std::vector<std::string>{} : ztb::contentColumns(symbol_.type);
      for (std::size_t field = 0; field < contentColumns_.size(); ++field) {
        fields_.push_back(field);
      }
      return;
    }
    fields_ = fieldsOf(*chosen, symbol_);
    for (const std::size_t field : fields_) {
      contentColumns_.emplace_back(ztb::fieldNames.at(field));
    }
  }

  ExchangeFile file_;
  const FileSymbol& symbol_;
  ztb::Store store_;
  std::size_t head_;
  int digits_;
  std::vector<std::string> keyColumns_;
  std::vector<std::string> contentColumns_;
  std::vector<std::size_t> fields_;
  SliceFilter filter_;
  std::optional<RecordOrder> order_;
  RecordWalk walk_;
};

void printCsv(ShownRecords& shown) {
  formats::CsvWriter csv(stdout, "standard output");
  for (const std::string& column : shown.keyColumns()) {
    csv.text(column);
  }
  for (const std::string& column : shown.contentColumns()) {
    csv.text(column);
  }
  csv.endRow();
  shown.walk([&](const ShownRecord& record) {
    for (const int key : record.keys) {
      csv.label(shown.file().label(key));
    }
    if (shown.hasTexts()) {
      csv.text(shown.text(record));
    } else {
      for (const std::size_t field : shown.fields()) {
        csv.text(shown.number(record.values[field]).view());
      }
    }
    csv.endRow();
  });
  csv.finish();
}

void printJson(ShownRecords& shown) {
  std::string head = jsonText(jsonSymbol(shown.file(), shown.symbol(), shown.store()));
  head.back() = ',';
  print(head + "\"records\":[");
  const char* separator = "\n";
  shown.walk([&](const ShownRecord& record) {
    Json json;
    json["keys"] = Json::array();
    for (const int key : record.keys) {
      json["keys"].push_back(shown.file().label(key));
    }
    if (shown.hasTexts()) {
      json["text"] = shown.text(record);
    } else {
      for (std::size_t index = 0; index < shown.fields().size(); ++index) {
        json[shown.contentColumns()[index]] = jsonNumber(record.values[shown.fields()[index]]);
      }
    }
    print(separator + jsonText(json));
    separator = ",\n";
  });
  print("\n]}\n");
}

// Ends the progress line, unless the output goes to a file: elsewhere it may come to the same
// terminal.
void beginOutput(std::optional<Progress>& progress) {
  posix::FileStatus status{};
  if (posix::fstat(STDOUT_FILENO, &status) == 0 && S_ISREG(status.st_mode)) {
    progress->step("writing");
  } else {
    progress.reset();
  }
}

// Calls use with the cells of each record; the texts of a set are left out without withTexts.
ShownRecords::Walked walkCells(ShownRecords& shown, bool withTexts,
                               const std::function<void(std::span<const std::string_view>)>& use) {
  std::vector<std::string_view> cells;
  std::vector<NumberText> numbers;
  numbers.reserve(shown.fields().size());
  return shown.walk([&](const ShownRecord& record) {
    cells.clear();
    for (const int key : record.keys) {
      cells.push_back(shown.file().label(key));
    }
    numbers.clear();
    if (!shown.hasTexts()) {
      for (const std::size_t field : shown.fields()) {
        cells.push_back(numbers.emplace_back(shown.number(record.values[field])).view());
      }
    } else if (withTexts) {
      cells.push_back(shown.text(record));
    }
    use(cells);
  });
}

void printTable(ShownRecords& shown, const ShowOptions& options,
                std::optional<Progress>& progress) {
  using Align = TablePrinter::Align;
  TablePrinter table(options.table.style());
  for (const std::string& column : shown.keyColumns()) {
    table.addColumn(column, Align::left);
  }
  for (const std::string& column : shown.contentColumns()) {
    if (!shown.hasTexts()) {
      table.addColumn(column, Align::right);
    } else {
      table.addColumn(column, Align::left);
    }
  }
  bool withTexts = false;
  walkCells(shown, true, [&](std::span<const std::string_view> cells) {
    table.measure(cells);
    withTexts = withTexts || (shown.hasTexts() && !cells.back().empty());
  });
  if (shown.hasTexts() && !withTexts) {
    table.dropLastColumn();
  }
  beginOutput(progress);

  const std::string& text = shown.symbol().text;
  print(options.table.line(fmt::format("{} {}{}{}", typeWord(shown.symbol().type),
                                       signature(shown.symbol()), text.empty() ? "" : ": ",
                                       printable(text))) +
        '\n');
  table.printHeader(stdout);
  const ShownRecords::Walked walked =
      walkCells(shown, withTexts,
                [&](std::span<const std::string_view> cells) { table.printRow(stdout, cells); });
  print('\n' + options.table.line(fmt::format("{}{}", counted(walked.records, "record"),
                                              walked.more ? " shown, others follow" : "")));
  if (walked.more && !options.limit.head) {
    print(options.table.line(fmt::format("{} has {}; --all shows them all, --head N the first N",
                                         shown.symbol().name,
                                         counted(shown.symbol().recordCount, "record"))));
  }
}

void runShow(const ShowOptions& options) {
  if (options.json && options.table.digits != 0) {
    throw UsageError("--digits: goes with tables and --csv; JSON has every number whole");
  }
  std::optional<Progress> progress(std::in_place);
  progress->step("reading " + inputName(options.file));
  ShownRecords shown(options);
  if (!options.csv && !options.json) {
    printTable(shown, options, progress);
    return;
  }
  shown.requireFirstBlock();
  beginOutput(progress);
  if (options.csv) {
    printCsv(shown);
  } else {
    printJson(shown);
  }
}

}  // namespace

void showLastSymbol(const std::string& file, const ShownForm& form) {
  ShowOptions options;
  options.file = file;
  options.symbol = ExchangeFile(file).symbols().back().name;
  options.csv = form.csv;
  options.json = form.json;
  options.table = form.table;
  runShow(options);
}

void addShowCommand(CommandLine& line) {
  Command command = line.add("show", "Show the records of a symbol");
  auto options = std::make_shared<ShowOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
  command.text("SYMBOL", options->symbol, "Name of a symbol, or \"*\" for all labels").required();
  command.text("--slice", options->slice, "A pattern for each position").typeName("PATTERNS");
  command
      .text("--field", options->fields,
            "Fields of a variable or equation: level, marginal, lower, upper, scale")
      .typeName("FIELD,...");
  addRowLimit(command, options->limit, "records");
  command
      .text("--sort", options->sortColumn,
            "Show records in the order of their value, or of this field")
      .typeName("value|FIELD")
      .notEmpty();
  command.flag("--descending", options->descending, "With --sort, show the greatest values first");
  addWidthOption(command, options->table);
  addDigitsOption(command, options->table);
  addStoreOption(command, options->store);
  const Option csv = command.flag("--csv", options->csv, "Print CSV");
  command.flag("--json", options->json, "Print JSON").excludes(csv);
  addMemoryOption(command);
  command.footer(
      "A slice has a pattern for each position, with commas between: a label, * for any label, or\n"
      "part of a label with * for the rest. The case of letters does not matter. A label with a\n"
      "comma or star in it goes in double quotes.\n"
      "Special values are the words undef, na, inf, -inf, eps.\n\n"
      "Examples:\n"
      "  ztb show diet.rxf price\n"
      "  ztb show diet.rxf nutrition --slice 'wheat*,*' --head 20\n"
      "  ztb show diet.rxf nutrition --slice '\"Ham, smoked\",iron_mg'\n"
      "  ztb show diet.rxf price --sort value --descending --head 5\n"
      "  ztb show plan.rxf buy --field level,marginal --csv\n"
      "  ztb show diet.rxf '*'");
  command.action([options] {
    runShow(*options);
    return exitFine;
  });
}

}  // namespace tool
