// Which files a MathProg model reads its tables from.
#include "tools/models/table_files.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Names = std::vector<std::string>;

TEST(TableInputs, AreTheTextsOfTablesThatAreRead) {
  EXPECT_EQ(tool::tableInputs("set S;\ntable t IN \"CSV\" 'a b.csv' : S <- [s], v;\n"
                              "table u{i in I} IN 'CSV' \"it's.csv\" :\n [i], w;"),
            (Names{"CSV", "a b.csv", "CSV", "it's.csv"}));
  EXPECT_EQ(tool::tableInputs("table t IN 'CSV' 'it''s.csv': [s];"), (Names{"CSV", "it's.csv"}));
}

TEST(TableInputs, AreNotThoseOfTablesThatAreWrittenNorOfOtherStatements) {
  EXPECT_EQ(tool::tableInputs("table t{s in S} OUT 'CSV' 'out.csv' : s, x[s];\n"
                              "printf 'table t IN \"CSV\" \"no.csv\" :';\n"
                              "param table_1, symbolic := 'no.csv';"),
            Names{});
}

TEST(TableInputs, AreNotThoseOfComments) {
  EXPECT_EQ(tool::tableInputs("# table t IN 'CSV' 'a.csv' :\n/* table t IN 'CSV' 'b.csv' : */\n"
                              "table t IN # 'c.csv'\n 'CSV' /* 'd.csv' */ 'e.csv' : S <- [s];"),
            (Names{"CSV", "e.csv"}));
}

TEST(TableInputs, OfATornModelAreWhatIsThere) {
  for (const char* model : {"table t IN 'CSV' 'a.csv", "table t IN 'CSV' 'a.csv' /* "}) {
    EXPECT_EQ(tool::tableInputs(model), (Names{"CSV", "a.csv"})) << model;
  }
  EXPECT_EQ(tool::tableInputs("table"), Names{});
  EXPECT_EQ(tool::tableInputs(""), Names{});
}

}  // namespace
