// Tables and databases as lines of JSON.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/formats/table_fixture.h"

namespace {

using formatstest::Job;
using formatstest::price;
using formatstest::TableTest;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(TableTest, ReadsJsonLines) {
  write("a.jsonl",
        "\xEF\xBB\xBF{\"food\":\"Milk\",\"year\":2020,\"cents\":11.5}\r\n\n"
        "{\"cents\":\"eps\",\"food\":\"T\\u00f6fu\",\"year\":2021}\n"
        "{\"cents\":null,\"food\":\"Lard\",\"year\":2021}\n");
  const ztb::Database database =
      imported("a.jsonl", {{"skip-empty", ""}, {"parameter", "price(food, year) = cents"}});
  EXPECT_EQ(database["price"].recordCount(), 2);
  EXPECT_EQ(database["price"].find("Milk", "2020")->level(), 11.5);
  EXPECT_EQ(database["price"]
                .find("T\xC3\xB6"
                      "fu",
                      "2021")
                ->level(),
            5e-324);
}

TEST_F(TableTest, KeepsTheSignOfAZeroInJsonLines) {
  write("a.jsonl", "{\"food\":\"Milk\",\"cents\":-0}\n{\"food\":-0,\"cents\":0}\n");
  const ztb::Database database = imported("a.jsonl", price);
  EXPECT_TRUE(std::signbit(database["price"].find("Milk")->level()));
  EXPECT_FALSE(std::signbit(database["price"].find("-0")->level()));
}

TEST_F(TableTest, TellsOfWholeNumbersOfJsonLinesThatNoDoubleHolds) {
  write("a.jsonl",
        "{\"food\":9007199254740993,\"cents\":9007199254740993}\n"
        "{\"food\":12345678901234567890123,\"cents\":-12345678901234567890123}\n"
        "{\"food\":1.50,\"cents\":9007199254740994}\n"
        "{\"food\":1e3,\"cents\":1e23}\n");
  Job job({{"from", folder_.file("a.jsonl")}, {"parameter", "price(food) = cents"}});
  ASSERT_TRUE(job.import(folder_.file("a.rxf"))) << job.errors(folder_);
  EXPECT_EQ(job.warnings(folder_),
            "a.jsonl:1: warning: cents: 9007199254740993 is no double, the nearest one is taken\n"
            "a.jsonl:2: warning: cents: -12345678901234567890123 is no double, the nearest one is "
            "taken\n");
  const ztb::Database read = ztb::Database::open(folder_.file("a.rxf"));
  EXPECT_EQ(read["price"].find("9007199254740993")->level(), 9007199254740992.0);
  EXPECT_EQ(read["price"].find("12345678901234567890123")->level(), -12345678901234567890123.0);
  EXPECT_TRUE(read["price"].find("1.5").has_value());
  EXPECT_TRUE(read["price"].find("1000").has_value());
  write("b.jsonl", "{\"food\":\"Milk\",\"cents\":1}\n{\"food\":\"Tofu\",\"cents\":-1e999}\n");
  EXPECT_THAT(errorsOf("b.jsonl", price),
              StartsWith("b.jsonl:2: the number '-1e999' is outside the range of a double\n"));
}

TEST_F(TableTest, TakesVeryManyKeysOfJsonLines) {
  std::string line = "{\"food\":\"Milk\"";
  for (int column = 0; column < 1000000; ++column) {
    line += ",\"c" + std::to_string(column) + "\":" + std::to_string(column);
  }
  write("many.jsonl", line + "}\n" + "{\"food\":\"Tofu\",\"c999999\":7,\"c3\":1}\n");
  const ztb::Database database = imported("many.jsonl", {{"parameter", "price(food) = c999999"}});
  EXPECT_EQ(database["price"].find("Milk")->level(), 999999);
  EXPECT_EQ(database["price"].find("Tofu")->level(), 7);
  write("twice.jsonl", line.substr(0, line.find(",\"c100\"")) + ",\"c77\":1}\n");
  EXPECT_THAT(errorsOf("twice.jsonl", price),
              HasSubstr("twice.jsonl:1: has the key 'c77' twice\n"));
}

TEST_F(TableTest, TakesKeysOfJsonLinesThatTheFirstLineLacks) {
  const std::string lines =
      "{\"food\":\"Milk\",\"cents\":1}\n"
      "{\"food\":\"Tofu\",\"cents\":2,\"note\":\"new\",\"Rebate\":0.5}\n"
      "{\"food\":\"Ham\",\"note\":[1],\"cents\":3}\n";
  write("a.jsonl", lines);
  gzip("a.jsonl.gz", lines);
  for (const char* name : {"a.jsonl", "a.jsonl.gz"}) {
    // One that no column uses is passed over.
    const ztb::Database plain = imported(name, price);
    EXPECT_EQ(plain["price"].recordCount(), 3);
    EXPECT_EQ(plain["price"].find("Ham")->level(), 3);
    const ztb::Database read = imported(name, {{"skip-empty", ""},
                                               {"parameter", "price(food) = cents"},
                                               {"parameter", "rebate(food)"},
                                               {"rename", "Rebate = rebate"}});
    EXPECT_EQ(read["price"].recordCount(), 3);
    EXPECT_EQ(read["rebate"].recordCount(), 1);
    EXPECT_EQ(read["rebate"].find("Tofu")->level(), 0.5);
  }
  EXPECT_EQ(errorsOf("a.jsonl", {{"parameter", "p(food) = rebate"}}),
            "a.jsonl:1: Rebate: is empty, expected a number\n"
            "a.jsonl:3: Rebate: is empty, expected a number\n"
            "none.rxf: not written: 2 problems in the input");
  EXPECT_EQ(errorsOf("a.jsonl", {{"parameter", "p(food) = rabate"}}),
            "a.jsonl:1: no column 'rabate'; the columns are food, cents, note, Rebate\n"
            "none.rxf: not written: 1 problem in the input");
  EXPECT_EQ(errorsOf("a.jsonl", {{"set", "note"}}),
            "a.jsonl:1: note: is empty, expected a label (the empty label is written \"\")\n"
            "a.jsonl:3: note: is an array, expected a text or a number\n"
            "none.rxf: not written: 2 problems in the input");
}

TEST_F(TableTest, LosesNoKeyOfWideJsonLines) {
  write("w.jsonl",
        "{\"food\":\"Milk\",\"2020\":1}\n"
        "{\"food\":\"Tofu\",\"2021\":2}\n"
        "{\"2019\":3,\"food\":\"Ham\",\"2020\":4}\n");
  const ztb::Database read =
      imported("w.jsonl", {{"wide", "year"}, {"parameter", "p(food, year)"}});
  EXPECT_EQ(read["p"].recordCount(), 4);
  EXPECT_EQ(read["p"].find("Tofu", "2021")->level(), 2);
  EXPECT_EQ(read["p"].find("Ham", "2019")->level(), 3);
  const ztb::Database some =
      imported("w.jsonl", {{"wide", "year: 2020, 2021"}, {"parameter", "p(food, year)"}});
  EXPECT_EQ(some["p"].recordCount(), 3);
  // Fields of variables are found by their names.
  write("v.jsonl",
        "{\"food\":\"Milk\",\"level\":1}\n{\"food\":\"Tofu\",\"marginal\":2,\"x\":{}}\n");
  const ztb::Database fields = imported("v.jsonl", {{"skip-empty", ""}, {"variable", "v(food)"}});
  EXPECT_EQ(fields["v"].find("Tofu")->marginal(), 2);
}

TEST_F(TableTest, TellsWhatIsWrongWithJsonLines) {
  write("a.jsonl",
        "{\"food\":\"Milk\",\"cents\":1}\n"
        "{\"food\":\"Tofu\",\"cents\":\n"
        "[1]\n"
        "{\"food\":\"Tofu\",\"cents\":{}}\n"
        "{\"food\":\"Tofu\",\"cents\":[\"1\"]}\n"
        "{\"food\":\"Tofu\",\"food\":\"x\"}\n"
        "{\"food\":\"Tofu\",\"price\":3}\n"
        "{\"food\":\"\xFF\",\"cents\":3}\n"
        "{\"food\":\"Ham\",\"cents\":\"x\"}\n");
  const std::string errors = errorsOf("a.jsonl", price);
  EXPECT_THAT(errors, HasSubstr("a.jsonl:2: is no JSON from char "));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:3: is no object\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:4: cents: is an object, expected a text or a number\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:5: cents: is an array, expected a text or a number\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:6: has the key 'food' twice\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:7: cents: is empty, expected a number\n"));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:8: is no JSON from char "));
  EXPECT_THAT(errors, HasSubstr("a.jsonl:9: cents: 'x' is not a number\n"));
  EXPECT_THAT(errors, HasSubstr("none.rxf: not written: 8 problems in the input"));
}

TEST_F(TableTest, PassesOverNestedValuesThatNoColumnUses) {
  write("a.jsonl",
        "{\"food\":\"Milk\",\"tags\":[\"a\",{\"food\":\"x\",\"food\":[1,[2]]}],\"cents\":1}\n"
        "{\"tags\":{\"food\":{\"cents\":5},\"n\":null},\"cents\":2,\"food\":\"Tofu\"}\n"
        "{\"tags\":[],\"cents\":3,\"food\":\"Ham\"}\n");
  const ztb::Database read = imported("a.jsonl", price);
  EXPECT_EQ(read["price"].recordCount(), 3);
  EXPECT_EQ(read["price"].find("Milk")->level(), 1);
  EXPECT_EQ(read["price"].find("Tofu")->level(), 2);
  EXPECT_EQ(errorsOf("a.jsonl", {{"set", "tags"}}),
            "a.jsonl:1: tags: is an array, expected a text or a number\n"
            "a.jsonl:2: tags: is an object, expected a text or a number\n"
            "a.jsonl:3: tags: is an array, expected a text or a number\n"
            "none.rxf: not written: 3 problems in the input");
  // Nor are they cells without a value.
  write("w.jsonl", "{\"food\":\"Milk\",\"2020\":1,\"2021\":{\"x\":2}}\n");
  EXPECT_EQ(errorsOf("w.jsonl", {{"wide", "year"}, {"parameter", "p(food, year)"}}),
            "w.jsonl:1: value: is an object, expected a text or a number\n"
            "none.rxf: not written: 1 problem in the input");
}

TEST_F(TableTest, TellsNestedValuesOfADatabase) {
  write("a.jsonl",
        "{\"symbol\":\"food\",\"type\":\"set\",\"domains\":[\"*\"],\"more\":{\"a\":[1]}}\n"
        "{\"symbol\":\"dish\",\"type\":\"set\",\"domains\":[[\"*\"]]}\n"
        "{\"of\":\"food\",\"keys\":[\"Milk\"],\"text\":[\"a\"]}\n"
        "{\"of\":\"food\",\"keys\":[\"Tofu\"],\"text\":{\"a\":1}}\n"
        "{\"of\":\"food\",\"keys\":[\"Ham\",1]}\n"
        "{\"of\":\"food\",\"keys\":[\"Soy\"],\"more\":[[]]}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:2: domains: is no array of texts\n"
            "a.jsonl:3: text: is an array, expected a text or a number\n"
            "a.jsonl:4: text: is an object, expected a text or a number\n"
            "a.jsonl:5: keys: is no array of texts\n"
            "none.rxf: not written: 4 problems in the input");
}

TEST_F(TableTest, TellsLinesThatMakeNoDatabase) {
  write("a.jsonl",
        "{\"symbol\":\"p\",\"type\":\"parameter\",\"domains\":[\"*\"],\"user_info\":0}\n"
        "{\"of\":\"q\",\"keys\":[\"a\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"a\",\"b\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"\\\\a\\\\q\"],\"value\":1}\n"
        "{\"of\":\"p\",\"keys\":[\"a\"]}\n"
        "{\"food\":\"Milk\"}\n"
        "{\"symbol\":\"s\",\"type\":\"thing\"}\n"
        "{\"symbol\":\"t\",\"type\":\"set\",\"user_info\":1.5}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:2: of: no line before tells of a symbol 'q'\n"
            "a.jsonl:3: keys: has 2 labels, expected 1\n"
            "a.jsonl:4: keys: a backslash stands before no escape\n"
            "a.jsonl:6: has none of the keys symbol, label and of\n"
            "a.jsonl:7: type: expected set, parameter, variable, equation or alias\n"
            "a.jsonl:8: user_info: is no whole number\n"
            "a.jsonl:5: value: is empty, expected a number\n"
            "none.rxf: not written: 7 problems in the input");
  write("b.jsonl", "\n\n");
  EXPECT_EQ(errorsOf("b.jsonl", {}),
            "b.jsonl: has no line of a symbol or label: it holds no whole database\n"
            "none.rxf: not written: 1 problem in the input");
}

// Cut behind a line, where nothing else shows it.
TEST_F(TableTest, TellsThatTheEndOfADatabaseIsMissing) {
  const std::string catalogue =
      "{\"symbols\":2,\"labels\":2}\n"
      "{\"symbol\":\"p\",\"type\":\"parameter\",\"domains\":[\"*\"],\"records\":2}\n";
  const std::string symbols =
      catalogue + "{\"symbol\":\"s\",\"type\":\"set\",\"domains\":[\"*\"],\"records\":0}\n";
  const std::string labels = symbols + "{\"label\":\"a\"}\n{\"label\":\"b\"}\n";
  const std::string record = "{\"of\":\"p\",\"keys\":[\"a\"],\"value\":1}\n";
  write("a.jsonl", labels + record);
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:2: tells of 2 records of p, the file has 1: its end is missing\n"
            "none.rxf: not written: 1 problem in the input");
  write("a.jsonl", symbols + "{\"label\":\"a\"}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:1: tells of 2 labels, the file has 1: its end is missing\n"
            "a.jsonl:2: tells of 2 records of p, the file has 0: its end is missing\n"
            "none.rxf: not written: 2 problems in the input");
  write("a.jsonl", catalogue);
  EXPECT_THAT(errorsOf("a.jsonl", {}),
              HasSubstr("a.jsonl:1: tells of 2 symbols, the file has 1: its end is missing\n"));
  write("a.jsonl", "{\"symbols\":1,\"labels\":0}\n");
  EXPECT_THAT(errorsOf("a.jsonl", {}),
              HasSubstr("a.jsonl:1: tells of 1 symbol, the file has 0: its end is missing\n"));
  write("a.jsonl",
        "{\"symbols\":\"2\"}\n{\"symbol\":\"s\",\"type\":\"set\",\"records\":1.5}\n"
        "{\"symbols\":0,\"labels\":-1}\n");
  EXPECT_EQ(errorsOf("a.jsonl", {}),
            "a.jsonl:1: symbols: is no count\n"
            "a.jsonl:2: records: is no count\n"
            "a.jsonl:3: labels: is no count\n"
            "none.rxf: not written: 3 problems in the input");
  // A record that was added by hand is taken.
  const std::string other = "{\"of\":\"p\",\"keys\":[\"b\"],\"value\":2}\n";
  write("a.jsonl", labels + record + other + "{\"of\":\"s\",\"keys\":[\"b\"]}\n");
  EXPECT_EQ(imported("a.jsonl", {}).symbol("s").recordCount(), 1);
}

// What a whole database spells out stands in a table as it is, for readers that know nothing of it.
TEST_F(TableTest, JsonLinesOfATableHaveTextsAsTheyAre) {
  const std::string path = folder_.file("p.rxf");
  {
    ztb::Database database;
    database.addParameter("p", {"*"}).add(R"(\x41)").setLevel(1);
    database.addParameter("q", {"*"}).add("\xff").setLevel(1);
    database.write(path);
  }
  Job job({{"symbol", "p"}, {"to", folder_.file("p.jsonl")}});
  ASSERT_TRUE(job.exportFile(path)) << job.errors(folder_);
  EXPECT_EQ(read("p.jsonl"), "{\"label\":\"\\\\x41\",\"value\":1}\n");
  const ztb::Database back = imported("p.jsonl", {{"parameter", "p(label) = value"}});
  EXPECT_EQ(back["p"].find(R"(\x41)")->level(), 1);
  Job broken({{"symbol", "q"}, {"to", folder_.file("q.jsonl")}});
  EXPECT_FALSE(broken.exportFile(path));
  EXPECT_THAT(broken.errors(folder_), HasSubstr("is no UTF-8, which JSON is"));
  EXPECT_FALSE(std::filesystem::exists(folder_.file("q.jsonl")));
}

}  // namespace
