// Copying the records of a symbol, within a database and across databases.
#include <array>

#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"

namespace ztbtest {
namespace {

class CopySymbol : public testing::Test {
 protected:
  // The messages of the argument checks go to the target's database.
  int copy(void* destination, void* origin) {
    return lib().c__ztbcopysymbol(target, destination, origin);
  }

  void putText(Database& db, void* set, const char* label, const char* text) {
    const Record record = db.put(set, {label});
    ASSERT_EQ(1, lib().c__ztbsetelemtext(db, record, text));
  }

  int textNumber(Database& db, void* set, const char* label) {
    int key = 0;
    double number = -1;
    EXPECT_EQ(1, lib().c__ztbgetrecordraw(db, db.record(set, {label}), 1, &key, &number));
    return static_cast<int>(number);
  }

  std::string label(const Database& db, int number) {
    std::array<char, ZTB_TEXT_BUFFER_SIZE> text{};
    EXPECT_EQ(1, lib().c__ztbgetuelbyindex(db, number, text.data()));
    return text.data();
  }

  Database source;
  Database target;
};

TEST_F(CopySymbol, carriesRecordsByTheirLabelsAndNotByTheirNumbers) {
  void* const from = source.addParameter("p", 2);
  source.uel("unused");
  source.put(from, {"a", "b"}, 12);
  source.put(from, {"b", "a"}, 21);
  for (const char* known : {"zz", "b", "a"}) {
    target.uel(known);
  }
  void* const to = target.addParameter("q", 2);
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ(3, target.info(ZTB_INFO_UEL_COUNT)) << "no label that no record uses";
  EXPECT_EQ((std::vector<Row>{{{"b", "a"}, 21}, {{"a", "b"}, 12}}), target.rows(to));
  EXPECT_EQ((std::vector<Row>{{{"a", "b"}, 12}, {{"b", "a"}, 21}}), source.rows(from));
}

TEST_F(CopySymbol, addsTheLabelsThatTheTargetDoesNotKnow) {
  void* const from = source.addParameter("p", 2);
  source.put(from, {"new1", "new2"}, 1);
  void* const to = target.addParameter("p", 2);
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ(1, target.findUel("new1"));
  EXPECT_EQ(2, target.findUel("new2"));
}

TEST_F(CopySymbol, replacesTheRecordsOfTheTarget) {
  void* const from = source.addParameter("p");
  source.put(from, {"a"}, 1);
  void* const to = target.addParameter("p");
  target.put(to, {"old"}, 5);
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), target.rows(to));
}

TEST_F(CopySymbol, worksWithinOneDatabase) {
  void* const from = target.addParameter("p", 2);
  target.put(from, {"a", "b"}, 12);
  target.put(from, {"b", "a"}, 21);
  void* const to = target.addParameter("q", 2);
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ(target.rows(from), target.rows(to));
}

TEST_F(CopySymbol, copiesScalars) {
  void* const from = source.addParameter("p", 0);
  source.put(from, {}, 4);
  void* const to = target.addParameter("q", 0);
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ(4, target.level(target.first(to)));
}

TEST_F(CopySymbol, copiesAllFiveValuesBitForBitWhateverTheSpelling) {
  const Doubles spelling = {1, 2, 3, 4, 5};
  ASSERT_EQ(1, lib().c__ztbsetspecialvalues(target, spelling.data()));
  for (const int type : {ZTB_VARIABLE, ZTB_EQUATION}) {
    const std::string name = numbered("s", type);
    void* const from = source.add(name.c_str(), 1, type);
    putByNumber(source, from, {source.uel("a")},
                {doubleOf(epsilonBits), 1, doubleOf(notAvailableBits), -0.0, 1e300});
    void* const to = target.add(name.c_str(), 1, type, 1);
    EXPECT_SUCCESS(target, copy(to, from));
    ASSERT_EQ(1, lib().c__ztbsetspecialvalues(
                     target, (Doubles{1e300, doubleOf(notAvailableBits), doubleOf(plusInfinityBits),
                                      doubleOf(minusInfinityBits), doubleOf(epsilonBits)})
                                 .data()));
    int key = 0;
    Doubles values(5);
    ASSERT_EQ(1, lib().c__ztbgetrecordraw(target, target.first(to), 1, &key, values.data()));
    EXPECT_EQ(epsilonBits, bitsOf(values[0]));
    EXPECT_EQ(1, values[1]);
    EXPECT_EQ(notAvailableBits, bitsOf(values[2]));
    EXPECT_EQ(bitsOf(-0.0), bitsOf(values[3]));
    EXPECT_EQ(undefinedBits, bitsOf(values[4]));
  }
}

TEST_F(CopySymbol, carriesTextsByTheirStringsAndStoresEqualOnesOnce) {
  void* const from = source.addSet("s");
  putText(source, from, "a", "some other");
  putText(source, from, "a", "shared");
  putText(source, from, "b", "own");
  putText(source, from, "c", "shared");
  source.put(from, {"d"});
  void* const before = target.addSet("before");
  putText(target, before, "z", "first of the target");
  putText(target, before, "z", "OWN");
  void* const to = target.addSet("s");
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ("shared", target.elementText(target.record(to, {"a"})));
  EXPECT_EQ("OWN", target.elementText(target.record(to, {"b"}))) << "spelt as first stored";
  EXPECT_EQ("shared", target.elementText(target.record(to, {"c"})));
  EXPECT_EQ("", target.elementText(target.record(to, {"d"})));
  EXPECT_EQ(textNumber(target, to, "a"), textNumber(target, to, "c"));
  EXPECT_EQ(textNumber(target, before, "z"), textNumber(target, to, "b"));
  EXPECT_EQ(0, textNumber(target, to, "d"));
}

TEST_F(CopySymbol, readsATextNumberThatNoTextHasAsTheEmptyText) {
  void* const from = source.addSet("s");
  void* domain = addSetOf(source, "i", {"a", "b", "c", "d"});
  putText(source, domain, "a", "only text");
  const Integers numbers = {2, -1, 1000000, 1};
  const int size = 4;
  ASSERT_EQ(1, lib().c__ztbdensearraytosymbol(source, from, &domain, numbers.data(), &size));
  void* const to = target.addSet("s");
  EXPECT_SUCCESS(target, copy(to, from));
  EXPECT_EQ(4, target.recordCount(to));
  for (const char* label : {"a", "b", "c"}) {
    EXPECT_EQ(0, textNumber(target, to, label));
  }
  EXPECT_EQ("only text", target.elementText(target.record(to, {"d"})));
}

TEST_F(CopySymbol, aSetTakesTheKeysOfAnySymbolWithEmptyTexts) {
  for (const int type : {ZTB_PARAMETER, ZTB_VARIABLE, ZTB_EQUATION}) {
    void* const from = source.add(numbered("s", type).c_str(), 2, type);
    source.put(from, {"a", "b"}, 3);
    void* const to = target.addSet(numbered("s", type).c_str(), 2);
    EXPECT_SUCCESS(target, copy(to, from));
    EXPECT_EQ("", target.elementText(target.record(to, {"a", "b"})));
    EXPECT_EQ(1, target.recordCount(to));
  }
}

TEST_F(CopySymbol, refusesMissingHandlesTheSourceFirst) {
  void* const symbol = target.addSet("s");
  EXPECT_FAILURE(target, "No source symbol handle specified", copy(nullptr, nullptr));
  EXPECT_FAILURE(target, "No source symbol handle specified", copy(symbol, nullptr));
  EXPECT_FAILURE(target, "No target symbol handle specified", copy(nullptr, symbol));
}

TEST_F(CopySymbol, refusesOtherDimensionsAndThenOtherTypesWithTheTargetsRecordsKept) {
  void* const parameter = target.addParameter("p");
  target.put(parameter, {"kept"}, 1);
  EXPECT_FAILURE(target, "Inconsistent symbol dimensions",
                 copy(parameter, source.addSet("wide", 2)));
  EXPECT_FAILURE(target, "Inconsistent symbol types", copy(parameter, source.addSet("s")));
  EXPECT_FAILURE(target, "Inconsistent symbol types", copy(parameter, source.addVariable("v")));
  EXPECT_FAILURE(target, "Inconsistent symbol types", copy(parameter, source.universe()));
  EXPECT_FAILURE(target, "Inconsistent symbol types",
                 copy(target.addEquation("e"), source.find("v")));
  EXPECT_FAILURE(target, "Inconsistent symbol dimensions",
                 copy(target.addSet("wide", 2), source.universe()));
  EXPECT_EQ(1, target.recordCount(parameter));
}

TEST_F(CopySymbol, ofASymbolOntoItselfEmptiesIt) {
  void* const symbol = target.addParameter("p");
  target.put(symbol, {"a"}, 1);
  EXPECT_SUCCESS(target, copy(symbol, symbol));
  EXPECT_EQ(0, target.recordCount(symbol));
}

TEST_F(CopySymbol, ofTheUniverseMakesARecordForEveryLabelInTheirOrder) {
  for (const char* label : {"c", "a", "b"}) {
    source.uel(label);
  }
  target.uel("b");
  void* const to = target.addSet("s");
  target.put(to, {"old"});
  EXPECT_SUCCESS(target, copy(to, source.universe()));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 0}, {{"c"}, 0}, {{"a"}, 0}}), target.rows(to))
      << "in the order of the target's numbers";
  void* const own = target.addSet("own");
  EXPECT_SUCCESS(target, copy(own, target.universe()));
  EXPECT_EQ((std::vector<Row>{{{"b"}, 0}, {{"old"}, 0}, {{"c"}, 0}, {{"a"}, 0}}), target.rows(own));
}

TEST_F(CopySymbol, intoTheUniverseAddsLabelsAndNothingElse) {
  void* const from = source.addSet("s");
  source.uel("unused");
  putText(source, from, "b", "text");
  putText(source, from, "a", "text");
  target.uel("a");
  EXPECT_SUCCESS(target, copy(target.universe(), from));
  EXPECT_EQ(2, target.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ("b", label(target, 2));
  EXPECT_EQ(0, target.info(ZTB_INFO_SYMBOL_COUNT));
  void* const data = source.addParameter("p");
  source.put(data, {"fromParameter"}, 1);
  EXPECT_SUCCESS(target, copy(target.universe(), data));
  EXPECT_EQ(3, target.findUel("fromParameter"));
  EXPECT_SUCCESS(target, copy(target.universe(), source.universe()));
  EXPECT_EQ(4, target.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(4, target.findUel("unused"));
  EXPECT_FAILURE(target, "Inconsistent symbol dimensions",
                 copy(target.universe(), source.addSet("wide", 2)));
}

TEST_F(CopySymbol, ofAnAliasOfTheApiFindsNoRecords) {
  void* const set = addSetOf(source, "i", {"a"});
  void* const to = target.addSet("s");
  target.put(to, {"old"});
  EXPECT_SUCCESS(target, copy(to, source.addAlias("ali", set)));
  EXPECT_EQ(0, target.recordCount(to));
}

TEST_F(CopySymbol, failsOnALabelNumberThatNoLabelHasWithTheRecordsSoFarKept) {
  void* const from = source.addParameter("p");
  putByNumber(source, from, {source.uel("a")}, {1});
  putByNumber(source, from, {50}, {2});
  void* const to = target.addParameter("p");
  EXPECT_UNEXPECTED(target, "ztbCopySymbol", copy(to, from));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1}}), target.rows(to));
}

TEST_F(CopySymbol, failsForASubtypeThatHasNoDefaultRecord) {
  void* const from = source.addVariable("v");
  source.put(from, {"a"});
  void* const to = target.addVariable("v");
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(target, to, 99));
  EXPECT_UNEXPECTED(target, "ztbCopySymbol", copy(to, from));
}

TEST_F(CopySymbol, asksForNoDefaultRecordWhereThereIsNoRecordToCopy) {
  void* const to = target.addVariable("v");
  target.put(to, {"a"});
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(target, to, 99));
  EXPECT_SUCCESS(target, copy(to, to));
  EXPECT_EQ(0, target.recordCount(to));
  EXPECT_SUCCESS(target, copy(to, source.addVariable("empty")));
  EXPECT_EQ(0, target.recordCount(to));
}

class CopySymbolOfFile : public CopySymbol {
 protected:
  CopySymbolOfFile() {
    Database written;
    void* const set = written.addSet("i");
    putText(written, set, "fromFile", "text of the file");
    written.addAlias("ali", set);
    written.addVariable("empty");
    file = folder.file("data.rxf");
    EXPECT_EQ(1, lib().c__ztbwriterxf(written, file.c_str(), 0));
  }

  TempFolder folder;
  std::string file;
};

TEST_F(CopySymbolOfFile, readsASourceThatIsNotReadYet) {
  Database opened(file);
  void* const to = target.addSet("s");
  EXPECT_SUCCESS(target, copy(to, opened.find("i")));
  EXPECT_EQ("text of the file", target.elementText(target.record(to, {"fromFile"})));
}

TEST_F(CopySymbolOfFile, asksForNoDefaultRecordWhereTheFileHasNoRecordToCopy) {
  Database opened(file);
  void* const to = target.addVariable("v");
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(target, to, 99));
  EXPECT_SUCCESS(target, copy(to, opened.find("empty")));
  void* const itself = opened.find("empty");
  ASSERT_EQ(1, lib().c__ztbsetuserinfo(opened, itself, 99));
  EXPECT_SUCCESS(opened, copy(itself, itself));
}

TEST_F(CopySymbolOfFile, neverReadsATargetThatIsNotReadYet) {
  Database opened(file);
  void* const from = addSetOf(source, "s", {"fromSource"});
  EXPECT_SUCCESS(target, copy(opened.find("i"), from));
  EXPECT_EQ((std::vector<Row>{{{"fromSource"}, 0}}), opened.rows(opened.find("i")));
}

TEST_F(CopySymbolOfFile, ofAnUnreadSymbolOntoItselfLosesItsRecords) {
  Database opened(file);
  void* const set = opened.find("i");
  EXPECT_SUCCESS(target, copy(set, set));
  EXPECT_EQ(0, opened.recordCount(set));
}

TEST_F(CopySymbolOfFile, leavesTheTextOfAFailedReadInTheSourcesDatabase) {
  Database opened(file);
  void* const to = target.addSet("s");
  target.put(to, {"old"});
  EXPECT_SILENT_FAILURE(target, copy(to, opened.findWithAlias("ali")));
  EXPECT_EQ("Cannot load alias ali", opened.lastError());
  EXPECT_EQ(0, target.recordCount(to)) << "emptied before the source is read";
  ASSERT_EQ(1, lib().c__ztbcloserxf(opened, 0));
  EXPECT_SILENT_FAILURE(target, copy(to, opened.find("i")));
  EXPECT_EQ("Symbol i not initialized from RXF or PBI: 3", opened.lastError());
}

class SymbolsUels : public testing::Test {
 protected:
  int count(Symbols symbols, Integers& counts) {
    return lib().c__ztbgetsymbolsuels(db, symbols.data(), static_cast<int>(symbols.size()),
                                      counts.data(), static_cast<int>(counts.size()));
  }

  Database db;
};

TEST_F(SymbolsUels, countsEveryPlaceOfALabelInAKey) {
  void* const set = addSetOf(db, "i", {"a", "b"});
  void* const data = db.addParameter("p", 2);
  db.put(data, {"a", "a"}, 1);
  db.put(data, {"b", "c"}, 1);
  db.uel("unused");
  Integers counts(5, 77);
  EXPECT_SUCCESS(db, count({set, data}, counts));
  EXPECT_EQ((Integers{0, 3, 2, 1, 0}), counts);
  EXPECT_SUCCESS(db, count({data, data}, counts));
  EXPECT_EQ((Integers{0, 4, 2, 2, 0}), counts);
}

TEST_F(SymbolsUels, givesZerosForNoSymbols) {
  db.uel("a");
  Integers counts(4, 77);
  EXPECT_SUCCESS(db, count({}, counts));
  EXPECT_EQ((Integers{0, 0, 0, 0}), counts) << "all places of the list, also behind the labels";
}

TEST_F(SymbolsUels, passesOverScalarsAndAliases) {
  void* const set = addSetOf(db, "i", {"a"});
  void* const scalar = db.addParameter("s", 0);
  db.put(scalar, {}, 1);
  Integers counts(2, 77);
  EXPECT_SUCCESS(db, count({scalar, db.addAlias("ali", set)}, counts));
  EXPECT_EQ((Integers{0, 0}), counts);
}

TEST_F(SymbolsUels, needsAPlaceForEveryLabelAndForNumberZero) {
  addSetOf(db, "i", {"a", "b"});
  Integers exact(3);
  EXPECT_SUCCESS(db, count({}, exact));
  Integers shorter(2, 77);
  EXPECT_FAILURE(db, "Uel list size (2) too short for 3 uels", count({nullptr}, shorter));
  EXPECT_EQ((Integers{77, 77}), shorter);
}

TEST_F(SymbolsUels, readsSymbolsOfAFileAndTellsWhenThatFails) {
  addSetOf(db, "i", {"a"});
  const TempFolder folder;
  const std::string file = folder.file("data.rxf");
  ASSERT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 0));
  Database opened(file);
  void* symbols[] = {opened.find("i")};
  Integers counts(2, 77);
  EXPECT_SUCCESS(opened, lib().c__ztbgetsymbolsuels(opened, symbols, 1, counts.data(), 2));
  EXPECT_EQ((Integers{0, 1}), counts);
  Database closed(file);
  symbols[0] = closed.find("i");
  ASSERT_EQ(1, lib().c__ztbcloserxf(closed, 0));
  EXPECT_FAILURE(closed, "Symbol i not initialized from RXF or PBI: 3",
                 lib().c__ztbgetsymbolsuels(closed, symbols, 1, counts.data(), 2));
}

TEST_F(SymbolsUels, failsOnALabelNumberThatNoLabelHasAndOnAMissingSymbol) {
  void* const data = db.addParameter("p");
  putByNumber(db, data, {50}, {1});
  Integers counts(3);
  EXPECT_UNEXPECTED(db, "ztbGetSymbolsUels", count({data}, counts));
  EXPECT_UNEXPECTED(db, "ztbGetSymbolsUels", count({nullptr}, counts));
}

}  // namespace
}  // namespace ztbtest
