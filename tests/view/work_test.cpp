// Work that takes long can be watched and ended.
#include <atomic>
#include <thread>
#include <ztb/rxf.hpp>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

class ViewWorkTest : public ViewTest {
 protected:
  // p(*, *, *) of four million records, which takes a while to sort.
  std::string makeLarge() {
    constexpr int side = 2000;
    ztb::RxfOutput output(path("large.rxf"), "test");
    for (int i = 1; i <= side; ++i) output.addLabel("l" + std::to_string(i));
    ztbRxfSymbolInfo info{};
    info.name = "p";
    info.text = "";
    info.type = ZTB_PARAMETER;
    info.dimension = 2;
    output.addSymbol(info, {"*", "*"});
    std::vector<int> first(side);
    std::vector<int> second(side);
    std::vector<double> values(side);
    for (int row = 0; row < side; ++row) {
      for (int at = 0; at < side; ++at) {
        const auto place = static_cast<std::size_t>(at);
        first[place] = row + 1;
        second[place] = at + 1;
        values[place] = at;
      }
      output.addRecords(values.size(), {first.data(), second.data()}, {values.data()});
    }
    output.publish();
    return path("large.rxf");
  }
};

TEST_F(ViewWorkTest, CanBeWatchedAndEnded) {
  const Server server({makeLarge()});
  const std::string headers = server.host() + "Authorization: Bearer " + server.key() + "\r\n";
  // One request after the other, until one was caught at work: how long it takes is nobody's to
  // say.
  std::atomic<bool> isCancelled{false};
  std::thread asking([&] {
    for (int round = 0; round < 200 && !isCancelled; ++round) {
      const std::string filter = "value%20%3E%20" + std::to_string(round);
      const Answer answer =
          server.ask("GET", "/api/rows?s=p&sort=value&id=mine&where=" + filter, headers);
      if (answer.status == 499) {
        EXPECT_EQ(Json::parse(answer.body)["error"], "The request was cancelled.");
        isCancelled = true;
      }
    }
  });
  double most = 0;
  for (int round = 0; round < 20000 && !isCancelled; ++round) {
    const Answer progress = server.ask("GET", "/api/progress?of=mine", headers);
    if (progress.status != 200) continue;
    const Json told = Json::parse(progress.body);
    EXPECT_LE(told["done"].get<double>(), 1);
    most = std::max(most, told["records"].get<double>());
    if (most > 0) static_cast<void>(server.ask("GET", "/api/cancel?of=mine", headers));
  }
  asking.join();
  EXPECT_TRUE(isCancelled);
  EXPECT_GT(most, 0);
  EXPECT_EQ(server.json("rows", {{"s", "p"}})["total"], 4000000);
}

TEST_F(ViewWorkTest, EndsWithWorkThatRuns) {
  Server server({makeLarge()});
  const std::string headers = server.host() + "Authorization: Bearer " + server.key() + "\r\n";
  std::atomic<int> status{-1};
  std::thread asking(
      [&] { status = server.ask("GET", "/api/rows?s=p&sort=value&id=mine", headers).status; });
  while (status < 0) {
    const Answer progress = server.ask("GET", "/api/progress?of=mine", headers);
    if (Json::parse(progress.body)["records"] > 0) break;
  }
  server.stop();
  server.wait();
  asking.join();
  EXPECT_TRUE(status == 499 || status == 200) << status;
  EXPECT_EQ(connected("127.0.0.1", server.port()), -1);
}

TEST_F(ViewWorkTest, SaysWhichFileCannotBeOpened) {
  for (const char* name : {"nothing.rxf", "nothing.lp"}) {
    ztbView* view = nullptr;
    ASSERT_EQ(ztbViewCreate(&view), 1);
    ztbViewOption(view, "file", path(name).c_str());
    EXPECT_EQ(ztbViewOpen(view), 0);
    EXPECT_THAT(ztbViewMessage(view), testing::HasSubstr(name));
    ztbViewFree(&view);
  }
  ztbView* view = nullptr;
  ASSERT_EQ(ztbViewCreate(&view), 1);
  EXPECT_EQ(ztbViewOpen(view), 0);
  EXPECT_STREQ(ztbViewMessage(view), "expected one file or two");
  EXPECT_EQ(ztbViewIsUsage(view), 1);
  EXPECT_EQ(ztbViewRun(view), 0);
  EXPECT_STREQ(ztbViewMessage(view), "the viewer is not open");
  ztbViewOption(view, "file", makeCosts().c_str());
  ztbViewOption(view, "solve", "1");
  EXPECT_EQ(ztbViewOpen(view), 0);
  EXPECT_STREQ(ztbViewMessage(view), "--solve: there is no model to solve");
  EXPECT_EQ(ztbViewIsUsage(view), 1);
  ztbViewFree(&view);
}

}  // namespace
}  // namespace viewtest
