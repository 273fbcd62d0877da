#include "tests/formats/random_database.h"

#include <bit>
#include <cstdint>
#include <random>
#include <vector>

namespace formatstest {

namespace {

const std::vector<std::string> oddLabels{"a,b",
                                         "say \"hi\"",
                                         "it's",
                                         "  lead",
                                         "\xE9t\xE9",
                                         "\xEF\xBB\xBFx",
                                         "1e3",
                                         "na",
                                         "\"quoted\"",
                                         "=1+1",
                                         "\x7F\x80\xFF",
                                         "na\xC3\xAFve",
                                         "\xE4\xB8\xAD\xE6\x96\x87",
                                         "\\",
                                         "\\x41",
                                         "_x0041_",
                                         "#N/A",
                                         "2020",
                                         "true",
                                         "null",
                                         "{\"a\":1}",
                                         "<b>&amp;</b>",
                                         "\xF0\x9F\x9A\x80",
                                         "\xEF\xBF\xBF",
                                         "2024-03-01",
                                         "-0",
                                         "007",
                                         "'quoted'",
                                         "a\\b"};

const std::vector<std::string> oddTexts{
    "",   "plain",   "two\r\nlines\n", " blanks ",     "\"", "tab\there", "\xE9t\xE9", "\x01\x02",
    "\\", "_x000D_", "=HYPERLINK(1)",  "\xEF\xBF\xBE", "'"};

constexpr std::uint64_t oddBits[] = {
    0x0000000000000000, 0x8000000000000000, 0x0000000000000001, 0x8000000000000001,
    0x0000000000000002, 0x000FFFFFFFFFFFFF, 0x0010000000000000, 0x3FB999999999999A,
    0x7FEFFFFFFFFFFFFF, 0xFFEFFFFFFFFFFFFF, 0x7FF0000000000000, 0xFFF0000000000000,
    0x7FF8000000000000, 0x7FF8000000000001, 0x7FF0000000000001, 0xFFF8000000000000,
    0xFFFFFFFFFFFFFFFF, 0x7E37E43C8800759C, 0x7E37E43C8800759D, 0x3FF0000000000001};

class Maker {
 public:
  explicit Maker(unsigned seed) : random_(seed) {}

  ztb::Database make() {
    makeLabels();
    makeSets();
    makeRecords();
    return std::move(database_);
  }

 private:
  std::size_t below(std::size_t bound) {
    return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
  }

  void makeLabels() {
    if (below(2) == 0) addLabel("");
    if (below(2) == 0) addLabel(std::string(63, 'x'));
    for (const std::string& label : oddLabels) {
      if (below(2) == 0) addLabel(label);
    }
    const std::size_t plain = 3 + below(30);
    for (std::size_t at = 0; at < plain; ++at) addLabel("l" + std::to_string(at));
  }

  void addLabel(const std::string& label) { labels_.push_back(database_.mergeLabel(label)); }

  void makeSets() {
    const std::size_t count = 1 + below(3);
    for (std::size_t at = 0; at < count; ++at) {
      const std::string name = "Set" + std::to_string(at);
      ztb::Symbol set =
          database_.addSymbol(name, ztb::Type::set, std::vector<ztb::DomainArgument>{"*"}, text(),
                              static_cast<int>(below(5)));
      for (const int label : labels_) {
        if (below(3) != 0) putElement(set, {label});
      }
      sets_.push_back(set);
    }
    sets_.push_back(database_.addAlias("Twin", sets_.front(), text()));
    database_.addAlias("All", database_.universe());
  }

  void putElement(ztb::Symbol set, const std::vector<int>& keys) {
    const std::string given = text();
    set.putElement(keys, given);
  }

  std::vector<ztb::DomainArgument> domains(std::size_t dimension) {
    std::vector<ztb::DomainArgument> result;
    for (std::size_t position = 0; position < dimension; ++position) {
      const std::size_t kind = below(4);
      if (kind == 0) {
        result.emplace_back("*");
      } else if (kind == 1) {
        result.emplace_back("nowhere");
      } else {
        result.emplace_back(sets_[below(sets_.size())]);
      }
    }
    return result;
  }

  void makeRecords() {
    const std::vector<std::size_t> dimensions{0, 1, 2, 3, 5, 20};
    int number = 0;
    for (const ztb::Type type :
         {ztb::Type::set, ztb::Type::parameter, ztb::Type::variable, ztb::Type::equation}) {
      for (int copy = 0; copy < 2; ++copy) {
        const std::size_t dimension = dimensions[below(dimensions.size())];
        if (type == ztb::Type::set && dimension == 0) continue;
        const int info = type == ztb::Type::variable ? static_cast<int>(1 + below(5)) : 0;
        ztb::Symbol symbol = database_.addSymbol("sym" + std::to_string(++number), type,
                                                 domains(dimension), text(), info);
        const std::size_t records = dimension == 0 ? below(2) : below(40);
        for (std::size_t record = 0; record < records; ++record) {
          std::vector<int> keys;
          for (std::size_t at = 0; at < dimension; ++at) {
            keys.push_back(labels_[below(labels_.size())]);
          }
          if (type == ztb::Type::set) {
            putElement(symbol, keys);
          } else if (type == ztb::Type::parameter) {
            symbol.put(keys, value());
          } else {
            symbol.put(keys, {value(), value(), value(), value(), value()});
          }
        }
      }
    }
  }

  double value() {
    if (below(2) == 0) return std::bit_cast<double>(oddBits[below(std::size(oddBits))]);
    if (below(2) == 0) return static_cast<double>(below(1000));
    return std::uniform_real_distribution<double>(-1e6, 1e6)(random_);
  }

  // Texts that differ in the case of letters only would become one.
  std::string text() { return oddTexts[below(oddTexts.size())]; }

  std::mt19937 random_;
  ztb::Database database_;
  std::vector<int> labels_;
  std::vector<ztb::Symbol> sets_;
};

}  // namespace

ztb::Database randomDatabase(unsigned seed) {
  return Maker(seed).make();
}

std::string describe(const ztb::Database& database) {
  std::string text;
  for (int number = 1; number <= database.labelCount(); ++number) {
    text += "label >" + database.label(number).str() + "<\n";
  }
  for (int position = 0; position < database.symbolCount(); ++position) {
    const ztb::Symbol symbol = database.symbolAt(position);
    text += "symbol " + symbol.name().str() + " type " +
            std::to_string(static_cast<int>(symbol.type())) + " text >" + symbol.text().str() + "<";
    if (symbol.type() == ztb::Type::alias) {
      text += " of " + symbol.unaliased().name().str() + '\n';
      continue;
    }
    text += " info " + std::to_string(symbol.userInfo());
    for (const ztb::Domain& domain : symbol.domains()) {
      text += " in " + domain.name.str() + (domain.set ? "" : "?");
    }
    text += '\n';
    ztb::Rows rows = symbol.rows();
    for (auto at = rows.begin(); at != rows.end(); ++at) {
      for (const int key : (*at).keys) {
        text += std::to_string(key) + ' ';
      }
      if (symbol.type() == ztb::Type::set) {
        text += ">" + at.record().text().str() + "<";
      } else {
        for (const double value : (*at).values) {
          text += std::to_string(std::bit_cast<std::uint64_t>(value)) + ' ';
        }
      }
      text += '\n';
    }
  }
  return text;
}

}  // namespace formatstest
