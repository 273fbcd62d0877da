#include "tools/domain_check.h"

#include <fmt/format.h>

#include <array>
#include <cstdio>
#include <string_view>

#include "tools/json_text.h"
#include "tools/output.h"
#include "tools/symbol_columns.h"
#include "tools/table_printer.h"
#include "tools/words.h"

namespace tool {

namespace {

// Walks over the violations of a symbol; owns the handle on the present one, and with it the tables
// that the library keeps for the walk.
class ViolationWalk {
 public:
  explicit ViolationWalk(const ztb::Symbol& symbol)
      : symbol_(symbol), database_(symbol.database()) {
    ztb::detail::require(c__ztbgetfirstdvinsymbol(database_, symbol.handle(), &handle_), database_,
                         "ztbGetFirstDVInSymbol");
    atEnd_ = handle_ == nullptr;
  }
  ViolationWalk(const ViolationWalk&) = delete;
  ViolationWalk& operator=(const ViolationWalk&) = delete;
  ~ViolationWalk() { c__ztbfreedvhandle(database_, handle_); }

  [[nodiscard]] bool atEnd() const { return atEnd_; }

  void next() {
    int hasNext = 0;
    ztb::detail::require(c__ztbmovenextdvinsymbol(database_, handle_, &hasNext), database_,
                         "ztbMoveNextDVInSymbol");
    atEnd_ = hasNext == 0;
  }

  // The record at hand, of a symbol with this many positions.
  [[nodiscard]] Violation violation(std::size_t positions) const {
    std::array<int, ZTB_MAX_DIMENSION> outside{};
    ztb::detail::require(c__ztbgetdvindicator(database_, handle_, outside.data()), database_,
                         "ztbGetDVIndicator");
    void* handle = nullptr;
    ztb::detail::require(c__ztbgetdvsymbolrecord(database_, handle_, &handle), database_,
                         "ztbGetDVSymbolRecord");
    const ztb::Record record(symbol_, handle);
    std::array<int, ZTB_MAX_DIMENSION> keys{};
    std::array<double, ztb::fieldCount> values{};
    record.raw(keys.data(), values.data());
    Violation result;
    result.keys.assign(keys.data(), keys.data() + positions);
    for (std::size_t position = 0; position < positions; ++position) {
      result.outside.push_back(outside[position] != 0);
    }
    return result;
  }

 private:
  ztb::Symbol symbol_;
  ztbRec* database_;
  void* handle_ = nullptr;
  bool atEnd_ = true;
};

// "1 food, 3 plant": the positions outside their domains, with these.
std::string outsideText(const Violation& violation, const std::vector<std::string>& domains) {
  std::string text;
  for (std::size_t position = 0; position < domains.size(); ++position) {
    if (violation.outside[position]) {
      text += fmt::format("{}{} {}", text.empty() ? "" : ", ", position + 1, domains[position]);
    }
  }
  return text;
}

void printTable(const DataFile& file, const SymbolViolations& found) {
  const ztb::Symbol& symbol = found.symbol;
  const std::vector<std::string> domains = domainNames(symbol);
  TablePrinter table;
  for (const std::string& column : keyColumns(symbol.name().str(), symbol.type(), domains)) {
    table.addColumn(column, TablePrinter::Align::left);
  }
  table.addColumn("outside", TablePrinter::Align::left);
  const auto eachRow = [&](auto&& use) {
    for (const Violation& violation : found.records) {
      std::vector<std::string_view> cells;
      for (const int key : violation.keys) {
        cells.push_back(file.label(key));
      }
      const std::string outside = outsideText(violation, domains);
      cells.emplace_back(outside);
      use(cells);
    }
  };
  eachRow([&](const std::vector<std::string_view>& cells) { table.measure(cells); });
  print(fmt::format("{} {}: {} outside its domains\n\n", typeWord(symbol.type()), signature(symbol),
                    counted(found.records.size(), "record")));
  table.printHeader(stdout);
  eachRow([&](const std::vector<std::string_view>& cells) { table.printRow(stdout, cells); });
  print("\n");
}

}  // namespace

std::size_t DomainReport::recordCount() const {
  std::size_t count = 0;
  for (const SymbolViolations& symbol : symbols) {
    count += symbol.records.size();
  }
  return count;
}

DomainReport checkDomains(const DataFile& file, Progress& progress) {
  DomainReport report;
  for (ztb::Symbol symbol : file.symbols()) {
    if (symbol.type() == ztb::Type::alias || symbol.dimension() == 0) {
      continue;
    }
    progress.step("checking the domains of " + symbol.name().str());
    const std::vector<ztb::Domain> domains = symbol.domains();
    for (std::size_t position = 0; position < domains.size(); ++position) {
      if (!domains[position].set) {
        report.unchecked.push_back({symbol, position, domains[position].name.str()});
      }
    }
    // A symbol shows no violation before it is read.
    static_cast<void>(symbol.recordCount());
    SymbolViolations found{.symbol = symbol, .records = {}};
    for (ViolationWalk walk(symbol); !walk.atEnd(); walk.next()) {
      found.records.push_back(walk.violation(domains.size()));
      progress.count(found.records.size());
    }
    if (!found.records.empty()) {
      report.symbols.push_back(std::move(found));
    }
    if (symbol.type() != ztb::Type::set) {
      symbol.clear();
    }
  }
  return report;
}

void printDomainReport(const DataFile& file, const DomainReport& report) {
  for (const SymbolViolations& symbol : report.symbols) {
    printTable(file, symbol);
  }
  for (const UncheckedPosition& unchecked : report.unchecked) {
    print(fmt::format("{}: position {} is not checked: {} is no set of one position in this file\n",
                      signature(unchecked.symbol), unchecked.position + 1, unchecked.domain));
  }
}

void printDomainReportJson(const DataFile& file, const DomainReport& report) {
  Json json;
  json["file"] = file.path();
  json["violations"] = Json::array();
  for (const SymbolViolations& symbol : report.symbols) {
    const std::vector<std::string> domains = domainNames(symbol.symbol);
    for (const Violation& violation : symbol.records) {
      Json entry;
      entry["symbol"] = symbol.symbol.name().view();
      entry["keys"] = Json::array();
      entry["positions"] = Json::array();
      entry["domains"] = Json::array();
      for (std::size_t position = 0; position < violation.keys.size(); ++position) {
        entry["keys"].push_back(file.label(violation.keys[position]));
        if (violation.outside[position]) {
          entry["positions"].push_back(position + 1);
          entry["domains"].push_back(domains[position]);
        }
      }
      json["violations"].push_back(std::move(entry));
    }
  }
  json["not_checked"] = Json::array();
  for (const UncheckedPosition& unchecked : report.unchecked) {
    json["not_checked"].push_back({{"symbol", unchecked.symbol.name().view()},
                                   {"position", unchecked.position + 1},
                                   {"domain", unchecked.domain}});
  }
  print(jsonText(json, 2) + "\n");
}

}  // namespace tool
