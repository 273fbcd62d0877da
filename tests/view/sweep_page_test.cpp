// The result of a sweep.
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
         {"stock", ZTB_PARAMETER, {"s", "week"}, reports}});
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

}  // namespace
}  // namespace viewtest
