// --store of show and import, and the store calls of the wrapper that they stand on.
#include <nlohmann/json.hpp>
#include <ztb/ztb.hpp>

#include "tests/tools/program.h"

namespace {

using tooltest::ProgramTest;
using ztb::Store;

class StoreTest : public ProgramTest {
 protected:
  // Rows out of key order, a text, domains and a scalar.
  void writeTables() const {
    write("food.csv", "food,unit\nmilk,quart\neggs,dozen\nham,pound\n");
    write("price.csv", "food,day,price\nham,mon,3\nmilk,tue,1\nmilk,mon,2\neggs,tue,4\n");
    write("pi.csv", "pi\n3.25\n");
  }

  std::vector<std::string> import(const std::string& out,
                                  std::vector<std::string> further = {}) const {
    std::vector<std::string> arguments = {
        "import", out,         "--from",         "food.csv",  "--set",          "food : unit",
        "--from", "price.csv", "--distinct-set", "day",       "--parameter",    "price(food, day)",
        "--from", "pi.csv",    "--parameter",    "pi() = pi", "--check-domains"};
    arguments.insert(arguments.end(), further.begin(), further.end());
    return arguments;
  }
};

TEST_F(StoreTest, ImportMakesTheSameFileFromEveryStore) {
  writeTables();
  ztbFine(import("plain.rxf"));
  for (const std::string store : {"map", "vector", "trie"}) {
    const std::string file = store + ".rxf";
    EXPECT_EQ(ztbFine(import(file, {"--store", store})),
              file + ": 4 symbols, 5 labels, 10 records\n");
    EXPECT_TRUE(read("plain.rxf") == read(file)) << store;
  }
}

TEST_F(StoreTest, ShowPrintsTheSameFromEveryStore) {
  writeTables();
  ztbFine(import("a.rxf"));
  for (const std::vector<std::string>& what : {std::vector<std::string>{"price"},
                                               {"price", "--slice", "milk,*"},
                                               {"food", "--csv"},
                                               {"pi"},
                                               {"*"}}) {
    std::vector<std::string> arguments = {"show", "a.rxf"};
    arguments.insert(arguments.end(), what.begin(), what.end());
    const std::string expected = ztbFine(arguments);
    for (const char* store : {"map", "vector", "trie"}) {
      std::vector<std::string> chosen = arguments;
      chosen.insert(chosen.end(), {"--store", store});
      EXPECT_EQ(ztbFine(chosen), expected) << store;
    }
  }
}

TEST_F(StoreTest, ShowTellsTheStoreInJson) {
  writeTables();
  ztbFine(import("a.rxf"));
  for (const std::string store : {"map", "vector", "trie"}) {
    const auto json =
        nlohmann::json::parse(ztbFine({"show", "a.rxf", "price", "--json", "--store", store}));
    EXPECT_EQ(json["store"], store);
  }
}

TEST_F(StoreTest, AWordThatIsNoStoreIsWrongUsage) {
  writeTables();
  ztbFine(import("a.rxf"));
  const tooltest::Outcome outcome = ztb({"show", "a.rxf", "price", "--store", "heap"});
  EXPECT_EQ(outcome.status, 2);
  EXPECT_NE(outcome.errors.find("'heap' is no store, expected map, vector or trie"),
            std::string::npos)
      << outcome.errors;
}

TEST_F(StoreTest, TheWrapperChoosesAndMovesStores) {
  ztb::Database database;
  EXPECT_EQ(database.store(), Store::map);
  database.selectStore(Store::trie);
  EXPECT_EQ(database.store(), Store::trie);
  ztb::Symbol set = database.addSet("i", {"*"});
  EXPECT_EQ(set.store(), Store::trie);
  set.add("a");
  set.add("b");
  const ztb::Symbol moved = database.moveTo(set, Store::vector);
  EXPECT_EQ(moved.store(), Store::vector);
  EXPECT_EQ(moved.recordCount(), 2);
  EXPECT_TRUE(database.symbol("i") == moved);
}

}  // namespace
