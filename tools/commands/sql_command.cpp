#include <fmt/format.h>
#include <ztb/sql.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <ztb/display_text.hpp>

#include "formats/tables/csv_writer.h"
#include "formats/tables/symbol_spec.h"
#include "tools/commands/command_line.h"
#include "tools/commands/commands.h"
#include "tools/commands/memory_option.h"
#include "tools/commands/sql_query.h"
#include "tools/commands/table_options.h"
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

struct SqlOptions {
  std::vector<std::string> words;  // files, and the query
  bool csv = false;
  bool json = false;
  std::optional<std::string> into;
  std::optional<std::string> out;
  RowLimit limit;
  TableOptions table;
};

void printTable(Query& query, const TableOptions& options, const RowLimit& limit) {
  const auto columns = static_cast<std::size_t>(query.columnCount());
  std::vector<bool> numbers(columns, true);
  std::vector<std::string> cells;
  const bool more = query.walk(limit.rows(true), [&] {
    for (int column = 0; column < query.columnCount(); ++column) {
      cells.push_back(query.text(column, options.digits));
      numbers[static_cast<std::size_t>(column)] =
          numbers[static_cast<std::size_t>(column)] && !query.isText(column);
    }
  });
  TablePrinter table(options.style());
  for (std::size_t column = 0; column < columns; ++column) {
    table.addColumn(query.columnName(static_cast<int>(column)),
                    numbers[column] ? TablePrinter::Align::right : TablePrinter::Align::left);
  }
  std::vector<std::string_view> row(columns);
  const auto eachRow = [&](const std::function<void()>& visit) {
    for (std::size_t at = 0; at < cells.size(); at += columns) {
      std::copy_n(cells.begin() + static_cast<std::ptrdiff_t>(at), columns, row.begin());
      visit();
    }
  };
  eachRow([&] { table.measure(row); });
  table.printHeader(stdout);
  eachRow([&] { table.printRow(stdout, row); });
  if (more) {
    print('\n' + options.line(counted(cells.size() / columns, "row") + " shown, others follow"));
    if (!limit.head) print(options.line("--all shows them all, --head N the first N"));
  }
}

void printCsv(Query& query, std::size_t most) {
  formats::CsvWriter csv(stdout, "standard output");
  for (int column = 0; column < query.columnCount(); ++column) {
    csv.text(query.columnName(column));
  }
  csv.endRow();
  query.walk(most, [&] {
    for (int column = 0; column < query.columnCount(); ++column) {
      const std::string cell = query.text(column, 0);
      if (query.isText(column)) {
        csv.label(cell);
      } else {
        csv.text(cell);
      }
    }
    csv.endRow();
  });
  csv.finish();
}

Json jsonCell(const Query& query, int column) {
  switch (query.type(column)) {
    case ZTB_SQL_NULL:
      return nullptr;
    case ZTB_SQL_INTEGER:
      return query.integer(column);
    case ZTB_SQL_REAL:
      return jsonNumber(query.real(column));
    default:
      return query.text(column, 0);
  }
}

// An array with an object for each row, one on a line.
void printJson(Query& query, std::size_t most) {
  for (int column = 1; column < query.columnCount(); ++column) {
    for (int before = 0; before < column; ++before) {
      if (query.columnName(before) == query.columnName(column)) {
        throw UsageError(fmt::format(
            "--json: two columns are called {}, which an object cannot have: name one with as",
            inQuotes(query.columnName(column))));
      }
    }
  }
  std::string before = "[\n  ";
  query.walk(most, [&] {
    Json row = Json::object();
    for (int column = 0; column < query.columnCount(); ++column) {
      row[std::string(query.columnName(column))] = jsonCell(query, column);
    }
    print(std::exchange(before, ",\n  ") + jsonText(row));
  });
  print(before.front() == '[' ? "[]\n" : "\n]\n");
}

// The columns of a result that make a symbol.
struct Content {
  std::vector<int> keys;
  int value = -1;  // -1 for a set
};

Content contentOf(const Query& query, const formats::SymbolSpec& spec) {
  const auto find = [&](const std::string& name) {
    for (int column = 0; column < query.columnCount(); ++column) {
      if (sameFolded(query.columnName(column), name)) {
        return column;
      }
    }
    return -1;
  };
  Content content;
  for (const formats::KeySpec& key : spec.keys) {
    content.keys.push_back(find(key.column));
    if (content.keys.back() < 0) {
      throw UsageError(fmt::format("{}: the query gives no column {}", spec.source, key.column));
    }
  }
  const auto isKey = [&](int column) {
    return std::ranges::find(content.keys, column) != content.keys.end();
  };
  content.value = find(spec.contentColumn);
  if (content.value >= 0 && !isKey(content.value)) {
    return content;
  }
  std::vector<int> others;
  for (int column = 0; column < query.columnCount(); ++column) {
    if (!isKey(column)) {
      others.push_back(column);
    }
  }
  if (others.size() > 1) {
    throw UsageError(
        fmt::format("{}: which column has the values? write = COLUMN behind it", spec.source));
  }
  content.value = others.empty() ? -1 : others.front();
  return content;
}

ztb::Symbol addSymbol(ztb::Database& database, const formats::SymbolSpec& spec, ztb::Type type) {
  std::vector<ztb::DomainArgument> domains;
  for (const formats::KeySpec& key : spec.keys) {
    const std::string name = key.domain.value_or(key.column);
    const std::optional<ztb::Symbol> set =
        name == "*" ? std::nullopt : database.findSymbolOrAlias(name);
    const bool isSet = set && set->dimension() == 1 &&
                       (set->type() == ztb::Type::set || set->type() == ztb::Type::alias);
    domains.push_back(isSet ? ztb::DomainArgument(*set) : ztb::DomainArgument(name));
  }
  return database.addSymbol(spec.name, type, domains, spec.text);
}

// Values that became others in the symbol.
struct Changed {
  std::size_t nulls = 0;    // now na
  std::size_t rounded = 0;  // whole numbers that no double is
};

// Whether a whole number is a double; 2^63 as one is no whole number of 64 bits any more.
bool isDouble(long long whole) {
  const auto nearest = static_cast<double>(whole);
  return nearest < 0x1p63 && static_cast<long long>(nearest) == whole;
}

void addRecord(const Query& query, const Content& content, ztb::Database& database,
               ztb::Symbol& symbol, std::vector<std::string>& labels, Changed& changed) {
  for (std::size_t position = 0; position < labels.size(); ++position) {
    const int type = query.type(content.keys[position]);
    if (type == ZTB_SQL_NULL) {
      throw Failure("a label is null");
    }
    if (type == ZTB_SQL_BLOB) {
      throw Failure(
          fmt::format("a label is bytes, {}, no text", query.text(content.keys[position], 0)));
    }
    labels[position] = query.text(content.keys[position], 0);
    if (labels[position].find('\0') != std::string::npos) {
      throw Failure(fmt::format("label {} has a zero byte", inQuotes(labels[position])));
    }
  }
  if (labels.empty() && symbol.recordCount() > 0) {
    throw Failure("one row is expected, since there are no key columns");
  }
  ztb::Record record = symbol.add(labels);
  if (content.value < 0) {
    return;
  }
  const int type = query.type(content.value);
  if (query.isText(content.value)) {
    throw Failure(fmt::format("{} is no number", inQuotes(query.text(content.value, 0))));
  }
  record.setLevel(type == ZTB_SQL_NULL ? database.specialValues()[ZTB_NOT_AVAILABLE]
                                       : query.real(content.value));
  changed.nulls += type == ZTB_SQL_NULL ? 1 : 0;
  changed.rounded += type == ZTB_SQL_INTEGER && !isDouble(query.integer(content.value)) ? 1 : 0;
}

// Writes all of the first file, with the result as one symbol more.
void writeSymbol(Query& query, const SqlOptions& options) {
  const formats::SymbolSpec spec =
      formats::parseSymbolSpec(formats::SpecKind::parameter, *options.into, "--into");
  const Content content = contentOf(query, spec);
  OutputFile output(*options.out);
  ztb::Database database = ztb::Database::open(query.firstFile());
  std::size_t count = 0;
  Changed changed;
  try {
    ztb::Symbol symbol =
        addSymbol(database, spec, content.value < 0 ? ztb::Type::set : ztb::Type::parameter);
    std::vector<std::string> labels(spec.keys.size());
    query.walk(RowLimit::none, [&] {
      ++count;
      try {
        addRecord(query, content, database, symbol, labels, changed);
      } catch (const std::exception& error) {
        throw Failure(fmt::format("--into {}: row {}: {}", *options.into, count, error.what()));
      }
    });
    // The result may have the name of a file that the query read.
    query.close();
    database.write(output.path());
  } catch (const ztb::Error& error) {
    throw Failure(withFile(output.name(), error.what()));
  }
  output.finish();
  if (changed.nulls > 0) {
    printErrors(
        fmt::format("ztb: warning: {}: {} na: in SQL undef, na and any other NaN are null\n",
                    ztb::displayText(spec.name),
                    changed.nulls == 1 ? "1 null is" : fmt::format("{} nulls are", changed.nulls)));
  }
  if (changed.rounded > 0) {
    printErrors(fmt::format(
        "ztb: warning: {}: {} no double, the nearest one is taken\n", ztb::displayText(spec.name),
        changed.rounded == 1 ? "1 whole number is"
                             : fmt::format("{} whole numbers are", changed.rounded)));
  }
  print(fmt::format("{}: {}, {}\n", ztb::displayText(output.name()), ztb::displayText(spec.name),
                    counted(count, "record")));
}

void runSql(const SqlOptions& options) {
  if (options.into.has_value() != options.out.has_value()) {
    throw UsageError("--into names the new symbol and --out its file: give both or none");
  }
  if (options.into && (options.limit.head || options.limit.all)) {
    throw UsageError("--head and --all tell what is shown; --into takes all rows");
  }
  Progress progress;
  Query query(options.words, progress);
  if (options.into) {
    writeSymbol(query, options);
  } else if (options.csv) {
    printCsv(query, options.limit.rows(false));
  } else if (options.json) {
    printJson(query, options.limit.rows(false));
  } else {
    printTable(query, options.table, options.limit);
  }
}

}  // namespace

void addSqlCommand(CommandLine& line) {
  Command command = line.add("sql", "Query the symbols of files in SQL");
  auto options = std::make_shared<SqlOptions>();
  command
      .words("FILE", options->words, 2,
             "RXF files, - for standard input, and the query, a select, with or values of SQLite")
      .typeName("... QUERY")
      .required();
  const Option csv = command.flag("--csv", options->csv, "Print as CSV");
  Option json = command.flag("--json", options->json, "Print as JSON");
  json.excludes(csv);
  Option into = command.text("--into", options->into,
                             "Make a symbol of the rows, as in 'total(food) = sum'; with --out");
  into.typeName("SYMBOL").notEmpty().excludes(csv).excludes(json);
  command
      .text("--out", options->out,
            "RXF file to make: the first file with the new symbol, - for standard output")
      .typeName("FILE")
      .notEmpty();
  addRowLimit(command, options->limit, "rows");
  addWidthOption(command, options->table);
  addDigitsOption(command, options->table);
  addMemoryOption(command);
  command.footer(
      "Each symbol is a table: its keys, named by their domains, then text, value, or level,\n"
      "marginal, lower, upper and scale. A table of one file among several is FILE.SYMBOL, by the\n"
      "name of the file without its ending; main.rxf is main_2. Labels compare with the case of "
      "letters folded.\n\n"
      "Examples:\n"
      "  ztb sql diet.rxf 'select food, value from price where value < 20 order by value'\n"
      "  ztb sql diet.rxf 'select nutrient, sum(value) as amount from nutrition group by nutrient' "
      "\\\n"
      "    --into 'supply(nutrient) = amount' --out more.rxf");
  command.action([options] {
    runSql(*options);
    return exitFine;
  });
}

}  // namespace tool
