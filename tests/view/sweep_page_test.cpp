// The result of a sweep.
#include <fstream>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

class ViewSweepTest : public ViewTest {
 protected:
  // Five scenarios, of which one has no solution, with a report over weeks.
  std::string makeSweep() {
    std::vector<TestRecord> reports;
    // In w1 the scenarios have 1, 2, 3, 4, in w2 all have 10.
    const std::vector<std::string> solved{"s1", "s2", "s4", "s5"};
    for (std::size_t at = 0; at < solved.size(); ++at) {
      reports.push_back({{solved[at], "w1"}, {static_cast<double>(at + 1)}});
      reports.push_back({{solved[at], "w2"}, {10}});
    }
    return makeFile(
        "sweep.rxf", {"s1", "s2", "s3", "s4", "s5", "w1", "w2"},
        {{"s", ZTB_SET, {"*"}, {{{"s1"}, {0}}, {{"s2"}, {0}}, {{"s3"}, {0}}, {{"s4"}, {0}}}},
         {"sweep_status",
          ZTB_PARAMETER,
          {"s"},
          {{{"s1"}, {1}}, {{"s2"}, {1}}, {{"s3"}, {4}}, {{"s4"}, {1}}, {{"s5"}, {1}}}},
         {"sweep_solve_status",
          ZTB_PARAMETER,
          {"s"},
          {{{"s1"}, {1}}, {{"s2"}, {1}}, {{"s3"}, {1}}, {{"s4"}, {1}}, {{"s5"}, {1}}}},
         {"sweep_objective",
          ZTB_PARAMETER,
          {"s"},
          {{{"s1"}, {0}}, {{"s2"}, {5}}, {{"s4"}, {10}}, {{"s5"}, {20}}}},
         {"sweep_inputs", ZTB_SET, {"*"}, {}},
         {"sweep_reason", ZTB_SET, {"s"}, {{{"s3"}, {1}}}},
         {"stock", ZTB_PARAMETER, {"s", "week"}, reports}},
        {"clp gave up"});
  }
  Server server_{{makeSweep(), makeCosts()}};
};

TEST_F(ViewSweepTest, TellsHowScenariosEnded) {
  EXPECT_EQ(server_.json("files")["files"][0]["kind"], "sweep");
  const Json sweep = server_.json("sweep");
  EXPECT_EQ(sweep["scenarios"], 5);
  ASSERT_EQ(sweep["failed"].size(), 1U);
  EXPECT_EQ(sweep["failed"][0]["label"], "s3");
  EXPECT_EQ(sweep["failed"][0]["status"], "infeasible");
  EXPECT_EQ(sweep["failed"][0]["reason"], "clp gave up");
  ASSERT_EQ(sweep["objective"].size(), 4U);
  EXPECT_EQ(sweep["objective"][2], Json::parse(R"({"label":"s4","value":10})"));
  EXPECT_EQ(sweep["reports"], Json::parse(R"(["stock"])"));
  EXPECT_EQ(sweep["histogram"]["max"], 20);
  EXPECT_EQ(sweep["histogram"]["mean"], 8.75);
}

TEST_F(ViewSweepTest, DrawsAFanOfAReport) {
  const Json fan = server_.json("fan", {{"s", "stock"}});
  EXPECT_EQ(fan["x"], Json::parse(R"(["w1","w2"])"));
  ASSERT_EQ(fan["bands"].size(), 5U);
  EXPECT_EQ(fan["bands"][1], Json::parse(R"({"quantile":0.25,"y":[1.75,10]})"));
  EXPECT_EQ(fan["bands"][2], Json::parse(R"({"quantile":0.5,"y":[2.5,10]})"));
  EXPECT_EQ(server_.refused(400, "fan", {{"s", "sweep_status"}}),
            "sweep_status is no report of the sweep");
  EXPECT_EQ(server_.refused(400, "fan", {{"s", "stock"}, {"x", "0"}}),
            "x: the first position has the scenarios");
  EXPECT_EQ(server_.refused(400, "sweep", {{"f", "1"}}), "costs.rxf is no result of ztb sweep");
}

// A sweep by the command: a costs 1, 2 or 4, two of b 9 or 10 each, c is not bought.
class ViewSweepInputsTest : public ViewTest {
 protected:
  void SetUp() override {
    std::ofstream(path("m.lp")) << "Minimize\n cost: buy['a'] + buy['b'] + buy['c']\nSubject To\n"
                                   " first: buy['a'] >= 1\n second: buy['b'] >= 2\nEnd\n";
    const auto price = [](const char* scenario, const char* item, double value) {
      return TestRecord{{scenario, item}, {value}};
    };
    makeFile(
        "scenarios.rxf", {"s1", "s2", "s3", "a", "b", "c"},
        {{"s", ZTB_SET, {"*"}, {{{"s1"}, {0}}, {{"s2"}, {0}}, {{"s3"}, {0}}}},
         {"price",
          ZTB_PARAMETER,
          {"s", "*"},
          {price("s1", "a", 1), price("s1", "b", 10), price("s2", "a", 4), price("s2", "b", 10),
           price("s3", "a", 2), price("s3", "b", 9), price("s3", "c", 5)}}});
    static_cast<void>(ztb("sweep " + path("m.lp") + " --scenarios " + path("scenarios.rxf") +
                          " --over s --drive 'price(item) = cost of buy' --out " +
                          path("result.rxf")));
  }
};

TEST_F(ViewSweepInputsTest, TellsWhichInputsDifferMost) {
  const Server server({path("result.rxf"), path("scenarios.rxf")});
  const Json inputs = server.json("inputs");
  EXPECT_EQ(inputs["known"], true);
  EXPECT_EQ(inputs["file"], "scenarios.rxf");
  EXPECT_EQ(inputs["low"], Json::parse(R"({"label":"s3","objective":20})"));
  EXPECT_EQ(inputs["high"], Json::parse(R"({"label":"s2","objective":24})"));
  EXPECT_EQ(inputs["total"], 3);
  ASSERT_EQ(inputs["inputs"].size(), 3U);
  EXPECT_EQ(inputs["inputs"][0],
            Json::parse(R"({"symbol":"price","key":["a"],"low":2,"high":4,"share":0.5})"));
  EXPECT_EQ(inputs["inputs"][1]["key"][0], "b");
  EXPECT_NEAR(inputs["inputs"][1]["share"].get<double>(), 0.1, 1e-15);
  EXPECT_EQ(inputs["inputs"][2],
            Json::parse(R"({"symbol":"price","key":["c"],"low":5,"high":null,"share":null})"));
}

TEST_F(ViewSweepInputsTest, TakesTheFileAloneThatTheSweepWasMadeFrom) {
  const Server alone({path("result.rxf")});
  EXPECT_EQ(alone.json("inputs"), Json::parse(R"({"known":false,
                "why":"The scenario file tells the inputs: ztb view RESULT SCENARIOS."})"));
  const Server other({makeCosts(), path("result.rxf")});
  EXPECT_EQ(other.json("inputs", {{"f", "1"}})["why"],
            "costs.rxf is not the scenario file that result.rxf was made from.");
  EXPECT_EQ(other.refused(400, "inputs"), "costs.rxf is no result of ztb sweep");
}

}  // namespace
}  // namespace viewtest
