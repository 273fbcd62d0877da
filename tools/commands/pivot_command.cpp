#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>
#include <ztb/column_names.hpp>

#include "formats/tables/csv_writer.h"
#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/field_option.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/position_option.h"
#include "tools/commands/table_options.h"
#include "tools/files/exchange_file.h"
#include "tools/files/slice_filter.h"
#include "tools/files/standard_streams.h"
#include "tools/tables/pivot_grid.h"
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
  RowLimit limit;
  TableOptions table;
};

using Positions = std::vector<std::size_t>;

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
    const ztb::Field field = oneFieldOf(options.field, symbol_);
    SliceFilter filter;
    if (options.slice) {
      filter = SliceFilter(*options.slice, file_, symbol_);
    }
    grid_.emplace(file_, symbol_, field, filter, rows, columns);
    requireRestFixed(taken);
  }

  void printText(const TableOptions& options, const RowLimit& limit) {
    TablePrinter table(options.style());
    const std::span<const PivotGrid::Cell> shown = cellsOf(limit.rows(true));
    std::vector<PivotGrid::Cell> cells(shown.begin(), shown.end());
    const std::vector<TablePrinter::Part> parts =
        measured(table, cells, limit.rows(true), options.digits);
    // The number of the part that each column stands in.
    std::vector<std::size_t> partOf;
    for (std::size_t part = 0; part < parts.size(); ++part) {
      partOf.insert(partOf.end(), parts[part].end - parts[part].begin, part);
    }
    if (parts.size() > 1) {
      std::ranges::stable_sort(cells, {},
                               [&](const PivotGrid::Cell& cell) { return partOf[cell.column]; });
    }

    const std::string& text = symbol_.text;
    print(options.line(fmt::format("{} {}{}{}", typeWord(symbol_.type), signature(symbol_),
                                   text.empty() ? "" : ": ", printable(text))) +
          '\n');
    auto cell = cells.begin();
    for (std::size_t part = 0; part < parts.size(); ++part) {
      const auto end = std::find_if(cell, cells.end(), [&](const PivotGrid::Cell& other) {
        return partOf[other.column] != part;
      });
      print(part == 0 ? "" : "\n");
      table.printHeader(stdout, parts[part]);
      const std::size_t first = parts[part].begin - leading();
      const std::size_t count = parts[part].end - parts[part].begin;
      eachRow({cell, end}, first, count, options.digits,
              [&](const std::vector<std::string_view>& row) {
                table.printRow(stdout, parts[part], row);
              });
      cell = end;
    }
    print('\n' + options.line(fmt::format("{} x {}, {}", counted(grid_->rows().size(), "row"),
                                          counted(grid_->columns().size(), "column"),
                                          counted(grid_->cells().size(), "record"))));
    if (grid_->rows().size() > limit.rows(true)) {
      print(options.line(counted(limit.rows(true), "row") + " shown, others follow"));
      if (!limit.head) print(options.line("--all shows them all, --head N the first N"));
    }
  }

  void printCsv(int digits, std::size_t most) {
    formats::CsvWriter csv(stdout, "standard output");
    for (const std::size_t position : grid_->rows().positions()) {
      csv.text(keyColumns_[position]);
    }
    for (std::size_t column = 0; column < grid_->columns().size(); ++column) {
      csv.text(columnTitle(column));
    }
    csv.endRow();
    eachRow(cellsOf(most), 0, grid_->columns().size(), digits,
            [&](const std::vector<std::string_view>& row) {
              for (std::size_t cell = 0; cell < row.size(); ++cell) {
                if (cell < leading()) {
                  csv.label(row[cell]);
                } else {
                  csv.text(row[cell]);
                }
              }
              csv.endRow();
            });
    csv.finish();
  }

 private:
  // Columns of labels in front of the values.
  [[nodiscard]] std::size_t leading() const { return grid_->rows().positions().size(); }

  // The cells of the first rows, at most so many.
  [[nodiscard]] std::span<const PivotGrid::Cell> cellsOf(std::size_t rows) const {
    const std::vector<PivotGrid::Cell>& cells = grid_->cells();
    return {cells.begin(), std::ranges::lower_bound(cells, rows, {}, &PivotGrid::Cell::row)};
  }

  // A position on neither side must have one label.
  void requireRestFixed(const Positions& taken) const {
    for (std::size_t position = 0; position < keyColumns_.size(); ++position) {
      const std::size_t labels = grid_->labelCount(position);
      if (std::ranges::find(taken, position) == taken.end() && labels > 1) {
        throw UsageError(fmt::format(
            "position {} ({}) is in neither --rows nor --columns and has {}; choose one "
            "with --slice",
            position + 1, keyColumns_[position], counted(labels, "label")));
      }
    }
  }

  // Adds the columns, as wide as these cells and labels of so many rows, and gives the parts that
  // have room in a line.
  std::vector<TablePrinter::Part> measured(TablePrinter& table,
                                           std::span<const PivotGrid::Cell> cells, std::size_t rows,
                                           int digits) const {
    for (const std::size_t position : grid_->rows().positions()) {
      table.addColumn(keyColumns_[position], TablePrinter::Align::left);
    }
    for (std::size_t column = 0; column < grid_->columns().size(); ++column) {
      table.addColumn(columnTitle(column), TablePrinter::Align::right);
    }
    for (std::size_t row = 0; row < std::min(rows, grid_->rows().size()); ++row) {
      for (std::size_t index = 0; index < leading(); ++index) {
        table.measure(index, file_.label(grid_->rows().labels(row)[index]));
      }
    }
    for (const PivotGrid::Cell& cell : cells) {
      table.measure(leading() + cell.column, NumberText(cell.value, digits).view());
    }
    return table.parts(leading());
  }

  // The labels of a column, with dots between.
  [[nodiscard]] std::string columnTitle(std::size_t column) const {
    std::string title;
    for (const int label : grid_->columns().labels(column)) {
      title += title.empty() ? "" : ".";
      title += file_.label(label);
    }
    return title;
  }

  // Calls `use` with each row that one of the cells stands in: its labels, then the values of
  // `count` columns from `first` on, blank where there is no record.
  void eachRow(std::span<const PivotGrid::Cell> cells, std::size_t first, std::size_t count,
               int digits, const std::function<void(const std::vector<std::string_view>&)>& use) {
    std::vector<NumberText> numbers;
    std::vector<std::string_view> row;
    while (!cells.empty()) {
      const std::size_t number = cells.front().row;
      std::size_t inRow = 0;
      numbers.clear();
      for (; inRow < cells.size() && cells[inRow].row == number; ++inRow) {
        numbers.emplace_back(cells[inRow].value, digits);
      }
      row.clear();
      for (const int label : grid_->rows().labels(number)) {
        row.push_back(file_.label(label));
      }
      row.resize(leading() + count);
      for (std::size_t index = 0; index < inRow; ++index) {
        row[leading() + cells[index].column - first] = numbers[index].view();
      }
      use(row);
      cells = cells.subspan(inRow);
    }
  }

  ExchangeFile file_;
  const FileSymbol& symbol_;
  std::vector<std::string> keyColumns_;
  std::optional<PivotGrid> grid_;
};

void runPivot(const PivotOptions& options) {
  std::optional<Progress> progress(std::in_place);
  progress->step("reading " + inputName(options.file));
  PivotTable table(options);
  progress.reset();
  if (options.csv) {
    table.printCsv(options.table.digits, options.limit.rows(false));
  } else {
    table.printText(options.table, options.limit);
  }
}

}  // namespace

void addPivotCommand(CommandLine& line) {
  Command command = line.add("pivot", "Show a symbol as a two-way table");
  auto options = std::make_shared<PivotOptions>();
  command.text("FILE", options->file, "RXF file, - for standard input").required();
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
  addRowLimit(command, options->limit, "rows");
  addWidthOption(command, options->table);
  addDigitsOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "A position is its number, from 1, or the name of its column in ztb show. A position on\n"
      "neither side has to be cut down to one label with --slice. A cell without a record is "
      "blank.\n"
      "A table that is wider than the line is shown in parts, each with the rows that have a cell "
      "in it.\n\n"
      "Examples:\n"
      "  ztb pivot diet.rxf nutrition --rows food --columns nutrient\n"
      "  ztb pivot routes.rxf types --rows 2 --columns 3 --slice 'LH,*,*' --csv");
  command.action([options] {
    runPivot(*options);
    return exitFine;
  });
}

}  // namespace tool
