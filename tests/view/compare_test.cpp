// Two symbols beside each other.
#include "tests/view/view_client.h"

namespace viewtest {
namespace {

class ViewCompareTest : public ViewTest {
 protected:
  // The labels in another order, and one more.
  std::string makeOther() {
    return makeFile("other.rxf", {"w3", "w1", "bor", "Ada", "Cid"},
                    {{"plant", ZTB_SET, {"*"}, {{{"bor"}, {0}}, {{"Ada"}, {1}}, {{"Cid"}, {2}}}},
                     {"cost",
                      ZTB_PARAMETER,
                      {"plant", "week"},
                      {{{"bor", "w3"}, {5}},
                       {{"bor", "w1"}, {6.5}},
                       {{"Ada", "w3"}, {3}},
                       {{"Ada", "w1"}, {5}},
                       {{"Cid", "w1"}, {-4}}}}},
                    {"the other", "the last"});
  }
  std::string first_ = makeCosts();
  std::string second_ = makeOther();
  Server server_{{first_, second_}};
};

TEST_F(ViewCompareTest, TellsWhatDiffersByTheSizeOfTheChange) {
  const Json compared = server_.json("compare", {{"s", "cost"}, {"f2", "1"}});
  EXPECT_EQ(compared["same"], 2) << "Ada w1 and Bor w3";
  EXPECT_EQ(compared["changed"], 2);
  EXPECT_EQ(compared["gone"], 1);
  EXPECT_EQ(compared["new"], 1);
  EXPECT_EQ(compared["differ"], 4);
  EXPECT_EQ(compared["rows"], Json::parse(R"([
      {"keys":["Ada","w3"],"kind":"changed","a":"eps","b":3,"change":null},
      {"keys":["Cid","w1"],"kind":"new","a":null,"b":-4,"change":-4},
      {"keys":["Ada","w2"],"kind":"gone","a":-2.5,"b":null,"change":2.5},
      {"keys":["Bor","w1"],"kind":"changed","a":7,"b":6.5,"change":-0.5}])"));
  EXPECT_EQ(server_.json("compare", {{"s", "cost"}, {"f2", "1"}, {"from", "3"}})["rows"].size(),
            1U);
}

TEST_F(ViewCompareTest, TellsWhatDiffersInTheOrderOfTheLabels) {
  const Json compared = server_.json("compare", {{"s", "cost"}, {"f2", "1"}, {"sort", "key"}});
  std::vector<Json> keys;
  for (const Json& row : compared["rows"]) keys.push_back(row["keys"]);
  EXPECT_EQ(Json(keys), Json::parse(R"([["Ada","w2"],["Ada","w3"],["Bor","w1"],["Cid","w1"]])"));
  EXPECT_EQ(server_.refused(400, "compare", {{"s", "cost"}, {"sort", "size"}}),
            "sort: 'size' is neither change nor key");
}

TEST_F(ViewCompareTest, ComparesTexts) {
  const Json compared = server_.json("compare", {{"s", "plant"}, {"f2", "1"}});
  EXPECT_EQ(compared["same"], 1);
  EXPECT_EQ(compared["rows"], Json::parse(R"([
      {"keys":["Ada"],"kind":"changed","a":"the first","b":"the other","change":null},
      {"keys":["Cid"],"kind":"new","a":null,"b":"the last","change":null}])"));
}

TEST_F(ViewCompareTest, AgreesWithTheCommand) {
  const Json compared = server_.json("compare", {{"s", "cost"}, {"f2", "1"}});
  FILE* pipe = popen((ZTB_PROGRAM " diff " + first_ + " " + second_ + " --json").c_str(), "r");
  ASSERT_NE(pipe, nullptr);
  std::string text;
  std::array<char, 4096> piece{};
  while (std::fgets(piece.data(), piece.size(), pipe) != nullptr) text += piece.data();
  EXPECT_NE(pclose(pipe), 0) << "they differ";
  const Json difference = Json::parse(text);
  for (const Json& symbol : difference["symbols"]) {
    if (symbol["name"] != "cost") continue;
    EXPECT_EQ(symbol["records_gone"], compared["gone"]);
    EXPECT_EQ(symbol["records_added"], compared["new"]);
    EXPECT_EQ(symbol["records_changed"], compared["changed"]);
    return;
  }
  ADD_FAILURE() << text;
}

TEST_F(ViewCompareTest, RefusesSymbolsOfOtherShapes) {
  EXPECT_EQ(server_.refused(400, "compare", {{"s", "cost"}, {"s2", "plant"}}),
            "cost(plant, week) and plant(*) cannot be compared: they have other positions or "
            "values");
  EXPECT_EQ(server_.json("compare", {{"s", "cost"}})["same"], 5) << "with itself";
}

}  // namespace
}  // namespace viewtest
