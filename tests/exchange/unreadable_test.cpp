// A peer that cannot give all records of a symbol says so with -1 as record count or as first
// changed index: the symbol is then unreadable, and everything that uses its records fails with the
// same text, until they are given up.
#include <algorithm>
#include <array>
#include <functional>

#include "core/frame.h"
#include "core/operations.h"
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

class Unreadable : public ExchangeTest {
 protected:
  Unreadable() {
    makeDiet();
    load();
  }

  // The second record that is read next fails, as the peer's error 8.
  void breakCost() {
    peer_.fail("rxfDataReadRaw", 1, -1);
    peer_.raise("rxfDataReadRaw", 1, 8);
  }
  void loadBroken() {
    breakCost();
    ASSERT_FALSE(db_->ensureLoaded(at("cost")));
    ASSERT_STREQ(text, db_->lastError);
    log();
  }
  // Loading cost takes these calls, fails, and leaves no record.
  void expectUnreadable(const char* calls) {
    EXPECT_FALSE(db_->ensureLoaded(at("cost")));
    EXPECT_STREQ(text, db_->lastError);
    EXPECT_EQ(lines(calls), log());
    EXPECT_TRUE(at("cost").loaded);
    EXPECT_TRUE(at("cost").isEmpty());
  }
  // Writing fails at foods, which comes before cost.
  void expectFailedWrite(const char* fileName) {
    EXPECT_EQ(0, write(fileName));
    EXPECT_STREQ("Symbol foods could not be read from diet.rxf: Scripted error 8", db_->lastError);
  }
  ztbRec* handle() { return handleOf(db_.get()); }

  static constexpr const char* text =
      "Symbol cost could not be read from diet.rxf: Scripted error 8";
};

TEST_F(Unreadable, byACountOfMinusOneAsksThePeerForTheReasonAndEndsTheRead) {
  peer_.fail("rxfDataReadRawStart", 0, -1);
  peer_.raise("rxfDataReadRawStart", 0, 8);
  expectUnreadable(R"(
1 rxfFindSymbol "cost"
1 rxfDataReadRawStart 3
1 rxfGetLastError
1 rxfGetLastError
1 rxfErrorStr 8
1 rxfDataReadDone)");
}

TEST_F(Unreadable, byAFirstChangedIndexOfMinusOneKeepsNoRecord) {
  breakCost();
  expectUnreadable(R"(
1 rxfFindSymbol "cost"
1 rxfDataReadRawStart 3
1 rxfDataReadRaw
1 rxfDataReadRaw
1 rxfGetLastError
1 rxfGetLastError
1 rxfErrorStr 8
1 rxfDataReadDone)");
}

TEST_F(Unreadable, tellsTheErrorThatCameFirst) {
  peer_.raise("rxfFindSymbol", 0, 8);
  peer_.raise("rxfDataReadRawStart", 0, 4);
  peer_.fail("rxfDataReadRawStart", 0, -1);
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  EXPECT_STREQ(text, db_->lastError);
  EXPECT_EQ(0, peers::rxfGetLastError(db_->rxf)) << "the queue is empty";
}

TEST_F(Unreadable, byAPeerWhoseErrorsDoNotEndIsToldAllTheSame) {
  peer_.fail("rxfDataReadRawStart", 0, -1);
  peer_.failAlways("rxfGetLastError", 8);
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  EXPECT_STREQ(text, db_->lastError);
  EXPECT_EQ(ZTB_ERROR_DAMAGED_FILE, db_->errorKind);
}

TEST_F(Unreadable, withoutAReasonOfThePeerSaysSo) {
  peer_.fail("rxfDataReadRawStart", 0, -1);
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  EXPECT_STREQ(
      "Symbol cost could not be read from diet.rxf: the exchange-file library gives no reason",
      db_->lastError);
}

TEST_F(Unreadable, isNoSymbolForAnyOtherNumber) {
  peer_.fail("rxfDataReadRawStart", 0, -2);
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_TRUE(at("cost").isEmpty());
  peer_.fail("rxfDataReadRaw", 1, -2);
  EXPECT_TRUE(db_->ensureLoaded(at("foods")));
  EXPECT_EQ(1, at("foods").recordCount());
  log();
  peer_.raise("rxfDataReadRaw", 0, 8);
  EXPECT_TRUE(db_->ensureLoaded(at("amount"))) << "an error alone is not looked at";
  EXPECT_EQ(lines(R"(
1 rxfFindSymbol "amount"
1 rxfDataReadRawStart 4
1 rxfDataReadRaw
1 rxfDataReadDone)"),
            log());
}

TEST_F(Unreadable, failsEveryUseWithTheSameTextAndReadsNothingAgain) {
  loadBroken();
  void* cost = &at("cost");
  void* foods = &at("foods");
  void* record = nullptr;
  const char* keys[] = {"milk"};
  const char* anything[] = {" "};
  const int numbers[] = {2};
  const double values[] = {1, 0, 0, 0, 0};
  const int sizes[] = {2};
  std::array<double, 2> cube = {1, 2};
  void* domains[] = {foods};
  void* symbols[] = {cost};
  std::array<int, 10> counts{};
  int number = 0;
  const std::pair<const char*, std::function<int()>> uses[] = {
      {"find", [&] { return ztbFindRecord(handle(), cost, keys, &record); }},
      {"first", [&] { return ztbFindFirstRecord(handle(), cost, &record); }},
      {"last", [&] { return ztbFindLastRecord(handle(), cost, &record); }},
      {"slice", [&] { return ztbFindFirstRecordSlice(handle(), cost, anything, &record); }},
      {"last slice", [&] { return ztbFindLastRecordSlice(handle(), cost, anything, &record); }},
      {"add", [&] { return ztbAddRecord(handle(), cost, keys, &record); }},
      {"merge", [&] { return ztbMergeRecord(handle(), cost, keys, &record); }},
      {"merge by number",
       [&] { return ztbMergeRecordInt(handle(), cost, numbers, 1, 0, &record, 1, values); }},
      {"add raw", [&] { return ztbAddRecordRaw(handle(), cost, numbers, values, ""); }},
      {"count",
       [&] {
         return ztbSymbolInfo(handle(), cost, ZTB_SYMBOL_INFO_RECORD_COUNT, &number, nullptr,
                              nullptr);
       }},
      {"store",
       [&] {
         void* moved = cost;
         return ztbSelectRecordStorage(handle(), &moved, 1);
       }},
      {"dense array",
       [&] { return ztbDenseSymbolToDenseArray(handle(), cube.data(), sizes, cost, 0); }},
      {"sparse array",
       [&] {
         return ztbSparseSymbolToDenseArray(handle(), cube.data(), sizes, cost, domains, 0,
                                            &number);
       }},
      {"squeezed array",
       [&] {
         return ztbSparseSymbolToSqzdArray(handle(), cube.data(), sizes, cost, domains, domains, 0,
                                           &number);
       }},
      {"slices of an array",
       [&] {
         return ztbDenseArraySlicesToSymbol(handle(), cost, domains, domains, cube.data(), sizes);
       }},
      {"from an array",
       [&] { return ztbDenseArrayToSymbol(handle(), cost, domains, cube.data(), sizes); }},
      {"copied to", [&] { return ztbCopySymbol(handle(), cost, &at("plain")); }},
      {"copied from", [&] { return ztbCopySymbol(handle(), &at("plain"), cost); }},
      {"labels", [&] { return ztbGetSymbolsUels(handle(), symbols, 1, counts.data(), 10); }},
      {"violations", [&] { return ztbCheckDBDV(handle(), &number); }},
      {"write", [&] { return ztbWriteRXF(handle(), "out.rxf", 1); }},
      {"write over the source", [&] { return ztbWriteRXF(handle(), "diet.rxf", 1); }},
      {"close", [&] { return ztbCloseRXF(handle(), 1); }},
  };
  // A second parameter to copy from and to.
  add("plain", 1, dmap::typeParameter);
  ASSERT_EQ(1, ztbAddRecord(handle(), &at("plain"), keys, &record));
  ztbFreeSymbolIterator(handle(), record);
  EXPECT_TRUE(db_->ensureLoaded(at("foods")));
  const Lines before = dump("diet.rxf");
  log();
  for (const auto& [name, use] : uses) {
    std::strcpy(db_->lastError, "another text");
    EXPECT_EQ(0, use()) << name;
    EXPECT_STREQ(text, db_->lastError) << name;
    EXPECT_TRUE(at("cost").isEmpty()) << name;
  }
  EXPECT_EQ(1, at("plain").recordCount()) << "no copy emptied it";
  EXPECT_EQ(Lines(), dump("out.rxf"));
  EXPECT_EQ(before, dump("diet.rxf"));
  EXPECT_TRUE(std::ranges::none_of(log(), [](const std::string& line) {
    return line.find("rxfDataRead") != std::string::npos &&
           line.find("rxfDataReadRawStart 3") != std::string::npos;
  }));
}

TEST_F(Unreadable, failsACopyOfTheDatabase) {
  loadBroken();
  ASSERT_EQ(1, db_->CloseRXF(false));
  ZTB copy(scripted::Client::directory().c_str());
  std::strcpy(db_->lastError, "");
  EXPECT_EQ(0, copy.InitFromDB(*db_));
  EXPECT_STREQ(text, db_->lastError);
  EXPECT_STREQ(text, copy.lastError);
}

TEST_F(Unreadable, failsTheFirstCopyOfTheDatabase) {
  ASSERT_TRUE(db_->ensureLoaded(at("foods")));
  breakCost();
  ZTB copy(scripted::Client::directory().c_str());
  EXPECT_EQ(0, copy.InitFromDB(*db_));
  EXPECT_STREQ(text, copy.lastError);
}

TEST_F(Unreadable, isNoMoreWhenItsRecordsAreGivenUp) {
  loadBroken();
  EXPECT_EQ(1, ztbClearSymbol(handle(), &at("cost")));
  EXPECT_TRUE(db_->ensureLoaded(at("cost")));
  EXPECT_TRUE(at("cost").isEmpty());
  EXPECT_EQ(Lines(), log()) << "it counts as loaded";
  const char* keys[] = {"iron"};
  void* record = nullptr;
  EXPECT_EQ(1, ztbAddRecord(handle(), &at("cost"), keys, &record));
  ztbFreeSymbolIterator(handle(), record);
  EXPECT_EQ(1, write());
  const Lines written = dump();
  EXPECT_NE(written.end(), std::ranges::find(written, "record [3] [0]"));
  EXPECT_EQ(written.end(), std::ranges::find(written, "record [1] [0.25]"));
}

TEST_F(Unreadable, onEveryStoreTakesRecordsAgainWhenItWasCleared) {
  for (const int store : {0, 1, 2}) {
    ZTB other(scripted::Client::directory().c_str());
    ASSERT_EQ(1, ztbSelectRecordStorage(handleOf(&other), nullptr, store));
    ASSERT_EQ(1, other.InitFromRXF("diet.rxf"));
    AbstractZTBSymbol& cost = *other.symbols.atName("cost");
    breakCost();
    EXPECT_FALSE(other.ensureLoaded(cost));
    EXPECT_TRUE(cost.isEmpty());
    EXPECT_EQ(1, ztbClearSymbol(handleOf(&other), &cost));
    const int key[] = {1};
    const double values[] = {7, 0, 0, 0, 0};
    EXPECT_EQ(1, ztbMergeRecordInt(handleOf(&other), &cost, key, 1, 0, nullptr, 1, values));
    EXPECT_EQ((Records{{{1}, {7}}}), recordsOf(cost)) << store;
  }
}

// Symbols of a file count from 1 in their numbers and from 0 in the table, so the symbol behind the
// next one is meant.
TEST_F(Unreadable, failsTheStepToItsViolations) {
  peer_.file("over.rxf");
  labels({"in", "out"});
  symbol("s", 1, dmap::typeSet);
  record({1}, {0});
  for (const char* name : {"p", "q", "r"}) {
    symbolOver(name, dmap::typeParameter, {"s"});
    record({2}, {1});
  }
  ZTB other(scripted::Client::directory().c_str());
  ASSERT_EQ(1, other.InitFromRXF("over.rxf"));
  void* violation = nullptr;
  ASSERT_EQ(1, ztbGetFirstDBDV(handleOf(&other), &violation));
  ASSERT_NE(nullptr, violation);
  peer_.fail("rxfDataReadRawStart", 0, -1);
  peer_.raise("rxfDataReadRawStart", 0, 8);
  int found = 0;
  for (int times = 0; times < 2; ++times) {
    std::strcpy(other.lastError, "");
    EXPECT_EQ(0, ztbGetFirstDVInNextSymbol(handleOf(&other), violation, &found));
    EXPECT_STREQ("Symbol r could not be read from over.rxf: Scripted error 8", other.lastError);
  }
  EXPECT_EQ(1, ztbFreeDVHandle(handleOf(&other), violation));
  EXPECT_EQ(1, ztbDomainCheckDone(handleOf(&other)));
}

TEST_F(Unreadable, isNoMoreWhenAHostEngineGivesTheRecords) {
  loadBroken();
  ASSERT_EQ(1, db_->CloseRXF(false));
  const auto find = [](const char* name, int* number, void*) {
    *number = 1;
    return std::strcmp(name + 1, "cost") == 0 ? 0 : 1;  // behind a length byte
  };
  const auto start = [](int, int* count, void*) {
    *count = 1;
    return 0;
  };
  const auto read = [](int* keys, double* values, int* firstChanged, void*) {
    keys[0] = 3;
    values[0] = 7;
    *firstChanged = 1;
    return 0;
  };
  const auto done = [](void*) { return 0; };
  const auto textOf = [](int, char*, int, void*) { return 1; };
  ASSERT_EQ(1, ztbInitFromHVEX(handle(), find, start, read, done, textOf, nullptr, nullptr))
      << db_->lastError;
  EXPECT_TRUE(db_->ensureLoaded(at("cost"))) << db_->lastError;
  EXPECT_EQ((Records{{{3}, {7}}}), recordsOf(at("cost")));
}

TEST_F(Unreadable, aCopyFromFileToFileFailsTheWriteAndCanBeReadLater) {
  breakCost();  // but foods comes first, with two records
  expectFailedWrite("out.rxf");
  EXPECT_EQ(Lines(), dump("out.rxf"));
  EXPECT_EQ(Lines(), log("rxfClose"));
  EXPECT_FALSE(at("foods").loaded);
  EXPECT_TRUE(db_->ensureLoaded(at("foods")));
  EXPECT_EQ(2, at("foods").recordCount());
  EXPECT_EQ(1, write());
  EXPECT_EQ(dump("diet.rxf"), dump("out.rxf"));
}

TEST_F(Unreadable, aWriteOverTheSourceLeavesIt) {
  breakCost();
  const Lines before = dump("diet.rxf");
  expectFailedWrite("diet.rxf");
  EXPECT_EQ(before, dump("diet.rxf"));
  EXPECT_EQ(Source::rxf, db_->initFrom);
  expectFailedWrite("diet.rxf");
}

TEST_F(Unreadable, aLongPathMakesRoomForTheReason) {
  const std::string reason(120, 'r');
  const std::string path = std::string(200, '/') + "diet.rxf";
  db_->rxfFileName = path;
  peer_.errorText(8, reason.c_str());
  breakCost();
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  // 255 chars: 35 of the sentence with the name, 2 before the reason, 120 of the reason.
  const std::string shown = "..." + path.substr(path.size() - (255 - 35 - 2 - 120 - 3));
  EXPECT_EQ("Symbol cost could not be read from " + shown + ": " + reason,
            std::string(db_->lastError));
  EXPECT_EQ(255U, std::strlen(db_->lastError));
}

TEST_F(Unreadable, anEvenLongerReasonLeavesTheEndOfThePath) {
  peer_.errorText(8, std::string(250, 'r').c_str());
  std::string letters;
  for (int i = 0; i < 8; ++i) letters += "\xC3\xA9";
  db_->rxfFileName = std::string(200, '/') + letters + "xx.rxf";
  breakCost();
  EXPECT_FALSE(db_->ensureLoaded(at("cost")));
  const std::string message = db_->lastError;
  EXPECT_EQ(255U, message.size());
  // 24 bytes with the dots, less the half of a letter.
  EXPECT_EQ(0U, message.find("Symbol cost could not be read from ..." + letters.substr(2) +
                             "xx.rxf: rrr"))
      << message;
}

TEST_F(Unreadable, numbersOfTextsThatTheDatabaseLacksAreWrittenAsNone) {
  AbstractZTBSymbol& foods = at("foods");
  EXPECT_TRUE(db_->ensureLoaded(foods));
  *foods.firstRecord()->valuesToWrite() = 3;  // the pool has 1 and 2
  EXPECT_EQ(1, write());
  const Lines written = dump();
  EXPECT_NE(written.end(), std::ranges::find(written, "record [1] [0]"));
  EXPECT_NE(written.end(), std::ranges::find(written, "record [2] [2]"));
  EXPECT_EQ(3, *foods.firstRecord()->values()) << "in memory it stays";
}

}  // namespace
}  // namespace ztb::exchangetest
