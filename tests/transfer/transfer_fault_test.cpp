// Every allocation of every bulk operation fails once.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "tests/fault/failing_allocation.h"
#include "tests/support/stdout_capture.h"
#include "tests/support/temp_folder.h"
#include "tests/transfer/arrays.h"
#include "tests/transfer/scripted_host.h"
#include "tests/transfer/violations.h"

namespace ztbtest {
namespace {

const char* const longLabel = "a label that is longer than what a small string holds";
const char* const longText = "a text that is longer than what a small string holds";

// A database with data, one with the symbols to copy them to, and one without anything; made anew
// for each allocation that fails.
class Scene {
 public:
  Scene() {
    domains = {addSetOf(db, "i", {"a", longLabel, "c"}), addSetOf(db, "j", {"x", "y"})};
    data = db.addOver("p", ZTB_PARAMETER, domains);
    db.put(data, {longLabel, "y"}, 22);
    db.put(data, {"c", "x"}, 31);
    set = db.addSet("s");
    for (const char* label : {"a", "c"}) {
      const Record record = db.put(set, {label});
      EXPECT_EQ(1, lib().c__ztbsetelemtext(db, record, longText));
    }
    target = db.addParameter("q", 2);
    otherData = other.addParameter("q", 2);
    otherSet = other.addSet("s");
  }

  // A record outside the domains.
  void violate() { db.put(data, {"a", "a"}, 1); }

  Database db;
  Database other;
  Database empty;
  Symbols domains;
  Sizes sizes{3, 2};
  void* data = nullptr;
  void* set = nullptr;
  void* target = nullptr;
  void* otherData = nullptr;
  void* otherSet = nullptr;
  Doubles cells{11, 12, 21, 22, 31, 32};
  Doubles cube = Doubles(6);
  Integers counts = Integers(6);
  int number = 77;
};

struct Fault {
  // The names under which a failure may be told: the operation's own and those that it calls.
  std::vector<std::string> names;
  // The operation, which allocates nothing itself and ends what it was given.
  std::function<int(Scene&)> operate;
  // Whether the operation is done, asked after a success.
  std::function<void(Scene&)> check;
  std::function<void(Scene&)> prepare = [](Scene&) {};
  // The database that receives the texts.
  Database Scene::*texts = &Scene::db;
  // Whether the operation may be tried again after a failure.
  bool repeats = true;
};

bool isOneOf(const std::vector<std::string>& names, const std::string& text) {
  return std::any_of(names.begin(), names.end(), [&text](const std::string& name) {
    return text == "Out of memory in " + name;
  });
}

// False when the operation needed fewer allocations.
bool survives(const Fault& fault, long number, Failures failures) {
  Scene scene;
  fault.prepare(scene);
  Database& db = scene.*fault.texts;
  db.markError();
  int result = -1;
  bool happened = false;
  StdoutCapture capture;
  {
    const FailingAllocation failing(number, failures);
    result = fault.operate(scene);
    happened = failing.happened();
  }
  const std::string printed = capture.text();
  if (!happened) {
    EXPECT_EQ(1, result) << db.lastError();
    fault.check(scene);
    return false;
  }
  EXPECT_EQ(0, result);
  EXPECT_TRUE(isOneOf(fault.names, db.lastError())) << db.lastError();
  EXPECT_EQ(db.lastError() + "\n", printed);
  if (fault.repeats) {
    EXPECT_EQ(1, fault.operate(scene)) << db.lastError();
    fault.check(scene);
  }
  EXPECT_NE(nullptr, db.addSet("still_usable"));
  return true;
}

void expectEveryAllocationIsSurvived(const Fault& fault) {
  for (const Failures failures : {Failures::one, Failures::allFromThere}) {
    long number = 1;
    for (bool goesOn = true; goesOn && !testing::Test::HasFailure(); ++number) {
      SCOPED_TRACE(fault.names[0] + numbered(", allocation ", static_cast<int>(number)));
      const long before = liveAllocations();
      goesOn = survives(fault, number, failures);
      EXPECT_EQ(before, liveAllocations()) << "allocations are left after the databases ended";
    }
    EXPECT_LT(2, number) << fault.names[0] << " makes no allocation";
  }
}

TEST(ArrayFaults, sparseSymbolToArray) {
  expectEveryAllocationIsSurvived({{"ztbSparseSymbolToDenseArray"},
                                   [](Scene& scene) {
                                     return lib().c__ztbsparsesymboltodensearray(
                                         scene.db, scene.cube.data(), scene.sizes.data(),
                                         scene.data, scene.domains.data(), 0, &scene.number);
                                   },
                                   [](Scene& scene) {
                                     EXPECT_EQ((Doubles{0, 0, 0, 22, 31, 0}), scene.cube);
                                   }});
}

TEST(ArrayFaults, squeezedSymbolToArray) {
  expectEveryAllocationIsSurvived({{"ztbSparseSymbolToSqzdArray"},
                                   [](Scene& scene) {
                                     return lib().c__ztbsparsesymboltosqzdarray(
                                         scene.db, scene.cube.data(), scene.sizes.data(),
                                         scene.data, scene.domains.data(), scene.domains.data(), 0,
                                         &scene.number);
                                   },
                                   [](Scene& scene) {
                                     EXPECT_EQ((Doubles{0, 0, 0, 22, 31, 0}), scene.cube);
                                   }});
}

void expectWholeCube(Scene& scene) {
  EXPECT_EQ((std::vector<Row>{{{"a", "x"}, 11},
                              {{"a", "y"}, 12},
                              {{longLabel, "x"}, 21},
                              {{longLabel, "y"}, 22},
                              {{"c", "x"}, 31},
                              {{"c", "y"}, 32}}),
            scene.db.rows(scene.target));
}

TEST(ArrayFaults, cubeToSymbol) {
  expectEveryAllocationIsSurvived({{"ztbDenseArrayToSymbol"},
                                   [](Scene& scene) {
                                     return lib().c__ztbdensearraytosymbol(
                                         scene.db, scene.target, scene.domains.data(),
                                         scene.cells.data(), scene.sizes.data());
                                   },
                                   expectWholeCube});
}

TEST(ArrayFaults, slicesToSymbol) {
  expectEveryAllocationIsSurvived({{"ztbDenseArraySlicesToSymbol"},
                                   [](Scene& scene) {
                                     return lib().c__ztbdensearrayslicestosymbol(
                                         scene.db, scene.target, scene.domains.data(),
                                         scene.domains.data(), scene.cells.data(),
                                         scene.sizes.data());
                                   },
                                   expectWholeCube});
}

TEST(CopyFaults, symbolAcrossDatabases) {
  expectEveryAllocationIsSurvived(
      {{"ztbCopySymbol"},
       [](Scene& scene) { return lib().c__ztbcopysymbol(scene.db, scene.otherData, scene.data); },
       [](Scene& scene) {
         EXPECT_EQ((std::vector<Row>{{{longLabel, "y"}, 22}, {{"c", "x"}, 31}}),
                   scene.other.rows(scene.otherData));
       }});
}

TEST(CopyFaults, setWithTexts) {
  expectEveryAllocationIsSurvived(
      {{"ztbCopySymbol"},
       [](Scene& scene) { return lib().c__ztbcopysymbol(scene.db, scene.otherSet, scene.set); },
       [](Scene& scene) {
         EXPECT_EQ(longText, scene.other.elementText(scene.other.record(scene.otherSet, {"c"})));
       }});
}

TEST(CopyFaults, labelCounts) {
  expectEveryAllocationIsSurvived({{"ztbGetSymbolsUels"},
                                   [](Scene& scene) {
                                     return lib().c__ztbgetsymbolsuels(scene.db, &scene.data, 1,
                                                                       scene.counts.data(), 6);
                                   },
                                   [](Scene& scene) {
                                     EXPECT_EQ((Integers{0, 0, 1, 1, 1, 1}), scene.counts);
                                   }});
}

TEST(CopyFaults, database) {
  expectEveryAllocationIsSurvived(
      {{"ztbInitFromDB"},
       [](Scene& scene) { return lib().c__ztbinitfromdb(scene.empty, scene.db); },
       [](Scene& scene) {
         EXPECT_EQ((std::vector<Row>{{{longLabel, "y"}, 22}, {{"c", "x"}, 31}}),
                   scene.empty.rows(scene.empty.find("p")));
       },
       [](Scene&) {},
       &Scene::empty,
       false});
}

// Ends a violation that was found.
int ended(Scene& scene, int result, void* violation) {
  if (violation != nullptr) {
    lib().c__ztbfreedvhandle(scene.db, violation);
  }
  return result;
}

void expectOneViolation(Scene& scene) {
  lib().c__ztbdomaincheckdone(scene.db);
  EXPECT_EQ((std::vector<Violating>{{"p", {"a", "a"}, {0, 1}}}),
            violationsOf(scene.db, scene.data));
}

TEST(ViolationFaults, ofASymbol) {
  const auto find = [](Scene& scene) {
    void* violation = nullptr;
    const int result = lib().c__ztbgetfirstdvinsymbol(scene.db, scene.data, &violation);
    return ended(scene, result, violation);
  };
  const auto violate = [](Scene& scene) { scene.violate(); };
  expectEveryAllocationIsSurvived({{"ztbGetFirstDVInSymbol"}, find, expectOneViolation, violate});
  expectEveryAllocationIsSurvived({{"ztbGetFirstDVInSymbol"}, find, [](Scene& scene) {
                                     EXPECT_FALSE(violates(scene.db, scene.data));
                                   }});
  expectEveryAllocationIsSurvived(
      {{"ztbGetFirstDVInSymbol"},
       [](Scene& scene) { return lib().c__ztbchecksymboldv(scene.db, scene.data, &scene.number); },
       [](Scene& scene) { EXPECT_EQ(1, scene.number); },
       violate});
}

TEST(ViolationFaults, ofADatabase) {
  const auto violate = [](Scene& scene) { scene.violate(); };
  expectEveryAllocationIsSurvived({{"ztbGetFirstDBDV", "ztbGetFirstDVInSymbol"},
                                   [](Scene& scene) {
                                     void* violation = nullptr;
                                     const int result =
                                         lib().c__ztbgetfirstdbdv(scene.db, &violation);
                                     return ended(scene, result, violation);
                                   },
                                   expectOneViolation,
                                   violate});
  expectEveryAllocationIsSurvived(
      {{"ztbGetFirstDBDV", "ztbGetFirstDVInSymbol"},
       [](Scene& scene) { return lib().c__ztbcheckdbdv(scene.db, &scene.number); },
       [](Scene& scene) {
         EXPECT_EQ(1, scene.number);
         expectOneViolation(scene);
       },
       violate});
}

TEST(ViolationFaults, inALaterSymbol) {
  Scene scene;
  scene.violate();
  void* const later = scene.db.addOver("later", ZTB_PARAMETER, {scene.domains[0]});
  scene.db.put(later, {"x"}, 1);
  for (long number = 1;; ++number) {
    Violation violation = firstInDatabase(scene.db);
    int found = 77;
    int result = -1;
    bool happened = false;
    {
      const StdoutCapture unwanted;
      const FailingAllocation failing(number, Failures::one);
      result = lib().c__ztbgetfirstdvinnextsymbol(scene.db, violation, &found);
      happened = failing.happened();
    }
    if (!happened) {
      EXPECT_EQ(1, result);
      EXPECT_EQ((Violating{"later", {"x"}, {1}}), violation.described());
      EXPECT_LT(1, number);
      break;
    }
    EXPECT_EQ(0, result);
    EXPECT_EQ(0, found);
    EXPECT_EQ("Out of memory in ztbGetFirstDVInSymbol", scene.db.lastError());
    EXPECT_EQ((Violating{"p", {"a", "a"}, {0, 1}}), violation.described());
  }
  EXPECT_EQ(1, lib().c__ztbdomaincheckdone(scene.db));
}

TEST(ViolationFaults, recordHandle) {
  const auto violate = [](Scene& scene) { scene.violate(); };
  Scene scene;
  violate(scene);
  const Violation violation = firstIn(scene.db, scene.data);
  const long before = liveAllocations();
  void* record = &scene;
  {
    const StdoutCapture unwanted;
    const FailingAllocation failing(1, Failures::one);
    EXPECT_EQ(0, lib().c__ztbgetdvsymbolrecord(scene.db, violation, &record));
    EXPECT_TRUE(failing.happened());
  }
  EXPECT_EQ(nullptr, record);
  EXPECT_EQ("Out of memory in ztbGetDVSymbolRecord", scene.db.lastError());
  scene.db.markError();
  int status = 77;
  {
    const StdoutCapture unwanted;
    const FailingAllocation failing(1, Failures::one);
    EXPECT_EQ(nullptr, lib().c__ztbgetdvsymbolrecordpy(scene.db, violation, &status));
  }
  EXPECT_EQ(0, status);
  EXPECT_EQ("Out of memory in ztbGetDVSymbolRecord", scene.db.lastError());
  EXPECT_EQ(before, liveAllocations());
}

TEST(WriteRecordingFaults, needNoMemory) {
  Scene scene;
  int started = 0;
  int stopped = 0;
  {
    const FailingAllocation failing(1, Failures::allFromThere);
    started = lib().c__ztbstartwriterecording(scene.db);
    stopped = lib().c__ztbstopwriterecording(scene.db);
    EXPECT_FALSE(failing.happened());
  }
  EXPECT_EQ(1, started);
  EXPECT_EQ(1, stopped);
}

// The entries of a host without allocations: one symbol with one record and one text.
int findSymbol(const char* /*name*/, int* number, void* /*userMem*/) {
  *number = 1;
  return 0;
}
int dataReadRawStart(int /*number*/, int* count, void* /*userMem*/) {
  *count = 1;
  return 0;
}
int dataReadRaw(int* keys, double* values, int* /*unused*/, void* /*userMem*/) {
  keys[0] = 1;
  values[0] = 5;
  return 0;
}
int dataReadDone(void* /*userMem*/) {
  return 0;
}
int getElemText(int /*number*/, char* text, int /*size*/, void* /*userMem*/) {
  const std::string_view words = longText;
  text[0] = static_cast<char>(words.size());
  std::copy(words.begin(), words.end(), text + 1);
  return 0;
}

TEST(HostFaults, aReadThatRunsOutOfMemoryIsNotTriedAgain) {
  for (long number = 1;; ++number) {
    SCOPED_TRACE(number);
    const long before = liveAllocations();
    bool happened = false;
    {
      Scene scene;
      ASSERT_EQ(1, lib().c__ztbinitfromhvex(scene.db, findSymbol, dataReadRawStart, dataReadRaw,
                                            dataReadDone, getElemText, nullptr, nullptr));
      int result = -1;
      void* record = nullptr;
      {
        const StdoutCapture unwanted;
        const FailingAllocation failing(number, Failures::one);
        result = lib().c__ztbfindfirstrecord(scene.db, scene.set, &record);
        happened = failing.happened();
      }
      if (record != nullptr) {
        lib().c__ztbfreesymboliterator(scene.db, record);
      }
      if (happened) {
        EXPECT_EQ(0, result);
        EXPECT_EQ("Out of memory in ztbFindFirstRecord", scene.db.lastError());
        EXPECT_LE(scene.db.recordCount(scene.set), 1) << "it counts as read";
      } else {
        EXPECT_EQ(1, result);
        EXPECT_EQ(longText, scene.db.elementText(scene.db.first(scene.set)));
      }
    }
    EXPECT_EQ(before, liveAllocations());
    if (!happened) {
      EXPECT_LT(1, number);
      break;
    }
  }
}

}  // namespace
}  // namespace ztbtest
