// A database that stands on a host engine's callbacks.
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/scripted_host.h"

namespace ztbtest {
namespace {

using Calls = std::vector<std::string>;

class HostEngine : public testing::Test {
 protected:
  HostEngine() {
    a = db.uel("a");
    b = db.uel("b");
  }

  // The first access to a symbol.
  int read(void* symbol) {
    void* record = nullptr;
    const int result = lib().c__ztbfindfirstrecord(db, symbol, &record);
    if (record != nullptr) {
      lib().c__ztbfreesymboliterator(db, record);
    }
    return result;
  }

  Database db;
  ScriptedHost host;
  int a = 0;
  int b = 0;
};

TEST_F(HostEngine, takesAllRecordsAwayAndFetchesThemWhenTheyAreTouched) {
  void* const data = db.addParameter("p", 2);
  db.put(data, {"old", "old"}, 1);
  host.add("p", 17, {{{a, b}, {12}}, {{b, a}, {21}}});
  host.attach(db);
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ((Calls{}), host.calls);
  EXPECT_EQ((std::vector<Row>{{{"a", "b"}, 12}, {{"b", "a"}, 21}}), db.rows(data));
  EXPECT_EQ(
      (Calls{"findSymbol p", "dataReadRawStart 17", "dataReadRaw", "dataReadRaw", "dataReadDone"}),
      host.calls);
  EXPECT_EQ(2, db.recordCount(data));
  EXPECT_EQ(5U, host.calls.size()) << "read once";
}

TEST_F(HostEngine, canBeAttachedAgainAndStartsOver) {
  void* const data = db.addParameter("p");
  host.add("p", 1, {{{a}, {1}}});
  host.attach(db);
  ASSERT_EQ(1, db.recordCount(data));
  db.put(data, {"b"}, 2);
  ScriptedHost other;
  other.add("p", 1, {{{b}, {5}}});
  other.attach(db);
  EXPECT_EQ((std::vector<Row>{{{"b"}, 5}}), db.rows(data));
}

TEST_F(HostEngine, leavesLabelsTextsAndTheUniverseAlone) {
  void* const set = db.addSet("i");
  const Record record = db.put(set, {"a"});
  ASSERT_EQ(1, lib().c__ztbsetelemtext(db, record, "kept"));
  host.add("i", 1, {{{a}, {9}}});
  host.texts[9] = "new";
  host.attach(db);
  EXPECT_EQ(2, db.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(2, db.recordCount(db.universe()));
  int key = 0;
  double number = 0;
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, db.first(set), 1, &key, &number));
  EXPECT_EQ(2, number) << "the empty text and the kept one stand before it";
}

TEST_F(HostEngine, replacesADatabaseOnAFileWhichStaysUnused) {
  const TempFolder folder;
  const std::string file = folder.file("data.rxf");
  db.put(db.addParameter("p"), {"a"}, 1);
  ASSERT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 0));
  Database opened(file);
  host.add("p", 1, {{{b}, {5}}});
  host.attach(opened);
  EXPECT_EQ((std::vector<Row>{{{"b"}, 5}}), opened.rows(opened.find("p")));
  EXPECT_FAILURE(opened, "Database not initialized from RXF", lib().c__ztbcloserxf(opened, 0));
}

TEST_F(HostEngine, mapsItsSpecialValuesInEverySlot) {
  void* const data = db.addParameter("p");
  void* const variable = db.addVariable("v");
  host.add("p", 1, {{{a}, {2e300}}, {{b}, {5e300}}});
  host.add("v", 2, {{{a}, {1e300, 2e300, 3e300, 4e300, 5e300}}, {{b}, {1, 2, 3, 4, 5}}});
  host.attach(db);
  const Doubles levels = storedLevels(db, data);
  EXPECT_EQ(notAvailableBits, bitsOf(levels[0]));
  EXPECT_EQ(epsilonBits, bitsOf(levels[1]));
  int key = 0;
  Doubles values(5);
  const Record record = db.first(variable);
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, record, 1, &key, values.data()));
  EXPECT_EQ(undefinedBits, bitsOf(values[0]));
  EXPECT_EQ(notAvailableBits, bitsOf(values[1]));
  EXPECT_EQ(plusInfinityBits, bitsOf(values[2]));
  EXPECT_EQ(minusInfinityBits, bitsOf(values[3]));
  EXPECT_EQ(epsilonBits, bitsOf(values[4]));
  ASSERT_EQ(1, lib().c__ztbrecordmovenext(db, record));
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(db, record, 1, &key, values.data()));
  EXPECT_EQ((Doubles{1, 2, 3, 4, 5}), values);
}

TEST_F(HostEngine, deliversTextsOneByOneAndStoresEqualOnesOnce) {
  void* const set = db.addSet("i");
  host.add("i", 1, {{{a}, {7.9}}, {{b}, {8}}, {{db.uel("c")}, {0}}, {{db.uel("d")}, {-3}}});
  host.texts = {{7, "shared"}, {8, "SHARED"}, {-3, std::string(255, 'x')}};
  host.attach(db);
  EXPECT_EQ("shared", db.elementText(db.record(set, {"a"})));
  EXPECT_EQ("shared", db.elementText(db.record(set, {"b"})));
  EXPECT_EQ("", db.elementText(db.record(set, {"c"})));
  EXPECT_EQ(std::string(255, 'x'), db.elementText(db.record(set, {"d"})));
  EXPECT_EQ((Calls{"findSymbol i", "dataReadRawStart 1", "dataReadRaw", "getElemText 7 255",
                   "dataReadRaw", "getElemText 8 255", "dataReadRaw", "dataReadRaw",
                   "getElemText -3 255", "dataReadDone"}),
            host.calls)
      << "no text is asked for where the record has none";
}

TEST_F(HostEngine, saysThatATextIsThereAlreadyAtTraceLevelTwo) {
  void* const set = db.addSet("i");
  host.add("i", 1, {{{a}, {7}}, {{b}, {7}}});
  host.texts = {{7, "shared"}};
  host.attach(db);
  lib().c__ztbsetdebug(db, 2);
  StdoutCapture capture;
  read(set);
  const std::string lines = capture.text();
  {
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(db, 0);
  }
  EXPECT_EQ("ztbFindFirstRecord\n  Text already exists\nztbFreeSymbolIterator\n", lines);
}

TEST_F(HostEngine, hasToKnowTheSymbolAndIsNotAskedTwice) {
  void* const data = db.addParameter("p");
  host.attach(db);
  EXPECT_FAILURE(db, "Problems with findSymbol for symbol p", read(data));
  EXPECT_FAILURE(db, "Cannot find a record in Symbol p", read(data));
}

TEST_F(HostEngine, hasToStartAndToEndTheReading) {
  void* const data = db.addParameter("p");
  host.add("p", 1, {{{a}, {1}}});
  host.refuseStart = true;
  host.attach(db);
  EXPECT_FAILURE(db, "Problems with dataReadRawStart for symbol p", read(data));
  host.refuseStart = false;
  host.refuseDone = true;
  host.attach(db);
  EXPECT_FAILURE(db, "Problems with dataReadDone for symbol p", read(data));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), db.rows(data)) << "what was read stays";
}

TEST_F(HostEngine, thatFailsMidwayLeavesTheRecordsReadSoFar) {
  void* const data = db.addParameter("p");
  host.add("p", 1, {{{a}, {1}}, {{b}, {2}}});
  host.refuseRecord = 1;
  host.attach(db);
  EXPECT_FAILURE(db, "Problems with dataReadRaw for symbol p", read(data));
  EXPECT_NE("dataReadDone", host.calls.back());
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), db.rows(data));
}

TEST_F(HostEngine, thatCannotDeliverAScalarLeavesItEmptyWithSuccess) {
  void* const scalar = db.addParameter("s", 0);
  host.add("s", 1, {{{}, {4}}});
  host.refuseRecord = 0;
  host.attach(db);
  db.markError();
  EXPECT_EQ(0, db.recordCount(scalar));
  EXPECT_TRUE(db.errorUntouched());
  EXPECT_EQ("dataReadDone", host.calls.back());
  host.refuseRecord = -1;
  host.attach(db);
  EXPECT_EQ(4, db.level(db.first(scalar)));
}

TEST_F(HostEngine, thatCannotDeliverATextFailsTheReadWithoutAMessage) {
  void* const set = db.addSet("i");
  host.add("i", 1, {{{a}, {7}}, {{b}, {8}}});
  host.texts = {{7, "there"}};
  host.attach(db);
  EXPECT_SILENT_FAILURE(db, read(set));
  EXPECT_NE("dataReadDone", host.calls.back());
  EXPECT_EQ(1, db.recordCount(set));
}

TEST_F(HostEngine, isNotAskedForAnAlias) {
  void* const alias = db.addAlias("ali", db.addSet("i"));
  host.attach(db);
  EXPECT_FAILURE(db, "Cannot load alias ali", read(alias));
  EXPECT_EQ((Calls{}), host.calls);
}

TEST_F(HostEngine, isNotAskedForASymbolThatACubeReplaces) {
  void* domain = db.addSet("i");
  void* const data = db.addParameter("p");
  host.add("i", 1, {{{a}, {0}}});
  host.attach(db);
  const double cell = 4;
  const int size = 1;
  EXPECT_SUCCESS(db, lib().c__ztbdensearraytosymbol(db, data, &domain, &cell, &size));
  EXPECT_EQ((Calls{"findSymbol i", "dataReadRawStart 1", "dataReadRaw", "dataReadDone"}),
            host.calls);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 4}}), db.rows(data));
}

TEST_F(HostEngine, readsSymbolsOfEveryStore) {
  for (const int storage : {ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE}) {
    Database other;
    ASSERT_EQ(1, lib().c__ztbselectrecordstorage(other, nullptr, storage));
    other.uel("a");
    other.uel("b");
    void* const data = other.addParameter("p", 2);
    host.add("p", 1, {{{a, b}, {12}}, {{b, a}, {21}}});
    host.attach(other);
    EXPECT_EQ((std::vector<Row>{{{"a", "b"}, 12}, {{"b", "a"}, 21}}), other.rows(data));
  }
}

TEST_F(HostEngine, receivesTheLogAsShortStrings) {
  host.attach(db);
  ASSERT_EQ(1, lib().c__ztbprintlog(db, "hello"));
  ASSERT_EQ(1, lib().c__ztbprintlog(db, ""));
  ASSERT_EQ(1, lib().c__ztbprintlog(db, std::string(255, 'f').c_str()));
  ASSERT_EQ(1, lib().c__ztbprintlog(db, std::string(300, 'l').c_str()));
  ASSERT_EQ(4U, host.logged.size());
  EXPECT_EQ(5U, host.logged[0].first);
  EXPECT_EQ(std::string("hello") + std::string(250, '\0'), host.logged[0].second);
  EXPECT_EQ(0U, host.logged[1].first);
  EXPECT_EQ(255U, host.logged[2].first);
  EXPECT_EQ(255U, host.logged[3].first);
  EXPECT_EQ(std::string(255, 'l'), host.logged[3].second);
}

TEST_F(HostEngine, mayHaveNoLog) {
  ASSERT_EQ(1, lib().c__ztbinitfromhvex(db, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        nullptr))
      << "no argument is checked";
  StdoutCapture capture;
  lib().c__ztbprintlog(db, std::string(300, 'l').c_str());
  EXPECT_EQ(std::string(300, 'l') + "\n", capture.text());
}

class HostEngineToFile : public HostEngine {
 protected:
  int write() { return lib().c__ztbwriterxf(db, file.c_str(), 0); }

  TempFolder folder;
  std::string file = folder.file("data.rxf");
};

TEST_F(HostEngineToFile, unreadSymbolsGoStraightIntoAFile) {
  void* const set = db.addSet("i");
  db.addAlias("ali", set);
  db.addVariable("v");
  host.add("i", 1, {{{a}, {7}}, {{b}, {8}}});
  host.add("v", 2, {{{b}, {1e300, 2e300, 3e300, 4e300, 5e300}}});
  host.texts = {{7, "of a"}, {8, "of b"}};
  host.attach(db);
  EXPECT_SUCCESS(db, write());
  const std::size_t calls = host.calls.size();
  Database opened(file);
  EXPECT_EQ("of a", opened.elementText(opened.record(opened.find("i"), {"a"})));
  EXPECT_EQ("of b", opened.elementText(opened.record(opened.find("ali"), {"b"})));
  int key = 0;
  Doubles values(5);
  ASSERT_EQ(
      1, lib().c__ztbgetrecordraw(opened, opened.first(opened.find("v")), 1, &key, values.data()));
  EXPECT_EQ(undefinedBits, bitsOf(values[0]));
  EXPECT_EQ(epsilonBits, bitsOf(values[4]));
  EXPECT_EQ(2, db.recordCount(set));
  EXPECT_LT(calls, host.calls.size()) << "written, but not kept: read again at the first access";
}

TEST_F(HostEngineToFile, anUnreadableSymbolOrTextFailsTheWrite) {
  db.addParameter("p");
  db.addSet("i");
  host.add("p", 1, {});
  host.attach(db);
  EXPECT_FAILURE(db, "Problems writing symbol i to RXF", write());
  host.add("i", 2, {{{a}, {7}}});
  EXPECT_FAILURE(db, "Problems writing symbol i to RXF", write());
  host.texts = {{7, "text"}};
  EXPECT_SUCCESS(db, write());
}

}  // namespace
}  // namespace ztbtest
