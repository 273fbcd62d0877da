// Records of an opened file: read when a symbol is first touched, kept or lost when the file is
// closed, and what a symbol is worth whose load failed.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

class LazyRecords : public testing::Test {
 protected:
  // Parameter p: a=1 b=2. Set i: a "first". Variable v: scalar with five values. Alias j of i.
  LazyRecords() : file(folder.file("data.rxf")) {
    Database source;
    void* const data = source.addParameter("p");
    source.put(data, {"a"}, 1.0);
    source.put(data, {"b"}, 2.0);
    void* const set = source.addSet("i");
    lib().c__ztbsetelemtext(source, source.put(set, {"a"}), "first");
    source.addAlias("j", set);
    const Record scalar = source.put(source.addVariable("v", 0), {}, 3.0);
    lib().c__ztbsetupper(source, scalar, 4.0);
    lib().c__ztbsetscale(source, scalar, 5.0);
    source.addParameter("empty");
    EXPECT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 0)) << source.lastError();
  }

  static std::string lost(const std::string& name) {
    return "Symbol " + name + " not initialized from RXF or PBI: 3";
  }

  TempFolder folder;
  std::string file;
};

TEST_F(LazyRecords, comeWithTheFirstTouchOfEveryKind) {
  Keys a{"a"};
  Keys any{" "};
  const int key = 1;
  const std::array<double, 5> values{7, 0, 0, 0, 0};
  void* handle = nullptr;
  const auto touches = std::vector<std::function<int(Database&, void*)>>{
      [&](Database& db, void* symbol) { return lib().c__ztbfindrecord(db, symbol, a, &handle); },
      [&](Database& db, void* symbol) { return lib().c__ztbfindfirstrecord(db, symbol, &handle); },
      [&](Database& db, void* symbol) { return lib().c__ztbfindlastrecord(db, symbol, &handle); },
      [&](Database& db, void* symbol) {
        return lib().c__ztbfindfirstrecordslice(db, symbol, any, &handle);
      },
      [&](Database& db, void* symbol) {
        return lib().c__ztbfindlastrecordslice(db, symbol, any, &handle);
      },
      [&](Database& db, void* symbol) { return lib().c__ztbmergerecord(db, symbol, a, &handle); },
      [&](Database& db, void* symbol) {
        return lib().c__ztbmergerecordint(db, symbol, &key, 1, 1, &handle, 1, values.data());
      }};
  for (const auto& touch : touches) {
    Database db(file);
    void* const symbol = db.find("p");
    handle = nullptr;
    EXPECT_SUCCESS(db, touch(db, symbol));
    const Record record(db, handle);
    EXPECT_EQ(2, db.recordCount(symbol));
    EXPECT_EQ(2.0, db.level(db.record(symbol, {"b"})));
  }
}

TEST_F(LazyRecords, comeWithTheRecordCount) {
  Database db(file);
  EXPECT_EQ(2, db.recordCount(db.find("p")));
  EXPECT_EQ(1, db.recordCount(db.find("i")));
  EXPECT_EQ(0, db.recordCount(db.find("empty")));
}

TEST_F(LazyRecords, comeBeforeAnAdditionSoThatTheSymbolIsWhole) {
  Database db(file);
  void* const symbol = db.find("p");
  Keys keys{"a"};
  void* handle = nullptr;
  EXPECT_FAILURE(db, "Record (\"a\") exists already for symbol p",
                 lib().c__ztbaddrecord(db, symbol, keys, &handle));
  db.put(symbol, {"c"}, 3.0);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}, {{"c"}, 3.0}}), db.rows(symbol));
}

TEST_F(LazyRecords, carryTextsAndFiveValues) {
  Database db(file);
  EXPECT_EQ("first", db.elementText(db.first(db.find("i"))));
  const Record scalar = db.first(db.find("v"));
  std::array<double, 5> values{};
  int unusedKey = 0;
  EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, scalar, 0, &unusedKey, values.data()));
  EXPECT_EQ((std::array<double, 5>{3, 0, 0, 4, 5}), values);
}

TEST_F(LazyRecords, areReadOnceAndNotAgainAfterTheSymbolWasCleared) {
  Database db(file);
  void* const symbol = db.find("p");
  EXPECT_EQ(2, db.recordCount(symbol));
  ASSERT_EQ(1, lib().c__ztbclearsymbol(db, symbol));
  EXPECT_EQ(0, db.recordCount(symbol));
}

TEST_F(LazyRecords, areNeverReadOnceTheUntouchedSymbolWasCleared) {
  Database db(file);
  void* const symbol = db.find("p");
  EXPECT_SUCCESS(db, lib().c__ztbclearsymbol(db, symbol));
  EXPECT_EQ(0, db.recordCount(symbol));
  EXPECT_EQ(1, db.recordCount(db.find("i"))) << "other symbols are still to be read";
}

TEST_F(LazyRecords, areReadFromAFileThatWasRemovedWhileItIsOpen) {
  Database db(file);
  std::filesystem::remove(file);
  EXPECT_EQ(2, db.recordCount(db.find("p")));
}

TEST_F(LazyRecords, areAllReadWhenTheFileIsClosedWithThem) {
  Database db(file);
  EXPECT_SUCCESS(db, lib().c__ztbcloserxf(db, 1));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
  std::filesystem::remove(file);
  EXPECT_EQ(2, db.recordCount(db.find("p")));
  EXPECT_EQ("first", db.elementText(db.first(db.find("i"))));
  EXPECT_EQ(3.0, db.level(db.first(db.find("v"))));
}

TEST_F(LazyRecords, anyNonZeroNumberAsksForTheRest) {
  Database db(file);
  EXPECT_EQ(1, lib().c__ztbcloserxf(db, -2));
  EXPECT_EQ(2, db.recordCount(db.find("p")));
}

TEST_F(LazyRecords, thatWereReadStayWhenTheFileIsClosedWithoutTheRest) {
  Database db(file);
  EXPECT_EQ(2, db.recordCount(db.find("p")));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  EXPECT_EQ(2, db.recordCount(db.find("p")));
}

TEST_F(LazyRecords, thatWereNotReadFailOnceAndAreThenGone) {
  Database db(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  void* const symbol = db.find("p");
  void* handle = nullptr;
  EXPECT_FAILURE(db, lost("p"), lib().c__ztbfindfirstrecord(db, symbol, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_FAILURE(db, "Cannot find a record in Symbol p",
                 lib().c__ztbfindfirstrecord(db, symbol, &handle));
  EXPECT_EQ(0, db.recordCount(symbol));
}

TEST_F(LazyRecords, lostOnesFailTheFirstTouchOfEveryKindAndNoneAfterIt) {
  Keys a{"a"};
  Keys unknown{"unknown"};
  void* handle = nullptr;
  const int key = 1;
  const std::array<double, 5> values{7, 0, 0, 0, 0};
  Database db(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  int count = -1;
  EXPECT_FAILURE(db, lost("v"),
                 lib().c__ztbsymbolinfo(db, db.find("v"), ZTB_SYMBOL_INFO_RECORD_COUNT, &count,
                                        nullptr, nullptr));
  EXPECT_EQ(0, count);
  EXPECT_FAILURE(db, lost("p"), lib().c__ztbaddrecord(db, db.find("p"), unknown, &handle));
  EXPECT_EQ(-1, db.findUel("unknown")) << "no label enters before the load";
  EXPECT_SUCCESS(db, lib().c__ztbaddrecord(db, db.find("p"), a, &handle));
  const Record record(db, handle);
  EXPECT_FAILURE(
      db, lost("empty"),
      lib().c__ztbmergerecordint(db, db.find("empty"), &key, 1, 0, nullptr, 1, values.data()));
  EXPECT_FAILURE(db, lost("i"),
                 lib().c__ztbmergesetrecordint(db, db.find("i"), &key, 1, 0, nullptr, "text"));
  EXPECT_SUCCESS(db, lib().c__ztbmergesetrecordint(db, db.find("i"), &key, 1, 0, nullptr, "text"));
}

TEST_F(LazyRecords, lostOnesFailMergesAndSlicesToo) {
  Keys a{"a"};
  void* handle = nullptr;
  Database db(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  EXPECT_FAILURE(db, lost("p"), lib().c__ztbmergerecord(db, db.find("p"), a, &handle));
  EXPECT_FAILURE(db, lost("i"), lib().c__ztbfindfirstrecordslice(db, db.find("i"), a, &handle));
  EXPECT_EQ(nullptr, handle);
  EXPECT_FAILURE(db, lost("v"),
                 lib().c__ztbfindlastrecordslice(db, db.find("v"), nullptr, &handle));
  EXPECT_FAILURE(db, lost("empty"), lib().c__ztbfindrecord(db, db.find("empty"), a, &handle));
}

TEST_F(LazyRecords, areLostBeforeTheNumbersOfARecordAreLookedAt) {
  const int unknown = 99;
  const std::array<double, 5> values{};
  Database db(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  EXPECT_FAILURE(
      db, lost("p"),
      lib().c__ztbmergerecordint(db, db.find("p"), &unknown, 1, 0, nullptr, 1, values.data()));
  EXPECT_FAILURE(db, lost("i"),
                 lib().c__ztbmergesetrecordint(db, db.find("i"), &unknown, 1, 0, nullptr, "text"));
  EXPECT_FAILURE(
      db, "Error when adding record to symbol p: UEL 99 is unknown. Largest known UEL is 2",
      lib().c__ztbmergerecordint(db, db.find("p"), &unknown, 1, 0, nullptr, 1, values.data()));
}

TEST_F(LazyRecords, aLostSymbolCanBeClearedWithoutAFailure) {
  Database db(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  EXPECT_SUCCESS(db, lib().c__ztbclearsymbol(db, db.find("p")));
  EXPECT_EQ(0, db.recordCount(db.find("p")));
}

TEST_F(LazyRecords, anAliasHandleCannotBeLoadedAndIsThenEmpty) {
  Database db(file);
  void* const alias = db.findWithAlias("j");
  void* handle = nullptr;
  EXPECT_FAILURE(db, "Cannot load alias j", lib().c__ztbfindfirstrecord(db, alias, &handle));
  EXPECT_FAILURE(db, "Cannot find a record in Symbol j",
                 lib().c__ztbfindfirstrecord(db, alias, &handle));
}

TEST_F(LazyRecords, anAliasCountsNoRecordsWithoutALoad) {
  Database db(file);
  void* const alias = db.findWithAlias("j");
  EXPECT_EQ(0, db.recordCount(alias));
  void* handle = nullptr;
  EXPECT_FAILURE(db, "Cannot load alias j", lib().c__ztbfindlastrecord(db, alias, &handle));
}

TEST_F(LazyRecords, closingPassesAliasesOver) {
  Database db(file);
  EXPECT_SUCCESS(db, lib().c__ztbcloserxf(db, 1));
  void* handle = nullptr;
  EXPECT_FAILURE(db, lost("j"), lib().c__ztbfindfirstrecord(db, db.findWithAlias("j"), &handle));
}

TEST_F(LazyRecords, aSymbolAddedToTheDatabaseIsLoadedFromTheStart) {
  Database db(file);
  void* const added = db.addParameter("added");
  void* handle = nullptr;
  EXPECT_FAILURE(db, "Cannot find a record in Symbol added",
                 lib().c__ztbfindfirstrecord(db, added, &handle));
}

TEST_F(LazyRecords, theUniverseIsWalkedWithoutARead) {
  Database db(file);
  EXPECT_EQ(2, db.recordCount(db.universe()));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  void* handle = nullptr;
  EXPECT_FAILURE(db, lost("p"), lib().c__ztbfindfirstrecord(db, db.find("p"), &handle));
}

}  // namespace
}  // namespace ztbtest
