// Symbols of a model written to an exchange file: unread ones go there straight from the model.
#include <algorithm>

#include "tests/bridge/bridge_fixture.h"

namespace ztbtest {
namespace {

class SolutionFile : public BridgeTest {
 protected:
  SolutionFile() { prepare(); }

  std::string dump(const char* file) {
    const char* text = rxf_.dump(file);
    return text == nullptr ? "no file" : text;
  }
  int write(const char* file) { return lib().c__ztbwriterxf(db(), file, 0); }
};

constexpr const char* written = R"(label "flour"
label "milk"
label "iron"
label "protein"
symbol 1 "cost" 0 3 53 "what all costs"
record [] [1 2 0 0 1]
symbol 2 "need" 1 3 54 "of each nutrient"
record [3] [10 0.1 8 8.75e+290 2]
record [4] [11 0.2 9 8.75e+290 3]
symbol 3 "buy" 1 2 3 "of each food"
record [1] [5 0.5 0 8.75e+290 1]
record [2] [6 0.6 1 100 4]
symbol 4 "price_var" 1 2 5 ""
record [1] [0.25 0 -8.75e+290 8.75e+290 1]
record [2] [0.75 0 -8.75e+290 8.75e+290 1]
symbol 5 "total" 0 2 5 ""
record [] [7 0 -8.75e+290 8.75e+290 1]
)";

TEST_F(SolutionFile, goesFromTheModelToAFileWithoutBeingRead) {
  for (const int store : {0, 1, 2}) {
    SCOPED_TRACE(store);
    renew();
    lib().c__ztbselectrecordstorage(db(), nullptr, store);
    prepare();
    EXPECT_SUCCESS(db(), write("out.rxf"));
    EXPECT_EQ(written, dump("out.rxf"));
    EXPECT_EQ(5U, log("pbiGetSolutionVarRec").size());
    db().recordCount(db().find("buy"));
    EXPECT_EQ(2U, log("pbiGetSolutionVarRec").size()) << "it is still unread";
    EXPECT_SUCCESS(db(), write("again.rxf"));
    EXPECT_EQ(written, dump("again.rxf"));
    EXPECT_EQ(3U, log("pbiGetSolutionVarRec").size()) << "what was read comes from memory";
  }
}

TEST_F(SolutionFile, goesToAFileByTheCallsOfAReading) {
  model_.reset();
  model_.addLabel("a");
  symbol("x", 1, 5);
  column({1}, {4, 0, 0, 9, 1});
  symbol("y", 0, 6);
  row({}, {4, 0, 5, 1, 0}, 2);
  renew();
  prepare();
  rxf_.clearLog();
  EXPECT_SUCCESS(db(), write("out.rxf"));
  EXPECT_EQ(lines(R"(
dict nmtSymIndex "x"
dict nmtSymType 1
dict nmtSymDim 1
dict nmtFindFirstRowCol 1 [0]
model pbiGetSolutionVarRec 0
model pbiGetVarScaleOne 0
model pbiGetVarLowerOne 0
model pbiGetVarUpperOne 0
dict nmtColUels 0
dict nmtFindNextRowCol search1
dict nmtFindClose search1
dict nmtSymIndex "y"
dict nmtSymType 2
dict nmtSymDim 2
dict nmtFindFirstRowCol 2 []
model pbiGetEquTypeOne 0
model pbiGetSolutionEquRec 0
model pbiGetEquScaleOne 0
model pbiGetRhsOne 0
dict nmtRowUels 0
dict nmtFindNextRowCol search2
dict nmtFindClose search2)"),
            log());
  Lines writing = lines(rxf_.log());
  std::erase_if(writing, [](const std::string& line) {
    return line.find("rxfDataWrite") == std::string::npos;
  });
  for (std::string& line : writing) {
    line = line.substr(line.find(' ') + 1);
  }
  EXPECT_EQ(lines(R"(
rxfDataWriteRawStart "x" "" 1 2 0
rxfDataWriteRaw [1] [4 0 0 9 1]
rxfDataWriteDone
rxfDataWriteRawStart "y" "" 0 3 53
rxfDataWriteRaw [] [4 0 -inf 5 1]
rxfDataWriteDone)"),
            writing);
}

TEST_F(SolutionFile, ofASolveGoesToAFileBesideDataInMemory) {
  data("p", {{"milk", 8}});
  EXPECT_EQ(1, solve("dual"));
  EXPECT_SUCCESS(db(), write("out.rxf"));
  const Lines result = lines(dump("out.rxf"));
  EXPECT_NE(result.end(), std::ranges::find(result, "record [3] [8 1 8 8.75e+290 2]"));
  EXPECT_NE(result.end(), std::ranges::find(result, "record [1] [0 1 0 8.75e+290 1]"));
  EXPECT_EQ("record [2] [8]", result.back());
}

TEST_F(SolutionFile, isNotWrittenBeforeThereIsASource) {
  renew();
  ASSERT_EQ(1, lib().c__ztbinitfromdict(db(), model_.handle()));
  log();
  EXPECT_SUCCESS(db(), write("out.rxf"));
  EXPECT_EQ(Lines(), log());
  EXPECT_EQ(std::string::npos, dump("out.rxf").find("record"));
}

}  // namespace
}  // namespace ztbtest
