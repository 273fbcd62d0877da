// Databases of their own in several threads, from the first call of the process on: what is written
// in one is read back there and nowhere else. The thread sanitizer watches in a build of its own.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <string>
#include <thread>
#include <vector>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"
#include "tests/threads/together.h"

namespace threadtest {
namespace {

constexpr int kRows = 30;
constexpr int kColumns = 7;
constexpr ztb::Store kStores[] = {ztb::Store::map, ztb::Store::vector, ztb::Store::trie};

std::string label(char first, int number) {
  return first + std::to_string(100 + number);
}

// The value of a cell, another one in every thread.
double cell(int thread, int i, int j) {
  return 1000.0 * thread + 10.0 * i + j + 0.5;
}

// Sets i and j, a parameter over both that is then moved to a store, a variable, a scalar.
void fill(ztb::Database& database, ztb::Store store, int thread) {
  ztb::Symbol i = database.addSet("i", {"*"});
  ztb::Symbol j = database.addSet("j", {"*"});
  for (int row = 0; row < kRows; ++row) i.add(label('i', row)).setText(label('t', thread + row));
  for (int column = 0; column < kColumns; ++column) j.add(label('j', column));
  ztb::Symbol p = database.addParameter("p", {i, j});
  ztb::Symbol x = database.addVariable("x", 0, {i});
  for (int row = 0; row < kRows; ++row) {
    x.add(label('i', row)).setUpper(thread + row);
    for (int column = 0; column < kColumns; ++column) {
      p.add(label('i', row), label('j', column)).setLevel(cell(thread, row, column));
    }
  }
  database.addParameter("total", {}).add().setLevel(thread);
  p = database.moveTo(p, store);
}

void expectFilled(const ztb::Database& database, int thread) {
  const ztb::Symbol p = database.symbol("p");
  ASSERT_EQ(kRows * kColumns, p.recordCount());
  int at = 0;
  for (const ztb::Record& record : p.records()) {
    ASSERT_EQ(label('i', at / kColumns), record.key(0).str());
    ASSERT_EQ(label('j', at % kColumns), record.key(1).str());
    ASSERT_EQ(cell(thread, at / kColumns, at % kColumns), record.level());
    ++at;
  }
  ASSERT_EQ(kRows * kColumns, at);
  // A handle on a scalar stands on nothing on the vector store.
  if (database.store() != ztb::Store::vector) {
    ASSERT_EQ(thread, database.symbol("total").find()->level());
  }
  ASSERT_EQ(thread + 3, database.symbol("x").find(label('i', 3))->upper());
  ASSERT_EQ(label('t', thread + 5), database.symbol("i").find(label('i', 5))->text().str());
}

// Backwards from the last record, and the records of one label in the second position.
void expectWalks(const ztb::Database& database, int thread) {
  const ztb::Symbol p = database.symbol("p");
  void* handle = nullptr;
  ASSERT_EQ(1, c__ztbfindlastrecord(database.handle(), p.handle(), &handle));
  ztb::Record record(p, handle);
  int at = kRows * kColumns;
  do {
    --at;
    ASSERT_EQ(cell(thread, at / kColumns, at % kColumns), record.level());
  } while (record.movePrevious());
  ASSERT_EQ(0, at);

  int row = 0;
  for (const ztb::Record& found : p.slice(ztb::anyLabel, label('j', 4))) {
    ASSERT_EQ(cell(thread, row++, 4), found.level());
  }
  ASSERT_EQ(kRows, row);
}

void expectArrays(ztb::Database& database, int thread) {
  const ztb::Symbol p = database.symbol("p");
  std::vector<double> cube(kRows * kColumns);
  const std::array<int, 2> sizes{kRows, kColumns};
  ASSERT_EQ(1, c__ztbdensesymboltodensearray(database.handle(), cube.data(), sizes.data(),
                                             p.handle(), 0));
  std::array<void*, 2> domains{database.symbol("i").handle(), database.symbol("j").handle()};
  for (double& value : cube) value = -value;
  ztb::Symbol q = database.addParameter("q", {"*", "*"});
  ASSERT_EQ(1, c__ztbdensearraytosymbol(database.handle(), q.handle(), domains.data(), cube.data(),
                                        sizes.data()));
  ASSERT_EQ(-cell(thread, 9, 2), q.find(label('i', 9), label('j', 2))->level());
}

// Everything that one thread does with a store, its own file included.
void workOn(ztb::Store store, int thread, const std::string& file) {
  {
    ztb::Database database;
    ASSERT_EQ("", database.lastError().str());
    ASSERT_EQ(1, c__ztbsetdebug(database.handle(), 0));
    fill(database, store, thread);
    expectFilled(database, thread);
    expectWalks(database, thread);
    expectArrays(database, thread);
    database.write(file, true);
  }
  ztb::Database database;
  database.selectStore(store);
  ASSERT_EQ(1, c__ztbinitfromrxf(database.handle(), file.c_str()));
  expectFilled(database, thread);
  expectWalks(database, thread);
  database.write(file + ".copy");
}

class Threads : public testing::TestWithParam<int> {};

TEST_P(Threads, workOnTheirOwnDatabasesFromTheFirstCallOn) {
  const ztbtest::TempFolder folder;
  together(GetParam(), [&](int thread) {
    for (const ztb::Store store : kStores) {
      const std::string name =
          std::to_string(thread) + '-' + std::to_string(static_cast<int>(store));
      workOn(store, thread, folder.file(name + ".rxf"));
      ztb::Database copy;
      ASSERT_EQ(1, c__ztbinitfromrxf(copy.handle(), folder.file(name + ".rxf.copy").c_str()));
      expectFilled(copy, thread);
    }
  });
}

TEST_P(Threads, deleteRecordsOfTheirOwnTries) {
  together(GetParam(), [&](int thread) {
    ztb::Database database;
    fill(database, ztb::Store::trie, thread);
    ztb::Symbol p = database.symbol("p");
    for (int column = kColumns - 1; column >= 1; --column) {
      auto last = p.find(label('i', kRows - 1), label('j', column));
      ASSERT_EQ(1, c__ztbdeleterecord(database.handle(), last->handle()));
    }
    ASSERT_EQ(kRows * kColumns - (kColumns - 1), p.recordCount());
    ASSERT_EQ(cell(thread, kRows - 1, 0), p.find(label('i', kRows - 1), label('j', 0))->level());
  });
}

TEST_P(Threads, readOneFileTogether) {
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("shared.rxf");
  {
    ztb::Database database;
    fill(database, ztb::Store::map, 77);
    database.write(file);
  }
  together(GetParam(), [&](int thread) {
    ztb::Database database;
    database.selectStore(kStores[thread % 3]);
    ASSERT_EQ(1, c__ztbinitfromrxf(database.handle(), file.c_str()));
    expectFilled(database, 77);
  });
}

// The failures of one thread are told there and do not keep others from loading the library.
TEST_P(Threads, failToLoadAndLoadAtTheSameTime) {
  const ztbtest::TempFolder empty;
  const std::string folder = empty.path().string();
  together(GetParam(), [&](int thread) {
    for (int time = 0; time < 20; ++time) {
      if (thread % 2 == 0) {
        ztb::Database database(folder);
        // Empty once another thread has loaded the library from where it is.
        const std::string error = database.lastError().str();
        if (!error.empty()) {
          ASSERT_EQ("RXF create did not succeed: Could not load shared library " + folder +
                        "/librxfcclib64.so: " + folder +
                        "/librxfcclib64.so: cannot open shared object file: No such file or "
                        "directory",
                    error);
        }
      } else {
        ztb::Database database;
        ASSERT_EQ("", database.lastError().str());
      }
    }
  });
}

INSTANTIATE_TEST_SUITE_P(Two, Threads, testing::Values(2));
INSTANTIATE_TEST_SUITE_P(Eight, Threads, testing::Values(8));

// A database belongs to no thread: with an order between the uses, one may make it, another change
// it, a third free it.
TEST(Thread, handsADatabaseToAnother) {
  for (const ztb::Store store : kStores) {
    ztb::Database database;
    std::thread([&] {
      fill(database, store, 3);
      expectWalks(database, 3);
    }).join();
    expectFilled(database, 3);
    std::thread([&] {
      expectFilled(database, 3);
      const ztb::Database ended = std::move(database);
    }).join();
  }
}

}  // namespace
}  // namespace threadtest
