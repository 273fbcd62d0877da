// Allocations that fail while an exchange file is opened, read lazily or written. Some of them are
// the exchange-file library's, which reports them in its own words; whichever it is, an operation
// that failed says so, one that succeeded is complete, and nothing is left allocated.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <string>
#include <vector>

#include "tests/fault/failing_allocation.h"
#include "tests/fault/fault_loop.h"
#include "tests/support/environment_setting.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"

namespace ztbtest {
namespace {

void fill(Database& db) {
  void* const set = db.addSet("a_set_with_a_name_longer_than_a_small_string");
  lib().c__ztbsetelemtext(db, db.put(set, {"a"}), "an explanatory text of some length");
  db.put(set, {"a label that is longer than a small string"});
  db.addAlias("j", set);
  void* const data = db.addOver("p", ZTB_PARAMETER, {set, db.universe()});
  db.put(data, {"a", "b"}, 1.0);
  db.put(data, {"a", "c"}, 2.0);
  db.put(db.addVariable("v", 0), {}, 3.0);
}

std::string bytes(const std::string& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class ExchangeFaults : public testing::Test {
 protected:
  ExchangeFaults() : file(folder.file("data.rxf")) {
    Database source;
    fill(source);
    EXPECT_EQ(1, lib().c__ztbwriterxf(source, file.c_str(), 0)) << source.lastError();
    wanted = contentsOf(source);
    // Whatever the libraries keep for good from their first use is there before anything is
    // counted.
    Database warm(file);
    EXPECT_EQ(wanted, contentsOf(warm));
  }

  // Runs `attempt` with the first, second, ... allocation failing until it needs no further one.
  // It gives whether an allocation failed.
  static void forEveryAllocation(const std::function<bool(long, Failures)>& attempt) {
    for (const Failures failures : {Failures::one, Failures::allFromThere}) {
      long number = 1;
      for (bool goesOn = true; goesOn && !HasFailure(); ++number) {
        SCOPED_TRACE("allocation " + std::to_string(number) +
                     (failures == Failures::one ? "" : " and all that follow"));
        const long before = liveAllocations();
        goesOn = attempt(number, failures);
        EXPECT_EQ(before, liveAllocations()) << "allocations are left";
      }
      EXPECT_LT(2, number);
    }
  }

  // A failed operation has told so: with its own words, which are then printed too, or with others.
  static void expectTold(const Database& db, const std::string& operation,
                         const std::string& printed) {
    EXPECT_FALSE(db.errorUntouched());
    const std::string own = "Out of memory in " + operation;
    EXPECT_EQ(db.lastError() == own ? own + "\n" : "", printed) << db.lastError();
  }

  TempFolder folder;
  std::string file;
  Contents wanted;
};

TEST_F(ExchangeFaults, opening) {
  forEveryAllocation([&](long number, Failures failures) {
    Database db;
    db.markError();
    StdoutCapture capture;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = lib().c__ztbinitfromrxf(db, file.c_str());
      happened = failing.happened();
    }
    const std::string printed = capture.text();
    if (result == 1) {
      EXPECT_EQ(wanted, contentsOf(db));
    } else {
      EXPECT_TRUE(happened);
      expectTold(db, "ztbInitFromRXF", printed);
    }
    return happened;
  });
}

TEST_F(ExchangeFaults, readingASymbol) {
  forEveryAllocation([&](long number, Failures failures) {
    Database db(file);
    void* const symbol = db.find("p");
    db.markError();
    StdoutCapture capture;
    void* handle = nullptr;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = lib().c__ztbfindfirstrecord(db, symbol, &handle);
      happened = failing.happened();
    }
    const std::string printed = capture.text();
    if (result == 1) {
      const Record record(db, handle);
      EXPECT_EQ((Labels{"a", "b"}), db.labels(record, 2));
      EXPECT_EQ(1.0, db.level(record));
    } else {
      EXPECT_TRUE(happened);
      EXPECT_EQ(nullptr, handle);
      expectTold(db, "ztbFindFirstRecord", printed);
      // Nothing of the symbol was taken, or it stays unreadable with the same text.
      const std::string told = db.lastError();
      if (lib().c__ztbfindfirstrecord(db, symbol, &handle) == 1) {
        const Record record(db, handle);
        EXPECT_EQ(wanted, contentsOf(db));
      } else {
        EXPECT_EQ(told, db.lastError());
        EXPECT_EQ(0U, told.find("Symbol p could not be read from ")) << told;
      }
    }
    EXPECT_EQ(3.0, db.level(db.first(db.find("v")))) << "other symbols stay readable";
    return happened;
  });
}

// A symbol that is decoded by a thread of the exchange-file library's, into the default store.
// Where the thread has no memory the read goes on without.
TEST_F(ExchangeFaults, readingALargeSymbol) {
  constexpr int side = 1000;
  constexpr int records = 500'000;
  const std::string large = folder.file("large.rxf");
  {
    Database source;
    void* const data = source.addParameter("p", 2);
    for (int label = 1; label <= side; ++label) source.uel(numbered("l", label).c_str());
    for (int i = 0; i < records; ++i) {
      const int keys[] = {1 + i / side, 1 + i % side};
      double values[5] = {i * 0.5};
      ASSERT_EQ(1, lib().c__ztbmergerecordint(source, data, keys, 0, 0, nullptr, 1, values));
    }
    ASSERT_EQ(1, lib().c__ztbwriterxf(source, large.c_str(), 0)) << source.lastError();
  }
  const EnvironmentSetting helped("ZTB_RXF_THREADS", "2");
  int survived = 0;
  forEveryAllocation([&](long number, Failures failures) {
    Database db(large);
    void* const symbol = db.find("p");
    StdoutCapture capture;
    void* handle = nullptr;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = lib().c__ztbfindfirstrecord(db, symbol, &handle);
      happened = failing.happened();
    }
    capture.text();
    if (result == 1) {
      const Record record(db, handle);
      double level = -1;
      int count = 0;
      do {
        lib().c__ztbgetlevel(db, record, &level);
        if (level != count * 0.5) break;
        ++count;
      } while (lib().c__ztbrecordmovenext(db, record) == 1);
      EXPECT_EQ(records, count);
      survived += happened ? 1 : 0;
    } else {
      EXPECT_TRUE(happened);
      const std::string told = db.lastError();
      EXPECT_TRUE(told.starts_with("Out of memory in ") ||
                  told.starts_with("Symbol p could not be read from "))
          << told;
    }
    return happened;
  });
  EXPECT_GT(survived, 3) << "the thread's";
}

TEST_F(ExchangeFaults, closingWithTheRest) {
  forEveryAllocation([&](long number, Failures failures) {
    Database db(file);
    db.markError();
    StdoutCapture capture;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = lib().c__ztbcloserxf(db, 1);
      happened = failing.happened();
    }
    const std::string printed = capture.text();
    if (result != 1) {
      EXPECT_TRUE(happened);
      expectTold(db, "ztbCloseRXF", printed);
      EXPECT_EQ(1, db.info(ZTB_INFO_FILE_BACKED)) << "the call can be repeated";
      const std::string told = db.lastError();
      if (lib().c__ztbcloserxf(db, 1) == 1) {
        EXPECT_EQ(wanted, contentsOf(db)) << "nothing was lost";
      } else {
        EXPECT_EQ(told, db.lastError());
        EXPECT_EQ(0U, told.find("Symbol ")) << told;
        for (const char* name : {"a_set_with_a_name_longer_than_a_small_string", "p", "v"}) {
          const std::string failed = std::string("Symbol ") + name + " could not be read from ";
          if (told.starts_with(failed)) lib().c__ztbclearsymbol(db, db.find(name));
        }
        EXPECT_EQ(1, lib().c__ztbcloserxf(db, 1)) << "what could not be read was given up";
      }
    } else {
      EXPECT_EQ(wanted, contentsOf(db));
    }
    return happened;
  });
}

TEST_F(ExchangeFaults, freeingADatabaseWithItsFileOpen) {
  forEveryAllocation([&](long number, Failures failures) {
    ztbRec* ztb = nullptr;
    lib().xcreate(&ztb);
    EXPECT_EQ(1, lib().c__ztbinitfromrxf(ztb, file.c_str()));
    int result = -1;
    {
      const FailingAllocation failing(number, failures);
      result = lib().ztbfree(&ztb);
    }
    EXPECT_EQ(1, result);
    EXPECT_EQ(nullptr, ztb);
    return number < 10;
  });
}

TEST_F(ExchangeFaults, writing) {
  const std::string target = folder.file("target.rxf");
  forEveryAllocation([&](long number, Failures failures) {
    Database db;
    fill(db);
    std::ofstream(target) << "old";
    db.markError();
    StdoutCapture capture;
    int result = -1;
    bool happened = false;
    {
      const FailingAllocation failing(number, failures);
      result = lib().c__ztbwriterxf(db, target.c_str(), 0);
      happened = failing.happened();
    }
    const std::string printed = capture.text();
    if (result == 1) {
      Database again(target);
      EXPECT_EQ(wanted, contentsOf(again));
    } else {
      EXPECT_TRUE(happened);
      expectTold(db, "ztbWriteRXF", printed);
      EXPECT_EQ("old", bytes(target)) << db.lastError();
      EXPECT_EQ(wanted, contentsOf(db));
      EXPECT_EQ(1, lib().c__ztbwriterxf(db, target.c_str(), 0)) << db.lastError();
    }
    return happened;
  });
  EXPECT_EQ(2, std::distance(std::filesystem::directory_iterator(folder.path()),
                             std::filesystem::directory_iterator()))
      << "temporary files are left";
}

}  // namespace
}  // namespace ztbtest
