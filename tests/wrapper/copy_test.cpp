// Copying the records of a symbol, within a database and across, and never onto itself.

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using Levels = std::map<std::string, double>;

Levels levelsOf(const ztb::Symbol& symbol) {
  Levels levels;
  for (const ztb::Record& record : symbol.records()) {
    levels[record.key(0).str()] = record.level();
  }
  return levels;
}

std::string refusal(ztb::Symbol target, const ztb::Symbol& source) {
  try {
    target.copyFrom(source);
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "";
}

TEST(Copy, ReplacesTheRecordsByThoseOfASymbolOfAnotherDatabase) {
  ztb::Database from;
  ztb::Symbol p = from.addParameter("p", {"*"});
  p.add("a").setLevel(1);
  p.add("b").setLevel(2);
  ztb::Database to;
  ztb::Symbol q = to.addParameter("q", {"*"});
  q.add("old").setLevel(9);
  q.copyFrom(p);
  EXPECT_EQ(levelsOf(q), (Levels{{"a", 1}, {"b", 2}}));
}

TEST(Copy, OntoItselfIsRefusedAndChangesNothing) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a").setLevel(1);
  EXPECT_EQ(refusal(p, database.symbol("p")),
            "Cannot copy symbol p onto itself: the copy would empty it first");
  EXPECT_EQ(levelsOf(p), (Levels{{"a", 1}}));
}

TEST(Copy, OfAnAliasOntoItsSetIsRefusedAndChangesNothing) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*"});
  s.add("a");
  s.add("b");
  database.addAlias("t", s);
  database.write(path);
  const std::string expected = "Cannot copy symbol t onto s: the copy would empty it first";
  EXPECT_EQ(refusal(s, *database.findSymbolOrAlias("t")), expected);
  EXPECT_EQ(s.recordCount(), 2);
  ztb::Database opened = ztb::Database::open(path);
  EXPECT_EQ(refusal(opened.symbol("s"), *opened.findSymbolOrAlias("t")), expected);
  EXPECT_EQ(opened.symbol("s").recordCount(), 2);
  EXPECT_EQ(refusal(*opened.findSymbolOrAlias("t"), opened.symbol("s")),
            "Cannot copy symbol s onto t: the copy would empty it first");
  EXPECT_EQ(opened.symbol("s").recordCount(), 2);
}

TEST(Copy, OfAnAliasGivesTheRecordsOfItsSet) {
  ztb::Database database;
  ztb::Symbol s = database.addSet("s", {"*"});
  s.add("a");
  database.addAlias("t", s);
  ztb::Symbol other = database.addSet("other", {"*"});
  other.add("b");
  other.copyFrom(*database.findSymbolOrAlias("t"));
  EXPECT_EQ(levelsOf(other).count("a"), 1U);
  EXPECT_EQ(other.recordCount(), 1);
}

// The target is emptied only when the source is there.
TEST(Copy, OfASymbolThatCannotBeReadLeavesTheTarget) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  {
    ztb::Database database;
    database.addParameter("p", {"*"}).add("a").setLevel(1);
    database.write(path);
  }
  ztb::Database from = ztb::Database::open(path);
  from.closeFile(false);
  ztb::Database to;
  ztb::Symbol q = to.addParameter("q", {"*"});
  q.add("kept").setLevel(5);
  EXPECT_NE(refusal(q, from.symbol("p")), "");
  EXPECT_EQ(levelsOf(q), (Levels{{"kept", 5}}));
}

}  // namespace
