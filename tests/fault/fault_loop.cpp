#include "tests/fault/fault_loop.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "tests/fault/failing_allocation.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {

namespace {

// The database as `before`, but for labels that may have been added at the end.
void expectUnchanged(const Contents& before, const Contents& after) {
  EXPECT_EQ(before.symbols, after.symbols);
  ASSERT_LE(before.labels.size(), after.labels.size());
  EXPECT_TRUE(std::equal(before.labels.begin(), before.labels.end(), after.labels.begin()));
}

Contents outcomeWithoutFailures(const FaultCase& one) {
  Database db;
  one.prepare(db);
  EXPECT_EQ(one.result, one.operate(db));
  one.finish(db);
  return contentsOf(db);
}

// False when the operation needed fewer allocations.
bool survives(const FaultCase& one, const Contents& outcome, long number, Failures failures) {
  Database db;
  one.prepare(db);
  const Contents before = contentsOf(db);
  db.markError();
  int result = -1;
  bool happened = false;
  StdoutCapture capture;
  {
    const FailingAllocation failing(number, failures);
    result = one.operate(db);
    happened = failing.happened();
  }
  const std::string printed = capture.text();
  if (!happened) {
    EXPECT_EQ(one.result, result);
    one.finish(db);
    return false;
  }
  const std::string text = "Out of memory in " + one.name;
  EXPECT_EQ(0, result);
  EXPECT_EQ(text, db.lastError());
  EXPECT_EQ(text + "\n", printed);
  expectUnchanged(before, contentsOf(db));
  EXPECT_EQ(one.result, one.operate(db));
  EXPECT_EQ(outcome, contentsOf(db));
  one.finish(db);
  return true;
}

}  // namespace

Contents contentsOf(Database& db) {
  Contents contents;
  for (int label = 1; label <= db.info(ZTB_INFO_UEL_COUNT); ++label) {
    TextBuffer text;
    lib().c__ztbgetuelbyindex(db, label, text);
    contents.labels.push_back(text.str());
  }
  for (int number = 0; number < db.info(ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS); ++number) {
    void* symbol = nullptr;
    lib().c__ztbgetsymbolbynumber(db, number, &symbol);
    contents.symbols.emplace_back(db.symbolText(symbol, ZTB_SYMBOL_INFO_NAME), db.rows(symbol));
  }
  return contents;
}

void expectEveryAllocationIsSurvived(const FaultCase& one) {
  const Contents outcome = outcomeWithoutFailures(one);
  for (const Failures failures : {Failures::one, Failures::allFromThere}) {
    long number = 1;
    for (bool goesOn = true; goesOn && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE(one.name + ", allocation " + std::to_string(number) +
                   (failures == Failures::one ? "" : " and all that follow"));
      const long before = liveAllocations();
      goesOn = survives(one, outcome, number, failures);
      EXPECT_EQ(before, liveAllocations()) << "allocations are left after the database ended";
    }
    EXPECT_LT(2, number) << one.name << " makes no allocation";
  }
}

}  // namespace ztbtest
