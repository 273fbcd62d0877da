// Files whose texts contradict themselves behind right checksums, and a file that two processes
// have open after a fork.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <string>

#include "tests/rxf/reseal.h"
#include "tests/support/database.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

class DamagedFile : public testing::Test {
 protected:
  // Set s: a "first", b "other". Parameter p: a 2.
  DamagedFile() {
    Database source;
    void* const set = source.addSet("s");
    lib().c__ztbsetelemtext(source, source.put(set, {"a"}), "first");
    lib().c__ztbsetelemtext(source, source.put(set, {"b"}), "other");
    source.put(source.addParameter("p"), {"a"}, 2);
    write(source, path);
  }

  static void write(Database& db, const std::string& file) {
    EXPECT_EQ(1, lib().c__ztbwriterxf(db, file.c_str(), 1)) << db.lastError();
  }

  TempFolder folder;
  std::string path = folder.file("a.rxf");
};

TEST_F(DamagedFile, thatNamesATextTwiceOrInTwoCasesIsNotOpened) {
  const std::string text = "Error opening RXF file: File is damaged: text table of " + path +
                           ", chunk 1, entry 2: text stands twice";
  std::string second = "other";
  for (const char* twin : {"first", "FIRST"}) {
    rxftest::forgeFile(path, second, twin);
    Database db;
    EXPECT_FAILURE(db, text, lib().c__ztbinitfromrxf(db, path.c_str()));
    // The next pass begins where this one has ended.
    rxftest::forgeFile(path, std::string("\x05") + "first" + "\x05" + twin,
                       std::string("\x05") + "first" + "\x05" + "other");
  }
}

TEST_F(DamagedFile, whoseRecordNamesATextThatThereIsNotFailsThatSymbol) {
  rxftest::forgeFile(path, rxftest::ascendingTexts(1), rxftest::ascendingTexts(2));
  const std::string text =
      "Symbol s could not be read from " + path + ": File is damaged: block 1 of 1 of symbol s: ";
  for (const int store : {0, 1, 2}) {
    Database db;
    ASSERT_EQ(1, lib().c__ztbselectrecordstorage(db, nullptr, store));
    ASSERT_EQ(1, lib().c__ztbinitfromrxf(db, path.c_str()));
    void* record = nullptr;
    EXPECT_EQ(0, lib().c__ztbfindfirstrecord(db, db.find("s"), &record));
    const std::string told = db.lastError();
    EXPECT_EQ(0U, told.find(text)) << told;
    EXPECT_EQ((std::vector<Row>{{{"a"}, 2}}), db.rows(db.find("p"))) << "the other one is whole";
    const std::string other = folder.file("b.rxf");
    EXPECT_FAILURE(db, told, lib().c__ztbwriterxf(db, other.c_str(), 1));
    EXPECT_FALSE(std::filesystem::exists(other));
    ASSERT_EQ(1, lib().c__ztbclearsymbol(db, db.find("s")));
    write(db, folder.file("c.rxf"));
  }
}

TEST_F(DamagedFile, isNotWhatAForkMakesOfAnOpenOne) {
  Database db(path);
  const std::string childs = folder.file("child.rxf");
  const pid_t child = fork();
  if (child == 0) {
    void* const p = db.find("p");
    db.put(p, {"b"}, 3);
    write(db, childs);
    _exit(db.recordCount(p) == 2 && db.recordCount(db.find("s")) == 2 ? 0 : 1);
  }
  EXPECT_EQ((std::vector<Row>{{{"a"}, 2}}), db.rows(db.find("p")));
  int status = -1;
  ASSERT_EQ(child, waitpid(child, &status, 0));
  EXPECT_EQ(0, status);
  EXPECT_EQ("other", db.elementText(db.last(db.find("s"))));
  write(db, folder.file("parent.rxf"));
  Database ofChild(childs);
  EXPECT_EQ((std::vector<Row>{{{"a"}, 2}, {{"b"}, 3}}), ofChild.rows(ofChild.find("p")));
}

}  // namespace
}  // namespace ztbtest
