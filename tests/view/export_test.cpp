// What a table shows, as files.
#include <fstream>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

class ViewExportTest : public ViewTest {
 protected:
  Server server_{{makeCosts()}};
};

TEST_F(ViewExportTest, WritesCsvAsItIsShown) {
  const Answer all = server_.get("/api/export?s=cost&format=csv");
  EXPECT_EQ(all.status, 200);
  EXPECT_EQ(all.header("content-type"), "text/csv; charset=utf-8");
  EXPECT_EQ(all.header("content-disposition"), "attachment; filename=\"cost.csv\"");
  EXPECT_EQ(all.body, ztb("show " + path("costs.rxf") + " cost --csv"));
  EXPECT_EQ(server_.get("/api/export?s=cost&format=csv&sort=value&desc=1&hide=0&p0=a*").body,
            "week,value\nw1,5\nw3,eps\nw2,-2.5\n");
  EXPECT_EQ(server_.get("/api/export?s=plant&format=csv").body,
            "plant,text\nAda,the first\nBor,\n");
}

TEST_F(ViewExportTest, WritesTextWithTabsUpToSoManyRows) {
  const Answer some = server_.get("/api/export?s=cost&format=tsv&most=2");
  EXPECT_EQ(some.header("content-type"), "text/tab-separated-values; charset=utf-8");
  EXPECT_EQ(some.body, "plant\tweek\tvalue\nAda\tw1\t5\nAda\tw2\t-2.5\n");
  EXPECT_EQ(server_.get("/api/export?s=cost&format=tsv&sort=value&hide=1&most=1").body,
            "plant\tvalue\nAda\t-2.5\n");
}

TEST_F(ViewExportTest, WritesExchangeFiles) {
  const Answer answer = server_.get("/api/export?s=cost&format=rxf&where=value%3E0");
  EXPECT_EQ(answer.status, 200);
  std::ofstream(path("part.rxf"), std::ios::binary) << answer.body;
  EXPECT_EQ(ztb("show " + path("part.rxf") + " cost --csv"),
            "plant,week,value\nAda,w1,5\nAda,w3,eps\nBor,w1,7\nBor,w3,5\n");
  EXPECT_EQ(server_.refused(400, "export", {{"s", "*"}, {"format", "rxf"}}),
            "The labels of a file are no symbol of it.");
}

TEST_F(ViewExportTest, WritesExcel) {
  const Answer answer = server_.get("/api/export?s=cost&format=xlsx&sort=value");
  EXPECT_EQ(answer.status, 200);
  EXPECT_EQ(answer.header("content-disposition"), "attachment; filename=\"cost.xlsx\"");
  std::ofstream(path("part.xlsx"), std::ios::binary) << answer.body;
  // Labels are in the order of the rows: the least value came first.
  ztb("import " + path("back.rxf") + " --from " + path("part.xlsx") +
      " --distinct-set plant --distinct-set week --parameter 'cost(plant, week) = value'");
  EXPECT_EQ(ztb("show " + path("back.rxf") + " cost --csv"),
            "plant,week,value\nAda,w2,-2.5\nAda,w3,eps\nAda,w1,5\nBor,w3,5\nBor,w1,7\n");
}

TEST_F(ViewExportTest, SaysWhatIsWrong) {
  EXPECT_EQ(server_.refused(400, "export", {{"s", "cost"}, {"format", "pdf"}}),
            "format: 'pdf' is none of csv, tsv, xlsx and rxf");
  EXPECT_EQ(server_.refused(400, "export", {{"s", "cost"}, {"format", "csv"}, {"hide", "0,1,2"}}),
            "hide: no column would be left");
  EXPECT_EQ(server_.refused(400, "export", {{"s", "cost"}}), "format: is missing");
}

}  // namespace
}  // namespace viewtest
