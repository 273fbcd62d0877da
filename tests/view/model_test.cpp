// A model: what it consists of, and what a solve leaves.
#include <atomic>
#include <fstream>
#include <thread>

#include "tests/view/view_client.h"

namespace viewtest {
namespace {

class ViewModelTest : public ViewTest {
 protected:
  // The cheapest of two ways to four; the dearer one is limited by y, which costs something itself.
  std::string makeSmall() {
    std::ofstream(path("small.lp")) << "Minimize\n cost: 2 x['a b'] + 3 x['c'] + y\n"
                                       "Subject To\n"
                                       " need['u']: x['a b'] + x['c'] >= 4\n"
                                       " need['v']: 5 x['c'] - y <= 9\n"
                                       "Bounds\n y <= 7\nGenerals\n y\nEnd\n";
    return path("small.lp");
  }
  // Items whose weights of several kinds are to come to half of all: a search without end.
  std::string makeEndless() {
    constexpr unsigned items = 50;
    std::ofstream file(path("endless.lp"));
    file << "Minimize\n first: item(1)\nSubject To\n";
    unsigned state = 7;
    for (int kind = 1; kind <= 6; ++kind) {
      file << " exactly(" << kind << "):";
      unsigned all = 0;
      for (unsigned item = 1; item <= items; ++item) {
        state = state * 1664525U + 1013904223U;
        const unsigned weight = (state >> 16U) % 100;
        all += weight;
        file << " + " << weight << " item(" << item << ")\n";
      }
      file << " = " << all / 2 << "\n";
    }
    file << "Binaries\n";
    for (unsigned item = 1; item <= items; ++item) file << " item(" << item << ")\n";
    file << "End\n";
    return path("endless.lp");
  }
  static Json::const_reference named(const Json& list, const std::string& name) {
    for (const Json& one : list) {
      if (one["name"] == name) return one;
    }
    ADD_FAILURE() << "no " << name << " in " << list;
    return list;
  }
};

TEST_F(ViewModelTest, TellsWhatItConsistsOf) {
  const Server server({makeSmall(), makeCosts()});
  EXPECT_EQ(server.json("files")["files"][0]["kind"], "model");
  EXPECT_TRUE(server.json("symbols").empty());
  const Json model = server.json("model");
  EXPECT_EQ(model["columns"], 3);
  EXPECT_EQ(model["integers"], 1);
  const Json& family = named(model["families"], "x");
  EXPECT_EQ(family["of"], "columns");
  EXPECT_EQ(family["count"], 2);
  EXPECT_EQ(family["min"], 1);
  EXPECT_EQ(family["max"], 5);
  EXPECT_EQ(model["matrix"]["density"], Json::parse("[[1,1,1],[1,1,0],[0,1,1]]"));
  EXPECT_EQ(server.json("model"), model);
  EXPECT_EQ(server.refused(400, "rows", {{"s", "x"}}), "small.lp is a model, which has no records");
  EXPECT_EQ(server.refused(400, "model", {{"f", "1"}}), "costs.rxf is no model");
}

// The families of columns and rows stand mixed in the file.
TEST_F(ViewModelTest, PutsTheMatrixInBlocksByFamily) {
  std::ofstream(path("mixed.lp")) << "Minimize\n cost: x['a'] + y['a'] + x['b'] + y['b']\n"
                                     "Subject To\n"
                                     " r['a']: x['a'] + y['a'] >= 4\n"
                                     " s: y['b'] <= 2\n"
                                     " r['b']: x['b'] + y['b'] >= 1\n"
                                     "Bounds\n idle <= 3\nEnd\n";
  const Server server({path("mixed.lp")});
  const Json matrix = server.json("model")["matrix"];
  EXPECT_EQ(matrix["density"], Json::parse("[[1,1,1,1,0],[1,0,1,0,0],[0,1,0,1,0],[0,0,0,1,0]]"));
  EXPECT_EQ(matrix["row_families"],
            Json::parse(R"([{"name":"cost","count":1},{"name":"r","count":2},
                            {"name":"s","count":1}])"));
  EXPECT_EQ(matrix["col_families"], Json::parse(R"([{"name":"x","count":2},{"name":"y","count":2},
                            {"name":"idle","count":1}])"));
  EXPECT_EQ(matrix["blocks"], Json::parse("[[0,0,2],[0,1,2],[1,0,2],[1,1,2],[2,1,1]]"));
}

// By hand: x['a b'] = 4 at 2 each, nothing else; need['u'] binds, need['v'] is 9 from its side.
TEST_F(ViewModelTest, SolvesAndShowsLevelsMarginalsAndSlack) {
  const Server server({makeSmall()});
  EXPECT_EQ(server.refused(404, "symbols", {{"f", "2"}}), "small.lp has no solution");
  const Json solve = server.json("solve");
  EXPECT_EQ(solve["solved"], true);
  EXPECT_EQ(solve["status"], "optimal");
  EXPECT_EQ(solve["solver"], "cbc");
  EXPECT_EQ(solve["objective"], 8);
  EXPECT_EQ(solve["file"]["name"], "small.lp, solved");
  const Json& need = named(solve["symbols"], "need");
  EXPECT_EQ(need["type"], "equation");
  EXPECT_EQ(need["records"], 2);
  EXPECT_EQ(need["bound"], 1);
  EXPECT_EQ(need["least"], 0);
  EXPECT_EQ(need["greatest"], 4);
  const Json& x = named(solve["symbols"], "x");
  EXPECT_EQ(x["levels"], 1);
  EXPECT_EQ(x["bound"], 1);

  const Json rows = server.json("rows", {{"f", "2"}, {"s", "need"}, {"slack", "1"}});
  EXPECT_EQ(rows["rows"][0].back(), 0);
  EXPECT_EQ(rows["rows"][1], Json::parse(R"(["v",0,0,"-inf",9,1,9])"));
  const Json sorted =
      server.json("rows", {{"f", "2"}, {"s", "x"}, {"slack", "1"}, {"sort", "slack"}});
  EXPECT_EQ(sorted["rows"][0][0], "c");
  EXPECT_EQ(sorted["rows"][0].back(), 0);
  EXPECT_EQ(sorted["rows"][1][0], "a b");
  EXPECT_EQ(sorted["rows"][1].back(), 4);
  const Json down = server.json(
      "rows", {{"f", "2"}, {"s", "x"}, {"slack", "1"}, {"sort", "slack"}, {"desc", "1"}});
  EXPECT_EQ(down["rows"][0][0], "a b");
  EXPECT_EQ(named(server.json("symbols", {{"f", "2"}}), "need")["records"], 2);
  EXPECT_EQ(server.refused(400, "solve", {{"f", "2"}}), "f: '2' is no whole number from 0 to 0");
}

// Sides of every kind, each of which the row of its own has: a range, none, no terms, a quoted
// colon.
TEST_F(ViewModelTest, KnowsBothSidesOfEachRow) {
  std::ofstream(path("sides.lp")) << "Maximize\n gain: 3 x + 2 y + 10\nSubject To\n"
                                     " r['both: <= 3']: 1 <= x + y <= 4\n"
                                     " r['low']: x >= 1\n"
                                     " r['free']: -inf <= x - y <= inf\n"
                                     " r['same']: x + 2 y = 6\n"
                                     " r['none']: 0 x <= 5\nEnd\n";
  const Server server({path("sides.lp")});
  EXPECT_EQ(server.json("model")["matrix"]["density"],
            Json::parse("[[1,1],[1,1],[1,0],[1,1],[1,1],[0,0]]"));
  // x + y <= 4 and x + 2 y = 6 meet at x = 2, y = 2.
  const Json solve = server.json("solve", {{"solver", "clp"}});
  EXPECT_EQ(solve["objective"], 20);
  const Json rows = server.json("rows", {{"f", "2"}, {"s", "r"}, {"slack", "1"}})["rows"];
  const auto at = [&](std::size_t row, std::size_t cell) { return rows[row][cell]; };
  const Json expected = Json::parse(R"([["both: <= 3",4,1,4,0],["low",2,1,"inf",1],
                                        ["free",0,"-inf","inf","inf"],["same",6,6,6,0],
                                        ["none",0,"-inf",5,5]])");
  ASSERT_EQ(rows.size(), expected.size());
  for (std::size_t row = 0; row < rows.size(); ++row) {
    EXPECT_EQ(Json({at(row, 0), at(row, 1), at(row, 3), at(row, 4), at(row, 6)}), expected[row]);
  }
}

// Names that LP cannot hold, of rows and a column: at least 1, at most 8 and between 2
// and 6, of which x = 6 is the dearest.
TEST_F(ViewModelTest, KnowsBothSidesOfRowsThatLpCannotName) {
  std::ofstream(path("odd.mps")) << "NAME odd\nROWS\n N cost\n G 1st\n L 2nd\n L 3rd\n E 4th\n"
                                    "COLUMNS\n 2x cost -2 1st 1\n 2x 2nd 1 3rd 1\n y 4th 1\n"
                                    "RHS\n RHS 1st 1 2nd 8\n RHS 3rd 6 4th 5\n"
                                    "RANGES\n RNG 3rd 4\nENDATA\n";
  const Server server({path("odd.mps")});
  EXPECT_EQ(server.json("model")["matrix"]["density"],
            Json::parse("[[1,0],[1,0],[1,0],[1,0],[0,1]]"));
  EXPECT_EQ(server.json("solve")["objective"], -12);
  const auto row = [&](const std::string& name) {
    for (const Json& symbol : server.json("symbols", {{"f", "2"}})) {
      const std::string own = symbol["name"];
      if (own.find(name) == std::string::npos) continue;
      const Json cells = server.json("rows", {{"f", "2"}, {"s", own}, {"slack", "1"}})["rows"][0];
      return Json({cells[0], cells[2], cells[3], cells[5]});
    }
    return Json();
  };
  EXPECT_EQ(row("1st"), Json::parse(R"([6,1,"inf",5])"));
  EXPECT_EQ(row("2nd"), Json::parse(R"([6,"-inf",8,2])"));
  EXPECT_EQ(row("3rd"), Json::parse("[6,2,6,0]"));
  EXPECT_EQ(row("4th"), Json::parse("[5,5,5,0]"));
}

TEST_F(ViewModelTest, SolvesWithTheSolverThatIsAskedFor) {
  std::ofstream(path("plain.lp")) << "Maximize\n gain: 3 x + 2 y\nSubject To\n"
                                     " room: x + y <= 4\n side: x <= 3\nEnd\n";
  const Server server({path("plain.lp"), makeSmall()});
  const Json solve = server.json("solve", {{"solver", "GLPK"}});
  EXPECT_EQ(solve["solver"], "glpk");
  EXPECT_EQ(solve["objective"], 11);
  // The price of room is 2, that of side what x gains beyond it.
  EXPECT_EQ(server.json("rows", {{"f", "2"}, {"s", "room"}})["rows"][0][1], 2);
  EXPECT_EQ(server.json("rows", {{"f", "2"}, {"s", "side"}})["rows"][0][1], 1);
  const std::string unknown = server.refused(400, "solve", {{"solver", "abacus"}});
  EXPECT_THAT(unknown, testing::AllOf(testing::HasSubstr("plain.lp: "), testing::HasSubstr("clp")));
  EXPECT_THAT(server.refused(400, "solve", {{"f", "1"}, {"solver", "clp"}}),
              testing::StartsWith("small.lp: "));
  EXPECT_EQ(server.refused(404, "rows", {{"f", "3"}, {"s", "x"}}), "small.lp has no solution");
  EXPECT_EQ(server.refused(400, "rows", {{"f", "2"}, {"s", "*"}, {"slack", "1"}}),
            "* has no bounds");
}

TEST_F(ViewModelTest, AsksThePageToSolveAtOnce) {
  const Server server({makeSmall()}, {{"solve", "1"}});
  EXPECT_THAT(server.link(), testing::EndsWith("&solve=auto"));
}

TEST_F(ViewModelTest, TellsWhyThereIsNoSolution) {
  std::ofstream(path("narrow.lp")) << "Minimize\n cost: x\nSubject To\n"
                                      " low: x >= 4\n high: x <= 3\nEnd\n";
  const Server server({path("narrow.lp")});
  const Json solve = server.json("solve");
  EXPECT_EQ(solve["solved"], false);
  EXPECT_EQ(solve["status"], "infeasible");
  EXPECT_TRUE(solve["symbols"].empty());
  EXPECT_FALSE(solve.contains("objective"));
  EXPECT_EQ(server.refused(404, "symbols", {{"f", "2"}}), "narrow.lp has no solution");
}

TEST_F(ViewModelTest, ASolveCanBeWatchedAndEnded) {
  const Server server({makeEndless()});
  const std::string headers = server.host() + "Authorization: Bearer " + server.key() + "\r\n";
  std::atomic<int> status{-1};
  std::string said;
  // Its answer comes when it is cancelled; the limit is there so that a mistake ends.
  std::thread asking([&] {
    const Answer answer = server.ask("GET", "/api/solve?id=mine&seconds=8", headers);
    said = answer.body;
    status = answer.status;
  });
  std::string words;
  while (status < 0) {
    const Answer progress = server.ask("GET", "/api/progress?of=mine", headers);
    words = std::max(words, Json::parse(progress.body)["words"].get<std::string>());
    if (!words.starts_with("solving:")) continue;
    static_cast<void>(server.ask("GET", "/api/cancel?of=mine", headers));
  }
  asking.join();
  EXPECT_EQ(status, 499);
  EXPECT_EQ(Json::parse(said)["error"], "The request was cancelled.");
  EXPECT_THAT(words, testing::HasSubstr("bound"));
  EXPECT_EQ(server.refused(404, "symbols", {{"f", "2"}}), "endless.lp has no solution");
}

}  // namespace
}  // namespace viewtest
