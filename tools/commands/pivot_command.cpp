#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/column_names.hpp>

#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/files/exchange_file.h"
#include "tools/files/slice_filter.h"
#include "tools/tables/csv_writer.h"
#include "tools/tables/pivot_cube.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/output.h"
#include "tools/text/progress.h"
#include "tools/text/table_printer.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct PivotOptions {
  std::string file;
  std::string symbol;
  std::string rows;
  std::string columns;
  std::optional<std::string> slice;
  std::optional<std::string> field;
  bool csv = false;
};

using Positions = std::vector<std::size_t>;

// The position that a word of --rows or --columns means: its number from 1, or the name of its
// column.
std::size_t positionOf(const std::string& word, const std::string& option, const FileSymbol& symbol,
                       const std::vector<std::string>& keyColumns) {
  for (std::size_t position = 0; position < keyColumns.size(); ++position) {
    if (word == std::to_string(position + 1) || sameFolded(word, keyColumns[position])) {
      return position;
    }
  }
  throw UsageError(fmt::format("{}: '{}' is no position of {}, expected 1 to {} or one of {}",
                               option, word, signature(symbol), keyColumns.size(),
                               fmt::join(keyColumns, ", ")));
}

Positions positionsOf(const std::string& list, const std::string& option, const FileSymbol& symbol,
                      const std::vector<std::string>& keyColumns, Positions& taken) {
  Positions positions;
  for (const std::string& word : splitAtCommas(list)) {
    const std::size_t position = positionOf(word, option, symbol, keyColumns);
    if (std::ranges::find(taken, position) != taken.end()) {
      throw UsageError(fmt::format("{}: position {} ({}) is named twice", option, position + 1,
                                   keyColumns[position]));
    }
    positions.push_back(position);
    taken.push_back(position);
  }
  return positions;
}

ztb::Field fieldOf(const std::optional<std::string>& word, const FileSymbol& symbol) {
  if (!word) {
    return ztb::Field::level;
  }
  if (symbol.valueCount != static_cast<int>(ztb::fieldCount)) {
    throw UsageError(fmt::format("--field {}: {} is a {}; only variables and equations have fields",
                                 *word, signature(symbol), typeWord(symbol.type)));
  }
  const auto* found = std::ranges::find_if(
      ztb::fieldNames, [&](std::string_view known) { return sameFolded(known, *word); });
  if (found == ztb::fieldNames.end()) {
    throw UsageError(fmt::format(
        "--field {}: is no field, expected level, marginal, lower, upper or scale", *word));
  }
  return static_cast<ztb::Field>(found - ztb::fieldNames.begin());
}

// One side of the table: the combinations of labels that some record has, in the order of their
// places, the first position slowest.
class Side {
 public:
  Side(Positions positions, const PivotCube& cube)
      : positions_(std::move(positions)), cube_(cube), occurs_(1) {
    for (const std::size_t position : positions_) {
      occurs_.resize(occurs_.size() * cube.labels(position).size());
    }
  }

  [[nodiscard]] std::size_t size() const { return entries_.size(); }
  [[nodiscard]] const Positions& positions() const { return positions_; }

  // Notes that a record stands at these places.
  void note(std::span<const std::size_t> places) {
    std::size_t number = 0;
    for (const std::size_t position : positions_) {
      number = number * cube_.labels(position).size() + places[position];
    }
    occurs_[number] = true;
  }
  // Makes the entries out of what was noted.
  void finish() {
    for (std::size_t number = 0; number < occurs_.size(); ++number) {
      if (occurs_[number]) {
        entries_.push_back(number);
      }
    }
  }

  // Fills in the places of an entry.
  void place(std::size_t entry, std::span<std::size_t> places) const {
    std::size_t number = entries_[entry];
    for (std::size_t i = positions_.size(); i-- > 0;) {
      const std::size_t size = cube_.labels(positions_[i]).size();
      places[positions_[i]] = number % size;
      number /= size;
    }
  }

 private:
  Positions positions_;
  const PivotCube& cube_;
  std::vector<bool> occurs_;
  std::vector<std::size_t> entries_;
};

class PivotTable {
 public:
  explicit PivotTable(const PivotOptions& options)
      : file_(options.file),
        symbol_(file_.resolved(file_.symbol(options.symbol))),
        keyColumns_(ztb::keyColumns(symbol_.name, symbol_.type, domainNames(symbol_))) {
    if (symbol_.type == ztb::Type::set || symbol_.dimension == 0) {
      throw UsageError(
          fmt::format("{} is a {}; a table is made of a parameter, variable or "
                      "equation with positions",
                      signature(symbol_), symbol_.dimension == 0 ? "scalar" : "set"));
    }
    Positions taken;
    const Positions rows = positionsOf(options.rows, "--rows", symbol_, keyColumns_, taken);
    const Positions columns =
        positionsOf(options.columns, "--columns", symbol_, keyColumns_, taken);
    const ztb::Field field = fieldOf(options.field, symbol_);
    SliceFilter filter;
    if (options.slice) {
      filter = SliceFilter(*options.slice, file_, symbol_);
    }
    cube_.emplace(file_, symbol_, field, filter);
    requireRestFixed(taken);
    places_.resize(keyColumns_.size());
    rows_.emplace(rows, *cube_);
    columns_.emplace(columns, *cube_);
    noteRecords();
  }

  void printText() {
    std::vector<NumberText> numbers;
    TablePrinter table;
    for (const std::size_t position : rows_->positions()) {
      table.addColumn(keyColumns_[position], TablePrinter::Align::left);
    }
    for (std::size_t column = 0; column < columns_->size(); ++column) {
      table.addColumn(columnTitle(column), TablePrinter::Align::right);
    }
    eachRow([&](const std::vector<std::string_view>& cells) { table.measure(cells); });
    const std::string& text = symbol_.text;
    print(fmt::format("{} {}{}{}\n\n", typeWord(symbol_.type), signature(symbol_),
                      text.empty() ? "" : ": ", printable(text)));
    table.printHeader(stdout);
    eachRow([&](const std::vector<std::string_view>& cells) { table.printRow(stdout, cells); });
    print(fmt::format("\n{} x {}, {}\n", counted(rows_->size(), "row"),
                      counted(columns_->size(), "column"),
                      counted(cube_->recordCount(), "record")));
  }

  void printCsv() {
    CsvWriter csv(stdout, "standard output");
    for (const std::size_t position : rows_->positions()) {
      csv.field(keyColumns_[position]);
    }
    for (std::size_t column = 0; column < columns_->size(); ++column) {
      csv.field(columnTitle(column));
    }
    csv.endRecord();
    eachRow([&](const std::vector<std::string_view>& cells) {
      for (std::size_t cell = 0; cell < cells.size(); ++cell) {
        if (cell < rows_->positions().size()) {
          csv.label(cells[cell]);
        } else {
          csv.field(cells[cell]);
        }
      }
      csv.endRecord();
    });
    csv.close();
  }

 private:
  // A position on neither side must have one label.
  void requireRestFixed(const Positions& taken) const {
    for (std::size_t position = 0; position < keyColumns_.size(); ++position) {
      const std::size_t labels = cube_->labels(position).size();
      if (std::ranges::find(taken, position) == taken.end() && labels > 1) {
        throw UsageError(fmt::format(
            "position {} ({}) is in neither --rows nor --columns and has {}; choose one "
            "with --slice",
            position + 1, keyColumns_[position], counted(labels, "label")));
      }
    }
  }

  void noteRecords() {
    std::vector<std::size_t> places(keyColumns_.size());
    for (std::size_t cell = 0; cell < cube_->cellCount(); ++cell) {
      if (cube_->isRecord(cell)) {
        std::size_t rest = cell;
        for (std::size_t position = places.size(); position-- > 0;) {
          places[position] = rest % cube_->labels(position).size();
          rest /= cube_->labels(position).size();
        }
        rows_->note(places);
        columns_->note(places);
      }
    }
    rows_->finish();
    columns_->finish();
  }

  // The labels of a column, with dots between.
  std::string columnTitle(std::size_t column) {
    columns_->place(column, places_);
    std::string title;
    for (const std::size_t position : columns_->positions()) {
      title += title.empty() ? "" : ".";
      title += labelAt(position);
    }
    return title;
  }

  [[nodiscard]] std::string_view labelAt(std::size_t position) const {
    return file_.label(cube_->labels(position)[places_[position]]);
  }

  // Calls `use` with the cells of each row: labels, then values, blank where there is no record.
  void eachRow(const std::function<void(const std::vector<std::string_view>&)>& use) {
    std::vector<NumberText> numbers;
    numbers.reserve(columns_->size());
    std::vector<std::string_view> cells;
    for (std::size_t row = 0; row < rows_->size(); ++row) {
      numbers.clear();
      cells.clear();
      rows_->place(row, places_);
      for (const std::size_t position : rows_->positions()) {
        cells.push_back(labelAt(position));
      }
      for (std::size_t column = 0; column < columns_->size(); ++column) {
        columns_->place(column, places_);
        const std::size_t cell = cube_->cellOf(places_);
        cells.push_back(cube_->isRecord(cell) ? numbers.emplace_back(cube_->value(cell)).view()
                                              : std::string_view());
      }
      use(cells);
    }
  }

  ExchangeFile file_;
  const FileSymbol& symbol_;
  std::vector<std::string> keyColumns_;
  std::optional<PivotCube> cube_;
  std::optional<Side> rows_;
  std::optional<Side> columns_;
  std::vector<std::size_t> places_;
};

void runPivot(const PivotOptions& options) {
  std::optional<Progress> progress(std::in_place);
  progress->step("reading " + options.file);
  PivotTable table(options);
  progress.reset();
  if (options.csv) {
    table.printCsv();
  } else {
    table.printText();
  }
}

}  // namespace

void addPivotCommand(CommandLine& line) {
  Command command = line.add("pivot", "Show a symbol as a two-way table");
  auto options = std::make_shared<PivotOptions>();
  command.text("FILE", options->file, "RXF file").required();
  command.text("SYMBOL", options->symbol, "A parameter, variable or equation").required();
  command.text("--rows", options->rows, "Positions that go down the table")
      .typeName("POSITION,...")
      .required();
  command.text("--columns", options->columns, "Positions that go across")
      .typeName("POSITION,...")
      .required();
  command.text("--slice", options->slice, "A pattern for each position, as for show")
      .typeName("PATTERNS");
  command.text("--field", options->field, "Field of a variable or equation; level")
      .typeName("FIELD");
  command.flag("--csv", options->csv, "Print CSV");
  addMemoryOption(command);
  command.footer(
      "A position is its number, from 1, or the name of its column in ztb show. A position on\n"
      "neither side has to be cut down to one label with --slice. A cell without a record is "
      "blank.\n\n"
      "Examples:\n"
      "  ztb pivot diet.rxf nutrition --rows food --columns nutrient\n"
      "  ztb pivot routes.rxf types --rows 2 --columns 3 --slice 'LH,*,*' --csv");
  command.action([options] {
    runPivot(*options);
    return exitFine;
  });
}

}  // namespace tool
