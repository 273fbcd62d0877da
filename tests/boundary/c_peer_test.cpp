// An exchange-file library that was written in C against ztb/peer.h alone: databases load from it.
// An executable of its own, because a library that has been opened once stays open.
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {
namespace {

class CPeer : public testing::Test {
 protected:
  void open() {
    ASSERT_EQ("", database_.lastError());
    ASSERT_EQ(1, lib().c__ztbinitfromrxf(database_, "ports")) << database_.lastError();
  }

  Database database_{SystemDirectory{ZTB_C_PEER_DIRECTORY}};
};

TEST_F(CPeer, aDatabaseBecomesTheMirrorOfItsFile) {
  open();
  EXPECT_EQ(3, database_.info(ZTB_INFO_UEL_COUNT));
  EXPECT_EQ(4, database_.info(ZTB_INFO_SYMBOL_COUNT));
  EXPECT_EQ(2, database_.findUel("Genoa"));

  void* port = database_.find("port");
  EXPECT_EQ("where ships call", database_.symbolText(port, ZTB_SYMBOL_INFO_TEXT));
  EXPECT_EQ("Latvia", database_.elementText(database_.record(port, {"Riga"})));
  EXPECT_EQ(3, database_.recordCount(port));

  const std::vector<Row> depths = database_.rows(database_.find("depth"));
  ASSERT_EQ(3U, depths.size());
  EXPECT_EQ((Row{.labels = {"Bergen"}, .level = 11.5}), depths[0]);
  EXPECT_EQ((Row{.labels = {"Genoa"}, .level = 15}), depths[1]);
  EXPECT_EQ((Labels{"Riga"}), depths[2].labels);

  void* year = database_.find("year");
  EXPECT_EQ(1939, database_.level(database_.first(year)));
}

TEST_F(CPeer, itsSpecialValuesReachTheCallerAsTheCallersOwn) {
  const double own[] = {-1, -2, -3, -4, -5};
  ASSERT_EQ(1, lib().c__ztbsetspecialvalues(database_, own));
  open();
  EXPECT_EQ(-2, database_.level(database_.record(database_.find("depth"), {"Riga"})));
}

TEST_F(CPeer, itsDomainsAreTheDatabasesSets) {
  open();
  void* domains[ZTB_MAX_DIMENSION] = {};
  char texts[ZTB_MAX_DIMENSION][ZTB_TEXT_BUFFER_SIZE] = {};
  char* names[ZTB_MAX_DIMENSION];
  for (int d = 0; d < ZTB_MAX_DIMENSION; ++d) names[d] = texts[d];
  ASSERT_EQ(1, lib().c__ztbgetdomain(database_, database_.find("depth"), 1, domains, names));
  EXPECT_EQ(database_.find("port"), domains[0]);
}

TEST_F(CPeer, whatItRefusesIsToldInItsWords) {
  EXPECT_FAILURE(database_, "Error opening RXF file: there is no file but \"ports\"",
                 lib().c__ztbinitfromrxf(database_, "rivers"));
}

TEST_F(CPeer, aSymbolThatItCannotGiveWholeIsUnreadable) {
  open();
  void* const tide = database_.find("tide");
  for (int times = 0; times < 2; ++times) {
    void* record = nullptr;
    EXPECT_FAILURE(database_, "Symbol tide could not be read from ports: its records do not add up",
                   lib().c__ztbfindfirstrecord(database_, tide, &record));
    EXPECT_EQ(nullptr, record);
  }
  EXPECT_EQ(3, database_.recordCount(database_.find("depth"))) << "the others can be read";
  EXPECT_SUCCESS(database_, lib().c__ztbclearsymbol(database_, tide));
  EXPECT_EQ(0, database_.recordCount(tide));
}

TEST_F(CPeer, anOperationThatItLacksEndsTheProcessWithItsReason) {
  testing::FLAGS_gtest_death_test_style = "threadsafe";
  EXPECT_EXIT(
      {
        // The text goes to standard output, which a death test does not read.
        dup2(STDERR_FILENO, STDOUT_FILENO);
        lib().c__ztbwriterxf(database_, "copy.rxf", 0);
      },
      testing::ExitedWithCode(123), "rxfOpenWrite could not be loaded: this library only reads");
}

}  // namespace
}  // namespace ztbtest
