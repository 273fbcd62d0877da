// The family for clients whose strings carry a length byte, and the two names that take flat
// blocks.
#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/support/database.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class ShortStrings : public testing::Test {
 protected:
  ShortStrings() : data(db.addParameter("p", 2)) {
    db.put(data, {"a", "x"}, 1.0);
    db.put(data, {"b", "y"}, 2.0);
  }

  Database db;
  void* data;
  void* found = untouched;
  int status = 7;
};

TEST_F(ShortStrings, carryTheLastErrorOut) {
  const Database fresh;
  ShortString text;
  EXPECT_EQ(0, lib().d__ztbgetlasterror(fresh, text));
  EXPECT_EQ("", text.str());
  EXPECT_EQ(0, lib().d__ztbfindsymbol(db, ShortString("nowhere"), &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(1, lib().d__ztbgetlasterror(db, text));
  EXPECT_EQ("Cannot find symbol nowhere", text.str());
}

TEST_F(ShortStrings, carryALastErrorOf255Chars) {
  EXPECT_EQ(0, lib().d__ztbfindsymbol(db, ShortString(std::string(255, 'n')), &found));
  ShortString text;
  EXPECT_EQ(1, lib().d__ztbgetlasterror(db, text));
  EXPECT_EQ(("Cannot find symbol " + std::string(255, 'n')).substr(0, 255), text.str());
}

TEST_F(ShortStrings, readOnlyAsManyCharsAsTheirLengthByteSays) {
  ShortString name("pigs");
  static_cast<char*>(name)[0] = 1;
  EXPECT_EQ(1, lib().d__ztbfindsymbol(db, name, &found));
  EXPECT_EQ(data, found);
}

TEST_F(ShortStrings, emptyInfoOutArguments) {
  int number = -1;
  double real = 7.5;
  ShortString text;
  EXPECT_EQ(1, lib().d__ztbinfo(db, ZTB_INFO_UEL_COUNT, &number, &real, text));
  EXPECT_EQ(4, number);
  EXPECT_EQ(0.0, real);
  EXPECT_EQ("", text.str());
}

TEST_F(ShortStrings, nameLabelsInAndOut) {
  int number = -1;
  EXPECT_EQ(1, lib().d__ztbmergeuel(db, ShortString("new one"), &number));
  EXPECT_EQ(5, number);
  EXPECT_EQ(1, lib().d__ztbfinduel(db, ShortString("NEW ONE "), &number));
  EXPECT_EQ(5, number);
  ShortString label;
  EXPECT_EQ(1, lib().d__ztbgetuelbyindex(db, 5, label));
  EXPECT_EQ("new one", label.str());
  EXPECT_EQ(1, lib().d__ztbmergeuel(db, ShortString(""), &number));
  EXPECT_EQ(6, number);
  EXPECT_EQ(1, lib().d__ztbgetuelbyindex(db, 6, label));
  EXPECT_EQ("", label.str());
  EXPECT_FAILURE(db, "Uel index 7 out of range [1,6]", lib().d__ztbgetuelbyindex(db, 7, label));
}

TEST_F(ShortStrings, makeSymbols) {
  EXPECT_EQ(
      1, lib().d__ztbaddsymbol(db, ShortString("i"), 1, ZTB_SET, 0, ShortString("a set"), &found));
  EXPECT_EQ(found, db.find("i"));
  EXPECT_EQ("a set", db.symbolText(found, ZTB_SYMBOL_INFO_TEXT));
  void* const twin = lib().d__ztbaddsymbolpy(db, ShortString("j"), 1, ZTB_SET, 0,
                                             ShortString(std::string(255, 't')), &status);
  EXPECT_EQ(1, status);
  EXPECT_EQ(twin, db.find("j"));
  EXPECT_EQ(std::string(255, 't'), db.symbolText(twin, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_FAILURE(
      db, "'1' is not a valid name for a VELT symbol",
      lib().d__ztbaddsymbol(db, ShortString("1"), 1, ZTB_SET, 0, ShortString(""), &found));
}

TEST_F(ShortStrings, makeSymbolsOverDomains) {
  std::array<void*, 3> domains{nullptr, db.addSet("i"), nullptr};
  StringBlock names = StringBlock::shortStrings({"somewhere", "", "*"});
  EXPECT_EQ(1, lib().d__ztbaddsymbolx(db, ShortString("q"), 3, ZTB_PARAMETER, 0, ShortString(""),
                                      domains.data(), names, &found));
  ASSERT_NE(nullptr, found);
  EXPECT_EQ(found, db.find("q"));
  std::array<void*, 3> read{untouched, untouched, untouched};
  StringBlock readNames;
  EXPECT_EQ(1, lib().d__ztbgetdomain(db, found, 3, read.data(), readNames));
  EXPECT_EQ(nullptr, read[0]);
  EXPECT_EQ("somewhere", readNames.shortString(0));
  EXPECT_EQ(domains[1], read[1]);
  EXPECT_EQ("i", readNames.shortString(1));
  EXPECT_EQ(db.universe(), read[2]);
  EXPECT_EQ("*", readNames.shortString(2));
  EXPECT_TRUE(readNames.untouched(3));

  void* const twin = lib().d__ztbaddsymbolxpy(db, ShortString("r"), 3, ZTB_PARAMETER, 0,
                                              ShortString(""), domains.data(), names, &status);
  EXPECT_EQ(1, status);
  EXPECT_EQ(twin, db.find("r"));
}

TEST_F(ShortStrings, convertAsManyDomainNamesAsAreAskedFor) {
  std::array<void*, 2> domains{untouched, untouched};
  StringBlock names;
  EXPECT_EQ(1, lib().d__ztbgetdomain(db, data, 1, domains.data(), names));
  EXPECT_EQ("*", names.shortString(0));
  EXPECT_TRUE(names.untouched(1));
  EXPECT_EQ(db.universe(), domains[1]) << "handles follow the dimension of the symbol";
}

TEST_F(ShortStrings, findSymbols) {
  void* const set = db.addSet("i");
  void* const alias = db.addAlias("j", set);
  EXPECT_EQ(1, lib().d__ztbfindsymbol(db, ShortString("J"), &found));
  EXPECT_EQ(set, found);
  EXPECT_EQ(1, lib().d__ztbfindsymbolwithalias(db, ShortString("J"), &found));
  EXPECT_EQ(alias, found);
  EXPECT_EQ(set, lib().d__ztbfindsymbolpy(db, ShortString("j"), &status));
  EXPECT_EQ(alias, lib().d__ztbfindsymbolwithaliaspy(db, ShortString("j"), &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(nullptr, lib().d__ztbfindsymbolpy(db, ShortString("q"), &status));
  EXPECT_EQ(0, status);
}

TEST_F(ShortStrings, tellAboutSymbols) {
  int number = 7;
  double real = 7.5;
  ShortString text;
  EXPECT_EQ(1, lib().d__ztbsymbolinfo(db, data, ZTB_SYMBOL_INFO_NAME, &number, &real, text));
  EXPECT_EQ("p", text.str());
  EXPECT_EQ(0, number);
  EXPECT_EQ(7.5, real);
}

TEST_F(ShortStrings, findRecords) {
  StringBlock keys = StringBlock::shortStrings({"B", "y"});
  EXPECT_EQ(1, lib().d__ztbfindrecord(db, data, keys, &found));
  EXPECT_EQ(2.0, db.level(Record(db, found)));
  const Record twin(db, lib().d__ztbfindrecordpy(db, data, keys, &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(2.0, db.level(twin));
}

TEST_F(ShortStrings, findSlices) {
  StringBlock keys = StringBlock::shortStrings({" ", "x"});
  EXPECT_EQ(1, lib().d__ztbfindfirstrecordslice(db, data, keys, &found));
  EXPECT_EQ(1.0, db.level(Record(db, found)));
  EXPECT_EQ(1, lib().d__ztbfindlastrecordslice(db, data, keys, &found));
  EXPECT_EQ(1.0, db.level(Record(db, found)));
  StringBlock all = StringBlock::shortStrings({" ", " "});
  EXPECT_EQ(1.0, db.level(Record(db, lib().d__ztbfindfirstrecordslicepy(db, data, all, &status))));
  EXPECT_EQ(2.0, db.level(Record(db, lib().d__ztbfindlastrecordslicepy(db, data, all, &status))));
  EXPECT_EQ(1, status);
}

TEST_F(ShortStrings, addAndMergeRecords) {
  StringBlock keys = StringBlock::shortStrings({"c", "z"});
  EXPECT_EQ(1, lib().d__ztbaddrecord(db, data, keys, &found));
  const Record added(db, found);
  EXPECT_EQ((Labels{"c", "z"}), db.labels(added, 2));
  EXPECT_EQ(1, lib().d__ztbmergerecord(db, data, keys, &found));
  const Record merged(db, found);
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, added, merged));
  EXPECT_FAILURE(db, "Record (\"c\",\"z\") exists already for symbol p",
                 lib().d__ztbaddrecord(db, data, keys, &found));
  EXPECT_EQ(nullptr, lib().d__ztbaddrecordpy(db, data, keys, &status));
  EXPECT_EQ(0, status);
  const Record again(db, lib().d__ztbmergerecordpy(db, data, keys, &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ(1, lib().c__ztbsamerecord(db, added, again));
}

TEST_F(ShortStrings, takeTwentyLabels) {
  void* const wide = db.addParameter("wide", 20);
  StringBlock keys =
      StringBlock::shortStrings({"1",  "2",  "3",  "4",  "5",  "6",  "7",  "8",  "9",  "10",
                                 "11", "12", "13", "14", "15", "16", "17", "18", "19", "20"});
  EXPECT_EQ(1, lib().d__ztbaddrecord(db, wide, keys, &found));
  const Record record(db, found);
  StringBlock read;
  EXPECT_EQ(1, lib().d__ztbgetkeys(db, record, 20, read));
  EXPECT_EQ("1", read.shortString(0));
  EXPECT_EQ("20", read.shortString(19));
}

TEST_F(ShortStrings, endAtANullSymbolBeforeTheOperation) {
  StringBlock keys = StringBlock::shortStrings({"a", "x"});
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().d__ztbfindrecord(db, nullptr, keys, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(nullptr, lib().d__ztbfindrecordpy(db, nullptr, keys, &status));
  EXPECT_EQ(0, status);
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().d__ztbaddrecord(db, nullptr, keys, &found));
  found = untouched;
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().d__ztbfindlastrecordslice(db, nullptr, keys, &found));
  EXPECT_EQ(nullptr, found);
}

TEST_F(ShortStrings, mergingIntoANullSymbolLeavesThePlaceForTheHandleAlone) {
  StringBlock keys = StringBlock::shortStrings({"a", "x"});
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().d__ztbmergerecord(db, nullptr, keys, &found));
  EXPECT_EQ(untouched, found);
  EXPECT_FAILURE(db, "No symbol handle specified",
                 lib().d__ztbmergerecord(db, nullptr, keys, nullptr));
  EXPECT_EQ(1, lib().d__ztbmergerecord(db, data, keys, nullptr));
}

TEST_F(ShortStrings, convertDomainNamesAlsoAfterAFailure) {
  std::array<void*, 2> domains{untouched, untouched};
  StringBlock names;
  EXPECT_FAILURE(db, "The Universe has no domain",
                 lib().d__ztbgetdomain(db, db.universe(), 2, domains.data(), names));
  EXPECT_EQ("", names.shortString(0));
  EXPECT_EQ("", names.shortString(1));
  EXPECT_TRUE(names.untouched(2));
  EXPECT_EQ(untouched, domains[0]);
}

TEST_F(ShortStrings, addByNumber) {
  const std::array<int, 2> keys{2, 2};
  const std::array<double, 5> values{6, 0, 0, 0, 0};
  EXPECT_EQ(1, lib().d__ztbaddrecordraw(db, data, keys.data(), values.data(), ShortString("")));
  EXPECT_EQ(3, db.recordCount(data));
  void* const set = db.addSet("i");
  EXPECT_EQ(1, lib().d__ztbaddrecordraw(db, set, keys.data(), values.data(), ShortString("one")));
  EXPECT_EQ("one", db.elementText(db.first(set)));
  EXPECT_EQ(1,
            lib().d__ztbmergesetrecordint(db, set, keys.data(), 1, 1, &found, ShortString("two")));
  EXPECT_EQ("two", db.elementText(Record(db, found)));
  const Record twin(db, lib().d__ztbmergesetrecordintpy(db, set, keys.data(), 1, 1,
                                                        ShortString("three"), &status));
  EXPECT_EQ(1, status);
  EXPECT_EQ("three", db.elementText(twin));
}

TEST_F(ShortStrings, carryElementTextsBothWays) {
  const Record element = db.put(db.addSet("i"), {"a"});
  const std::string longest(255, 't');
  EXPECT_EQ(1, lib().d__ztbsetelemtext(db, element, ShortString(longest)));
  ShortString text;
  EXPECT_EQ(1, lib().d__ztbgetelemtext(db, element, text));
  EXPECT_EQ(longest, text.str());
  EXPECT_EQ(1, lib().d__ztbsetelemtext(db, element, ShortString("")));
  EXPECT_EQ(1, lib().d__ztbgetelemtext(db, element, text));
  EXPECT_EQ("", text.str());
}

TEST_F(ShortStrings, carryKeysOut) {
  const Record record = db.last(data);
  StringBlock keys;
  EXPECT_EQ(1, lib().d__ztbgetkeys(db, record, 2, keys));
  EXPECT_EQ("b", keys.shortString(0));
  EXPECT_EQ("y", keys.shortString(1));
  EXPECT_TRUE(keys.untouched(2));
  ShortString key;
  EXPECT_EQ(1, lib().d__ztbgetkey(db, record, 1, key));
  EXPECT_EQ("y", key.str());
  EXPECT_FAILURE(db, "Index too large", lib().d__ztbgetkey(db, record, 2, key));
}

TEST_F(ShortStrings, printToTheLog) {
  StdoutCapture capture;
  const int result = lib().d__ztbprintlog(db, ShortString("a line"));
  EXPECT_EQ("a line\n", capture.text());
  EXPECT_EQ(1, result);
}

TEST_F(ShortStrings, flatBlocksCarryKeysOut) {
  const Record record = db.last(data);
  StringBlock keys;
  EXPECT_EQ(1, lib().n__ztbgetkeys(db, record, 2, keys));
  EXPECT_EQ("b", keys.flatString(0));
  EXPECT_EQ("y", keys.flatString(1));
  EXPECT_TRUE(keys.untouched(2));
  EXPECT_FAILURE(db, "No symbol record handle specified",
                 lib().n__ztbgetkeys(db, nullptr, 2, keys));
}

TEST_F(ShortStrings, flatBlocksCarryDomainsOut) {
  void* const set = db.addSet("i");
  void* const over = db.addOver("q", ZTB_PARAMETER, {set, db.universe()});
  std::array<void*, 2> domains{untouched, untouched};
  StringBlock names;
  EXPECT_EQ(1, lib().n__ztbgetdomain(db, over, 2, domains.data(), names));
  EXPECT_EQ(set, domains[0]);
  EXPECT_EQ("i", names.flatString(0));
  EXPECT_EQ(db.universe(), domains[1]);
  EXPECT_EQ("*", names.flatString(1));
  EXPECT_TRUE(names.untouched(2));
  EXPECT_FAILURE(db, "The Universe has no domain",
                 lib().n__ztbgetdomain(db, db.universe(), 1, domains.data(), names));
}

}  // namespace
}  // namespace ztbtest
