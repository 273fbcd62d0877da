// A large symbol read with a thread that decodes ahead: the same records and the same failures at
// the same place as without, whatever fails, and no thread behind the end of a read.

#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "providers/rxf/rxf_object.h"
#include "tests/rxf/failing_new.h"
#include "tests/rxf/helped_calls.h"
#include "tests/rxf/large_symbol.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

using rxffile::RecordStream;
using rxffile::RxfObject;

constexpr int kRoom = 1000;

// What came of reading p: how many right records, in order, and the error behind them.
struct Outcome {
  int records = 0;
  bool right = true;
  int last = 0;  // of the last call
  int errors = 0;
  std::string text;

  bool operator==(const Outcome&) const = default;
};

long threadsOfProcess() {
  return std::distance(std::filesystem::directory_iterator("/proc/self/task"),
                       std::filesystem::directory_iterator());
}

class ReadAhead : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    folder_ = std::make_unique<TempFolder>();
    writeLargeSymbol(folder_->file("large"));
  }
  static void TearDownTestSuite() { folder_.reset(); }

  static bool begin(RxfObject& object, int symbol = 1) {
    bool started = false;
    try {
      object.startReading(symbol, started, RecordStream::Verify::onTheWay);
    } catch (...) {
      object.takeException();
    }
    return started;
  }
  // Reads on, `most` records or to the end.
  static void readOn(RxfObject& object, Outcome& outcome, int most = kLargeRecords + 1) {
    std::array<int, 2 * kRoom> keys{};
    std::array<double, kRoom> values{};
    while (outcome.records < most &&
           (outcome.last = object.readBlock(keys.data(), values.data(), kRoom)) > 0) {
      for (std::size_t i = 0; i < static_cast<std::size_t>(outcome.last); ++i, ++outcome.records) {
        outcome.right = outcome.right && keys[2 * i] == largeRow(outcome.records) &&
                        keys[2 * i + 1] == largeColumn(outcome.records) &&
                        values[i] == largeValue(outcome.records);
      }
    }
  }
  static void takeErrors(RxfObject& object, Outcome& outcome) {
    outcome.errors = object.errorCount();
    std::array<char, 256> text{};
    object.errorText(object.takeLastError(), text.data());
    if (outcome.errors > 0) outcome.text = text.data();
  }
  static Outcome readAll(HelpedCalls& calls, const std::string& path) {
    Outcome outcome;
    RxfObject object(calls);
    if (object.openRead(path.c_str()) == 0 && begin(object)) {
      readOn(object, outcome);
      object.finishReading();
      EXPECT_EQ(threadsOfProcess(), before_);
    }
    takeErrors(object, outcome);
    return outcome;
  }
  static Outcome whole() { return {kLargeRecords, true, 0, 0, ""}; }

  static inline std::unique_ptr<TempFolder> folder_;
  static inline long before_ = threadsOfProcess();

  std::string path_ = folder_->file("large");
};

TEST_F(ReadAhead, GivesWhatIsGivenWithout) {
  HelpedCalls alone(1);
  EXPECT_EQ(readAll(alone, path_), whole());
  EXPECT_EQ(alone.threads(), 0);
  EXPECT_EQ(alone.helped(), 0);

  HelpedCalls helped(2);
  EXPECT_EQ(readAll(helped, path_), whole());
  EXPECT_EQ(helped.threads(), 1);
  // Head and body of every block but the first, and after each whether the file is as it was.
  EXPECT_EQ(helped.helped(), 3 * (kLargeBlocks - 1));
}

// From the head of the first block, which lies 40 bytes before its body, to behind the last one.
TEST_F(ReadAhead, TellsTheSystemOnceWhichBytesASymbolHas) {
  HelpedCalls calls(1);
  const std::string path = folder_->file("large");
  const std::string bytes = readFile(path);
  RxfObject object(calls);
  ASSERT_EQ(object.openRead(path.c_str()), 0);
  ASSERT_TRUE(begin(object));
  EXPECT_EQ(calls.advices(), 1);
  EXPECT_EQ(calls.advisedOffset(), static_cast<off_t>(bodyOfBlock(bytes, 1) - 40));
  EXPECT_EQ(calls.advisedLength(),
            static_cast<off_t>(bodyOfBlock(bytes, kLargeBlocks + 1) - bodyOfBlock(bytes, 1)));
  Outcome outcome;
  readOn(object, outcome);
  EXPECT_EQ(outcome.records, kLargeRecords);
  object.finishReading();
  // One block is read at once.
  ASSERT_TRUE(begin(object, 2));
  EXPECT_EQ(calls.advices(), 1);
}

TEST_F(ReadAhead, LeavesWhoWantsSingleRecordsAlone) {
  HelpedCalls calls(2);
  RxfObject object(calls);
  ASSERT_EQ(object.openRead(path_.c_str()), 0);
  bool started = false;
  ASSERT_EQ(object.startReading(1, started), kLargeRecords);
  std::array<int, 2> keys{};
  double value = 0;
  int firstChanged = 0;
  for (int i = 0; i < kLargeRecords; ++i) {
    ASSERT_TRUE(object.read(keys.data(), &value, &firstChanged));
    ASSERT_EQ(value, largeValue(i));
  }
  EXPECT_EQ(calls.threads(), 0);
}

// A read by blocks can be gone on with record by record.
TEST_F(ReadAhead, TellsWhichPositionOfARecordIsAnother) {
  HelpedCalls calls(2);
  RxfObject object(calls);
  ASSERT_EQ(object.openRead(path_.c_str()), 0);
  ASSERT_TRUE(begin(object));
  std::array<int, 2> keys{};
  double value = 0;
  int firstChanged = 0;
  for (int i = 0; i < kLargeRecords; ++i) {
    ASSERT_TRUE(object.read(keys.data(), &value, &firstChanged));
    ASSERT_EQ(keys[1], largeColumn(i));
    ASSERT_EQ(firstChanged, i % kLargeSide == 0 ? 1 : 2);
  }
  EXPECT_FALSE(object.read(keys.data(), &value, &firstChanged));
  EXPECT_EQ(calls.threads(), 1);
}

TEST_F(ReadAhead, TellsDamageBehindTheSameRecordInTheSameWords) {
  const std::string bytes = readFile(path_);
  for (int block = 1; block <= kLargeBlocks; ++block) {
    std::string damaged = bytes;
    char& changed = damaged[bodyOfBlock(bytes, block) + 11];
    changed = static_cast<char>(changed + 1);
    writeFile(folder_->file("damaged"), damaged);
    HelpedCalls alone(1);
    HelpedCalls helped(2);
    const Outcome told = readAll(helped, folder_->file("damaged"));
    EXPECT_EQ(told, readAll(alone, folder_->file("damaged")));
    EXPECT_EQ(told.records, (block - 1) * 65536);
    EXPECT_TRUE(told.right);
    EXPECT_EQ(told.last, -1);
    EXPECT_EQ(told.errors, 1);
    EXPECT_EQ(told.text.find("File is damaged: block " + std::to_string(block) + " of " +
                             std::to_string(kLargeBlocks) + " of symbol p: checksum is "),
              0U)
        << told.text;
    EXPECT_EQ(helped.threads(), block > 1 ? 1 : 0);
  }
}

TEST_F(ReadAhead, TellsACallThatFailsBehindTheSameRecordInTheSameWords) {
  for (void (HelpedCalls::*fail)(int) : {&HelpedCalls::failRead, &HelpedCalls::failStatus}) {
    for (int at = 1;; ++at) {
      SCOPED_TRACE(at);
      HelpedCalls alone(1);
      (alone.*fail)(at);
      HelpedCalls helped(2);
      (helped.*fail)(at);
      const Outcome told = readAll(helped, path_);
      EXPECT_EQ(told, readAll(alone, path_));
      EXPECT_EQ(helped.failed(), alone.failed());
      EXPECT_EQ(told.errors, helped.failed() ? 1 : 0);
      if (!helped.failed()) {
        EXPECT_EQ(told, whole());
        EXPECT_GT(at, kLargeBlocks);
        break;
      }
    }
  }
}

TEST_F(ReadAhead, GoesOnAloneWhereNoThreadCanBeHad) {
  HelpedCalls calls(2);
  calls.refuseThreads();
  EXPECT_EQ(readAll(calls, path_), whole());
  EXPECT_EQ(calls.threads(), 1);
  EXPECT_EQ(calls.helped(), 0);
}

// Where the thread has no memory its caller reads on, and has what the thread had.
TEST_F(ReadAhead, GivesAllRecordsOrTellsThatMemoryRanOut) {
  std::array<int, 3> told{};
  std::array<int, 3> survived{};
  for (const unsigned processors : {1U, 2U}) {
    for (int at = 1;; ++at) {
      SCOPED_TRACE(at);
      HelpedCalls calls(processors);
      RxfObject object(calls);
      ASSERT_EQ(object.openRead(path_.c_str()), 0);
      Outcome outcome;
      bool failed = false;
      {
        const FailingNew failing(at);
        const FailingNew::Armed armed;
        if (begin(object)) readOn(object, outcome);
        object.finishReading();
        failed = FailingNew::failed();
      }
      EXPECT_TRUE(outcome.right);
      takeErrors(object, outcome);
      if (outcome.errors == 0) {
        EXPECT_EQ(outcome, whole());
        survived[processors] += failed ? 1 : 0;
      } else {
        EXPECT_TRUE(failed);
        EXPECT_EQ(outcome.text, "Out of memory");
        ++told[processors];
      }
      if (!failed) break;
      // The next read has all.
      Outcome again;
      ASSERT_TRUE(begin(object));
      readOn(object, again);
      object.finishReading();
      EXPECT_EQ(again, whole());
    }
  }
  EXPECT_EQ(survived[1], 0);
  EXPECT_GT(survived[2], 3);
  EXPECT_LE(told[2], told[1]) << "what the thread lacks is no failure";
}

TEST_F(ReadAhead, EndsItsThreadWhereverTheReadEnds) {
  // In the middle of the first block, of the second, and of the last.
  for (const int most : {100, 70'000, kLargeRecords - 10}) {
    for (const char* way : {"end", "another", "same", "close", "free"}) {
      SCOPED_TRACE(std::string(way) + " behind " + std::to_string(most));
      HelpedCalls calls(2);
      auto object = std::make_unique<RxfObject>(calls);
      ASSERT_EQ(object->openRead(path_.c_str()), 0);
      ASSERT_TRUE(begin(*object));
      Outcome outcome;
      readOn(*object, outcome, most);
      EXPECT_TRUE(outcome.right);
      EXPECT_EQ(calls.threads(), 1);
      const std::string_view how = way;
      if (how == "end") {
        EXPECT_TRUE(object->finishReading());
      } else if (how == "another") {
        ASSERT_TRUE(begin(*object, 2));
        double value = 0;
        int keys = 0;
        EXPECT_EQ(object->readBlock(&keys, &value, 1), 1);
        EXPECT_EQ(value, 42);
      } else if (how == "same") {
        ASSERT_TRUE(begin(*object));
        Outcome again;
        readOn(*object, again);
        EXPECT_EQ(again, whole());
      } else if (how == "close") {
        EXPECT_EQ(object->close(), 0);
      } else {
        object.reset();
      }
      EXPECT_EQ(threadsOfProcess(), before_);
    }
  }
}

// The end of the records ends the thread, too.
TEST_F(ReadAhead, HasNoThreadBehindTheLastBlock) {
  HelpedCalls calls(2);
  RxfObject object(calls);
  ASSERT_EQ(object.openRead(path_.c_str()), 0);
  ASSERT_TRUE(begin(object));
  Outcome outcome;
  readOn(object, outcome, kLargeRecords - 10);
  EXPECT_EQ(threadsOfProcess(), before_);
  readOn(object, outcome);
  EXPECT_EQ(outcome, whole());
}

// The thread is the parent's alone: the child reads on without, and can end its copy.
TEST_F(ReadAhead, GoesOnInBothProcessesBehindAFork) {
  HelpedCalls calls(2);
  auto object = std::make_unique<RxfObject>(calls);
  ASSERT_EQ(object->openRead(path_.c_str()), 0);
  ASSERT_TRUE(begin(*object));
  Outcome outcome;
  readOn(*object, outcome, 70'000);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(120);
    readOn(*object, outcome);
    takeErrors(*object, outcome);
    object.reset();
    _exit(outcome == whole() ? 0 : 1);
  }
  readOn(*object, outcome);
  takeErrors(*object, outcome);
  EXPECT_EQ(outcome, whole());
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

TEST_F(ReadAhead, OfACopyThatAChildFreesNothingIsWaitedFor) {
  HelpedCalls calls(2);
  auto object = std::make_unique<RxfObject>(calls);
  ASSERT_EQ(object->openRead(path_.c_str()), 0);
  ASSERT_TRUE(begin(*object));
  Outcome outcome;
  readOn(*object, outcome, 100);
  const pid_t child = fork();
  ASSERT_GE(child, 0);
  if (child == 0) {
    alarm(120);
    object.reset();
    _exit(0);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
}

TEST(Processors, AreThoseThatTheProcessMayUse) {
  unsetenv("ZTB_RXF_THREADS");
  // The setting is that of a thread, and ends with it.
  std::thread([] {
    cpu_set_t one;
    CPU_ZERO(&one);
    CPU_SET(sched_getcpu(), &one);
    ASSERT_EQ(sched_setaffinity(0, sizeof one, &one), 0);
    EXPECT_EQ(rxffile::operatingSystem().processors(), 1U);
  }).join();
}

TEST(Processors, AreAsManyAsIsAskedFor) {
  const std::vector<std::pair<const char*, unsigned>> cases = {
      {"1", 1}, {"2", 2}, {"64", 64}, {"0", 0}, {"", 0}, {"2x", 0}, {"-1", 0}, {"many", 0}};
  for (const auto& [text, number] : cases) {
    setenv("ZTB_RXF_THREADS", text, 1);
    EXPECT_EQ(rxffile::threadsAsked(), number) << text;
    if (number > 0) {
      EXPECT_EQ(rxffile::operatingSystem().processors(), number);
    } else {
      EXPECT_GT(rxffile::operatingSystem().processors(), 0U);
    }
  }
  unsetenv("ZTB_RXF_THREADS");
  EXPECT_EQ(rxffile::threadsAsked(), 0U);
}

}  // namespace
}  // namespace rxftest
