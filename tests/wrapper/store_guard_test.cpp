// What the wrapper refuses on the vector and trie stores, in its words, and cases that the random
// operations meet too rarely.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

std::string failure(const std::function<void()>& call) {
  try {
    call();
  } catch (const ztb::Error& error) {
    return std::string(error.operation()) + ": " + error.what();
  }
  return "it did not fail";
}

std::string levels(const ztb::Symbol& symbol) {
  std::string text;
  for (const ztb::Record& record : symbol.records()) {
    for (int position = 0; position < symbol.dimension(); ++position) {
      text += record.key(position).view();
    }
    text += "=" + std::to_string(static_cast<int>(record.level())) + " ";
  }
  return text;
}

struct On {
  explicit On(ztb::Store store) { database.selectStore(store); }
  ztb::Database database;
};

class VectorGuard : public testing::Test, public On {
 protected:
  VectorGuard() : On(ztb::Store::vector) {}
  ztb::Symbol p_ = database.addParameter("p", {"*", "*"});
};

class TrieGuard : public testing::Test, public On {
 protected:
  TrieGuard() : On(ztb::Store::trie) {}
  ztb::Symbol p_ = database.addParameter("p", {"*", "*"});
};

TEST_F(VectorGuard, RefusesAKeyBeforeTheLastAndAddsNoLabel) {
  database.mergeLabel("a");
  p_.add("b", "b").setLevel(1);
  const std::string text =
      "records reach this store in ascending order; (\"a\",\"new\") stands before the last record "
      "(\"b\",\"b\") of symbol p; the map store takes records in any order";
  EXPECT_EQ(failure([&] { p_.add("a", "new"); }), "ztbAddRecord: " + text);
  EXPECT_EQ(failure([&] { p_.merge("a", "new"); }), "ztbMergeRecord: " + text);
  EXPECT_EQ(failure([&] {
              p_.put(std::array{1, 2}, 5.0);
            }),
            "ztbMergeRecordInt: records reach this store in ascending order; (\"a\",\"b\") stands "
            "before the last record (\"b\",\"b\") of symbol p; the map store takes records in any "
            "order");
  EXPECT_EQ(database.labelCount(), 2);
  EXPECT_EQ(levels(p_), "bb=1 ");
}

TEST_F(VectorGuard, TakesAKeyBehindTheOnlyRow) {
  const std::array numbers{database.mergeLabel("a"), database.mergeLabel("b")};
  p_.put(std::array{numbers[0], numbers[0]}, 1.0);
  p_.put(std::array{numbers[0], numbers[1]}, 2.0);
  EXPECT_EQ(levels(p_), "aa=1 ab=2 ");
}

// As on the map, the values are given, and the subtype has no part in them.
TEST(StoreGuard, PutsRecordsOfASubtypeWithoutDefaultsOnEachStore) {
  for (const ztb::Store store : {ztb::Store::map, ztb::Store::vector, ztb::Store::trie}) {
    On on(store);
    // The wrapper makes no such variable, but a file or another program may have.
    void* made = nullptr;
    ASSERT_EQ(c__ztbaddsymbol(on.database.handle(), "x", 2, 2, 42, "", &made), 1);
    ztb::Symbol x(on.database.handle(), made);
    on.database.mergeLabel("a");
    on.database.mergeLabel("b");
    for (const std::array<int, 2> key : {std::array{1, 1}, std::array{1, 2}, std::array{2, 1}}) {
      x.put(key, {key[0] + 0.0, key[1] + 0.0, -1, 8, 2});
    }
    EXPECT_EQ(levels(x), "aa=1 ab=1 ba=2 ");
    EXPECT_EQ(x.userInfo(), 42);
    EXPECT_EQ(x.find("a", "b")->upper(), 8);
    EXPECT_EQ(x.find("a", "b")->marginal(), 2);
    EXPECT_EQ(x.find("b", "a")->scale(), 2);
  }
}

TEST_F(VectorGuard, RefusesElementsBetweenOthers) {
  ztb::Symbol s = database.addSet("s", {"*"});
  database.mergeLabel("a");
  s.add("b");
  EXPECT_EQ(failure([&] { s.putElement(std::array{1}, "text"); }),
            "ztbMergeSetRecordInt: records reach this store in ascending order; (\"a\") stands "
            "before the last record (\"b\") of symbol s; the map store takes records in any order");
  EXPECT_FALSE(s.find("a"));
}

TEST_F(VectorGuard, EndsOtherHandlesByARemoval) {
  p_.add("a", "a").setLevel(1);
  ztb::Record other = p_.add("b", "b");
  ztb::Record record = *p_.find("a", "a");
  record.erase();
  EXPECT_EQ(record.key(0), "b");
  const std::string text =
      "records of symbol p were removed since this handle was made; find its record again";
  EXPECT_EQ(failure([&] { other.setLevel(7); }), "ztbSetLevel: " + text);
  EXPECT_EQ(failure([&] { other.moveNext(); }), "ztbRecordMoveNext: " + text);
  EXPECT_EQ(failure([&] { static_cast<void>(other.copy()); }), "ztbCopySymbolIterator: " + text);
  EXPECT_EQ(levels(p_), "bb=0 ");
}

TEST_F(VectorGuard, StandsBehindTheLastRecordAfterItsRemoval) {
  p_.add("a", "a").setLevel(1);
  ztb::Record record = p_.add("b", "b");
  record.erase();
  EXPECT_EQ(failure([&] { static_cast<void>(record.level()); }),
            "ztbGetLevel: the record handle stands on no record");
  ztb::Record copy = record.copy();
  EXPECT_FALSE(copy.moveNext());
  EXPECT_TRUE(copy.movePrevious());
  EXPECT_EQ(copy.level(), 1);
}

TEST_F(VectorGuard, RemovesNothingThroughASlice) {
  p_.add("a", "a");
  p_.add("a", "b");
  EXPECT_EQ(failure([&] {
              for (ztb::Record& record : p_.slice("a", ztb::anyLabel)) record.erase();
            }),
            "ztbDeleteRecord: a record of symbol p is not removed through a slice on this store; "
            "find it by its labels");
  EXPECT_EQ(p_.recordCount(), 2);
}

TEST_F(VectorGuard, TellsOfALoopThatGoesOnAfterARemoval) {
  p_.add("a", "a");
  p_.add("b", "b");
  EXPECT_EQ(failure([&] {
              for (const ztb::Record& record : p_.records()) {
                static_cast<void>(record);
                p_.remove("b", "b");
              }
            }),
            "ztbRecordMoveNext: records of symbol p were removed since this handle was made; find "
            "its record again");
}

TEST_F(VectorGuard, RefusesRecordsOfAnAlias) {
  const ztb::Symbol s = database.addSet("s", {"*"});
  ztb::Symbol alias = database.addAlias("t", s);
  EXPECT_EQ(failure([&] { alias.add("a"); }),
            "ztbAddRecord: Symbol t is an alias, which has no records");
  EXPECT_EQ(database.labelCount(), 0);
}

TEST_F(VectorGuard, LeavesWrongNumbersToTheLibrary) {
  p_.add("a", "b");
  EXPECT_EQ(failure([&] {
              p_.putUnchecked(std::array{0, 1}, 1.0);
            }),
            "ztbMergeRecordInt: Error when adding record to symbol p: UEL needs to be greater than "
            "zero but is 0");
  EXPECT_EQ(failure([&] {
              p_.put(std::array{1, 3}, 1.0);
            }),
            "ztbMergeRecordInt: Error when adding record to symbol p: UEL 3 is unknown. Largest "
            "known UEL is 2");
}

TEST_F(TrieGuard, KeepsOrderAndValuesWhenTheFirstRecordGoes) {
  ztb::SpecialValues mine = database.specialValues();
  mine[ZTB_EPSILON] = 0;
  database.setSpecialValues(mine);
  p_.add("a", "a");
  p_.add("b", "a").setLevel(0);  // an epsilon
  p_.add("b", "b");              // a zero
  EXPECT_TRUE(p_.remove("a", "a"));
  EXPECT_EQ(database.userSpecialValues()[ZTB_EPSILON], 0);
  database.setSpecialValues(database.specialValues());
  EXPECT_EQ(p_.find("b", "a")->level(), 4.9406564584124654e-324);
  EXPECT_EQ(p_.find("b", "b")->level(), 0);
  EXPECT_EQ(levels(p_), "ba=0 bb=0 ");
}

TEST_F(TrieGuard, KeepsTextsAndSubtypesWhenTheFirstRecordGoes) {
  ztb::Symbol s = database.addSet("s", {"*"});
  s.add("a");
  s.add("b").setText("second");
  EXPECT_EQ(s.removeIf([](const ztb::Row& row) { return row.keys[0] == 1; }), 1U);
  EXPECT_EQ(s.find("b")->text(), "second");
  ztb::Symbol v = database.addVariable("v", 2, {"*"});
  v.put(std::array{1}, {1, 2, 3, 4, 5});
  v.put(std::array{2}, {6, 7, 8, 9, 10});
  v.setUserInfo(99);  // names no default values, which a rewrite must not need
  EXPECT_TRUE(v.remove("a"));
  EXPECT_EQ(v.userInfo(), 99);
  EXPECT_EQ(v.find("b")->scale(), 10);
}

TEST_F(TrieGuard, TakesTheOldLastKeyAfterAClear) {
  p_.add("a", "a").setLevel(1);
  p_.add("b", "b").setLevel(2);
  p_.clear();
  p_.merge("b", "b").setLevel(3);
  p_.merge("c", "c").setLevel(4);
  p_.merge("a", "a").setLevel(5);
  EXPECT_EQ(levels(p_), "aa=5 bb=3 cc=4 ");
}

TEST_F(TrieGuard, LeavesNothingBehindWhenASubtypeHasNoDefaults) {
  ztb::Symbol v = database.addVariable("v", 2, {"*"});
  v.setUserInfo(99);
  EXPECT_TRUE(failure([&] { v.add("a"); }).ends_with("subtype 99 of symbol v is outside [0,9]"));
  EXPECT_EQ(v.recordCount(), 0);
}

TEST_F(TrieGuard, RefusesATextThatIsTooLongAndKeepsTheOldOne) {
  ztb::Symbol s = database.addSet("s", {"*"});
  s.add("a").setText("old");
  EXPECT_EQ(failure([&] { s.putElement(std::array{1}, std::string(256, 't').c_str()); }),
            "ztbMergeSetRecordInt: Explanatory text too long. Max length is 255");
  EXPECT_EQ(s.find("a")->text(), "old");
}

// On every store.
class Refusals : public testing::TestWithParam<ztb::Store> {
 protected:
  Refusals() { database_.selectStore(GetParam()); }

  ztb::Database database_;
};

TEST_P(Refusals, ARecordThatFindsNoDefaultValuesLeavesNoLabels) {
  ztb::Symbol x = database_.addVariable("x", 3, {"*"});
  ztb::Symbol e = database_.addEquation("e", 0, {"*"});
  x.add("a").setLevel(1);
  x.setUserInfo(10);
  e.setUserInfo(-1);
  const std::string text = "subtype 10 of symbol x is outside [0,9]";
  EXPECT_EQ(failure([&] { x.merge("new"); }), "ztbMergeRecord: " + text);
  EXPECT_EQ(failure([&] { x.merge("a"); }), "ztbMergeRecord: " + text);
  EXPECT_EQ(failure([&] { e.add("new"); }),
            "ztbAddRecord: subtype -1 of symbol e is outside [0,6]");
  EXPECT_EQ(database_.labelCount(), 1);
  EXPECT_EQ(x.find("a")->level(), 1);
}

TEST_P(Refusals, AnAliasTakesNoRecords) {
  ztb::Symbol s = database_.addSet("s", {"*"});
  s.add("a");
  ztb::Symbol t = database_.addAlias("t", s);
  const std::array number{1};
  const std::string text = "Symbol t is an alias, which has no records";
  EXPECT_EQ(failure([&] { t.add("new"); }), "ztbAddRecord: " + text);
  EXPECT_EQ(failure([&] { t.merge("a"); }), "ztbMergeRecord: " + text);
  EXPECT_EQ(failure([&] { t.put(number, 1); }), "ztbMergeRecordInt: " + text);
  EXPECT_EQ(failure([&] { t.putElement(number, ""); }), "ztbMergeSetRecordInt: " + text);
  EXPECT_EQ(database_.labelCount(), 1);
  EXPECT_FALSE(t.find("a"));
}

TEST_P(Refusals, WhatIsNoSetTakesNoElements) {
  ztb::Symbol p = database_.addParameter("p", {"*"});
  const std::array number{database_.mergeLabel("a")};
  for (const char* text : {"text", static_cast<const char*>(nullptr)}) {
    EXPECT_EQ(failure([&] { p.putElement(number, text); }),
              "ztbMergeSetRecordInt: ztbMergeSetRecordInt can only be used with set symbols");
  }
  EXPECT_EQ(p.recordCount(), 0);
}

INSTANTIATE_TEST_SUITE_P(Stores, Refusals,
                         testing::Values(ztb::Store::map, ztb::Store::vector, ztb::Store::trie));

TEST(WrapperLabels, BlankAndEmptyOnesAreRefusedOnTheWayIn) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  EXPECT_EQ(failure([&] { database.mergeLabel("  "); }), "ztbMergeUel: Label is blank");
  EXPECT_EQ(failure([&] { p.add("new", " "); }), "ztbAddRecord: Label is blank");
  EXPECT_EQ(failure([&] { p.merge("new", ""); }), "ztbMergeRecord: Label is empty");
  EXPECT_EQ(failure([&] { p.merge("new", "a\tb"); }),
            "ztbMergeRecord: Label holds a control character >a\\tb<");
  EXPECT_EQ(database.labelCount(), 0);
  EXPECT_EQ(p.recordCount(), 0);
  EXPECT_FALSE(p.find(" ", "  "));
  EXPECT_FALSE(database.findLabel(" "));
  EXPECT_FALSE(database.universe().find(" "));
}

TEST(WrapperLabels, AnEmptyOneThatIsThereIsUsed) {
  ztb::Database database;
  EXPECT_EQ(database.mergeLabel(""), 1);
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.merge("").setLevel(2);
  EXPECT_EQ(p.find("")->level(), 2);
  EXPECT_EQ(database.mergeLabel(""), 1);
  EXPECT_EQ(database.findLabel(""), 1);
}

TEST(WrapperLabels, TwoBlanksMatchNothingInASlice) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a");
  EXPECT_EQ(p.slice("  ").begin(), std::default_sentinel);
  EXPECT_NE(p.slice(ztb::anyLabel).begin(), std::default_sentinel);
}

TEST(WrapperScalars, MergingKeepsTheRecordOnEachStore) {
  for (const ztb::Store store : {ztb::Store::map, ztb::Store::vector, ztb::Store::trie}) {
    const On on(store);
    ztb::Database& database = const_cast<ztb::Database&>(on.database);
    ztb::Symbol p = database.addParameter("p", {});
    p.merge().setLevel(3);
    EXPECT_EQ(p.merge().level(), 3);
    EXPECT_EQ(failure([&] { p.add(); }), "ztbAddRecord: Record (\") exists already for symbol p");
    p.clear();
    EXPECT_EQ(p.recordCount(), 0);
    EXPECT_FALSE(p.find());
  }
}

}  // namespace
