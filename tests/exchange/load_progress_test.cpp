// The progress lines of opening a file.
#include "core/frame.h"
#include "core/operations.h"
#include "tests/exchange/exchange_fixture.h"
#include "tests/support/stdout_capture.h"

namespace ztb::exchangetest {
namespace {

class LoadProgress : public ExchangeTest {
 protected:
  // What opening the file prints at a trace level.
  Lines printed(int level, const std::string& fileName) {
    debugLevel = level;
    ztbtest::StdoutCapture output;
    result_ = db_->InitFromRXF(fileName);
    return lines(output.text());
  }
  void makeSmallFile() {
    peer_.file("f.rxf");
    for (const char* text : {"a food", "fresh", "A food"}) {
      peer_.addText(text);
    }
    labels({"flour", "milk"});
    symbol("foods", 1, dmap::typeSet);
    symbol("f", 1, dmap::typeAlias, 1);
  }

  int result_ = -1;
};

TEST_F(LoadProgress, isNoneAtLevel0) {
  makeSmallFile();
  EXPECT_EQ(Lines(), printed(0, "f.rxf"));
}

TEST_F(LoadProgress, tellsTheStepsAtLevel1) {
  makeSmallFile();
  EXPECT_EQ(lines(R"(
---- Entering InitFromRXF ----
Open rxf file for reading
Opening rxf file was successful
Start loading string table
loading strings
loading strings done
start loading uels
loading uels done
creating symbols
---- Leaving InitFromRXF ----)"),
            printed(1, "f.rxf"));
}

TEST_F(LoadProgress, tellsEveryTextLabelAndSymbolAtLevel2) {
  makeSmallFile();
  EXPECT_EQ(lines(R"(
---- Entering InitFromRXF ----
Open rxf file for reading
Opening rxf file was successful
  using special values from ZTB
Start loading string table
loading strings
  reading string: a food
  Adding text
  reading string: fresh
  Adding text
  reading string: A food
  Text already exists
loading strings done
start loading uels
  Get uel
  Uel loaded: flour
  Get uel
  Uel loaded: milk
loading uels done
creating symbols
  creating symbol
  symbol created: foods
  creating symbol
  symbol created: f
---- Leaving InitFromRXF ----)"),
            printed(2, "f.rxf"));
}

TEST_F(LoadProgress, isTheSameAtHigherLevels) {
  peer_.file("f.rxf");
  EXPECT_EQ(lines(R"(
---- Entering InitFromRXF ----
Open rxf file for reading
Opening rxf file was successful
  using special values from ZTB
Start loading string table
loading strings
loading strings done
start loading uels
loading uels done
creating symbols
---- Leaving InitFromRXF ----)"),
            printed(3, "f.rxf"));
}

TEST_F(LoadProgress, ofAFailedOpeningStopsThere) {
  EXPECT_EQ(lines(R"(
---- Entering InitFromRXF ----
Open rxf file for reading
Error opening rxf file)"),
            printed(2, "none.rxf"));
  EXPECT_EQ(0, result_);
}

TEST_F(LoadProgress, ofARefusedDatabaseSaysSoAtLevel2) {
  add("p", 1, dmap::typeParameter);
  EXPECT_EQ((Lines{"---- Entering InitFromRXF ----"}), printed(1, "f.rxf"));
  EXPECT_EQ((Lines{"---- Entering InitFromRXF ----", "  FROM_NOSOURCE!=initFrom"}),
            printed(2, "f.rxf"));
}

TEST_F(LoadProgress, ofARefusedLabelEndsWithItsReading) {
  peer_.file("f.rxf");
  labels({"bad\tlabel"});
  EXPECT_EQ((Lines{"start loading uels", "  Get uel"}), [&] {
    const Lines all = printed(2, "f.rxf");
    return Lines(all.end() - 2, all.end());
  }());
}

TEST_F(LoadProgress, standsBehindTheNameOfTheOperation) {
  peer_.file("f.rxf");
  debugLevel = 1;
  ztbtest::StdoutCapture output;
  EXPECT_EQ(1, ztbInitFromRXF(handleOf(db_.get()), "f.rxf"));
  const Lines all = lines(output.text());
  EXPECT_EQ("ztbInitFromRXF", all.at(0));
  EXPECT_EQ("---- Entering InitFromRXF ----", all.at(1));
}

}  // namespace
}  // namespace ztb::exchangetest
