#include "tests/bridge/bridge_fixture.h"

#include <cstdio>
#include <sstream>

namespace ztbtest {

Lines lines(const std::string& text) {
  Lines result;
  std::istringstream in(text);
  for (std::string line; std::getline(in, line);) {
    if (!line.empty()) {
      result.push_back(line);
    }
  }
  return result;
}

Lines operator+(Lines left, const Lines& right) {
  left.insert(left.end(), right.begin(), right.end());
  return left;
}

BridgeTest::BridgeTest() {
  rxf_.reset();
  model_.reset();
  // The first database of the process has the exchange-file peer looked for in its own directory.
  const Database first(SystemDirectory{scripted::Client::directory()});
  EXPECT_EQ("", first.lastError());
  makeDiet();
  renew();
}

BridgeTest::~BridgeTest() {
  db_.reset();
  EXPECT_EQ(0, model_.alive("rgy"));
  EXPECT_EQ(0, model_.alive("alg"));
  EXPECT_EQ(0, rxf_.objects());
}

void BridgeTest::renew() {
  db_ = std::make_unique<Database>(SystemDirectory{scripted::ModelClient::directory()});
  EXPECT_EQ("", db().lastError());
  model_.clearLog();
}

Lines BridgeTest::freeDatabase() {
  log();
  db_.reset();
  return log();
}

int BridgeTest::symbol(const char* name, int dim, int type, int userInfo, const char* text) {
  return model_.addSymbol(name, dim, type, userInfo, text);
}

int BridgeTest::column(const std::vector<int>& keys, const std::vector<double>& values, int status,
                       int secondStatus) {
  return model_.addColumn(keys.data(), values.data(), status, secondStatus);
}

int BridgeTest::row(const std::vector<int>& keys, const std::vector<double>& values, int type,
                    int status, int secondStatus) {
  return model_.addRow(keys.data(), values.data(), type, status, secondStatus);
}

void BridgeTest::makeDiet() {
  for (const char* label : {"flour", "milk", "iron", "protein"}) {
    model_.addLabel(label);
  }
  // Level, marginal, right-hand side, scale, shift of the right-hand side.
  symbol("cost", 0, 6, 0, "what all costs");
  row({}, {1, 2, 0, 1, 0.5}, 0, 3, 4);
  symbol("need", 1, 6, 1, "of each nutrient");
  row({3}, {10, 0.1, 8, 2, 0}, 1, 5, 6);
  row({4}, {11, 0.2, 9, 3, 1.5}, 1, 7, 8);
  // Level, marginal, lower bound, upper bound, scale.
  symbol("buy", 1, 5, 3, "of each food");
  column({1}, {5, 0.5, 0, infinity, 1}, 1, 2);
  column({2}, {6, 0.6, 1, 100, 4}, 3, 4);
  symbol("price_var", 1, 5, 5, "");
  column({1}, {0.25, 0, -infinity, infinity, 1});
  column({2}, {0.75, 0, -infinity, infinity, 1});
  symbol("total", 0, 5, 5, "");
  column({}, {7, 0, -infinity, infinity, 1});
  model_.addSolver("dual", 1);
  model_.addSolver("barrier", 0);
  model_.addSolver("primal", 1);
}

Lines BridgeTest::log() {
  std::string text = model_.log();
  model_.clearLog();
  const std::string directory = scripted::ModelClient::directory();
  for (std::size_t at = 0; (at = text.find(directory, at)) != std::string::npos;) {
    text.replace(at, directory.size(), "DIR");
  }
  return lines(text);
}

Lines BridgeTest::log(const std::string& operation) {
  Lines result = log();
  std::erase_if(result, [&](const std::string& line) {
    return line.find(' ' + operation) == std::string::npos;
  });
  return result;
}

std::string BridgeTest::state(const std::string& beginning) {
  for (const std::string& line : lines(model_.dump())) {
    if (line.substr(0, beginning.size()) == beginning) {
      return line;
    }
  }
  return "no line of the state begins with " + beginning;
}

void BridgeTest::prepare() {
  ASSERT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle())) << db().lastError();
  ASSERT_EQ(1, lib().c__ztbinitupdate(db(), model_.handle())) << db().lastError();
  log();
}

void* BridgeTest::data(const char* name,
                       const std::vector<std::pair<const char*, double>>& records) {
  void* const parameter = db().addParameter(name);
  for (const auto& [label, value] : records) {
    db().put(parameter, {label}, value);
  }
  return parameter;
}

int BridgeTest::update(void* modelSymbol, int action, void* dataSymbol, int updateType) {
  noMatch_ = -1;
  return lib().c__ztbupdatemodelsymbol(db(), modelSymbol, action, dataSymbol, updateType,
                                       &noMatch_);
}

Lines BridgeTest::records(const char* name) {
  void* const symbol = db().find(name);
  Lines result;
  if (db().recordCount(symbol) == 0) {
    return result;
  }
  const int dim = db().symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION);
  const Record record = db().first(symbol);
  do {
    std::string line;
    for (const std::string& label : db().labels(record, dim)) {
      line += label + ' ';
    }
    double values[5] = {};
    lib().c__ztbgetlevel(db(), record, &values[0]);
    lib().c__ztbgetmarginal(db(), record, &values[1]);
    lib().c__ztbgetlower(db(), record, &values[2]);
    lib().c__ztbgetupper(db(), record, &values[3]);
    lib().c__ztbgetscale(db(), record, &values[4]);
    line += ':';
    for (const double value : values) {
      char text[32];
      std::snprintf(text, sizeof text, " %g", value);
      line += text;
    }
    result.push_back(line);
  } while (lib().c__ztbrecordmovenext(db(), record) == 1);
  return result;
}

}  // namespace ztbtest
