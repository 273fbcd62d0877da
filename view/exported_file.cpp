// What a table shows, as a file: CSV and Excel with its columns in its order, an exchange file with
// its records.

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

#include "formats/database_export.h"
#ifdef ZTB_WRITES_EXCEL
#include "formats/excel/xlsx_tables.h"
#endif
#include "formats/tables/csv_writer.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"
#include "view/row_visits.h"

namespace view {

namespace {

// Rows that are held as text, to bring them into order.
constexpr std::size_t sortedAtOnce = 262144;

// Beyond what any file has.
constexpr std::size_t mostRows = std::size_t{1} << 40U;

// The cells of a row that are not hidden.
class RowCells {
 public:
  RowCells(const RecordScan& scan, const std::vector<std::size_t>& hidden)
      : scan_(scan), head_(formats::headOf(scan.symbol())) {
    std::vector<formats::TableColumn> shown;
    for (std::size_t column = 0; column < head_.columns.size(); ++column) {
      if (std::ranges::find(hidden, column) != hidden.end()) continue;
      shown_.push_back(column);
      shown.push_back(head_.columns[column]);
    }
    if (shown.empty()) throw RequestError(400, "hide: no column would be left");
    head_.columns = std::move(shown);
    head_.keys = 0;
  }

  [[nodiscard]] formats::TableHead head(std::size_t rows) const {
    formats::TableHead head = head_;
    head.rows = rows;
    return head;
  }
  void write(std::size_t record, formats::TableWriter& writer) const {
    const ztb::RxfRecords& block = scan_.block();
    const std::size_t dimension = scan_.dimension();
    for (const std::size_t column : shown_) {
      if (column < dimension) {
        writer.label(scan_.label(block.keys(static_cast<int>(column))[record]));
        continue;
      }
      const double value = block.values(static_cast<int>(column - dimension))[record];
      if (scan_.symbol().type == ztb::Type::set) {
        writer.text(scan_.file().exchange().file().text(static_cast<int>(value)));
      } else {
        writer.number(value);
      }
    }
    writer.endRow();
  }
  // What write() takes, to be written when another block is present.
  struct Held {
    std::vector<int> labels;
    std::vector<double> values;
  };
  [[nodiscard]] Held hold(std::size_t record) const {
    Held held;
    for (std::size_t at = 0; at < scan_.dimension(); ++at) {
      held.labels.push_back(scan_.block().keys(static_cast<int>(at))[record]);
    }
    for (int slot = 0; slot < scan_.block().valueCount(); ++slot) {
      held.values.push_back(scan_.block().values(slot)[record]);
    }
    return held;
  }
  void write(const Held& held, formats::TableWriter& writer) const {
    for (const std::size_t column : shown_) {
      if (column < held.labels.size()) {
        writer.label(scan_.label(held.labels[column]));
      } else if (scan_.symbol().type == ztb::Type::set) {
        writer.text(scan_.file().exchange().file().text(static_cast<int>(held.values[0])));
      } else {
        writer.number(held.values[column - held.labels.size()]);
      }
    }
    writer.endRow();
  }

 private:
  const RecordScan& scan_;
  formats::TableHead head_;
  std::vector<std::size_t> shown_;
};

void writeTable(Question& question, RecordScan& scan, formats::TableWriter& writer) {
  const std::size_t columns = formats::headOf(scan.symbol()).columns.size();
  const RowCells cells(scan, question.parameters.numbers("hide", columns));
  const std::optional<RowSort> sort = rowSortOf(question, scan);
  const std::shared_ptr<const RowIndex> index = rowIndexOf(question, scan, sort);
  const std::size_t rows =
      std::min(index->total, question.parameters.number("most", mostRows, mostRows));
  writer.begin(cells.head(rows));
  if (!sort) {
    visitRowsInOrder(scan, *index, 0, rows,
                     [&](std::size_t record) { cells.write(record, writer); });
  }
  for (std::size_t first = 0; sort && first < rows; first += sortedAtOnce) {
    const std::span<const std::uint32_t> order(index->order);
    const auto window = order.subspan(first, std::min(sortedAtOnce, rows - first));
    std::vector<RowCells::Held> held(window.size());
    scan.rewind();
    visitRecords(scan, window,
                 [&](std::size_t place, std::size_t record) { held[place] = cells.hold(record); });
    for (const RowCells::Held& row : held) cells.write(row, writer);
  }
  writer.end();
  writer.finish();
}

// The records as the one symbol of a file, with the names of its domains.
void writeExchangeFile(RecordScan& scan, const std::string& path) {
  const ztb::RxfFile& file = scan.file().exchange().file();
  const tool::FileSymbol& symbol = scan.symbol();
  if (symbol.isUniverse()) throw RequestError(400, "The labels of a file are no symbol of it.");
  ztb::RxfOutput output(path, "ztb view");
  for (int number = 1; number <= file.labelCount(); ++number) {
    output.addLabel(std::string(file.label(number)));
  }
  const std::vector<std::string> domains = tool::domainNames(symbol);
  const bool isRelated =
      std::ranges::any_of(domains, [](const std::string& domain) { return domain != "*"; });
  ztbRxfSymbolInfo info{};
  info.name = symbol.name.c_str();
  info.text = symbol.text.c_str();
  info.type = static_cast<int>(symbol.type);
  info.dimension = symbol.dimension;
  info.userInfo = symbol.userInfo;
  info.domainKind = isRelated ? ZTB_RXF_DOMAIN_NAMES : ZTB_RXF_DOMAIN_NONE;
  output.addSymbol(info, domains);
  std::vector<std::vector<int>> keys(scan.dimension());
  std::vector<std::vector<double>> values(static_cast<std::size_t>(symbol.valueCount));
  const auto pick = [&](auto& column, const auto& from) {
    column.clear();
    for (std::size_t record = 0; record < from.size(); ++record) {
      if (scan.chosen()[record] != 0) column.push_back(from[record]);
    }
    return column.data();
  };
  while (scan.next()) {
    std::vector<const int*> keyColumns;
    std::vector<const double*> valueColumns;
    for (std::size_t at = 0; at < keys.size(); ++at) {
      keyColumns.push_back(pick(keys[at], scan.block().keys(static_cast<int>(at))));
    }
    // A scalar has no keys, but the address of its keys is handed on all the same.
    keyColumns.push_back(nullptr);
    for (std::size_t slot = 0; slot < values.size(); ++slot) {
      valueColumns.push_back(pick(values[slot], scan.block().values(static_cast<int>(slot))));
    }
    if (scan.chosenCount() > 0) output.addRecords(scan.chosenCount(), keyColumns, valueColumns);
  }
  for (int number = 1; number <= file.textCount(); ++number) {
    output.addText(std::string(file.text(number)));
  }
  output.publish();
}

// A name for the file that is one everywhere, and stands in a header as it is.
std::string fileName(const std::string& symbol, const std::string& ending) {
  std::string name;
  for (const char c : symbol) {
    const bool plain = std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_' || c == '-';
    name += plain ? c : '_';
  }
  return (symbol == "*" ? "labels" : name) + "." + ending;
}

}  // namespace

void answerExport(Question& question) {
  const std::string& format = question.parameters.text("format");
  RecordScan scan(question);
  auto file = std::make_shared<ExportedFile>();
  file->name = fileName(scan.symbol().name, format);
  if (format == "csv") {
    file->type = "text/csv; charset=utf-8";
    file->path = file->folder.file("table.csv");
    formats::CsvWriter writer(file->path);
    writeTable(question, scan, writer);
  } else if (format == "tsv") {
    file->type = "text/tab-separated-values; charset=utf-8";
    file->path = file->folder.file("table.tsv");
    formats::CsvWriter writer(file->path, {.separator = '\t'});
    writeTable(question, scan, writer);
  } else if (format == "xlsx") {
    file->type = "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet";
    file->path = file->folder.file("table.xlsx");
#ifdef ZTB_WRITES_EXCEL
    formats::TableTarget target;
    target.path = file->path;
    writeTable(question, scan, *formats::makeXlsx(target));
#else
    throw RequestError(501, "Excel files need libxlsxwriter (Debian package libxlsxwriter-dev).");
#endif
  } else if (format == "rxf") {
    file->type = "application/octet-stream";
    file->path = file->folder.file("table.rxf");
    writeExchangeFile(scan, file->path);
  } else {
    throw RequestError(
        400, fmt::format("format: {} is none of csv, tsv, xlsx and rxf", tool::inQuotes(format)));
  }
  question.file = std::move(file);
}

}  // namespace view
