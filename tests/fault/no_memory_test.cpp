// Making and freeing a database without memory, and the operations that need none.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "tests/fault/failing_allocation.h"
#include "tests/support/database.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

// A database whose exchange-file object could not be made says so, at the latest when it is asked
// to open a file.
void expectNoExchangeFile(ztbRec* ztb) {
  TextBuffer error;
  if (lib().c__ztbgetlasterror(ztb, error) == 1) {
    EXPECT_EQ(0U, error.str().find("RXF create did not succeed: ")) << error.str();
  }
  EXPECT_EQ(0, lib().c__ztbinitfromrxf(ztb, "missing.rxf"));
  EXPECT_EQ(1, lib().c__ztbgetlasterror(ztb, error));
}

// Makes a database by `create` while the allocation of a number fails; false when it needed fewer.
// `create` gives its status, or 1 when it has none.
bool survivesCreation(const std::string& name, long number, Failures failures,
                      const std::function<int(ztbRec**, char*)>& create) {
  ztbRec* ztb = nullptr;
  TextBuffer message;
  StdoutCapture capture;
  int status = -1;
  bool happened = false;
  {
    const FailingAllocation failing(number, failures);
    status = create(&ztb, message);
    happened = failing.happened();
  }
  const std::string printed = capture.text();
  if (ztb == nullptr) {
    EXPECT_TRUE(happened);
    EXPECT_LE(0, status);
    EXPECT_EQ("Out of memory in " + name + "\n", printed);
  } else {
    EXPECT_EQ("", printed);
    EXPECT_EQ(1, status);
    int label = 0;
    EXPECT_EQ(1, lib().c__ztbmergeuel(ztb, "a", &label));
    if (happened) {
      expectNoExchangeFile(ztb);
    }
    lib().xfree(&ztb);
  }
  return happened;
}

void expectCreationSurvives(const std::string& name,
                            const std::function<int(ztbRec**, char*)>& create) {
  // The exchange-file library is opened once and for all before allocations are counted.
  { const Database first; }
  for (const Failures failures : {Failures::one, Failures::allFromThere}) {
    long number = 1;
    for (bool goesOn = true; goesOn && !testing::Test::HasFailure(); ++number) {
      const long before = liveAllocations();
      goesOn = survivesCreation(name, number, failures, create);
      EXPECT_EQ(before, liveAllocations()) << "allocations are left";
    }
    EXPECT_LT(2, number);
  }
}

TEST(CreationFaults, withAMessage) {
  expectCreationSurvives("ztbCreate", [](ztbRec** ztb, char* message) {
    const int status = lib().ztbcreate(ztb, message, ZTB_TEXT_BUFFER_SIZE);
    const char* const wanted = status == 1 ? "" : "Error while creating object";
    return std::strcmp(message, wanted) == 0 ? status : -2;
  });
}

TEST(CreationFaults, withoutAMessage) {
  expectCreationSurvives("ztbCreate", [](ztbRec** ztb, char*) {
    lib().xcreate(ztb);
    return 1;
  });
}

TEST(CreationFaults, inAFolder) {
  const std::string folder = peerFolder();
  expectCreationSurvives("ztbCreateD", [&](ztbRec** ztb, char*) {
    lib().xcreated(ztb, folder.c_str());
    return 1;
  });
}

TEST(CreationFaults, inAFolderReportsSuccessWithoutAnObject) {
  const Database first;
  ztbRec* ztb = nullptr;
  TextBuffer message;
  StdoutCapture capture;
  int status = -1;
  {
    const FailingAllocation failing(1, Failures::allFromThere);
    status = lib().ztbcreated(&ztb, "", message, ZTB_TEXT_BUFFER_SIZE);
  }
  EXPECT_EQ("Out of memory in ztbCreateD\n", capture.text());
  EXPECT_EQ(1, status) << "only a null place for the handle is reported";
  EXPECT_EQ("", message.str());
  EXPECT_EQ(nullptr, ztb);
}

// These names do not empty the handle first, and the text goes to whatever it holds.
TEST(CreationFaults, aHandleThatHoldsADatabaseKeepsItAndItTakesTheText) {
  const Database first;
  ztbRec* ztb = first;
  StdoutCapture capture;
  {
    const FailingAllocation failing(1, Failures::allFromThere);
    lib().xcreate(&ztb);
  }
  EXPECT_EQ(static_cast<ztbRec*>(first), ztb);
  EXPECT_EQ("Out of memory in ztbCreate", first.lastError());
  {
    const FailingAllocation failing(1, Failures::allFromThere);
    lib().xcreated(&ztb, "");
  }
  EXPECT_EQ(static_cast<ztbRec*>(first), ztb);
  EXPECT_EQ("Out of memory in ztbCreateD", first.lastError());
  EXPECT_EQ("", capture.text());
}

TEST(CreationFaults, theMessageIsCutToItsLength) {
  const Database first;
  ztbRec* ztb = nullptr;
  TextBuffer message;
  int status = -1;
  {
    const StdoutCapture unwanted;
    const FailingAllocation failing(1, Failures::allFromThere);
    status = lib().ztbcreate(&ztb, message, 6);
  }
  EXPECT_EQ(0, status);
  EXPECT_STREQ("Error", message);
  EXPECT_EQ(textFiller, static_cast<char*>(message)[6]);
}

// A database with symbols of long names and records, freed while every allocation fails.
TEST(FreeWithoutMemory, endsADatabaseCompletely) {
  { const Database first; }
  const long before = liveAllocations();
  ztbRec* ztb = nullptr;
  lib().xcreate(&ztb);
  void* symbol = nullptr;
  void* record = nullptr;
  const char* keys[] = {"a label that is longer than a small string"};
  ASSERT_EQ(1, lib().c__ztbaddsymbol(ztb, "a_name_longer_than_a_small_string_holds", 1,
                                     ZTB_VARIABLE, 0, "", &symbol));
  ASSERT_EQ(1, lib().c__ztbaddrecord(ztb, symbol, keys, &record));
  ASSERT_EQ(1, lib().c__ztbfreesymboliterator(ztb, record));
  int result = -1;
  {
    const FailingAllocation failing(1, Failures::allFromThere);
    result = lib().ztbfree(&ztb);
  }
  EXPECT_EQ(1, result);
  EXPECT_EQ(nullptr, ztb);
  EXPECT_EQ(before, liveAllocations());
}

class WithoutMemory : public testing::Test {
 protected:
  WithoutMemory() : data(db.addParameter("p")), first(db.put(data, {"a"}, 1.0)) {
    db.put(data, {"b"}, 2.0);
    db.put(data, {"c"}, 3.0);
  }

  // The call succeeds while every allocation fails, and tries none.
  template <typename Call>
  void expectNeedsNone(const Call& call) {
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(1, Failures::allFromThere);
      result = call();
      happened = failing.happened();
    }
    EXPECT_EQ(1, result);
    EXPECT_FALSE(happened);
  }

  Database db;
  void* data;
  Record first;
};

TEST_F(WithoutMemory, labelsThatAreKnownAreFound) {
  int number = 0;
  expectNeedsNone([&] { return lib().c__ztbmergeuel(db, "B  ", &number); });
  expectNeedsNone([&] { return lib().c__ztbfinduel(db, "b", &number); });
  expectNeedsNone([&] { return lib().c__ztbfinduel(db, "unknown", &number); });
  TextBuffer label;
  expectNeedsNone([&] { return lib().c__ztbgetuelbyindex(db, 2, label); });
}

TEST_F(WithoutMemory, recordsAreReadAndWrittenAndWalked) {
  double value = 0;
  TextBuffer text;
  TextBuffers texts;
  int key = 0;
  expectNeedsNone([&] { return lib().c__ztbgetlevel(db, first, &value); });
  expectNeedsNone([&] { return lib().c__ztbsetlevel(db, first, 5.0); });
  expectNeedsNone([&] { return lib().c__ztbgetkeys(db, first, 1, texts); });
  expectNeedsNone([&] { return lib().c__ztbgetkey(db, first, 0, text); });
  expectNeedsNone([&] { return lib().c__ztbgetrecordraw(db, first, 1, &key, &value); });
  expectNeedsNone([&] { return lib().c__ztbgetelemtext(db, first, text); });
  expectNeedsNone([&] { return lib().c__ztbrecordhasnext(db, first); });
  expectNeedsNone([&] { return lib().c__ztbrecordmovenext(db, first); });
  expectNeedsNone([&] { return lib().c__ztbrecordhasprev(db, first); });
  expectNeedsNone([&] { return lib().c__ztbrecordmoveprev(db, first); });
}

TEST_F(WithoutMemory, recordsAreRemoved) {
  expectNeedsNone([&] { return lib().c__ztbdeleterecord(db, first); });
  EXPECT_EQ(2, db.recordCount(data));
  expectNeedsNone([&] { return lib().c__ztbclearsymbol(db, data); });
  EXPECT_EQ(0, db.recordCount(data));
}

// No exception is caught in these operations, so that one would end the process.
TEST_F(WithoutMemory, operationsWithoutAGuardWork) {
  int number = 0;
  void* domain = nullptr;
  TextBuffers names;
  TextBuffer text;
  double five[5] = {1, 2, 3, 4, 5};
  db.markError();
  expectNeedsNone([&] { return lib().c__ztbsetuserinfo(db, data, 3); });
  expectNeedsNone([&] { return lib().c__ztbgetdomain(db, data, 1, &domain, names); });
  expectNeedsNone([&] { return lib().c__ztbsymboldim(db, data, &number); });
  expectNeedsNone([&] { return lib().c__ztbsymboltype(db, data, &number); });
  expectNeedsNone([&] { return lib().c__ztbsetspecialvalues(db, five); });
  expectNeedsNone([&] { return lib().c__ztbsetspecialvaluesx(db, five, &number); });
  expectNeedsNone([&] { return lib().c__ztbgetspecialvalues(db, five); });
  expectNeedsNone([&] { return lib().c__ztbgetuserspecialvalues(db, five); });
  expectNeedsNone([&] { return lib().c__ztbsetdebug(db, 0); });
  expectNeedsNone([&] { return lib().c__ztbgetlasterror(db, text); });
}

}  // namespace
}  // namespace ztbtest
