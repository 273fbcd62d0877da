// A database on the scripted exchange-file peer, whose every call a test can see.
//
// The database's own peer object is number 1 in the log, and the object of a write is number 2. At
// the end of a test no object may be left.
#ifndef ZTB_TESTS_EXCHANGE_EXCHANGE_FIXTURE_H_
#define ZTB_TESTS_EXCHANGE_EXCHANGE_FIXTURE_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <initializer_list>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "core/ztb.h"
#include "peers/rxf_family.h"
#include "tests/support/scripted_rxf/scripted_rxf_client.h"

namespace ztb::exchangetest {

using Lines = std::vector<std::string>;
using Keys = std::vector<int>;
using Values = std::vector<double>;
using Records = std::vector<std::pair<Keys, Values>>;

// The lines of a text, without an empty one at its beginning.
inline Lines lines(const std::string& text) {
  Lines result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty() || !result.empty()) {
      result.push_back(line);
    }
  }
  return result;
}

class ExchangeTest : public testing::Test {
 protected:
  ExchangeTest() {
    peer_.reset();
    db_ = std::make_unique<ZTB>(scripted::Client::directory().c_str());
    EXPECT_STREQ("", db_->lastError);
    peer_.clearLog();
  }
  ~ExchangeTest() override {
    debugLevel = 0;
    db_.reset();
    EXPECT_EQ(0, peer_.objects());
    EXPECT_EQ(0, peers::rxfFamily.state.objectCount);
  }

  // ---- What the file begun last holds. ----

  void labels(std::initializer_list<const char*> all) {
    for (const char* label : all) {
      peer_.addLabel(label);
    }
  }
  int symbol(const char* name, int dim, int type, int userInfo = 0, const char* text = "") {
    return peer_.addSymbol(name, dim, type, userInfo, text);
  }
  int symbolOver(const char* name, int type, std::vector<const char*> domain) {
    const int number = symbol(name, static_cast<int>(domain.size()), type);
    peer_.setDomain(domain.data());
    return number;
  }
  void record(const Keys& keys, const Values& values) {
    peer_.addRecord(keys.data(), values.data());
  }

  // diet.rxf: set foods, its alias f, parameter cost over foods, variable amount without a domain.
  void makeDiet() {
    peer_.file("diet.rxf");
    peer_.addText("a food");
    peer_.addText("fresh");
    labels({"flour", "milk", "iron"});
    symbol("foods", 1, dmap::typeSet, 0, "what there is");
    record({1}, {1});
    record({2}, {2});
    symbol("f", 1, dmap::typeAlias, 1);
    symbol("cost", 1, dmap::typeParameter, 0, "of a food");
    const char* domain[] = {"foods"};
    peer_.setDomain(domain);
    record({1}, {0.25});
    record({2}, {0.5});
    symbol("amount", 1, dmap::typeVariable, 3, "bought");
    record({2}, {1, 2, 0, peer_.specialValue(2), 1});
  }

  // ---- What the database did and holds. ----

  // The calls since the last time.
  Lines log() {
    const Lines result = peer_.lines();
    peer_.clearLog();
    return result;
  }
  // The same for calls of these operations alone.
  Lines log(const std::string& operation) {
    Lines result = log();
    std::erase_if(result, [&](const std::string& line) {
      return line.find(' ' + operation) == std::string::npos;
    });
    return result;
  }

  void load(const std::string& fileName = "diet.rxf") {
    ASSERT_EQ(1, db_->InitFromRXF(fileName)) << db_->lastError;
    peer_.clearLog();
  }

  AbstractZTBSymbol& at(const std::string& name) { return *db_->symbols.atName(name); }

  // All slots of all records; the symbol's records are not loaded for it.
  static Records recordsOf(AbstractZTBSymbol& symbol) {
    Records result;
    symbol.forEachRecord([&](const int* keys, const double* values) {
      result.emplace_back(symbol.dim == 0 ? Keys() : Keys(keys, keys + symbol.dim),
                          Values(values, values + dmap::slotCount(symbol.type)));
    });
    return result;
  }

  // Adds a symbol over the universe by the database's own way; its number in the table is its
  // place there.
  AbstractZTBSymbol& add(const char* name, int dim, int type, int userInfo = 0,
                         const char* text = "") {
    std::vector<AbstractZTBSymbol*> domains(static_cast<std::size_t>(dim), db_->universe.get());
    return addOver(name, type, domains, {}, userInfo, text);
  }
  // Adds a symbol over domains, each a symbol or null and a name.
  AbstractZTBSymbol& addOver(const char* name, int type,
                             const std::vector<AbstractZTBSymbol*>& domains,
                             std::vector<const char*> domainNames = {}, int userInfo = 0,
                             const char* text = "") {
    SymbolDescription description;
    description.name = name;
    description.dim = static_cast<int>(domains.size());
    description.type = type;
    description.userInfo = userInfo;
    description.text = text;
    domainNames.resize(domains.size());
    AbstractZTBSymbol* symbol = db_->addSymbol(description, domains.data(), domainNames.data());
    EXPECT_NE(nullptr, symbol) << db_->lastError;
    return *symbol;
  }
  void addLabels(std::initializer_list<const char*> all) {
    for (const char* label : all) {
      int number = 0;
      EXPECT_TRUE(db_->uels.merge(label, &number));
    }
  }
  // Writes the database and gives the result.
  int write(const std::string& fileName = "out.rxf", int noDomainCheck = 0) {
    return db_->WriteRXF(fileName, noDomainCheck);
  }
  // The lines of a written file; none if there is no such file.
  Lines dump(const std::string& fileName = "out.rxf") {
    const char* text = peer_.dump(fileName.c_str());
    return text == nullptr ? Lines() : lines(text);
  }

  scripted::Client peer_;
  std::unique_ptr<ZTB> db_;
};

}  // namespace ztb::exchangetest

#endif  // ZTB_TESTS_EXCHANGE_EXCHANGE_FIXTURE_H_
