// Writing an exchange file: over another file and over the own source, with and without domain
// checks, and how a failed write ends.
#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/temp_folder.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

constexpr int check = 0;
constexpr int noCheck = 1;

class WriteRxf : public testing::Test {
 protected:
  static int write(const Database& db, const std::string& file, int noDomainCheck) {
    return lib().c__ztbwriterxf(db, file.c_str(), noDomainCheck);
  }

  static std::string bytes(const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }

  // Names of all files in the folder, temporary ones included.
  std::vector<std::string> filesInFolder() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  // A file with a parameter p of two records, and a set i of one.
  std::string writeSource(const std::string& name) const {
    Database source;
    void* const data = source.addParameter("p");
    source.put(data, {"a"}, 1.0);
    source.put(data, {"b"}, 2.0);
    source.put(source.addSet("i"), {"a"});
    const std::string file = folder.file(name);
    EXPECT_EQ(1, write(source, file, check)) << source.lastError();
    return file;
  }

  // The write fails with this many errors of the peer; gives the text of the one it names.
  static std::string expectErrors(Database& db, const std::string& file, int count,
                                  int noDomainCheck) {
    db.markError();
    EXPECT_EQ(0, write(db, file, noDomainCheck));
    const std::string start = std::to_string(count) + " RXF Error(s). First Error: ";
    EXPECT_EQ(start, db.lastError().substr(0, start.size()));
    EXPECT_LT(start.size(), db.lastError().size());
    return db.lastError().substr(start.size());
  }

  TempFolder folder;
};

TEST_F(WriteRxf, ofAnEmptyDatabaseMakesAFileThatOpens) {
  const Database db;
  const std::string file = folder.file("empty.rxf");
  EXPECT_EQ(1, write(db, file, check));
  const Database again(file);
  EXPECT_EQ(0, again.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS));
  EXPECT_EQ(0, again.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(WriteRxf, leavesTheDatabaseAsItWas) {
  Database db;
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1.0);
  EXPECT_SUCCESS(db, write(db, folder.file("x.rxf"), check));
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}}), db.rows(data));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(0, db.symbolInfo(data, ZTB_SYMBOL_INFO_NUMBER));
}

TEST_F(WriteRxf, replacesAFileThatExistsAndLeavesNothingElse) {
  const std::string file = folder.file("x.rxf");
  std::ofstream(file) << "old";
  Database db;
  db.addSet("i");
  EXPECT_EQ(1, write(db, file, check)) << db.lastError();
  EXPECT_EQ((std::vector<std::string>{"x.rxf"}), filesInFolder());
  EXPECT_NE(nullptr, Database(file).find("i"));
}

TEST_F(WriteRxf, overAnotherFileLeavesUnreadSymbolsUnreadAndReadable) {
  Database db(writeSource("source.rxf"));
  const std::string copy = folder.file("copy.rxf");
  EXPECT_SUCCESS(db, write(db, copy, check));
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(2, db.recordCount(db.find("p"))) << "still readable from the source";
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  void* handle = nullptr;
  EXPECT_FAILURE(db, "Symbol i not initialized from RXF or PBI: 3",
                 lib().c__ztbfindfirstrecord(db, db.find("i"), &handle));
  Database again(copy);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}}), again.rows(again.find("p")));
  EXPECT_EQ(1, again.recordCount(again.find("i")));
}

TEST_F(WriteRxf, mixesReadChangedAndUnreadSymbols) {
  Database db(writeSource("source.rxf"));
  db.put(db.find("p"), {"c"}, 3.0);
  const std::string copy = folder.file("copy.rxf");
  EXPECT_EQ(1, write(db, copy, check)) << db.lastError();
  Database again(copy);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}, {{"b"}, 2.0}, {{"c"}, 3.0}}),
            again.rows(again.find("p")));
  EXPECT_EQ(1, again.recordCount(again.find("i")));
}

TEST_F(WriteRxf, ofSymbolsLostWithTheirFileWritesThemEmpty) {
  Database db(writeSource("source.rxf"));
  ASSERT_EQ(1, lib().c__ztbcloserxf(db, 0));
  const std::string copy = folder.file("copy.rxf");
  EXPECT_SUCCESS(db, write(db, copy, check));
  Database again(copy);
  EXPECT_EQ(0, again.recordCount(again.find("p")));
}

TEST_F(WriteRxf, overItsOwnSourceReadsEverythingAndClosesTheSource) {
  const std::string file = writeSource("source.rxf");
  Database db(file);
  db.put(db.find("p"), {"c"}, 3.0);
  EXPECT_SUCCESS(db, write(db, file, check));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
  std::filesystem::remove(file);
  EXPECT_EQ(1, db.recordCount(db.find("i"))) << "read before the write";
  EXPECT_EQ(1, write(db, file, check)) << db.lastError();
  Database again(file);
  EXPECT_EQ(3, again.recordCount(again.find("p")));
  EXPECT_EQ(1, again.recordCount(again.find("i")));
}

TEST_F(WriteRxf, overItsOwnSourceInOtherLettersCountsAsTheSameFile) {
  Database db(writeSource("source.rxf"));
  EXPECT_SUCCESS(db, write(db, folder.file("SOURCE.rxf"), check));
  EXPECT_EQ(0, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(2, db.recordCount(db.find("p")));
}

TEST_F(WriteRxf, overItsOwnSourceByAnotherPathDoesNotCountAsTheSameFile) {
  Database db(writeSource("source.rxf"));
  const std::string samePlace = (folder.path() / "." / "source.rxf").string();
  EXPECT_SUCCESS(db, write(db, samePlace, check));
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(2, db.recordCount(db.find("p"))) << "read from the file as it was opened";
}

TEST_F(WriteRxf, cannotOpenItsTargetTellsReasonAndFile) {
  const Database db;
  const std::string file = folder.file("no_such_folder/x.rxf");
  EXPECT_EQ(0, write(db, file, check));
  const std::string end = ": " + file;
  ASSERT_LT(end.size(), db.lastError().size());
  EXPECT_EQ(end, db.lastError().substr(db.lastError().size() - end.size()));
}

TEST_F(WriteRxf, aFailedOpeningOfTheTargetChangesNothing) {
  Database db(writeSource("source.rxf"));
  EXPECT_EQ(0, write(db, folder.file("no_such_folder/x.rxf"), check));
  EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED));
  EXPECT_EQ(2, db.recordCount(db.find("p")));
}

TEST_F(WriteRxf, aRecordOutsideItsDomainFailsTheCheckedWriteAndMakesNoFile) {
  const std::string file = folder.file("x.rxf");
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  void* const data = db.addOver("p", ZTB_PARAMETER, {set});
  db.put(data, {"a"}, 1.0);
  db.put(data, {"b"}, 2.0);
  expectErrors(db, file, 1, check);
  EXPECT_EQ(2, db.recordCount(data)) << "the database keeps it";
  EXPECT_EQ((std::vector<std::string>{}), filesInFolder());
}

TEST_F(WriteRxf, aRecordOutsideItsDomainPassesTheUncheckedWriteThatKeepsTheName) {
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  void* const data = db.addOver("p", ZTB_PARAMETER, {set});
  db.put(data, {"b"}, 2.0);
  const std::string file = folder.file("x.rxf");
  EXPECT_SUCCESS(db, write(db, file, noCheck));
  EXPECT_EQ(1, write(db, file, 7)) << "any number but 0 leaves the check out";
  Database again(file);
  EXPECT_EQ(1, again.recordCount(again.find("p")));
  std::array<void*, 1> domains{};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(again, again.find("p"), 1, domains.data(), names));
  EXPECT_EQ(again.find("i"), domains[0]);
}

TEST_F(WriteRxf, anUnknownDomainNameLeavesTheCheckOutForTheWholeSymbol) {
  Database db;
  void* const set = db.addSet("i");
  db.put(set, {"a"});
  void* data = nullptr;
  std::array<void*, 2> domains{set, nullptr};
  std::array<const char*, 2> names{nullptr, "nowhere"};
  ASSERT_EQ(1, lib().c__ztbaddsymbolx(db, "p", 2, ZTB_PARAMETER, 0, "", domains.data(),
                                      names.data(), &data));
  db.put(data, {"b", "b"}, 2.0);
  const std::string file = folder.file("x.rxf");
  EXPECT_SUCCESS(db, write(db, file, check));
  Database again(file);
  std::array<void*, 2> found{};
  TextBuffers foundNames;
  ASSERT_EQ(1, lib().c__ztbgetdomain(again, again.find("p"), 2, found.data(), foundNames));
  EXPECT_EQ(again.find("i"), found[0]);
  EXPECT_EQ(nullptr, found[1]);
  EXPECT_EQ("nowhere", foundNames[1].str());
}

TEST_F(WriteRxf, aDomainThatTheFileRefusesIsNoFailure) {
  Database db;
  void* const data = db.addOverNames("p", ZTB_PARAMETER, {"x"});
  db.put(data, {"a"}, 1.0);
  const std::string first = folder.file("first.rxf");
  void* const later = db.addSet("x");
  db.put(later, {"b"});
  ASSERT_EQ(1, write(db, first, check)) << db.lastError();
  // Read back, p stands over x, which comes later: the checked way is refused.
  Database again(first);
  ASSERT_EQ(1, lib().c__ztbcloserxf(again, 1));
  const std::string second = folder.file("second.rxf");
  EXPECT_SUCCESS(again, write(again, second, check));
  Database third(second);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 1.0}}), third.rows(third.find("p")));
  std::array<void*, 1> domains{};
  TextBuffers names;
  ASSERT_EQ(1, lib().c__ztbgetdomain(third, third.find("p"), 1, domains.data(), names));
  EXPECT_EQ(third.find("x"), domains[0]);
}

TEST_F(WriteRxf, countsEveryErrorAndNamesTheEarliest) {
  Database outside;
  void* const set = outside.addSet("i");
  outside.put(set, {"a"});
  void* const data = outside.addOver("p", ZTB_PARAMETER, {set});
  outside.put(data, {"b"}, 2.0);
  const std::string file = folder.file("x.rxf");
  const std::string outsideText = expectErrors(outside, file, 1, check);

  Database unknown;
  const int key = 50;
  void* const list = unknown.addParameter("q");
  ASSERT_EQ(1, lib().c__ztbmergerecordint(unknown, list, &key, 0, 0, nullptr, 0, nullptr));
  const std::string unknownText = expectErrors(unknown, file, 1, check);
  EXPECT_NE(outsideText, unknownText);

  ASSERT_EQ(1, lib().c__ztbmergerecordint(outside, outside.addParameter("q"), &key, 0, 0, nullptr,
                                          0, nullptr));
  EXPECT_EQ(outsideText, expectErrors(outside, file, 2, check));
}

TEST_F(WriteRxf, aSymbolThatTheFileRefusesIsNamedAndTheOldFileStays) {
  Database db;
  std::vector<void*> domains(21, db.universe());
  void* symbol = nullptr;
  ASSERT_EQ(1, lib().c__ztbaddsymbolx(db, "wide", 21, ZTB_PARAMETER, 0, "", domains.data(), nullptr,
                                      &symbol));
  const std::string file = folder.file("x.rxf");
  std::ofstream(file) << "old";
  EXPECT_FAILURE(db, "Error writing symbol wide to RXF", write(db, file, check));
  EXPECT_EQ("old", bytes(file));
  EXPECT_EQ((std::vector<std::string>{"x.rxf"}), filesInFolder());
  EXPECT_EQ(0, db.recordCount(symbol));
}

TEST_F(WriteRxf, recordsWithABlankKeyAreErrorsOfTheFile) {
  Database db;
  db.put(db.addParameter("p"), {" "}, 1.0);
  expectErrors(db, folder.file("x.rxf"), 1, check);
}

TEST_F(WriteRxf, theCallersSpecialValuesDoNotReachTheFile) {
  Database db;
  void* const data = db.addParameter("p");
  db.put(data, {"a"}, 1.0);
  const std::string plain = folder.file("plain.rxf");
  ASSERT_EQ(1, write(db, plain, check));
  const std::array<double, 5> spelling{1, 2, 3, 4, 5};
  ASSERT_EQ(1, lib().c__ztbsetspecialvalues(db, spelling.data()));
  const std::string spelled = folder.file("spelled.rxf");
  ASSERT_EQ(1, write(db, spelled, check));
  Database again(spelled);
  EXPECT_EQ(1.0, again.level(again.first(again.find("p"))));
}

}  // namespace
}  // namespace ztbtest
