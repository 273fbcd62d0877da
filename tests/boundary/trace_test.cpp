// The trace: which lines each exported name prints while the trace is on. The handles are null, so
// the operations fail; the trace does not depend on that.
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class Trace : public testing::Test {
 protected:
  struct Case {
    std::string lines;
    std::function<void()> call;
  };

  // What a call prints at a trace level.
  std::string printed(const std::function<void()>& call, int level = 1) {
    lib().c__ztbsetdebug(db, level);
    StdoutCapture capture;
    call();
    std::string lines = capture.text();
    const StdoutCapture unwanted;
    lib().c__ztbsetdebug(db, 0);
    return lines;
  }

  void expectLines(const std::vector<Case>& cases) {
    for (const Case& one : cases) {
      EXPECT_EQ(one.lines, printed(one.call));
    }
  }

  Database db;
  void* place = nullptr;
  int status = 0;
  int number = 0;
  double real = 0;
  int numbers[20] = {};
  double values[5] = {};
  TextBuffer text;
  TextBuffers texts;
  ShortString shortText{"a"};
  StringBlock block;
  Keys keys{"a"};
};

TEST_F(Trace, isSilentAtLevelZeroAndBelow) {
  EXPECT_EQ("", printed([&] { lib().c__ztbmergeuel(db, "a", &number); }, 0));
  EXPECT_EQ("", printed([&] { lib().c__ztbmergeuel(db, "a", &number); }, -1));
}

TEST_F(Trace, isTheSameAtLevelTwoForOperationsWithoutProgressLines) {
  EXPECT_EQ("ztbMergeUel\n", printed([&] { lib().c__ztbmergeuel(db, "a", &number); }, 2));
}

TEST_F(Trace, printsTheOperationsOfEveryDatabase) {
  const Database other;
  EXPECT_EQ("ztbMergeUel\n", printed([&] { lib().c__ztbmergeuel(other, "a", &number); }));
}

TEST_F(Trace, namesTheChangeOfItsOwnLevelByTheLevelBefore) {
  EXPECT_EQ("ztbSetDebug\n", printed([&] { lib().c__ztbsetdebug(db, 0); }));
  EXPECT_EQ("", printed([&] { lib().c__ztbsetdebug(db, 1); }, 0));
}

TEST_F(Trace, namesCreationAndRelease) {
  ztbRec* other = nullptr;
  expectLines({
      {"ztbCreate\n", [&] { lib().ztbcreate(&other, text, ZTB_TEXT_BUFFER_SIZE); }},
      {"ztbFree\n", [&] { lib().ztbfree(&other); }},
      {"ztbCreateD\n", [&] { lib().ztbcreated(&other, "", text, ZTB_TEXT_BUFFER_SIZE); }},
      {"ztbFree\n", [&] { lib().xfree(&other); }},
      {"ztbCreate\n", [&] { lib().xcreate(&other); }},
      {"ztbFree\n", [&] { lib().xfree(&other); }},
      {"ztbCreateD\n", [&] { lib().xcreated(&other, ""); }},
      {"ztbFree\n", [&] { lib().xfree(&other); }},
      {"", [&] { lib().xfree(&other); }},
      {"", [&] { lib().ztbfree(&other); }},
      {"ztbCreateD\n", [&] { lib().d__xcreated(&other, ShortString("")); }},
      {"ztbFree\n", [&] { lib().xfree(&other); }},
  });
}

TEST_F(Trace, isSilentForTheVersionAndSignatureChecks) {
  const int codes[] = {15, 11, 2};
  expectLines({
      {"", [&] { lib().c__xapiversion(5, text, &number); }},
      {"", [&] { lib().c__xcheck("ztbFindSymbol", 2, codes, text); }},
      {"", [&] { lib().d__xapiversion(5, shortText, &number); }},
  });
}

TEST_F(Trace, namesEveryDatabaseAndLabelOperation) {
  expectLines({
      {"ztbGetLastError\n", [&] { lib().c__ztbgetlasterror(db, text); }},
      {"ztbPrintLog\nhello\n", [&] { lib().c__ztbprintlog(db, "hello"); }},
      {"ztbInfo\n", [&] { lib().c__ztbinfo(db, 0, &number, nullptr, nullptr); }},
      {"ztbMergeUel\n", [&] { lib().c__ztbmergeuel(db, nullptr, &number); }},
      {"ztbFindUel\n", [&] { lib().c__ztbfinduel(db, "a", &number); }},
      {"ztbGetUelByIndex\n", [&] { lib().c__ztbgetuelbyindex(db, 0, text); }},
      {"ztbCloseRXF\n", [&] { lib().c__ztbcloserxf(db, 0); }},
      {"ztbGetSpecialValues\n", [&] { lib().c__ztbgetspecialvalues(db, values); }},
      {"ztbGetUserSpecialValues\n", [&] { lib().c__ztbgetuserspecialvalues(db, values); }},
      {"ztbSetSpecialValuesX\n", [&] { lib().c__ztbsetspecialvaluesx(db, values, &number); }},
      {"ztbSetSpecialValues\nztbSetSpecialValuesX\n",
       [&] { lib().c__ztbsetspecialvalues(db, values); }},
  });
}

TEST_F(Trace, namesASymbolThatIsAddedByShortStringsWhateverItsDimension) {
  for (const int dim : {-1, 1, 20, 21, 1000}) {
    expectLines({
        {"ztbAddSymbolX\n",
         [&] {
           lib().d__ztbaddsymbolx(db, ShortString(""), dim, 0, 0, ShortString(""), nullptr, block,
                                  &place);
         }},
        {"ztbAddSymbolXPy\nztbAddSymbolX\n",
         [&] {
           lib().d__ztbaddsymbolxpy(db, ShortString(""), dim, 0, 0, ShortString(""), nullptr, block,
                                    &status);
         }},
    });
  }
}

TEST_F(Trace, namesEverySymbolOperation) {
  expectLines({
      {"ztbAddSymbol\n", [&] { lib().c__ztbaddsymbol(db, "", 1, 0, 0, "", &place); }},
      {"ztbAddSymbolX\n",
       [&] { lib().c__ztbaddsymbolx(db, "", 1, 0, 0, "", nullptr, nullptr, &place); }},
      {"ztbFindSymbol\n", [&] { lib().c__ztbfindsymbol(db, "q", &place); }},
      {"ztbFindSymbolWithAlias\n", [&] { lib().c__ztbfindsymbolwithalias(db, "q", &place); }},
      {"ztbGetSymbolByIndex\n", [&] { lib().c__ztbgetsymbolbyindex(db, 9, &place); }},
      {"ztbGetSymbolByNumber\n", [&] { lib().c__ztbgetsymbolbynumber(db, 9, &place); }},
      {"ztbClearSymbol\n", [&] { lib().c__ztbclearsymbol(db, nullptr); }},
      {"ztbSetUserInfo\n", [&] { lib().c__ztbsetuserinfo(db, nullptr, 0); }},
      {"ztbGetDomain\n", [&] { lib().c__ztbgetdomain(db, nullptr, 1, &place, texts); }},
      {"ztbSymbolDim\n", [&] { lib().c__ztbsymboldim(db, nullptr, &number); }},
      {"ztbSymbolType\n", [&] { lib().c__ztbsymboltype(db, nullptr, &number); }},
      {"ztbSymbolInfo\n",
       [&] { lib().c__ztbsymbolinfo(db, nullptr, 0, &number, nullptr, nullptr); }},
  });
}

TEST_F(Trace, namesEveryLookupAndStep) {
  expectLines({
      {"ztbFindRecord\n", [&] { lib().c__ztbfindrecord(db, nullptr, keys, &place); }},
      {"ztbFindFirstRecord\n", [&] { lib().c__ztbfindfirstrecord(db, nullptr, &place); }},
      {"ztbFindFirstRecordSlice\n",
       [&] { lib().c__ztbfindfirstrecordslice(db, nullptr, keys, &place); }},
      {"ztbFindLastRecord\n", [&] { lib().c__ztbfindlastrecord(db, nullptr, &place); }},
      {"ztbFindLastRecordSlice\n",
       [&] { lib().c__ztbfindlastrecordslice(db, nullptr, keys, &place); }},
      {"ztbRecordMoveNext\n", [&] { lib().c__ztbrecordmovenext(db, nullptr); }},
      {"ztbRecordHasNext\n", [&] { lib().c__ztbrecordhasnext(db, nullptr); }},
      {"ztbRecordMovePrev\n", [&] { lib().c__ztbrecordmoveprev(db, nullptr); }},
      {"ztbRecordHasPrev\n", [&] { lib().c__ztbrecordhasprev(db, nullptr); }},
      {"ztbSameRecord\n", [&] { lib().c__ztbsamerecord(db, nullptr, nullptr); }},
      {"ztbCopySymbolIterator\n", [&] { lib().c__ztbcopysymboliterator(db, nullptr, &place); }},
      {"ztbFreeSymbolIterator\n", [&] { lib().c__ztbfreesymboliterator(db, nullptr); }},
  });
}

TEST_F(Trace, namesEveryReadingOfARecord) {
  expectLines({
      {"ztbGetLevel\n", [&] { lib().c__ztbgetlevel(db, nullptr, &real); }},
      {"ztbGetMarginal\n", [&] { lib().c__ztbgetmarginal(db, nullptr, &real); }},
      {"ztbGetLower\n", [&] { lib().c__ztbgetlower(db, nullptr, &real); }},
      {"ztbGetUpper\n", [&] { lib().c__ztbgetupper(db, nullptr, &real); }},
      {"ztbGetScale\n", [&] { lib().c__ztbgetscale(db, nullptr, &real); }},
      {"ztbGetElemText\n", [&] { lib().c__ztbgetelemtext(db, nullptr, text); }},
      {"ztbGetKeys\n", [&] { lib().c__ztbgetkeys(db, nullptr, 1, texts); }},
      {"ztbGetKey\n", [&] { lib().c__ztbgetkey(db, nullptr, 0, text); }},
      {"ztbGetRecordRaw\n", [&] { lib().c__ztbgetrecordraw(db, nullptr, 1, numbers, values); }},
  });
}

TEST_F(Trace, namesEveryChangeOfARecord) {
  expectLines({
      {"ztbAddRecord\n", [&] { lib().c__ztbaddrecord(db, nullptr, keys, &place); }},
      {"ztbMergeRecord\n", [&] { lib().c__ztbmergerecord(db, nullptr, keys, &place); }},
      {"ztbMergeRecordInt\n",
       [&] { lib().c__ztbmergerecordint(db, nullptr, numbers, 1, 0, &place, 0, values); }},
      {"ztbMergeSetRecordInt\n",
       [&] { lib().c__ztbmergesetrecordint(db, nullptr, numbers, 1, 0, &place, ""); }},
      {"ztbDeleteRecord\n", [&] { lib().c__ztbdeleterecord(db, nullptr); }},
      {"ztbSetLevel\n", [&] { lib().c__ztbsetlevel(db, nullptr, 0); }},
      {"ztbSetMarginal\n", [&] { lib().c__ztbsetmarginal(db, nullptr, 0); }},
      {"ztbSetLower\n", [&] { lib().c__ztbsetlower(db, nullptr, 0); }},
      {"ztbSetUpper\n", [&] { lib().c__ztbsetupper(db, nullptr, 0); }},
      {"ztbSetScale\n", [&] { lib().c__ztbsetscale(db, nullptr, 0); }},
      {"ztbSetElemText\n", [&] { lib().c__ztbsetelemtext(db, nullptr, ""); }},
  });
}

TEST_F(Trace, namesEveryMoveOfWholeSymbols) {
  expectLines({
      {"ztbCopySymbol\n", [&] { lib().c__ztbcopysymbol(db, nullptr, nullptr); }},
      {"ztbGetSymbolsUels\n", [&] { lib().c__ztbgetsymbolsuels(db, nullptr, 0, numbers, 20); }},
      {"ztbDenseSymbolToDenseArray\n",
       [&] { lib().c__ztbdensesymboltodensearray(db, values, numbers, nullptr, 0); }},
      {"ztbSparseSymbolToDenseArray\n",
       [&] {
         lib().c__ztbsparsesymboltodensearray(db, values, numbers, nullptr, &place, 0, &number);
       }},
      {"ztbSparseSymbolToSqzdArray\n",
       [&] {
         lib().c__ztbsparsesymboltosqzdarray(db, values, numbers, nullptr, &place, &place, 0,
                                             &number);
       }},
      {"ztbDenseArrayToSymbol\n",
       [&] { lib().c__ztbdensearraytosymbol(db, nullptr, &place, values, numbers); }},
      {"ztbDenseArraySlicesToSymbol\n",
       [&] { lib().c__ztbdensearrayslicestosymbol(db, nullptr, &place, &place, values, numbers); }},
      {"ztbStartWriteRecording\n", [&] { lib().c__ztbstartwriterecording(db); }},
      {"ztbStopWriteRecording\n", [&] { lib().c__ztbstopwriterecording(db); }},
  });
}

TEST_F(Trace, namesEveryQuestionToAViolationAndToAModel) {
  expectLines({
      {"ztbGetDVSymbol\n", [&] { lib().c__ztbgetdvsymbol(db, nullptr, &place); }},
      {"ztbGetDVSymbolRecord\n", [&] { lib().c__ztbgetdvsymbolrecord(db, nullptr, &place); }},
      {"ztbGetDVIndicator\n", [&] { lib().c__ztbgetdvindicator(db, nullptr, numbers); }},
      {"ztbUpdateModelSymbol\n",
       [&] { lib().c__ztbupdatemodelsymbol(db, nullptr, 0, nullptr, 0, &number); }},
      {"ztbCallSolver\n", [&] { lib().c__ztbcallsolver(db, "none"); }},
      {"ztbCallSolverTimed\n", [&] { lib().c__ztbcallsolvertimed(db, "none", &real); }},
  });
}

TEST_F(Trace, namesTheOperationThatARawAdditionLeadsTo) {
  void* const set = db.addSet("i");
  void* const data = db.addParameter("p");
  expectLines({
      {"ztbAddRecordRaw\nztbMergeSetRecordInt\n",
       [&] { lib().c__ztbaddrecordraw(db, set, numbers, nullptr, ""); }},
      {"ztbAddRecordRaw\nztbMergeRecordInt\n",
       [&] { lib().c__ztbaddrecordraw(db, data, numbers, values, nullptr); }},
      {"ztbAddRecordRaw\n",
       [&] { lib().c__ztbaddrecordraw(db, nullptr, numbers, values, nullptr); }},
  });
}

TEST_F(Trace, namesTwinsAndThePlainOperationThatTheyCall) {
  expectLines({
      {"ztbAddSymbolPy\nztbAddSymbol\n",
       [&] { lib().c__ztbaddsymbolpy(db, "", 1, 0, 0, "", &status); }},
      {"ztbAddSymbolXPy\nztbAddSymbolX\n",
       [&] { lib().c__ztbaddsymbolxpy(db, "", 1, 0, 0, "", nullptr, nullptr, &status); }},
      {"ztbFindSymbolPy\nztbFindSymbol\n", [&] { lib().c__ztbfindsymbolpy(db, "q", &status); }},
      {"ztbFindSymbolWithAliasPy\nztbFindSymbolWithAlias\n",
       [&] { lib().c__ztbfindsymbolwithaliaspy(db, "q", &status); }},
      {"ztbCopySymbolIteratorPy\nztbCopySymbolIterator\n",
       [&] { lib().c__ztbcopysymboliteratorpy(db, nullptr, &status); }},
      {"ztbMergeRecordIntPy\nztbMergeRecordInt\n",
       [&] { lib().c__ztbmergerecordintpy(db, nullptr, numbers, 1, 1, 0, values, &status); }},
      {"ztbMergeSetRecordIntPy\nztbMergeSetRecordInt\n",
       [&] { lib().c__ztbmergesetrecordintpy(db, nullptr, numbers, 1, 1, "", &status); }},
  });
}

TEST_F(Trace, namesOnlyTheTwinWhereItRepeatsTheOperation) {
  expectLines({
      {"ztbGetSymbolByIndexPy\n", [&] { lib().c__ztbgetsymbolbyindexpy(db, 9, &status); }},
      {"ztbGetSymbolByNumberPy\n", [&] { lib().c__ztbgetsymbolbynumberpy(db, 9, &status); }},
      {"ztbFindRecordPy\n", [&] { lib().c__ztbfindrecordpy(db, nullptr, keys, &status); }},
      {"ztbFindFirstRecordPy\n", [&] { lib().c__ztbfindfirstrecordpy(db, nullptr, &status); }},
      {"ztbFindFirstRecordSlicePy\n",
       [&] { lib().c__ztbfindfirstrecordslicepy(db, nullptr, keys, &status); }},
      {"ztbFindLastRecordPy\n", [&] { lib().c__ztbfindlastrecordpy(db, nullptr, &status); }},
      {"ztbFindLastRecordSlicePy\n",
       [&] { lib().c__ztbfindlastrecordslicepy(db, nullptr, keys, &status); }},
      {"ztbMergeRecordPy\n", [&] { lib().c__ztbmergerecordpy(db, nullptr, keys, &status); }},
      {"ztbAddRecordPy\n", [&] { lib().c__ztbaddrecordpy(db, nullptr, keys, &status); }},
  });
}

TEST_F(Trace, showsTheDimensionThatShortStringArraysAreMeasuredBy) {
  void* const data = db.addParameter("p");
  block = StringBlock::shortStrings({"'\""});
  expectLines({
      {"ztbSymbolDim\nztbFindRecord\n", [&] { lib().d__ztbfindrecord(db, data, block, &place); }},
      {"ztbSymbolDim\nztbFindRecordPy\n",
       [&] { lib().d__ztbfindrecordpy(db, data, block, &status); }},
      {"ztbSymbolDim\nztbAddRecord\n", [&] { lib().d__ztbaddrecord(db, data, block, &place); }},
      {"ztbSymbolDim\nztbMergeRecord\n", [&] { lib().d__ztbmergerecord(db, data, block, &place); }},
      {"ztbSymbolDim\nztbFindFirstRecordSlice\n",
       [&] { lib().d__ztbfindfirstrecordslice(db, data, block, &place); }},
      {"ztbSymbolDim\nztbFindLastRecordSlicePy\n",
       [&] { lib().d__ztbfindlastrecordslicepy(db, data, block, &status); }},
      {"ztbSymbolDim\n", [&] { lib().d__ztbfindrecord(db, nullptr, block, &place); }},
  });
}

TEST_F(Trace, isThePlainOneForOtherShortStringsAndFlatBlocks) {
  expectLines({
      {"ztbMergeUel\n", [&] { lib().d__ztbmergeuel(db, shortText, &number); }},
      {"ztbFindSymbol\n", [&] { lib().d__ztbfindsymbol(db, shortText, &place); }},
      {"ztbGetLastError\n", [&] { lib().d__ztbgetlasterror(db, shortText); }},
      {"ztbGetKeys\n", [&] { lib().n__ztbgetkeys(db, nullptr, 1, block); }},
      {"ztbGetDomain\n", [&] { lib().n__ztbgetdomain(db, nullptr, 1, &place, block); }},
  });
}

}  // namespace
}  // namespace ztbtest
