// Opening an exchange file: what the database is right after it, which domains and aliases it
// finds, and how a failed or repeated opening ends.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

int token = 0;
void* const untouched = &token;

class LoadRxf : public testing::Test {
 protected:
  std::string write(const Database& db, const std::string& name = "data.rxf") {
    const std::string file = folder.file(name);
    EXPECT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 0)) << db.lastError();
    return file;
  }

  // Domain handle and name of one position.
  static std::pair<void*, std::string> domain(const Database& db, void* symbol, size_t position) {
    std::array<void*, 20> domains{};
    TextBuffers names;
    EXPECT_EQ(1, lib().c__ztbgetdomain(db, symbol, 20, domains.data(), names));
    return {domains.at(position), names[position].str()};
  }

  using Domain = std::pair<void*, std::string>;

  TempFolder folder;
};

TEST_F(LoadRxf, aFileWithoutSymbolsOpensAndCloses) {
  const std::string file = write(Database());
  Database db;
  EXPECT_SUCCESS(db, lib().c__ztbinitfromrxf(db, file.c_str()));
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(0, db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  EXPECT_EQ(0, db.info(ZTB_INFO_UEL_COUNT));
  EXPECT_SUCCESS(db, lib().c__ztbcloserxf(db, 1));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
}

TEST_F(LoadRxf, labelsKeepTheirNumbersAlsoWithoutARecord) {
  Database source;
  source.uel("unused");
  source.uel("Mixed Case");
  source.uel("it's");
  const Database db(write(source));
  EXPECT_EQ(3, db.info(ZTB_INFO_UEL_COUNT));
  TextBuffer label;
  ASSERT_EQ(1, lib().c__ztbgetuelbyindex(db, 2, label));
  EXPECT_EQ("Mixed Case", label.str());
}

TEST_F(LoadRxf, symbolsAreNumberedFromOne) {
  Database source;
  void* const set = source.addSet("i");
  source.addAlias("j", set);
  source.addParameter("p");
  Database db(write(source));
  EXPECT_EQ(1, db.symbolInfo(db.find("i"), ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(2, db.symbolInfo(db.findWithAlias("j"), ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(3, db.symbolInfo(db.find("p"), ZTB_SYMBOL_INFO_NUMBER));
  void* found = nullptr;
  ASSERT_EQ(1, lib().c__ztbgetsymbolbynumber(db, 0, &found));
  EXPECT_EQ(db.find("i"), found) << "positions still count from 0";
  EXPECT_EQ(2, db.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(3, db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
}

TEST_F(LoadRxf, aSymbolAddedToAFileIsNumberedByItsPosition) {
  Database source;
  source.addSet("i");
  source.addSet("j");
  Database db(write(source));
  EXPECT_EQ(2, db.symbolInfo(db.addSet("k"), ZTB_SYMBOL_INFO_NUMBER));
  EXPECT_EQ(2, db.symbolInfo(db.find("j"), ZTB_SYMBOL_INFO_NUMBER)) << "the same number twice";
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
}

TEST_F(LoadRxf, symbolsKeepTheirDescription) {
  Database source;
  source.add("i", 1, ZTB_SET, 11, "a set");
  source.add("p", 0, ZTB_PARAMETER, -5, "");
  source.add("v", 20, ZTB_VARIABLE, 8, std::string(255, 't').c_str());
  source.add("e", 2, ZTB_EQUATION, 0, "an equation");
  source.add("f", 2, ZTB_EQUATION, 6, "another");
  Database db(write(source));
  const auto expectSymbol = [&](const char* name, int dim, int type, int userInfo,
                                const std::string& text) {
    void* const symbol = db.find(name);
    EXPECT_EQ(name, db.symbolText(symbol, ZTB_SYMBOL_INFO_NAME));
    EXPECT_EQ(dim, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_DIMENSION));
    EXPECT_EQ(type, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_TYPE));
    EXPECT_EQ(userInfo, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_USER_INFO));
    EXPECT_EQ(text, db.symbolText(symbol, ZTB_SYMBOL_INFO_TEXT));
    EXPECT_EQ(0, db.symbolInfo(symbol, ZTB_SYMBOL_INFO_STORAGE));
  };
  expectSymbol("i", 1, ZTB_SET, 11, "a set");
  expectSymbol("p", 0, ZTB_PARAMETER, -5, "");
  expectSymbol("v", 20, ZTB_VARIABLE, 8, std::string(255, 't'));
  expectSymbol("e", 2, ZTB_EQUATION, 0, "an equation");
  expectSymbol("f", 2, ZTB_EQUATION, 6, "another");
}

TEST_F(LoadRxf, anAliasFindsItsSetAndAnAliasOfTheUniverseTheUniverse) {
  Database source;
  source.addParameter("p");
  void* const set = source.addSet("i");
  source.addAlias("j", set);
  source.add("u", 1, ZTB_ALIAS, -1);
  Database db(write(source));
  EXPECT_EQ(db.find("i"), db.find("j"));
  EXPECT_NE(db.find("i"), db.findWithAlias("j"));
  EXPECT_EQ(db.universe(), db.find("u"));
}

TEST_F(LoadRxf, domainsAreFoundAgain) {
  Database source;
  void* const set = source.addSet("i");
  void* const alias = source.addAlias("j", set);
  source.addOver("p", ZTB_PARAMETER, {set, source.universe(), alias});
  Database db(write(source));
  void* const symbol = db.find("p");
  EXPECT_EQ((Domain{db.find("i"), "i"}), domain(db, symbol, 0));
  EXPECT_EQ((Domain{db.universe(), "*"}), domain(db, symbol, 1));
  EXPECT_EQ((Domain{db.find("i"), "j"}), domain(db, symbol, 2));
}

TEST_F(LoadRxf, aSymbolOverTheUniverseAloneHasItInEveryPosition) {
  Database source;
  source.addParameter("p", 2);
  Database db(write(source));
  EXPECT_EQ((Domain{db.universe(), "*"}), domain(db, db.find("p"), 0));
  EXPECT_EQ((Domain{db.universe(), "*"}), domain(db, db.find("p"), 1));
}

TEST_F(LoadRxf, aDomainThatIsNoSymbolOfTheFileStaysAName) {
  Database source;
  source.addOverNames("p", ZTB_PARAMETER, {"nowhere", "*"});
  Database db(write(source));
  EXPECT_EQ((Domain{nullptr, "nowhere"}), domain(db, db.find("p"), 0));
  EXPECT_EQ((Domain{db.universe(), "*"}), domain(db, db.find("p"), 1));
}

TEST_F(LoadRxf, aDomainThatIsNoOneDimensionalSetStaysAName) {
  Database source;
  source.addSet("ij", 2);
  source.addParameter("c");
  source.addOverNames("p", ZTB_PARAMETER, {"ij", "c"});
  Database db(write(source));
  EXPECT_EQ((Domain{nullptr, "ij"}), domain(db, db.find("p"), 0));
  EXPECT_EQ((Domain{nullptr, "c"}), domain(db, db.find("p"), 1));
}

TEST_F(LoadRxf, aDomainThatComesLaterInTheFileIsTheRealSymbol) {
  Database source;
  source.addOverNames("p", ZTB_PARAMETER, {"later"});
  source.addSet("later");
  Database db(write(source));
  EXPECT_EQ((Domain{db.find("later"), "later"}), domain(db, db.find("p"), 0));
}

TEST_F(LoadRxf, aDomainKnownByTheNameOfASetOfTheFileBecomesThatSet) {
  Database source;
  source.addSet("i");
  source.addOverNames("p", ZTB_PARAMETER, {"I"});
  Database db(write(source));
  EXPECT_EQ((Domain{db.find("i"), "i"}), domain(db, db.find("p"), 0));
}

TEST_F(LoadRxf, aMissingFileFailsWithThePeersReason) {
  Database db;
  const std::string file = folder.file("missing.rxf");
  db.markError();
  EXPECT_EQ(0, lib().c__ztbinitfromrxf(db, file.c_str()));
  const std::string start = "Error opening RXF file: ";
  EXPECT_EQ(start, db.lastError().substr(0, start.size()));
  EXPECT_LT(start.size(), db.lastError().size());
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED)) << "the attempt counts as the source";
}

TEST_F(LoadRxf, aFailedOpeningCannotBeRepeatedButClosed) {
  const std::string file = write(Database());
  Database db;
  ASSERT_EQ(0, lib().c__ztbinitfromrxf(db, folder.file("missing.rxf").c_str()));
  EXPECT_FAILURE(db, "Database has been initialized, cannot initialize from " + file,
                 lib().c__ztbinitfromrxf(db, file.c_str()));
  EXPECT_SUCCESS(db, lib().c__ztbcloserxf(db, 1));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
}

TEST_F(LoadRxf, foreignAndDamagedFilesAreRefusedWithAReason) {
  Database source;
  source.put(source.addParameter("p"), {"a"}, 1.0);
  const std::string good = write(source);
  const auto size = std::filesystem::file_size(good);
  const std::string foreign = folder.file("foreign.rxf");
  std::ofstream(foreign) << "not an exchange file at all, but long enough to look like one\n";
  const std::string empty = folder.file("empty.rxf");
  std::ofstream{empty};
  const std::string cut = folder.file("cut.rxf");
  std::filesystem::copy_file(good, cut);
  std::filesystem::resize_file(cut, size - 7);
  for (const std::string& file : {foreign, empty, cut, folder.path().string()}) {
    Database db;
    EXPECT_EQ(0, lib().c__ztbinitfromrxf(db, file.c_str())) << file;
    const std::string start = "Error opening RXF file: ";
    EXPECT_EQ(start, db.lastError().substr(0, start.size()));
    EXPECT_LT(start.size(), db.lastError().size());
  }
}

TEST_F(LoadRxf, aSecondOpeningIsRefusedAlsoAfterClosing) {
  const std::string file = write(Database());
  Database db(file);
  EXPECT_FAILURE(db, "Database has been initialized, cannot initialize from " + file,
                 lib().c__ztbinitfromrxf(db, file.c_str()));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  EXPECT_FAILURE(db, "Database has been initialized, cannot initialize from " + file,
                 lib().c__ztbinitfromrxf(db, file.c_str()));
}

TEST_F(LoadRxf, isRefusedAfterASymbolWasAdded) {
  Database db;
  db.addSet("i");
  EXPECT_FAILURE(db, "Database has been initialized, cannot initialize from x.rxf",
                 lib().c__ztbinitfromrxf(db, "x.rxf"));
}

TEST_F(LoadRxf, isRefusedAfterASymbolFailedOnItsDomains) {
  const Database other;
  void* domain = nullptr;
  ASSERT_EQ(1, lib().c__ztbfindsymbol(other, "*", &domain));
  Database db;
  void* symbol = untouched;
  ASSERT_EQ(1, lib().c__ztbaddsymbolx(db, "p", 1, 1, 0, "", &domain, nullptr, &symbol));
  ASSERT_EQ(nullptr, symbol);
  EXPECT_FAILURE(db, "Database has been initialized, cannot initialize from x.rxf",
                 lib().c__ztbinitfromrxf(db, "x.rxf"));
}

TEST_F(LoadRxf, isPossibleAfterASymbolFailedOnItsName) {
  Database source;
  source.addSet("i");
  const std::string file = write(source);
  Database db;
  void* symbol = untouched;
  ASSERT_EQ(0, lib().c__ztbaddsymbol(db, "1", 1, 1, 0, "", &symbol));
  EXPECT_SUCCESS(db, lib().c__ztbinitfromrxf(db, file.c_str()));
  EXPECT_NE(nullptr, db.find("i"));
}

TEST_F(LoadRxf, aDatabaseIsFreedWithItsFileStillOpen) {
  Database source;
  source.put(source.addParameter("p"), {"a"}, 1.0);
  const std::string file = write(source);
  { const Database db(file); }
  Database again(file);
  EXPECT_EQ(1.0, again.level(again.first(again.find("p"))));
}

TEST_F(LoadRxf, closingWithoutAFileIsRefused) {
  Database db;
  EXPECT_FAILURE(db, "Database not initialized from RXF", lib().c__ztbcloserxf(db, 1));
  db.addSet("i");
  EXPECT_FAILURE(db, "Database not initialized from RXF", lib().c__ztbcloserxf(db, 0));
  Database loaded(write(db));
  ASSERT_EQ(1, lib().c__ztbcloserxf(loaded, 0));
  EXPECT_FAILURE(loaded, "Database not initialized from RXF", lib().c__ztbcloserxf(loaded, 0));
}

TEST_F(LoadRxf, shortStringsNameTheFile) {
  Database source;
  source.addSet("i");
  const std::string file = folder.file("short.rxf");
  ASSERT_EQ(1, lib().d__ztbwriterxf(source, ShortString(file), 0)) << source.lastError();
  Database db;
  EXPECT_EQ(1, lib().d__ztbinitfromrxf(db, ShortString(file)));
  EXPECT_NE(nullptr, db.find("i"));
}

TEST_F(LoadRxf, aNullFileNameFailsTheOperations) {
  Database db;
  EXPECT_UNEXPECTED(db, "ztbWriteRXF", lib().c__ztbwriterxf(db, nullptr, 0));
  EXPECT_UNEXPECTED(db, "ztbInitFromRXF", lib().c__ztbinitfromrxf(db, nullptr));
}

}  // namespace
}  // namespace ztbtest
