#include "tools/files/domain_check.h"

#include <fmt/format.h>

#include <cstdio>
#include <span>
#include <string_view>
#include <ztb/column_names.hpp>

#include "tools/text/json_text.h"
#include "tools/text/output.h"
#include "tools/text/words.h"
#include "tools/text/wrapped_text.h"

namespace tool {

namespace {

// "1 food, 3 plant": the positions outside their domains, with these.
std::string outsideText(const std::vector<std::size_t>& positions, const FileSymbol& symbol) {
  std::string text;
  for (const std::size_t position : positions) {
    text += fmt::format("{}{} {}", text.empty() ? "" : ", ", position + 1,
                        symbol.domains[position].name);
  }
  return text;
}

// JSON of several lines, each but the first moved to the right.
std::string indented(const Json& json, const std::string& by) {
  std::string text = jsonText(json, 2);
  for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 1)) {
    text.insert(at + 1, by);
  }
  return text;
}

// Prints the members of a JSON array of objects one by one, as nlohmann's library lays them out.
class ArrayPrinter {
 public:
  explicit ArrayPrinter(const std::string& name) {
    tool::print(fmt::format(",\n  \"{}\": [", name));
  }
  void add(const Json& entry) {
    tool::print((empty_ ? "\n    " : ",\n    ") + indented(entry, "    "));
    empty_ = false;
  }
  void close() const { tool::print(empty_ ? "]" : "\n  ]"); }

 private:
  bool empty_ = true;
};

}  // namespace

DomainCheck::DomainCheck(const ExchangeFile& file, Progress& progress) : file_(file) {
  for (const FileSymbol& symbol : file_.symbols()) {
    if (!symbol.isAlias() && symbol.dimension != 0) {
      progress.step("checking the domains of " + symbol.name);
      checkSymbol(symbol, progress);
    }
  }
}

std::size_t DomainCheck::recordCount() const {
  std::size_t count = 0;
  for (const Found& found : symbols_) {
    count += found.records;
  }
  return count;
}

// Reads a set that is a domain, once.
const DomainCheck::Members* DomainCheck::membersOf(int set) {
  if (set < 0) {
    return nullptr;
  }
  const FileSymbol& symbol = file_.resolved(file_.symbolAt(set));
  if (symbol.isUniverse()) {
    return nullptr;
  }
  const auto [entry, isNew] = members_.try_emplace(symbol.number);
  if (isNew) {
    entry->second.resize(static_cast<std::size_t>(file_.labelCount()) + 1);
    for (RecordWalk record(file_, symbol); record.next();) {
      entry->second[static_cast<std::size_t>(record.keys()[0])] = true;
    }
  }
  return &entry->second;
}

void DomainCheck::checkSymbol(const FileSymbol& symbol, Progress& progress) {
  bool checked = false;
  for (std::size_t position = 0; position < symbol.domains.size(); ++position) {
    if (symbol.domains[position].set < 0) {
      unchecked_.push_back({&symbol, position});
    }
    checked = membersOf(symbol.domains[position].set) != nullptr || checked;
  }
  if (!checked) {
    return;
  }
  std::size_t records = 0;
  eachOutside(symbol, [&](std::span<const int>, const std::vector<std::size_t>&) {
    progress.count(++records);
  });
  if (records > 0) {
    symbols_.push_back({&symbol, records});
  }
}

std::vector<const DomainCheck::Members*> DomainCheck::domainsOf(const FileSymbol& symbol) const {
  std::vector<const Members*> domains;
  for (const FileDomain& domain : symbol.domains) {
    const int set = domain.set < 0 ? 0 : file_.resolved(file_.symbolAt(domain.set)).number;
    domains.push_back(set == 0 ? nullptr : &members_.at(set));
  }
  return domains;
}

// Calls use with the keys and the positions outside of each record that has any.
template <typename Use>
void DomainCheck::eachOutside(const FileSymbol& symbol, const Use& use) const {
  const std::vector<const Members*> domains = domainsOf(symbol);
  std::vector<std::size_t> outside;
  for (RecordWalk record(file_, symbol); record.next();) {
    outside.clear();
    for (std::size_t position = 0; position < domains.size(); ++position) {
      if (domains[position] != nullptr &&
          !(*domains[position])[static_cast<std::size_t>(record.keys()[position])]) {
        outside.push_back(position);
      }
    }
    if (!outside.empty()) {
      use(record.keys(), outside);
    }
  }
}

void DomainCheck::printTable(const Found& found, const TableStyle& style) const {
  const FileSymbol& symbol = *found.symbol;
  TablePrinter table(style);
  for (const std::string& column : ztb::keyColumns(symbol.name, symbol.type, domainNames(symbol))) {
    table.addColumn(column, TablePrinter::Align::left);
  }
  table.addColumn("outside", TablePrinter::Align::left);
  const auto eachRow = [&](auto&& use) {
    std::vector<std::string_view> cells;
    eachOutside(symbol, [&](std::span<const int> keys, const std::vector<std::size_t>& positions) {
      cells.clear();
      for (const int key : keys) {
        cells.push_back(file_.label(key));
      }
      const std::string outside = outsideText(positions, symbol);
      cells.emplace_back(outside);
      use(cells);
    });
  };
  eachRow([&](const std::vector<std::string_view>& cells) { table.measure(cells); });
  tool::print(wrapped(fmt::format("{} {}: {} outside its domains", typeWord(symbol.type),
                                  signature(symbol), counted(found.records, "record")),
                      style.width) +
              "\n\n");
  table.printHeader(stdout);
  eachRow([&](const std::vector<std::string_view>& cells) { table.printRow(stdout, cells); });
  tool::print("\n");
}

void DomainCheck::print(const TableStyle& style) const {
  for (const Found& found : symbols_) {
    printTable(found, style);
  }
  for (const Unchecked& unchecked : unchecked_) {
    const std::string text =
        fmt::format("{}: position {} is not checked: {} is no set of one position in this file",
                    signature(*unchecked.symbol), unchecked.position + 1,
                    printable(unchecked.symbol->domains[unchecked.position].name));
    tool::print(wrapped(text, style.width) + '\n');
  }
}

void DomainCheck::printJson() const {
  tool::print("{\n  \"file\": " + jsonText(Json(file_.path())));
  ArrayPrinter violations("violations");
  for (const Found& found : symbols_) {
    const FileSymbol& symbol = *found.symbol;
    eachOutside(symbol, [&](std::span<const int> keys, const std::vector<std::size_t>& positions) {
      Json entry;
      entry["symbol"] = symbol.name;
      entry["keys"] = Json::array();
      entry["positions"] = Json::array();
      entry["domains"] = Json::array();
      for (const int key : keys) {
        entry["keys"].push_back(file_.label(key));
      }
      for (const std::size_t position : positions) {
        entry["positions"].push_back(position + 1);
        entry["domains"].push_back(symbol.domains[position].name);
      }
      violations.add(entry);
    });
  }
  violations.close();
  ArrayPrinter notChecked("not_checked");
  for (const Unchecked& unchecked : unchecked_) {
    notChecked.add({{"symbol", unchecked.symbol->name},
                    {"position", unchecked.position + 1},
                    {"domain", unchecked.symbol->domains[unchecked.position].name}});
  }
  notChecked.close();
  tool::print("\n}\n");
}

}  // namespace tool
