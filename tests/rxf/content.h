// What an exchange file holds, as plain values that can be compared, and how to write and read it
// through anything that has the operations of an exchange file.
#ifndef ZTB_TESTS_RXF_CONTENT_H_
#define ZTB_TESTS_RXF_CONTENT_H_

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>

namespace rxftest {

constexpr int kSet = 0;
constexpr int kParameter = 1;
constexpr int kVariable = 2;
constexpr int kEquation = 3;
constexpr int kAlias = 4;

struct Record {
  std::vector<int> keys;
  std::vector<std::uint64_t> bits;  // of the values

  bool operator==(const Record&) const = default;
};

// A record of plain numbers.
Record record(std::vector<int> keys, const std::vector<double>& values);

struct Symbol {
  std::string name;
  int type = kParameter;
  int dim = 0;
  int userInfo = 0;
  std::string text;
  std::vector<Record> records;
  int domainKind = 0;  // 0 none, 2 names only, 3 strict
  std::vector<std::string> domain;
  std::string aliasOf;  // of an alias: "*" or the name of a set

  bool operator==(const Symbol&) const = default;
};

struct Content {
  std::vector<std::string> labels;
  std::vector<std::string> texts;
  std::vector<Symbol> symbols;

  bool operator==(const Content&) const = default;
};

// A file with every kind of symbol, domains, aliases, texts and special values, of a few hundred
// bytes.
Content smallContent();

std::vector<const char*> pointers(const std::vector<std::string>& texts);

template <typename File>
void writeContent(File& file, const Content& content) {
  file.startLabels();
  for (const std::string& label : content.labels) file.addLabel(label.c_str());
  file.finishLabels();
  for (const Symbol& symbol : content.symbols) {
    if (symbol.type == kAlias) {
      file.addAlias(symbol.name.c_str(), symbol.aliasOf.c_str());
      continue;
    }
    file.startWriting(symbol.name.c_str(), symbol.text.c_str(), symbol.dim, symbol.type,
                      symbol.userInfo);
    if (symbol.domainKind == 3) file.setDomain(pointers(symbol.domain).data());
    std::array<double, 5> values{};
    for (const Record& record : symbol.records) {
      for (std::size_t s = 0; s < record.bits.size(); ++s) {
        values[s] = std::bit_cast<double>(record.bits[s]);
      }
      file.write(record.keys.data(), values.data());
    }
    file.finishWriting();
  }
  for (std::size_t i = 0; i < content.symbols.size(); ++i) {
    if (content.symbols[i].domainKind != 2) continue;
    file.setDomainNames(static_cast<int>(i) + 1, pointers(content.symbols[i].domain).data());
  }
  for (const std::string& text : content.texts) file.addText(text.c_str());
}

// The records of a symbol, as the core reads them: as many calls as were announced.
template <typename File>
std::vector<Record> readRecords(File& file, int number, int dim, int type) {
  std::vector<Record> records;
  bool started = false;
  const int count = file.startReading(number, started);
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  int firstChanged = 0;
  const std::size_t slots = type < kVariable ? 1 : 5;
  for (int i = 0; i < count; ++i) {
    file.read(keys.data(), values.data(), &firstChanged);
    Record record{{keys.begin(), keys.begin() + dim}, {}};
    for (std::size_t s = 0; s < slots; ++s) {
      record.bits.push_back(std::bit_cast<std::uint64_t>(values[s]));
    }
    records.push_back(record);
  }
  file.finishReading();
  return records;
}

// Everything of a file that is open for reading, in the order in which the core reads it.
template <typename File>
Content readContent(File& file) {
  Content content;
  std::array<char, 256> text{};
  for (int i = 1; file.elementText(i, text.data()); ++i) content.texts.emplace_back(text.data());
  for (int i = 1; i <= file.labelCount(); ++i) {
    file.label(i, text.data());
    content.labels.emplace_back(text.data());
  }
  int symbolCount = 0;
  int labelCount = 0;
  file.systemInfo(&symbolCount, &labelCount);
  for (int i = 1; i <= symbolCount; ++i) {
    Symbol symbol;
    file.symbolInfo(i, text.data(), &symbol.dim, &symbol.type);
    symbol.name = text.data();
    int recordCount = 0;
    file.symbolInfoX(i, &recordCount, &symbol.userInfo, text.data());
    symbol.text = text.data();
    if (symbol.type == kAlias) {
      int dim = 0;
      int type = 0;
      file.symbolInfo(symbol.userInfo, text.data(), &dim, &type);
      symbol.aliasOf = text.data();
    } else {
      std::array<std::array<char, 256>, 20> buffers{};
      std::array<char*, 20> names{};
      for (std::size_t d = 0; d < names.size(); ++d) names[d] = buffers[d].data();
      symbol.domainKind = file.symbolDomain(i, names.data());
      for (int d = 0; symbol.domainKind != 0 && d < symbol.dim; ++d) {
        symbol.domain.emplace_back(names[static_cast<std::size_t>(d)]);
      }
      symbol.records = readRecords(file, i, symbol.dim, symbol.type);
    }
    content.symbols.push_back(symbol);
  }
  return content;
}

}  // namespace rxftest

#endif  // ZTB_TESTS_RXF_CONTENT_H_
