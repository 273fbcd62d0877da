// Marks of the symbols that were written to while recording was on.
#include <fstream>
#include <iterator>

#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class WriteRecording : public testing::Test {
 protected:
  // The first symbol of a database keeps its mark at a start; the tests look at others.
  WriteRecording() : first(db.addParameter("first")) {}

  int mark(void* symbol) { return db.symbolInfo(symbol, ZTB_SYMBOL_INFO_WRITE_RECORDED); }
  void start() { ASSERT_EQ(1, lib().c__ztbstartwriterecording(db)) << db.lastError(); }
  void stop() { ASSERT_EQ(1, lib().c__ztbstopwriterecording(db)) << db.lastError(); }

  // Whether the call marks the symbol while recording is on and not while it is off.
  template <class Call>
  bool marks(void* symbol, Call call) {
    start();
    EXPECT_EQ(0, mark(symbol));
    call();
    stop();
    const bool marked = mark(symbol) == 1;
    start();
    stop();
    call();
    EXPECT_EQ(0, mark(symbol)) << "recording is off";
    return marked;
  }

  Database db;
  void* first;
};

TEST_F(WriteRecording, tellsWhichSymbolsWereWrittenTo) {
  void* const touched = db.addParameter("touched");
  void* const other = db.addParameter("other");
  start();
  db.put(touched, {"a"});
  stop();
  EXPECT_EQ(1, mark(touched));
  EXPECT_EQ(0, mark(other));
}

TEST_F(WriteRecording, isOffAtFirstAndCannotBeStopped) {
  EXPECT_FAILURE(db, "Write Recording not active", lib().c__ztbstopwriterecording(db));
  db.put(first, {"a"});
  EXPECT_EQ(0, mark(first));
}

TEST_F(WriteRecording, cannotBeStartedTwiceAndGoesOnWithItsMarks) {
  void* const touched = db.addParameter("touched");
  void* const later = db.addParameter("later");
  start();
  db.put(touched, {"a"});
  EXPECT_FAILURE(db, "Write Recording already active", lib().c__ztbstartwriterecording(db));
  EXPECT_EQ(1, mark(touched));
  db.put(later, {"a"});
  EXPECT_EQ(1, mark(later));
  EXPECT_SUCCESS(db, lib().c__ztbstopwriterecording(db));
  EXPECT_FAILURE(db, "Write Recording not active", lib().c__ztbstopwriterecording(db));
}

TEST_F(WriteRecording, keepsMarksBehindItsEndWhateverIsWrittenThen) {
  void* const touched = db.addParameter("touched");
  void* const later = db.addParameter("later");
  start();
  db.put(touched, {"a"});
  stop();
  db.put(later, {"a"});
  db.put(touched, {"b"});
  EXPECT_EQ(1, mark(touched));
  EXPECT_EQ(0, mark(later));
}

TEST_F(WriteRecording, aStartClearsAllMarksButThoseOfTheFirstSymbolAndOfAliases) {
  void* const set = db.addSet("i");
  void* const alias = db.addAlias("ali", set);
  void* const last = db.addParameter("last");
  start();
  for (void* symbol : {first, set, last}) {
    db.put(symbol, {"a"});
  }
  ASSERT_EQ(1, lib().c__ztbclearsymbol(db, alias));
  stop();
  start();
  EXPECT_EQ(1, mark(first));
  EXPECT_EQ(0, mark(set));
  EXPECT_EQ(1, mark(alias));
  EXPECT_EQ(0, mark(last));
}

TEST_F(WriteRecording, theFirstSymbolIsTheFirstThatIsNoAlias) {
  Database fresh;
  fresh.add("ali", 1, ZTB_ALIAS, -1);
  void* const data = fresh.addParameter("p");
  ASSERT_EQ(1, lib().c__ztbstartwriterecording(fresh));
  fresh.put(data, {"a"});
  ASSERT_EQ(1, lib().c__ztbstopwriterecording(fresh));
  ASSERT_EQ(1, lib().c__ztbstartwriterecording(fresh));
  EXPECT_EQ(1, fresh.symbolInfo(data, ZTB_SYMBOL_INFO_WRITE_RECORDED));
}

TEST_F(WriteRecording, marksChangesOfEachValue) {
  void* const variable = db.addVariable("v");
  const Record record = db.put(variable, {"a"});
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetlevel(db, record, 1); }));
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetmarginal(db, record, 1); }));
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetlower(db, record, 1); }));
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetupper(db, record, 1); }));
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetscale(db, record, 1); }));
  EXPECT_TRUE(marks(variable, [&] { lib().c__ztbsetuserinfo(db, variable, 3); }));
}

TEST_F(WriteRecording, marksAParameterThatWasAskedForAMarginalItDoesNotHave) {
  void* const data = db.addParameter("p");
  const Record record = db.put(data, {"a"});
  EXPECT_TRUE(marks(data, [&] { lib().c__ztbsetmarginal(db, record, 1); }));
}

TEST_F(WriteRecording, marksChangesOfATextButNotOneThatIsTooLong) {
  void* const set = db.addSet("i");
  const Record record = db.put(set, {"a"});
  EXPECT_TRUE(marks(set, [&] { lib().c__ztbsetelemtext(db, record, "text"); }));
  const std::string tooLong(256, 'x');
  EXPECT_FALSE(marks(set, [&] { lib().c__ztbsetelemtext(db, record, tooLong.c_str()); }));
}

TEST_F(WriteRecording, marksRecordsThatAreAddedOrMerged) {
  void* const data = db.addParameter("p");
  void* const set = db.addSet("i");
  int number = 0;
  int status = 0;
  const double values[5] = {};
  void* record = nullptr;
  const auto freeRecord = [&] {
    if (record != nullptr) {
      lib().c__ztbfreesymboliterator(db, record);
    }
  };
  const auto next = [&] { return numbered("label", ++number); };
  EXPECT_TRUE(marks(data, [&] {
    lib().c__ztbaddrecord(db, data, Keys({next()}), &record);
    freeRecord();
  }));
  EXPECT_TRUE(marks(data, [&] {
    record = lib().c__ztbaddrecordpy(db, data, Keys({next()}), &status);
    freeRecord();
  }));
  EXPECT_TRUE(marks(data, [&] {
    lib().c__ztbmergerecord(db, data, Keys{"same"}, &record);
    freeRecord();
  })) << "also one that was there";
  EXPECT_TRUE(marks(data, [&] {
    record = lib().c__ztbmergerecordpy(db, data, Keys{"same"}, &status);
    freeRecord();
  }));
  const int key = 1;
  EXPECT_TRUE(
      marks(data, [&] { lib().c__ztbmergerecordint(db, data, &key, 1, 0, nullptr, 1, values); }));
  EXPECT_TRUE(
      marks(data, [&] { lib().c__ztbmergerecordintpy(db, data, &key, 1, 0, 1, values, &status); }));
  EXPECT_TRUE(marks(data, [&] { lib().c__ztbaddrecordraw(db, data, &key, values, nullptr); }));
  EXPECT_TRUE(
      marks(set, [&] { lib().c__ztbmergesetrecordint(db, set, &key, 1, 0, nullptr, "text"); }));
  EXPECT_TRUE(
      marks(set, [&] { lib().c__ztbmergesetrecordintpy(db, set, &key, 1, 0, "text", &status); }));
  EXPECT_TRUE(marks(set, [&] { lib().c__ztbaddrecordraw(db, set, &key, nullptr, "text"); }));
}

TEST_F(WriteRecording, doesNotMarkForRecordsThatWereNotAdded) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"});
  void* record = nullptr;
  const int key = 99;
  const double values[5] = {};
  EXPECT_FALSE(marks(data, [&] { lib().c__ztbaddrecord(db, data, Keys{"a"}, &record); }));
  EXPECT_FALSE(marks(data, [&] { lib().c__ztbmergerecord(db, data, Keys{"'\""}, &record); }));
  EXPECT_FALSE(
      marks(data, [&] { lib().c__ztbmergerecordint(db, data, &key, 1, 0, nullptr, 1, values); }));
}

TEST_F(WriteRecording, marksDeletionsAndClearing) {
  void* const data = db.addParameter("p");
  EXPECT_TRUE(marks(data, [&] { lib().c__ztbclearsymbol(db, data); }));
  db.put(data, {"a"});
  db.put(data, {"b"});
  EXPECT_TRUE(marks(data, [&] { lib().c__ztbdeleterecord(db, db.first(data)); }));
}

TEST_F(WriteRecording, marksSymbolsAddedOverDomainsButNotPlainOnes) {
  start();
  void* const plain = db.addParameter("plain");
  void* const over = db.addOver("over", ZTB_PARAMETER, {db.universe()});
  EXPECT_EQ(0, mark(plain));
  EXPECT_EQ(1, mark(over));
}

TEST_F(WriteRecording, marksTheTargetOfACopyThatSucceeds) {
  void* const from = db.addParameter("from");
  db.put(from, {"a"});
  void* const to = db.addParameter("to");
  EXPECT_TRUE(marks(to, [&] { lib().c__ztbcopysymbol(db, to, from); }));
  EXPECT_FALSE(marks(from, [&] { lib().c__ztbcopysymbol(db, to, from); }));
  EXPECT_FALSE(marks(to, [&] { lib().c__ztbcopysymbol(db, to, db.universe()); }));
  putByNumber(db, from, {99}, {1});
  EXPECT_FALSE(marks(to, [&] { lib().c__ztbcopysymbol(db, to, from); }))
      << "emptied, yet the copy failed";
}

TEST_F(WriteRecording, marksTheTargetOfACopyByTheRecordingOfItsOwnDatabase) {
  Database other;
  other.addSet("first");
  void* const to = other.addParameter("to");
  start();
  ASSERT_EQ(1, lib().c__ztbcopysymbol(db, to, first));
  EXPECT_EQ(0, other.symbolInfo(to, ZTB_SYMBOL_INFO_WRITE_RECORDED));
  stop();
  ASSERT_EQ(1, lib().c__ztbstartwriterecording(other));
  ASSERT_EQ(1, lib().c__ztbcopysymbol(db, to, first));
  EXPECT_EQ(1, other.symbolInfo(to, ZTB_SYMBOL_INFO_WRITE_RECORDED));
}

TEST_F(WriteRecording, marksTheTargetOfACubeAsSoonAsItIsEmptied) {
  void* domain = addSetOf(db, "i", {"a", "b"});
  void* const data = db.addParameter("p");
  void* const variable = db.addVariable("v");
  void* nothing = nullptr;
  const int size = 2;
  const double cells[] = {1, 2};
  EXPECT_TRUE(
      marks(data, [&] { lib().c__ztbdensearraytosymbol(db, data, &domain, cells, &size); }));
  EXPECT_TRUE(
      marks(data, [&] { lib().c__ztbdensearraytosymbol(db, data, &nothing, cells, &size); }));
  EXPECT_TRUE(marks(variable, [&] {
    lib().c__ztbdensearraytosymbol(db, variable, &domain, cells, &size);
  })) << "refused, but it has lost its records";
  EXPECT_TRUE(marks(data, [&] {
    lib().c__ztbdensearrayslicestosymbol(db, data, &domain, &domain, cells, &size);
  }));
  EXPECT_TRUE(marks(data, [&] {
    lib().c__ztbdensearrayslicestosymbol(db, data, &nothing, &nothing, cells, &size);
  }));
}

TEST_F(WriteRecording, doesNotMarkReadsNorLoads) {
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1);
  const TempFolder folder;
  const std::string file = folder.file("data.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 0));
  Database opened(file);
  ASSERT_EQ(1, lib().c__ztbstartwriterecording(opened));
  void* const read = opened.find("p");
  EXPECT_EQ(1, opened.recordCount(read));
  EXPECT_EQ(1, opened.level(opened.first(read)));
  const int size = 1;
  double cell = 0;
  ASSERT_EQ(1, lib().c__ztbdensesymboltodensearray(opened, &cell, &size, read, 0));
  EXPECT_EQ(0, opened.symbolInfo(read, ZTB_SYMBOL_INFO_WRITE_RECORDED));
}

TEST_F(WriteRecording, isKeptBySymbolsThatChangeTheirStore) {
  void* data = db.addParameter("p");
  start();
  db.put(data, {"a"});
  stop();
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, &data, ZTB_STORAGE_TRIE));
  EXPECT_EQ(1, mark(data));
}

// Nothing in a start needs memory, so that its text cannot be brought about.
TEST_F(WriteRecording, hasAStrayBacktickInItsTextForNoMemory) {
  std::ifstream file(libraryPath(), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(file)), {});
  const std::string traceName("ztbStartWriteRecording\0", 23);
  EXPECT_NE(std::string::npos, bytes.find("ztbStartWriteRecording`"));
  EXPECT_NE(std::string::npos, bytes.find(traceName));
}

}  // namespace
}  // namespace ztbtest
