// The airline routes of the world through the command: imported, checked, pivoted, copied. What is
// expected is counted from the tables themselves.

#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/tools/program.h"

namespace {

using Fields = std::vector<std::string>;
using tooltest::Outcome;
using tooltest::ProgramTest;

const std::filesystem::path folder = ZTB_AIR_ROUTES;

// The rows of a table behind its header, cut at the commas; the codes in front of a row hold none.
std::vector<Fields> rowsOf(const std::filesystem::path& file) {
  std::ifstream stream(file);
  std::vector<Fields> rows;
  std::string line;
  std::getline(stream, line);
  while (std::getline(stream, line)) {
    if (line.ends_with('\r')) {
      line.pop_back();
    }
    std::istringstream fields(line);
    rows.emplace_back();
    for (std::string field; std::getline(fields, field, ',');) {
      rows.back().push_back(field);
    }
  }
  return rows;
}

class ToolAirRoutesTest : public ProgramTest {
 protected:
  void SetUp() override {
    for (Fields& row : rowsOf(folder / "airports.csv")) {
      airports_.insert(row[0]);
    }
    routes_ = rowsOf(folder / "routes.csv");
    ztbFine({"import", "routes.rxf", "--from", (folder / "airports.csv").string(), "--set",
             "airport : name", "--from", (folder / "routes.csv").string(), "--distinct-set",
             "airline", "--parameter",
             "types(airline, from in airport, to in airport) = aircraft_types"});
  }

  std::set<std::string> airports_;
  std::vector<Fields> routes_;
};

TEST_F(ToolAirRoutesTest, areReadWhole) {
  EXPECT_EQ(routes_.size(), 66934U);
  EXPECT_NE(ztbFine({"info", "routes.rxf"}).find(" 66934 "), std::string::npos);
}

TEST_F(ToolAirRoutesTest, breakTheirDomainsWhereTheTableOfAirportsLacksOne) {
  std::size_t expected = 0;
  for (const Fields& route : routes_) {
    expected += airports_.contains(route[1]) && airports_.contains(route[2]) ? 0 : 1;
  }
  const Outcome outcome = ztb({"check", "routes.rxf", "--domains", "--json"});
  EXPECT_EQ(outcome.status, expected == 0 ? 0 : 1);
  EXPECT_EQ(nlohmann::json::parse(outcome.output)["violations"].size(), expected);
  // Without the airports of one country some routes hang in the air.
  std::ofstream fewer(path("fewer.csv"));
  fewer << "airport\n";
  std::set<std::string> missing;
  for (const Fields& row : rowsOf(folder / "airports.csv")) {
    if (missing.size() < 100) {
      missing.insert(row[0]);
    } else {
      fewer << row[0] << '\n';
    }
  }
  fewer.close();
  ztbFine({"import", "fewer.rxf", "--from", "fewer.csv", "--set", "airport", "--from",
           (folder / "routes.csv").string(), "--parameter",
           "types(airline, from in airport, to in airport) = aircraft_types"});
  std::map<Fields, std::vector<int>> broken;
  for (const Fields& route : routes_) {
    std::vector<int> positions;
    for (const int position : {1, 2}) {
      const std::string& code = route[static_cast<std::size_t>(position)];
      if (missing.contains(code) || !airports_.contains(code)) {
        positions.push_back(position + 1);
      }
    }
    if (!positions.empty()) {
      broken[{route[0], route[1], route[2]}] = positions;
    }
  }
  std::map<Fields, std::vector<int>> found;
  const Outcome check = ztb({"check", "fewer.rxf", "--domains", "--json"});
  EXPECT_EQ(check.status, 1);
  const auto json = nlohmann::json::parse(check.output);
  for (const auto& violation : json["violations"]) {
    found[violation["keys"].get<Fields>()] = violation["positions"].get<std::vector<int>>();
  }
  ASSERT_GT(broken.size(), 100U);
  EXPECT_TRUE(found == broken);
}

TEST_F(ToolAirRoutesTest, ofOneAirlineMakeATable) {
  std::map<std::pair<std::string, std::string>, std::string> expected;
  for (const Fields& route : routes_) {
    if (route[0] == "LH") {
      expected[{route[1], route[2]}] = route[4];
    }
  }
  ASSERT_GT(expected.size(), 500U);
  write("table.csv", ztbFine({"pivot", "routes.rxf", "types", "--rows", "2", "--columns", "3",
                              "--slice", "LH,*,*", "--csv"}));
  std::ifstream table(path("table.csv"));
  std::string line;
  std::getline(table, line);
  Fields header;
  std::istringstream titles(line);
  for (std::string title; std::getline(titles, title, ',');) {
    header.push_back(title);
  }
  std::map<std::pair<std::string, std::string>, std::string> found;
  for (const Fields& row : rowsOf(path("table.csv"))) {
    for (std::size_t column = 1; column < row.size(); ++column) {
      if (!row[column].empty()) {
        found[{row[0], header[column]}] = row[column];
      }
    }
  }
  EXPECT_TRUE(found == expected);
}

// Whatever byte is hit, anywhere in the file: the whole content or an error.
TEST_F(ToolAirRoutesTest, areNotShownWhereTheirFileIsDamaged) {
  const std::string good = read("routes.rxf");
  const std::string shown = ztbFine({"show", "routes.rxf", "types", "--csv"});
  const std::vector<std::vector<std::string>> commands{
      {"show", "bad.rxf", "types", "--csv"},
      {"export", "bad.rxf", "types", "--csv", "out"},
      {"copy", "bad.rxf", "types", "copy.rxf"},
      {"diff", "routes.rxf", "bad.rxf"}};
  for (std::size_t hit = 0; hit < 16; ++hit) {
    const std::size_t at = good.size() * hit / 16 + 5;
    std::string bad = good;
    bad[at] = static_cast<char>(~bad[at]);
    write("bad.rxf", bad);
    const Outcome checked = ztb({"check", "bad.rxf"});
    EXPECT_EQ(checked.status, 1) << at;
    EXPECT_NE(checked.errors.find("bad.rxf"), std::string::npos) << checked.errors;
    const std::vector<std::string>& command = commands[hit % commands.size()];
    const Outcome outcome = ztb(command);
    EXPECT_EQ(outcome.status == 0, outcome.errors.empty()) << command.front() << ' ' << at;
    if (command.front() == "show" && outcome.status == 0) {
      EXPECT_EQ(outcome.output, shown) << at;
    }
    EXPECT_EQ(exists("copy.rxf"), command.front() == "copy" && outcome.status == 0) << at;
    EXPECT_EQ(exists("out/types.csv"), command.front() == "export" && outcome.status == 0) << at;
    std::filesystem::remove(path("copy.rxf"));
    std::filesystem::remove_all(path("out"));
  }
}

TEST_F(ToolAirRoutesTest, areCopiedWithTheirSets) {
  ztbFine({"copy", "routes.rxf", "types", "copy.rxf"});
  EXPECT_EQ(ztb({"diff", "routes.rxf", "copy.rxf"}).status, 0);
}

TEST_F(ToolAirRoutesTest, comeBackThroughTheFilesOfOtherPrograms) {
  for (const char* target : {"routes.db", "routes.xlsx", "routes.jsonl.gz", "exported/"}) {
    ztbFine({"export", "routes.rxf", "--all", "--to", target});
    ztbFine({"import", "back.rxf", "--from", target});
    EXPECT_EQ(ztb({"diff", "routes.rxf", "back.rxf"}).status, 0) << target;
  }
}

}  // namespace
