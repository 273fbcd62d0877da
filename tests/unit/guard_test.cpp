// By which names the operations speak of themselves when their guard catches an exception.
#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <memory>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <utility>

#include "core/frame.h"
#include "core/operations.h"
#include "tests/support/stdout_capture.h"
#include "tests/unit/spy_store.h"

namespace ztb {
namespace {

using unittest::spy;

// A record handle that can do nothing but throw.
class ThrowingRecord final : public AbstractZTBSymbolIterator {
 public:
  explicit ThrowingRecord(AbstractZTBSymbol* symbol) : AbstractZTBSymbolIterator(symbol) {}

  dmap::IDMapIterator& storeIterator() override { return *refused<dmap::IDMapIterator>(); }
  const double* values() override { return refused<const double>(); }
  double* valuesToWrite() override { return refused<double>(); }
  bool moveNext(int) override { return refused<int>() != nullptr; }
  bool movePrev() override { return refused<int>() != nullptr; }
  bool hasNext(int) override { return refused<int>() != nullptr; }
  bool hasPrev() override { return refused<int>() != nullptr; }
  bool sameValues(AbstractZTBSymbolIterator&) override { return refused<int>() != nullptr; }
  [[nodiscard]] int dimension() const override { return 1; }
  void copyRecord(int*, double*) override { refused<int>(); }
  int copyRecords(int, int, int* const*, double* const*) override { return *refused<int>(); }
  const int* keys() override { return refused<int>(); }
  void assignPosition(const AbstractZTBSymbolIterator&) override { refused<int>(); }
  const void* valuesAddress() override { return refused<const void>(); }

 private:
  template <class T>
  static T* refused() {
    spy().beforeEveryCall();
    return nullptr;
  }
};

// What a guarded call is made with.
struct Arguments {
  ztbRec* db;
  void* sym;  // variable of dimension 1 with a record under label 1, "a"
  void* set;
  void* rec;
  void* otherRec;

  const char* labels[1] = {"a"};
  int numbers[1] = {1};
  double values[5] = {};
  char text[256] = {};
  char* texts[1] = {text};
  void* out = nullptr;
  int status = 0;
};

struct GuardedCall {
  const char* outOfMemoryName;
  const char* exceptionName;
  std::function<int(Arguments&)> call;
};

GuardedCall plain(const char* name, std::function<int(Arguments&)> call) {
  return {name, name, std::move(call)};
}

void PrintTo(const GuardedCall& call, std::ostream* out) {
  *out << call.exceptionName;
}

class GuardedDatabase : public testing::Test {
 protected:
  GuardedDatabase() {
    int number = 0;
    EXPECT_TRUE(db_.uels.merge("a", &number));
    db_.initFrom = Source::db;
    const std::array<double, 5> values{};
    variable_->insertRecord(&number, values.data());
    set_->insertRecord(&number, values.data());
  }
  ~GuardedDatabase() override { spy().reset(); }

  ZTB db_{"/no such folder"};
  std::unique_ptr<AbstractZTBSymbol> variable_ =
      unittest::spySymbol(1, dmap::typeVariable, "x", &db_);
  std::unique_ptr<AbstractZTBSymbol> set_ = unittest::spySymbol(1, dmap::typeSet, "i", &db_);
  ThrowingRecord record_{variable_.get()};
  ThrowingRecord otherRecord_{variable_.get()};
  Arguments arguments_{handleOf(&db_), variable_.get(), set_.get(), &record_, &otherRecord_};
};

class Guard : public GuardedDatabase, public testing::WithParamInterface<GuardedCall> {
 protected:
  int call() { return GetParam().call(arguments_); }
};

TEST_P(Guard, namesTheOperationWhenMemoryRunsOut) {
  spy().beforeEveryCall = [] { throw std::bad_alloc(); };
  ztbtest::StdoutCapture output;
  EXPECT_EQ(0, call());
  const std::string text = std::string("Out of memory in ") + GetParam().outOfMemoryName;
  EXPECT_EQ(text + "\n", output.text());
  EXPECT_EQ(text, db_.lastError);
}

TEST_P(Guard, namesTheOperationForAnyOtherException) {
  spy().beforeEveryCall = [] { throw std::runtime_error("boom"); };
  ztbtest::StdoutCapture output;
  EXPECT_EQ(0, call());
  EXPECT_EQ("", output.text());
  EXPECT_EQ(std::string("Unexpected exception in ") + GetParam().exceptionName + ": boom",
            db_.lastError);
}

// The status of a twin; its handle must be null.
int statusOf(const void* handle, const Arguments& a) {
  EXPECT_EQ(nullptr, handle);
  return a.status;
}

using A = Arguments;

INSTANTIATE_TEST_SUITE_P(
    OperationsOnSymbols, Guard,
    testing::Values(
        plain("ztbFindRecord", [](A& a) { return ztbFindRecord(a.db, a.sym, a.labels, &a.out); }),
        plain("ztbFindRecord",
              [](A& a) { return statusOf(ztbFindRecordPy(a.db, a.sym, a.labels, &a.status), a); }),
        plain("ztbFindFirstRecord", [](A& a) { return ztbFindFirstRecord(a.db, a.sym, &a.out); }),
        plain("ztbFindFirstRecord",
              [](A& a) { return statusOf(ztbFindFirstRecordPy(a.db, a.sym, &a.status), a); }),
        plain("ztbFindLastRecord", [](A& a) { return ztbFindLastRecord(a.db, a.sym, &a.out); }),
        plain("ztbFindLastRecord",
              [](A& a) { return statusOf(ztbFindLastRecordPy(a.db, a.sym, &a.status), a); }),
        plain("ztbFindFirstRecordSlice",
              [](A& a) { return ztbFindFirstRecordSlice(a.db, a.sym, a.labels, &a.out); }),
        plain("ztbFindFirstRecordSlice",
              [](A& a) {
                return statusOf(ztbFindFirstRecordSlicePy(a.db, a.sym, a.labels, &a.status), a);
              }),
        plain("ztbFindLastRecordSlice",
              [](A& a) { return ztbFindLastRecordSlice(a.db, a.sym, a.labels, &a.out); }),
        plain("ztbFindLastRecordSlice",
              [](A& a) {
                return statusOf(ztbFindLastRecordSlicePy(a.db, a.sym, a.labels, &a.status), a);
              }),
        plain("ztbAddRecord", [](A& a) { return ztbAddRecord(a.db, a.sym, a.labels, &a.out); }),
        plain("ztbAddRecord",
              [](A& a) { return statusOf(ztbAddRecordPy(a.db, a.sym, a.labels, &a.status), a); }),
        plain("ztbMergeRecord", [](A& a) { return ztbMergeRecord(a.db, a.sym, a.labels, &a.out); }),
        plain("ztbMergeRecord",
              [](A& a) { return statusOf(ztbMergeRecordPy(a.db, a.sym, a.labels, &a.status), a); }),
        plain("ztbMergeRecordInt",
              [](A& a) {
                return ztbMergeRecordInt(a.db, a.sym, a.numbers, 1, 1, &a.out, 1, a.values);
              }),
        plain("ztbMergeRecordInt",
              [](A& a) {
                return statusOf(
                    ztbMergeRecordIntPy(a.db, a.sym, a.numbers, 1, 1, 1, a.values, &a.status), a);
              }),
        plain("ztbMergeRecordInt",
              [](A& a) { return ztbAddRecordRaw(a.db, a.sym, a.numbers, a.values, nullptr); }),
        plain("ztbClearSymbol", [](A& a) { return ztbClearSymbol(a.db, a.sym); })));

// The operation on sets goes by the name of the one on values.
INSTANTIATE_TEST_SUITE_P(
    OperationsOnSets, Guard,
    testing::Values(
        plain("ztbMergeRecordInt",
              [](A& a) { return ztbMergeSetRecordInt(a.db, a.set, a.numbers, 1, 1, &a.out, "t"); }),
        plain("ztbMergeRecordInt",
              [](A& a) {
                return statusOf(
                    ztbMergeSetRecordIntPy(a.db, a.set, a.numbers, 1, 1, "t", &a.status), a);
              }),
        plain("ztbMergeRecordInt",
              [](A& a) { return ztbAddRecordRaw(a.db, a.set, a.numbers, nullptr, "t"); })));

INSTANTIATE_TEST_SUITE_P(
    OperationsOnRecords, Guard,
    testing::Values(
        plain("ztbRecordMoveNext", [](A& a) { return ztbRecordMoveNext(a.db, a.rec); }),
        plain("ztbRecordMovePrev", [](A& a) { return ztbRecordMovePrev(a.db, a.rec); }),
        plain("ztbRecordHasNext", [](A& a) { return ztbRecordHasNext(a.db, a.rec); }),
        plain("ztbRecordHasPrev", [](A& a) { return ztbRecordHasPrev(a.db, a.rec); }),
        plain("ztbGetLevel", [](A& a) { return ztbGetLevel(a.db, a.rec, a.values); }),
        plain("ztbGetMarginal", [](A& a) { return ztbGetMarginal(a.db, a.rec, a.values); }),
        plain("ztbGetLower", [](A& a) { return ztbGetLower(a.db, a.rec, a.values); }),
        plain("ztbGetUpper", [](A& a) { return ztbGetUpper(a.db, a.rec, a.values); }),
        plain("ztbGetScale", [](A& a) { return ztbGetScale(a.db, a.rec, a.values); }),
        plain("ztbGetElemText", [](A& a) { return ztbGetElemText(a.db, a.rec, a.text); }),
        plain("ztbGetKeys", [](A& a) { return ztbGetKeys(a.db, a.rec, 1, a.texts); }),
        plain("ztbGetKey", [](A& a) { return ztbGetKey(a.db, a.rec, 0, a.text); }),
        GuardedCall{"ztbGetKeys", "ztbGetRecordRaw",
                    [](A& a) { return ztbGetRecordRaw(a.db, a.rec, 1, a.numbers, a.values); }},
        plain("ztbSetLevel", [](A& a) { return ztbSetLevel(a.db, a.rec, 1); }),
        plain("ztbSetMarginal", [](A& a) { return ztbSetMarginal(a.db, a.rec, 1); }),
        plain("ztbSetLower", [](A& a) { return ztbSetLower(a.db, a.rec, 1); }),
        plain("ztbSetUpper", [](A& a) { return ztbSetUpper(a.db, a.rec, 1); }),
        plain("ztbSetScale", [](A& a) { return ztbSetScale(a.db, a.rec, 1); }),
        plain("ztbDeleteRecord", [](A& a) { return ztbDeleteRecord(a.db, a.rec); }),
        plain("ztbCopySymbolIterator",
              [](A& a) { return ztbCopySymbolIterator(a.db, a.rec, &a.out); }),
        plain("ztbCopySymbolIterator",
              [](A& a) { return statusOf(ztbCopySymbolIteratorPy(a.db, a.rec, &a.status), a); })));

TEST_F(GuardedDatabase, sameRecordTakesRunningOutOfMemoryForAnyOtherException) {
  spy().beforeEveryCall = [] { throw std::bad_alloc(); };
  ztbtest::StdoutCapture output;
  EXPECT_EQ(0, ztbSameRecord(arguments_.db, arguments_.rec, arguments_.otherRec));
  EXPECT_EQ("", output.text());
  EXPECT_EQ(std::string("Unexpected exception in ztbSameRecord: ") + std::bad_alloc().what(),
            db_.lastError);
}

}  // namespace
}  // namespace ztb
