// The progress lines of opening a file, by trace level.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/database.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

class Progress : public testing::Test {
 protected:
  Progress() : file(folder.file("data.rxf")) {
    Database source;
    source.uel("a");
    source.uel("b");
    void* const set = source.addSet("i");
    lib().c__ztbsetelemtext(source, source.put(set, {"a"}), "some text");
    source.addAlias("j", set);
    EXPECT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 0)) << source.lastError();
  }

  // What opening a file prints at a trace level.
  std::string printed(Database& db, const std::string& name, int level) {
    lib().c__ztbsetdebug(db, level);
    StdoutCapture capture;
    lib().c__ztbinitfromrxf(db, name.c_str());
    std::string text = capture.text();
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(db, 0);
    return text;
  }

  TempFolder folder;
  std::string file;
};

TEST_F(Progress, isSilentAtLevelZero) {
  Database db;
  EXPECT_EQ("", printed(db, file, 0));
}

TEST_F(Progress, tellsTheStagesAtLevelOne) {
  Database db;
  EXPECT_EQ(
      "ztbInitFromRXF\n"
      "---- Entering InitFromRXF ----\n"
      "Open rxf file for reading\n"
      "Opening rxf file was successful\n"
      "Start loading string table\n"
      "loading strings\n"
      "loading strings done\n"
      "start loading uels\n"
      "loading uels done\n"
      "creating symbols\n"
      "---- Leaving InitFromRXF ----\n",
      printed(db, file, 1));
}

TEST_F(Progress, tellsEveryItemIndentedAtLevelTwo) {
  Database db;
  EXPECT_EQ(
      "ztbInitFromRXF\n"
      "---- Entering InitFromRXF ----\n"
      "Open rxf file for reading\n"
      "Opening rxf file was successful\n"
      "  using special values from ZTB\n"
      "Start loading string table\n"
      "loading strings\n"
      "  reading string: some text\n"
      "  Adding text\n"
      "loading strings done\n"
      "start loading uels\n"
      "  Get uel\n"
      "  Uel loaded: a\n"
      "  Get uel\n"
      "  Uel loaded: b\n"
      "loading uels done\n"
      "creating symbols\n"
      "  creating symbol\n"
      "  symbol created: i\n"
      "  creating symbol\n"
      "  symbol created: j\n"
      "---- Leaving InitFromRXF ----\n",
      printed(db, file, 2));
}

TEST_F(Progress, endsAtAFileThatCannotBeOpened) {
  Database db;
  EXPECT_EQ(
      "ztbInitFromRXF\n"
      "---- Entering InitFromRXF ----\n"
      "Open rxf file for reading\n"
      "Error opening rxf file\n",
      printed(db, folder.file("missing.rxf"), 2));
}

TEST_F(Progress, endsAtADatabaseThatHasASourceAlready) {
  Database db(file);
  EXPECT_EQ(
      "ztbInitFromRXF\n"
      "---- Entering InitFromRXF ----\n",
      printed(db, file, 1));
  EXPECT_EQ(
      "ztbInitFromRXF\n"
      "---- Entering InitFromRXF ----\n"
      "  FROM_NOSOURCE!=initFrom\n",
      printed(db, file, 2));
}

}  // namespace
}  // namespace ztbtest
