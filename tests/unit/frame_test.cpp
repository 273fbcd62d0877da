#include "core/frame.h"

#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

#include "tests/support/stdout_capture.h"

namespace ztb {
namespace {

using ztbtest::StdoutCapture;

class Frame : public testing::Test {
 protected:
  Frame() { db_.fail("earlier"); }
  ~Frame() override { debugLevel = 0; }

  ztbRec* handle() { return handleOf(&db_); }

  ZTB db_{"/no such folder"};
};

TEST_F(Frame, givesTheDatabaseToTheBodyAndItsResultBack) {
  EXPECT_EQ(1, operation(handle(), "op", [&](ZTB& db) { return &db == &db_ ? 1 : 0; }));
  EXPECT_EQ(0, operation(handle(), "op", [](ZTB&) { return 0; }));
}

TEST_F(Frame, aSuccessLeavesTheLastError) {
  operation(handle(), "op", [](ZTB&) { return success; });
  EXPECT_STREQ("earlier", db_.lastError);
}

TEST_F(Frame, runningOutOfMemoryIsSaidInTheLastErrorAndOnStandardOutput) {
  StdoutCapture output;
  EXPECT_EQ(0, operation(handle(), "ztbOp", [](ZTB&) -> int { throw std::bad_alloc(); }));
  EXPECT_EQ("Out of memory in ztbOp\n", output.text());
  EXPECT_STREQ("Out of memory in ztbOp", db_.lastError);
}

TEST_F(Frame, aLengthThatNoArrayCanHaveCountsAsRunningOutOfMemory) {
  StdoutCapture output;
  EXPECT_EQ(0,
            operation(handle(), "ztbOp", [](ZTB&) -> int { throw std::bad_array_new_length(); }));
  EXPECT_EQ("Out of memory in ztbOp\n", output.text());
}

TEST_F(Frame, anyOtherExceptionIsSaidInTheLastErrorAlone) {
  StdoutCapture output;
  EXPECT_EQ(0, operation(handle(), "ztbOp", [](ZTB&) -> int { throw std::out_of_range("far"); }));
  EXPECT_EQ("", output.text());
  EXPECT_STREQ("Unexpected exception in ztbOp: far", db_.lastError);
}

TEST_F(Frame, theTextOfAnExceptionIsCut) {
  const std::string text(300, 'x');
  operation(handle(), "ztbOp", [&](ZTB&) -> int { throw std::runtime_error(text); });
  EXPECT_EQ(("Unexpected exception in ztbOp: " + text).substr(0, 255), db_.lastError);
}

TEST_F(Frame, namesCanDifferInTraceAndGuard) {
  debugLevel = 1;
  StdoutCapture output;
  const OperationName name("traced", "memory", "exception");
  operation(handle(), name, [](ZTB&) -> int { throw std::runtime_error("why"); });
  EXPECT_STREQ("Unexpected exception in exception: why", db_.lastError);
  operation(handle(), name, [](ZTB&) -> int { throw std::bad_alloc(); });
  EXPECT_STREQ("Out of memory in memory", db_.lastError);
  EXPECT_EQ("traced\ntraced\nOut of memory in memory\n", output.text());
}

TEST_F(Frame, tracesTheNameBeforeTheBodyRunsAboveLevel0) {
  for (const int level : {1, 2, 7}) {
    debugLevel = level;
    StdoutCapture output;
    operation(handle(), "ztbOp", [](ZTB&) { return std::puts("body") >= 0 ? 1 : 0; });
    EXPECT_EQ("ztbOp\nbody\n", output.text()) << level;
  }
}

TEST_F(Frame, tracesNothingAtLevel0AndBelow) {
  for (const int level : {0, -1}) {
    debugLevel = level;
    StdoutCapture output;
    operation(handle(), "ztbOp", [](ZTB&) { return 1; });
    unguardedOperation(handle(), "ztbOp", [](ZTB&) { return 1; });
    EXPECT_EQ("", output.text()) << level;
  }
}

TEST_F(Frame, withoutAGuardExceptionsLeave) {
  EXPECT_THROW(unguardedOperation(handle(), "op", [](ZTB&) -> int { throw std::bad_alloc(); }),
               std::bad_alloc);
  EXPECT_THROW(
      unguardedOperation(handle(), "op", [](ZTB&) -> int { throw std::runtime_error("x"); }),
      std::runtime_error);
  EXPECT_STREQ("earlier", db_.lastError);
}

TEST_F(Frame, withoutAGuardTheNameIsTracedToo) {
  debugLevel = 1;
  StdoutCapture output;
  EXPECT_EQ(1, unguardedOperation(handle(), "ztbOp", [](ZTB&) { return 1; }));
  EXPECT_EQ("ztbOp\n", output.text());
}

TEST_F(Frame, aTwinGivesTheHandleAndTheStatus) {
  int status = -1;
  int object = 0;
  EXPECT_EQ(&object, handleOperation(handle(), "op", &status, [&](ZTB&, void** result) {
    *result = &object;
    return success;
  }));
  EXPECT_EQ(1, status);
}

TEST_F(Frame, aTwinThatFailsGivesNull) {
  int status = -1;
  EXPECT_EQ(nullptr, handleOperation(handle(), {"ztbOpPy", "ztbOp"}, &status,
                                     [](ZTB&, void**) -> int { throw std::runtime_error("x"); }));
  EXPECT_EQ(0, status);
  EXPECT_STREQ("Unexpected exception in ztbOp: x", db_.lastError);
}

TEST_F(Frame, aTwinOverItsPlainOperationTracesBothNames) {
  debugLevel = 1;
  StdoutCapture output;
  int status = -1;
  handleFromPlain("ztbOpPy", &status, [&](void**) {
    return operation(handle(), "ztbOp", [](ZTB&) { return success; });
  });
  EXPECT_EQ("ztbOpPy\nztbOp\n", output.text());
  EXPECT_EQ(1, status);
}

}  // namespace
}  // namespace ztb
