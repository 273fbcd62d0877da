// A database as a deep copy of another.
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/scripted_host.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

const char* const labelsPresent = "Uels present. Cannot load Uels from other database.";
const char* const symbolsPresent = "Symbols present. Cannot load symbols from other database.";
const char* const wrongSource = "Database incorrectly initialized.";

class DatabaseCopy : public testing::Test {
 protected:
  int copy() { return lib().c__ztbinitfromdb(target, source); }

  // Domain and domain name of a position of a symbol of the copy.
  std::pair<void*, std::string> domain(void* symbol, std::size_t position) {
    std::array<void*, 20> domains{};
    TextBuffers names;
    EXPECT_EQ(1, lib().c__ztbgetdomain(target, symbol, 20, domains.data(), names));
    return {domains.at(position), names[position].str()};
  }
  using Domain = std::pair<void*, std::string>;

  Database source;
  Database target;
};

TEST_F(DatabaseCopy, ofAnEmptyDatabaseIsAnEmptyDatabaseThatMayBeCopiedIntoAgain) {
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(0, target.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(0, target.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  EXPECT_EQ(0, target.info(ZTB_INFO_FILE_BACKED));
  source.uel("a");
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(1, target.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(DatabaseCopy, leavesADatabaseThatOnlyHasAFileToRefuse) {
  EXPECT_SUCCESS(target, copy());
  EXPECT_FAILURE(target, "Database has been initialized, cannot initialize from nofile.rxf",
                 lib().c__ztbinitfromrxf(target, "nofile.rxf"));
}

TEST_F(DatabaseCopy, keepsTheLabelsWithTheirNumbers) {
  source.uel("unused");
  source.uel("Mixed");
  source.uel("b");
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(3, target.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(2, target.findUel("mixed"));
  TextBuffer text;
  ASSERT_EQ(1, lib().c__ztbgetuelbyindex(target, 2, text));
  EXPECT_EQ("Mixed", text.str());
}

TEST_F(DatabaseCopy, keepsSymbolsWithTheirDescriptionsAndRecords) {
  source.add("i", 1, ZTB_SET, 11, "a set");
  void* const data = source.add("p", 2, ZTB_PARAMETER, -5, "a parameter");
  source.put(data, {"b", "a"}, 1);
  source.put(data, {"a", "b"}, 2);
  void* const variable = source.add("v", 1, ZTB_VARIABLE, 8, "");
  putByNumber(source, variable, {1}, {1, 2, 3, 4, doubleOf(epsilonBits)});
  source.add("e", 0, ZTB_EQUATION, 6, "");
  EXPECT_SUCCESS(target, copy());
  for (const char* name : {"i", "p", "v", "e"}) {
    void* const original = source.find(name);
    void* const copied = target.find(name);
    EXPECT_NE(original, copied);
    for (const int key : {ZTB_SYMBOL_INFO_NAME, ZTB_SYMBOL_INFO_TEXT}) {
      EXPECT_EQ(source.symbolText(original, key), target.symbolText(copied, key));
    }
    for (const int key :
         {ZTB_SYMBOL_INFO_DIMENSION, ZTB_SYMBOL_INFO_TYPE, ZTB_SYMBOL_INFO_RECORD_COUNT,
          ZTB_SYMBOL_INFO_USER_INFO, ZTB_SYMBOL_INFO_NUMBER, ZTB_SYMBOL_INFO_STORAGE}) {
      EXPECT_EQ(source.symbolInfo(original, key), target.symbolInfo(copied, key)) << key;
    }
  }
  EXPECT_EQ(source.rows(data), target.rows(target.find("p")));
  int key = 0;
  Doubles values(5);
  ASSERT_EQ(
      1, lib().c__ztbgetrecordraw(target, target.first(target.find("v")), 1, &key, values.data()));
  EXPECT_EQ((Doubles{1, 2, 3, 4, doubleOf(epsilonBits)}), values);
}

TEST_F(DatabaseCopy, sharesNothingWithItsSource) {
  void* const data = source.addParameter("p");
  source.put(data, {"a"}, 1);
  EXPECT_SUCCESS(target, copy());
  source.put(data, {"a"}, 2);
  source.put(data, {"b"}, 3);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), target.rows(target.find("p")));
  EXPECT_EQ(-1, target.findUel("b"));
}

TEST_F(DatabaseCopy, outlivesItsSource) {
  {
    Database early;
    early.put(early.addParameter("p"), {"a"}, 1);
    early.addAlias("ali", addSetOf(early, "i", {"a"}));
    ASSERT_EQ(1, lib().c__ztbinitfromdb(target, early));
  }
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), target.rows(target.find("p")));
  EXPECT_EQ(1, target.recordCount(target.find("ali")));
}

TEST_F(DatabaseCopy, keepsAliasesOfSetsAndOfTheUniverse) {
  source.addAlias("ali", addSetOf(source, "i", {"a"}));
  source.add("everything", 1, ZTB_ALIAS, -1);
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(target.find("i"), target.find("ali"));
  EXPECT_NE(target.find("i"), target.findWithAlias("ali"));
  EXPECT_EQ(target.universe(), target.find("everything"));
}

TEST_F(DatabaseCopy, keepsDomainsAsItsOwnSymbolsTheUniverseOrNames) {
  void* const i = addSetOf(source, "i", {"a"});
  void* const alias = source.addAlias("ali", i);
  void* const over = source.addOver("over", ZTB_PARAMETER, {i, source.universe(), alias});
  source.put(over, {"nowhere", "nowhere", "offside"}, 1);
  source.addOverNames("named", ZTB_PARAMETER, {"somewhere", "*"});
  EXPECT_SUCCESS(target, copy());
  void* const copied = target.find("over");
  EXPECT_EQ((Domain{target.find("i"), "i"}), domain(copied, 0));
  EXPECT_EQ((Domain{target.universe(), "*"}), domain(copied, 1));
  EXPECT_EQ((Domain{target.find("i"), "ali"}), domain(copied, 2));
  EXPECT_EQ((Domain{nullptr, "somewhere"}), domain(target.find("named"), 0));
  EXPECT_EQ((Domain{target.universe(), "*"}), domain(target.find("named"), 1));
  EXPECT_EQ((std::vector<Violating>{{"over", {"nowhere", "nowhere", "offside"}, {1, 0, 1}}}),
            violationsOf(target));
}

TEST_F(DatabaseCopy, findsADomainThatStandsBehindItsSymbol) {
  const TempFolder folder;
  source.put(source.addOverNames("p", ZTB_PARAMETER, {"s"}), {"x"}, 1);
  addSetOf(source, "s", {"a"});
  const std::string file = folder.file("data.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 1));
  const Database opened(file);
  ASSERT_EQ(1, lib().c__ztbinitfromdb(target, opened));
  EXPECT_EQ((Domain{target.find("s"), "s"}), domain(target.find("p"), 0));
  EXPECT_TRUE(violates(target, target.find("p")));
  EXPECT_EQ(1, target.symbolInfo(target.find("p"), ZTB_SYMBOL_INFO_NUMBER))
      << "numbered as in the file";
}

TEST_F(DatabaseCopy, keepsTheTextNumbersOfSetRecordsButNotTheTexts) {
  void* const set = source.addSet("i");
  const Record record = source.put(set, {"a"});
  ASSERT_EQ(1, lib().c__ztbsetelemtext(source, record, "a text"));
  EXPECT_SUCCESS(target, copy());
  const Record copied = target.first(target.find("i"));
  int key = 0;
  double number = 0;
  ASSERT_EQ(1, lib().c__ztbgetrecordraw(target, copied, 1, &key, &number));
  EXPECT_EQ(1, number);
  TextBuffer text;
  const int result = lib().c__ztbgetelemtext(target, copied, text);
  EXPECT_TRUE(result == 0 || text.str().empty()) << text.str();
  const Record own = target.put(target.addSet("own"), {"a"});
  ASSERT_EQ(1, lib().c__ztbsetelemtext(target, own, "first text of the copy"));
  EXPECT_EQ("first text of the copy", target.elementText(copied))
      << "the number leads into the copy's own texts";
}

TEST_F(DatabaseCopy, doesNotTakeOverSpecialValues) {
  const Doubles spelling = {-1, -2, -3, -4, -5};
  ASSERT_EQ(1, lib().c__ztbsetspecialvalues(source, spelling.data()));
  source.put(source.addParameter("p"), {"a"}, -1);
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(undefinedBits, bitsOf(target.level(target.first(target.find("p")))));
}

TEST_F(DatabaseCopy, putsTheRecordsIntoItsOwnKindOfStore) {
  void* const data = source.addParameter("p", 2);
  source.put(data, {"a", "b"}, 12);
  source.put(data, {"b", "a"}, 21);
  source.put(data, {"a", "a"}, 11);
  for (const int storage : {ZTB_STORAGE_VECTOR, ZTB_STORAGE_TRIE, ZTB_STORAGE_TREE_MAP}) {
    Database other;
    ASSERT_EQ(1, lib().c__ztbselectrecordstorage(other, nullptr, storage));
    EXPECT_SUCCESS(other, lib().c__ztbinitfromdb(other, source));
    EXPECT_EQ(storage, other.symbolInfo(other.find("p"), ZTB_SYMBOL_INFO_STORAGE));
    EXPECT_EQ(storage, other.info(ZTB_INFO_RECORD_STORAGE));
    EXPECT_EQ((std::vector<Row>{{{"a", "a"}, 11}, {{"a", "b"}, 12}, {{"b", "a"}, 21}}),
              other.rows(other.find("p")));
  }
}

TEST_F(DatabaseCopy, failsForAStoreThatDoesNotExist) {
  source.addSet("i");
  ASSERT_EQ(1, lib().c__ztbselectrecordstorage(target, nullptr, 7));
  EXPECT_UNEXPECTED(target, "ztbInitFromDB", copy());
}

TEST_F(DatabaseCopy, doesNotKeepTheMarksOfWriteRecording) {
  source.addSet("first");
  void* const data = source.addParameter("p");
  ASSERT_EQ(1, lib().c__ztbstartwriterecording(source));
  source.put(data, {"a"}, 1);
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ(0, target.symbolInfo(target.find("p"), ZTB_SYMBOL_INFO_WRITE_RECORDED));
}

TEST_F(DatabaseCopy, refusesADatabaseWithLabelsBeforeItLooksAtTheSymbols) {
  target.uel("a");
  source.addSet("i");
  EXPECT_FAILURE(target, labelsPresent, copy());
  target.addSet("k");
  EXPECT_FAILURE(target, labelsPresent, copy());
  EXPECT_EQ(1, target.info(ZTB_INFO_SYMBOL_COUNT));
}

TEST_F(DatabaseCopy, refusesADatabaseWithSymbols) {
  target.addSet("k");
  EXPECT_FAILURE(target, symbolsPresent, copy());
}

TEST_F(DatabaseCopy, refusesADatabaseOnAnotherSource) {
  const TempFolder folder;
  const std::string file = folder.file("empty.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(Database(), file.c_str(), 0));
  Database opened(file);
  EXPECT_FAILURE(opened, wrongSource, lib().c__ztbinitfromdb(opened, source));
  ASSERT_EQ(1, lib().c__ztbcloserxf(opened, 0));
  EXPECT_SUCCESS(opened, lib().c__ztbinitfromdb(opened, source));
}

TEST_F(DatabaseCopy, canBeMadeOnceOnly) {
  source.addSet("i");
  EXPECT_SUCCESS(target, copy());
  EXPECT_FAILURE(target, symbolsPresent, copy());
  source.uel("a");
  Database other;
  ASSERT_EQ(1, lib().c__ztbinitfromdb(other, source));
  EXPECT_FAILURE(other, labelsPresent, lib().c__ztbinitfromdb(other, source));
}

TEST_F(DatabaseCopy, printsItsProgressAndItsRefusals) {
  const auto printed = [&](int level) {
    lib().c__ztbsetdebug(target, level);
    StdoutCapture capture;
    copy();
    std::string lines = capture.text();
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(target, 0);
    return lines;
  };
  EXPECT_EQ("", printed(0));
  EXPECT_EQ("ztbInitFromDB\n---- Entering InitFromDB ----\n", printed(1));
  target.addSet("k");
  const std::string entering = "ztbInitFromDB\n---- Entering InitFromDB ----\n";
  EXPECT_EQ(entering + symbolsPresent + "\n", printed(1));
  target.uel("a");
  EXPECT_EQ(entering + labelsPresent + "\n", printed(2));
  EXPECT_EQ("", printed(0));
}

class DatabaseCopyOfFile : public DatabaseCopy {
 protected:
  DatabaseCopyOfFile() {
    Database made;
    void* const set = addSetOf(made, "i", {"a", "b"});
    made.addAlias("ali", set);
    made.put(made.addParameter("p"), {"b"}, 5);
    file = folder.file("data.rxf");
    EXPECT_EQ(1, lib().c__ztbwriterxf(made, file.c_str(), 0));
  }

  TempFolder folder;
  std::string file;
};

TEST_F(DatabaseCopyOfFile, readsWhatTheSourceHasNotReadYetAndLeavesItThere) {
  Database opened(file);
  EXPECT_SUCCESS(target, lib().c__ztbinitfromdb(target, opened));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 5}}), target.rows(target.find("p")));
  EXPECT_EQ(0, target.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(1, opened.info(ZTB_INFO_FILE_BACKED)) << "the file stays open";
  ASSERT_EQ(1, lib().c__ztbcloserxf(opened, 0));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 5}}), opened.rows(opened.find("p")));
  EXPECT_EQ(2, target.recordCount(target.find("ali")));
}

TEST_F(DatabaseCopyOfFile, leavesOutWhatASourceWithoutItsFileCannotReadAnymore) {
  Database opened(file);
  ASSERT_EQ(1, lib().c__ztbcloserxf(opened, 0));
  EXPECT_SUCCESS(target, lib().c__ztbinitfromdb(target, opened));
  EXPECT_EQ(0, target.recordCount(target.find("p"))) << "loaded, and empty";
  void* record = nullptr;
  EXPECT_FAILURE(opened, "Symbol p not initialized from RXF or PBI: 3",
                 lib().c__ztbfindfirstrecord(opened, opened.find("p"), &record));
}

TEST_F(DatabaseCopyOfFile, readsASourceOnAHost) {
  ScriptedHost host;
  host.add("p", 3, {{{1}, {7}}});
  source.addSet("i");
  source.addAlias("ali", source.find("i"));
  source.addParameter("p");
  source.uel("a");
  host.attach(source);
  host.add("i", 1, {});
  EXPECT_SUCCESS(target, copy());
  EXPECT_EQ((std::vector<Row>{{{"a"}, 7}}), target.rows(target.find("p")));
  EXPECT_EQ(0, target.info(ZTB_INFO_FILE_BACKED));
}

TEST_F(DatabaseCopyOfFile, failsWithTheTextInTheSourceAndPartlyFilledWhenThatCannotBeRead) {
  ScriptedHost host;
  host.add("i", 1, {{{1}, {0}}});
  source.addSet("i");
  source.addParameter("p");
  source.addParameter("q");
  source.uel("a");
  host.attach(source);
  EXPECT_SILENT_FAILURE(target, copy());
  EXPECT_EQ("Problems with findSymbol for symbol p", source.lastError());
  EXPECT_EQ(2, target.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(1, target.recordCount(target.find("i")));
  EXPECT_FAILURE(target, labelsPresent, copy());
}

}  // namespace
}  // namespace ztbtest
