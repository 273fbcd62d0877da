// What the page asks of one symbol, with answers worked by hand, and beside the command's own.
#include <atomic>
#include <fstream>
#include <sstream>
#include <ztb/rxf.hpp>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

using testing::HasSubstr;

class ViewAnswerTest : public ViewTest {
 protected:
  Server server_{{makeCosts()}};
};

TEST_F(ViewAnswerTest, TellsFilesAndSymbols) {
  const Json files = server_.json("files");
  ASSERT_EQ(files["files"].size(), 1U);
  EXPECT_EQ(files["files"][0]["name"], "costs.rxf");
  EXPECT_EQ(files["files"][0]["kind"], "data");
  EXPECT_EQ(files["files"][0]["symbols"], 2);
  EXPECT_EQ(files["files"][0]["labels"], 5);
  const Json symbols = server_.json("symbols", {{"f", "0"}});
  EXPECT_EQ(symbols[0],
            Json::parse(R"({"name":"plant","type":"set","dim":1,"domains":["*"],"keys":["plant"],
                            "values":["text"],"records":2,"text":""})"));
  EXPECT_EQ(symbols[1]["keys"], Json::parse(R"(["plant","week"])"));
  EXPECT_EQ(symbols[1]["values"], Json::parse(R"(["value"])"));
  EXPECT_EQ(symbols[1]["records"], 5);
}

TEST_F(ViewAnswerTest, GivesWindowsOfRows) {
  const Json all = server_.json("rows", {{"s", "cost"}});
  EXPECT_EQ(all["total"], 5);
  EXPECT_EQ(all["rows"],
            Json::parse(R"([["Ada","w1",5],["Ada","w2",-2.5],["Ada","w3","eps"],["Bor","w1",7],
                            ["Bor","w3",5]])"));
  const Json part = server_.json("rows", {{"s", "COST"}, {"from", "2"}, {"count", "2"}});
  EXPECT_EQ(part["from"], 2);
  EXPECT_EQ(part["rows"], Json::parse(R"([["Ada","w3","eps"],["Bor","w1",7]])"));
  EXPECT_TRUE(server_.json("rows", {{"s", "cost"}, {"from", "5"}})["rows"].empty());
  EXPECT_EQ(server_.json("rows", {{"s", "plant"}})["rows"],
            Json::parse(R"([["Ada","the first"],["Bor",""]])"));
  EXPECT_EQ(server_.json("rows", {{"s", "*"}, {"count", "1"}})["total"], 5);
}

TEST_F(ViewAnswerTest, FiltersRows) {
  const auto rows = [&](const std::vector<std::pair<std::string, std::string>>& filter) {
    std::vector<std::pair<std::string, std::string>> parameters{{"s", "cost"}};
    parameters.insert(parameters.end(), filter.begin(), filter.end());
    return server_.json("rows", parameters);
  };
  EXPECT_EQ(rows({{"where", "value > 0 and week = w1"}})["rows"],
            Json::parse(R"([["Ada","w1",5],["Bor","w1",7]])"));
  EXPECT_EQ(rows({{"p0", "b*"}})["rows"], Json::parse(R"([["Bor","w1",7],["Bor","w3",5]])"));
  EXPECT_EQ(rows({{"in1", "w2"}, {"in1", "w3"}, {"p0", "Ada"}})["rows"],
            Json::parse(R"([["Ada","w2",-2.5],["Ada","w3","eps"]])"));
  const Json window = rows({{"where", "value = 5"}, {"from", "1"}, {"count", "5"}});
  EXPECT_EQ(window["total"], 2);
  EXPECT_EQ(window["rows"], Json::parse(R"([["Bor","w3",5]])"));
  EXPECT_EQ(rows({{"p0", "nobody"}})["total"], 0);
}

TEST_F(ViewAnswerTest, SortsRows) {
  const auto order = [&](const std::string& column, const std::string& descending) {
    std::string text;
    const Json answer =
        server_.json("rows", {{"s", "cost"}, {"sort", column}, {"desc", descending}});
    for (const Json& row : answer["rows"]) {
      text += row[0].get<std::string>().substr(0, 1) + row[1].get<std::string>().substr(1) + ' ';
    }
    return text;
  };
  // As ztb show sorts: eps stands just above 0, what is equal in the order of the file.
  EXPECT_EQ(order("value", "0"), "A2 A3 A1 B3 B1 ");
  EXPECT_EQ(order("value", "1"), "B1 A1 B3 A3 A2 ");
  EXPECT_EQ(order("week", "0"), "A1 B1 A2 A3 B3 ");
  EXPECT_EQ(order("Plant", "1"), "B1 B3 A1 A2 A3 ");
  EXPECT_EQ(server_.json("rows", {{"s", "plant"}, {"sort", "text"}})["rows"],
            Json::parse(R"([["Bor",""],["Ada","the first"]])"));
  EXPECT_EQ(server_.json("rows", {{"s", "cost"},
                                  {"sort", "value"},
                                  {"where", "value > 0"},
                                  {"from", "2"},
                                  {"count", "1"}})["rows"],
            Json::parse(R"([["Bor","w3",5]])"));
}

// Windows behind the first block, in the order of the file and in another.
TEST_F(ViewAnswerTest, GivesWindowsAnywhereInALargeSymbol) {
  constexpr int side = 450;  // 202,500 records, in four blocks
  ztb::RxfOutput output(path("large.rxf"), "test");
  for (int i = 1; i <= side; ++i) output.addLabel("l" + std::to_string(i));
  ztbRxfSymbolInfo info{};
  info.name = "large";
  info.text = "";
  info.type = ZTB_PARAMETER;
  info.dimension = 2;
  output.addSymbol(info, {"*", "*"});
  std::vector<int> first;
  std::vector<int> second;
  std::vector<double> values;
  for (int i = 0; i < side * side; ++i) {
    first.push_back(1 + i / side);
    second.push_back(1 + i % side);
    values.push_back(-i);
  }
  output.addRecords(values.size(), {first.data(), second.data()}, {values.data()});
  output.publish();
  const Server large({path("large.rxf")});
  const auto firstValue = [&](std::vector<std::pair<std::string, std::string>> parameters) {
    parameters.insert(parameters.begin(), {{"s", "large"}, {"count", "1"}});
    return large.json("rows", parameters)["rows"][0][2].get<double>();
  };
  for (const int row : {0, 65535, 65536, 131072, 202499}) {
    EXPECT_EQ(firstValue({{"from", std::to_string(row)}}), -row);
    EXPECT_EQ(firstValue({{"from", std::to_string(row)}, {"sort", "value"}}), row - 202499);
  }
  // Every third record, by its value.
  const std::vector<std::pair<std::string, std::string>> filter{{"where", "dim_2 = \"l*5\""}};
  EXPECT_EQ(large.json("rows", {{"s", "large"}, filter[0]})["total"], 45 * side);
  EXPECT_EQ(firstValue({filter[0], {"from", "20000"}}), -(20000 / 45 * side + 4 + 20000 % 45 * 10));
  EXPECT_EQ(large.json("counts", {{"s", "large"}, {"pos", "0"}, filter[0]})["labels"][3]["count"],
            45);
}

TEST_F(ViewAnswerTest, CountsLabels) {
  EXPECT_EQ(server_.json("counts", {{"s", "cost"}, {"pos", "1"}}),
            Json::parse(R"({"labels":[{"label":"w1","count":2},{"label":"w3","count":2},
                                      {"label":"w2","count":1}],"total":3,"more":false})"));
  EXPECT_EQ(
      server_.json("counts",
                   {{"s", "cost"}, {"pos", "0"}, {"like", "O"}, {"where", "value = 5"}})["labels"],
      Json::parse(R"([{"label":"Bor","count":1}])"));
  const Json one = server_.json("counts", {{"s", "cost"}, {"pos", "1"}, {"limit", "1"}});
  EXPECT_EQ(one["labels"].size(), 1U);
  EXPECT_EQ(one["more"], true);
}

TEST_F(ViewAnswerTest, TellsHowValuesAreSpread) {
  const Json spread = server_.json("histogram", {{"s", "cost"}, {"bins", "2"}});
  EXPECT_EQ(spread["edges"], Json::parse("[-2.5,2.25,7]"));
  EXPECT_EQ(spread["counts"], Json::parse("[1,3]"));
  EXPECT_EQ(spread["special"], Json::parse(R"({"eps":1})"));
  EXPECT_EQ(spread["count"], 4);
  EXPECT_EQ(spread["min"], -2.5);
  EXPECT_EQ(spread["max"], 7);
  EXPECT_EQ(spread["mean"], 3.625);
  const Json none = server_.json("histogram", {{"s", "cost"}, {"where", "value > 99"}});
  EXPECT_TRUE(none["counts"].empty());
  EXPECT_TRUE(none["mean"].is_null());
}

TEST_F(ViewAnswerTest, PivotsSymbols) {
  const Json table = server_.json("pivot", {{"s", "cost"}, {"rows", "1"}, {"cols", "0"}});
  EXPECT_EQ(table["rows"], Json::parse(R"([["w1"],["w2"],["w3"]])"));
  EXPECT_EQ(table["cols"], Json::parse(R"([["Ada"],["Bor"]])"));
  EXPECT_EQ(table["cells"], Json::parse(R"([[0,0,5],[0,1,7],[1,0,-2.5],[2,0,"eps"],[2,1,5]])"));
  const auto weeks = [&](const std::string& how) {
    return server_.json("pivot", {{"s", "cost"}, {"rows", "1"}, {"how", how}})["cells"];
  };
  EXPECT_EQ(weeks("sum"), Json::parse("[[0,0,12],[1,0,-2.5],[2,0,5]]"));
  EXPECT_EQ(weeks("mean"), Json::parse("[[0,0,6],[1,0,-2.5],[2,0,2.5]]"));
  EXPECT_EQ(weeks("count"), Json::parse("[[0,0,2],[1,0,1],[2,0,2]]"));
  EXPECT_EQ(weeks("max"), Json::parse("[[0,0,7],[1,0,-2.5],[2,0,5]]"));
  EXPECT_EQ(weeks("min"), Json::parse(R"([[0,0,5],[1,0,-2.5],[2,0,"eps"]])"));
  EXPECT_EQ(server_.json("pivot", {{"s", "cost"}})["cells"], Json::parse("[[0,0,14.5]]"));
  EXPECT_EQ(server_.json("pivot", {{"s", "plant"}, {"rows", "0"}})["cells"],
            Json::parse("[[0,0,1],[1,0,1]]"));
}

TEST_F(ViewAnswerTest, GivesSeriesForCharts) {
  EXPECT_EQ(server_.json("series", {{"s", "cost"}, {"x", "1"}, {"by", "0"}}),
            Json::parse(R"({"x":["w1","w2","w3"],"panels":[{"label":"","series":[
                              {"label":"Ada","y":[5,-2.5,"eps"]},{"label":"Bor","y":[7,null,5]}]}]})"));
  const Json panels =
      server_.json("series", {{"s", "cost"}, {"x", "1"}, {"over", "0"}, {"how", "max"}})["panels"];
  ASSERT_EQ(panels.size(), 2U);
  EXPECT_EQ(panels[1]["label"], "Bor");
  EXPECT_EQ(panels[1]["series"][0]["y"], Json::parse("[7,null,5]"));
}

TEST_F(ViewAnswerTest, SaysWhatIsWrongWithARequest) {
  EXPECT_EQ(server_.refused(404, "rows", {{"s", "price"}}), "costs.rxf has no symbol 'price'");
  EXPECT_EQ(server_.refused(400, "rows"), "s: is missing");
  EXPECT_EQ(server_.refused(400, "rows", {{"s", "cost"}, {"f", "1"}}),
            "f: '1' is no whole number from 0 to 0");
  EXPECT_EQ(server_.refused(400, "rows", {{"s", "cost"}, {"count", "20001"}}),
            "count: '20001' is no whole number from 0 to 20000");
  EXPECT_EQ(server_.refused(400, "rows", {{"s", "cost"}, {"sort", "day"}}),
            "cost has no column 'day'");
  EXPECT_EQ(server_.refused(400, "rows", {{"s", "cost"}, {"where", "level > 1"}}),
            "cost has no field or position 'level'");
  EXPECT_THAT(server_.refused(400, "rows", {{"s", "cost"}, {"where", "value >"}}),
              HasSubstr("column 8"));
  EXPECT_EQ(server_.refused(400, "counts", {{"s", "cost"}}), "pos: is missing");
  EXPECT_EQ(server_.refused(400, "histogram", {{"s", "plant"}}),
            "plant is a set, which has no values");
  EXPECT_EQ(server_.refused(400, "histogram", {{"s", "cost"}, {"field", "upper"}}),
            "cost has no field 'upper'");
  EXPECT_EQ(server_.refused(400, "pivot", {{"s", "cost"}, {"rows", "0"}, {"cols", "0"}}),
            "A position goes to rows or to columns, not to both.");
  EXPECT_EQ(server_.refused(400, "pivot", {{"s", "cost"}, {"rows", "0,0"}}),
            "rows: 0 stands there twice");
  EXPECT_EQ(server_.refused(400, "pivot", {{"s", "cost"}, {"how", "median"}}),
            "how: 'median' is none of sum, mean, count, min and max");
  EXPECT_EQ(server_.refused(400, "series", {{"s", "cost"}, {"x", "0"}, {"by", "0"}}),
            "A position has one place in a chart.");
  // What has ended is done, and needs no end.
  EXPECT_EQ(server_.json("progress", {{"of", "x"}}),
            Json::parse(R"({"done":1,"records":0,"words":""})"));
  EXPECT_EQ(server_.json("cancel", {{"of", "x"}}), Json::object());
  EXPECT_EQ(server_.refused(400, "progress"), "of: is missing");
  EXPECT_EQ(server_.refused(404, "nothing"), "There is nothing under this address.");
}

// A pivot has a limit, which is told; what is damaged is told with its place, and the server lives.
TEST_F(ViewAnswerTest, LivesOnBehindWhatItCannotDo) {
  std::vector<std::string> labels;
  std::vector<TestRecord> records;
  ztb::RxfOutput output(path("wide.rxf"), "test");
  constexpr int side = 501;
  for (int i = 1; i <= side; ++i) output.addLabel("l" + std::to_string(i));
  ztbRxfSymbolInfo info{};
  info.name = "wide";
  info.text = "";
  info.type = ZTB_PARAMETER;
  info.dimension = 2;
  output.addSymbol(info, {"*", "*"});
  std::vector<int> first;
  std::vector<int> second;
  std::vector<double> values;
  for (int i = 0; i < side * side; ++i) {
    first.push_back(1 + i / side);
    second.push_back(1 + i % side);
    values.push_back(i * 0.37);
  }
  output.addRecords(values.size(), {first.data(), second.data()}, {values.data()});
  output.publish();
  const Server wide({path("wide.rxf")});
  EXPECT_EQ(wide.refused(413, "pivot", {{"s", "wide"}, {"rows", "0"}, {"cols", "1"}}),
            "These positions have more than 250000 combinations of labels: filter the records or "
            "take fewer positions.");
  EXPECT_EQ(wide.json("pivot", {{"s", "wide"}, {"rows", "0"}, {"how", "count"}})["cells"][0][2],
            side);
  // The last block is damaged under the server.
  {
    std::fstream file(path("wide.rxf"), std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(-4000, std::ios::end);
    file.write("damaged", 7);
  }
  EXPECT_THAT(wide.refused(500, "pivot", {{"s", "wide"}, {"rows", "1"}}), HasSubstr("wide.rxf"));
  EXPECT_EQ(wide.json("files")["files"].size(), 1U);
  // One that is gone is read on.
  std::filesystem::remove(path("costs.rxf"));
  EXPECT_EQ(server_.json("rows", {{"s", "cost"}})["total"], 5);
}

TEST_F(ViewAnswerTest, AgreesWithTheCommand) {
  const std::string file = path("costs.rxf");
  const Json shown = Json::parse(ztb("show " + file + " cost --json"));
  const Json rows = server_.json("rows", {{"s", "cost"}})["rows"];
  ASSERT_EQ(rows.size(), shown["records"].size());
  for (std::size_t at = 0; at < rows.size(); ++at) {
    EXPECT_EQ(rows[at][1], shown["records"][at]["keys"][1]);
    EXPECT_EQ(rows[at][2], shown["records"][at]["value"]);
  }
  const Json sums = Json::parse(ztb("aggregate " + file + " cost --by week --sum --json"));
  const Json cells = server_.json("pivot", {{"s", "cost"}, {"rows", "1"}})["cells"];
  ASSERT_EQ(cells.size(), sums["records"].size());
  for (std::size_t at = 0; at < cells.size(); ++at) {
    EXPECT_EQ(cells[at][2], sums["records"][at]["value"]);
  }
  const std::string condition = "value > 0 and plant = \"A*\"";
  ztb("where " + file + " " + path("kept.rxf") + " --where '" + condition + "'");
  const Json kept = Json::parse(ztb("show " + path("kept.rxf") + " cost --json"));
  const Json filtered = server_.json("rows", {{"s", "cost"}, {"where", condition}});
  EXPECT_EQ(filtered["total"], kept["records"].size());
}

}  // namespace
}  // namespace viewtest
