// Calls that make no sense: places that are not there are left out, and what is asked at the wrong
// time is an error of the documented number, and ends nothing.

#include <gtest/gtest.h>

#include <array>
#include <string>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

constexpr int kCallOutOfOrder = 25;

template <typename... Arguments>
int call(const char* name, Arguments... arguments) {
  return exported<int(Arguments...)>(name)(arguments...);
}

class Misuse : public testing::Test {
 protected:
  void SetUp() override {
    PeerFile writer;
    ASSERT_EQ(writer.openWrite(path_), 0);
    writeContent(writer,
                 {{"a"}, {"first"}, {{"p", kParameter, 1, 0, "", {record({1}, {2})}, 0, {}, ""}}});
    ASSERT_EQ(writer.close(), 0);
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  PeerFile file_;
};

TEST_F(Misuse, ofAPlaceThatIsNotThereLeavesItOut) {
  int* const noPlace = nullptr;
  char* const noText = nullptr;
  double* const noValues = nullptr;
  void* const rxf = file_.handle();
  EXPECT_EQ((call<void*, const char*, int*>("C__rxfOpenRead", rxf, path_.c_str(), noPlace)), 1);
  EXPECT_EQ(call("C__rxfErrorStr", rxf, 1, noText), 0);
  EXPECT_EQ(call("C__rxfGetSpecialValues", rxf, noValues), 0);
  EXPECT_EQ(call("C__rxfSystemInfo", rxf, noPlace, noPlace), 1);
  EXPECT_EQ(call("C__rxfSymbolInfo", rxf, 1, noText, noPlace, noPlace), 1);
  EXPECT_EQ(call("C__rxfSymbolInfoX", rxf, 1, noPlace, noPlace, noText), 1);
  std::array<char*, 20> names{};
  EXPECT_EQ((call<void*, int, char**>("C__rxfSymbolGetDomainX", rxf, 1, nullptr)),
            file_.symbolDomain(1, names.data()));
  EXPECT_EQ((call<void*, const char*, int*>("C__rxfFindSymbol", rxf, "p", noPlace)), 1);
  EXPECT_EQ(call("C__rxfGetElemText", rxf, 1, noText, noPlace), 1);
  EXPECT_EQ(call("C__rxfUMUelInfo", rxf, noPlace, noPlace), 1);
  EXPECT_EQ(call("C__rxfUMUelGet", rxf, 1, noText, noPlace), 1);
  EXPECT_EQ(call("C__rxfDataReadRawStart", rxf, 1, noPlace), 1);
  std::array<int, 1> keys{};
  std::array<double, 5> values{};
  int changed = 0;
  EXPECT_EQ(call("C__rxfDataReadRaw", rxf, noPlace, values.data(), &changed), 0);
  EXPECT_EQ(call("C__rxfDataReadRaw", rxf, keys.data(), noValues, &changed), 0);
  EXPECT_EQ(call("C__rxfDataReadRaw", rxf, keys.data(), values.data(), noPlace), 0);
  EXPECT_TRUE(file_.read(keys.data(), values.data(), &changed)) << "the record is still to come";
  EXPECT_EQ(values[0], 2);
  EXPECT_EQ(file_.errorCount(), 0);
}

TEST_F(Misuse, ofAWriterWithoutPlacesWritesAllTheSame) {
  const std::string path = folder_.file("y.rxf");
  void* const rxf = file_.handle();
  EXPECT_EQ((call<void*, const char*, const char*, int*>("C__rxfOpenWrite", rxf, path.c_str(), "",
                                                         nullptr)),
            1);
  file_.startLabels();
  file_.finishLabels();
  EXPECT_EQ((call<void*, const char*, int*>("C__rxfAddSetText", rxf, "a text", nullptr)), 1);
  EXPECT_EQ(file_.close(), 0);
  PeerFile reader;
  ASSERT_EQ(reader.openRead(path), 0);
  std::array<char, 256> text{};
  EXPECT_TRUE(reader.elementText(1, text.data()));
  EXPECT_STREQ(text.data(), "a text");
}

TEST_F(Misuse, ofAnObjectThatIsNullGivesZero) {
  void* const none = nullptr;
  for (const char* name : {"C__rxfClose", "C__rxfErrorCount", "C__rxfGetLastError",
                           "C__rxfDataReadDone", "C__rxfDataWriteDone", "C__rxfUELRegisterDone"}) {
    EXPECT_EQ(call(name, none), 0) << name;
  }
  exported<void(void**)>("XCreate")(nullptr);
  exported<void(void**)>("XFree")(nullptr);
}

TEST_F(Misuse, ofAnObjectWithoutAFileIsACallOutOfOrder) {
  std::array<char, 256> text{};
  std::array<int, 20> keys{};
  std::array<double, 5> values{};
  std::array<char*, 20> names{};
  std::array<const char*, 20> given{};
  int place = 0;
  bool started = false;
  const auto expectOutOfOrder = [&](bool result, const char* what) {
    EXPECT_FALSE(result) << what;
    EXPECT_EQ(file_.takeLastError(), kCallOutOfOrder) << what;
    EXPECT_EQ(file_.errorText(kCallOutOfOrder), std::string("Call out of order: ") + what);
    EXPECT_EQ(file_.takeLastError(), 0) << what;
  };
  expectOutOfOrder(file_.symbolInfo(1, text.data(), &place, &place), "asking for a symbol");
  expectOutOfOrder(file_.symbolInfoX(1, &place, &place, text.data()), "asking for a symbol");
  expectOutOfOrder(file_.symbolDomain(1, names.data()) != 0, "asking for a domain");
  expectOutOfOrder(file_.elementText(1, text.data()), "asking for a text");
  expectOutOfOrder(file_.label(1, text.data()), "asking for a label");
  expectOutOfOrder(file_.startReading(1, started) != -1 || started, "start of reading");
  expectOutOfOrder(file_.read(keys.data(), values.data(), &place), "reading a record");
  expectOutOfOrder(file_.finishReading(), "end of reading");
  expectOutOfOrder(file_.startLabels(), "start of labels");
  expectOutOfOrder(file_.addLabel("a"), "a label");
  expectOutOfOrder(file_.finishLabels(), "end of labels");
  expectOutOfOrder(file_.addAlias("j", "i"), "an alias");
  expectOutOfOrder(file_.addText("a") != 0, "a text");
  expectOutOfOrder(file_.startWriting("p", "", 0, kParameter, 0), "start of a symbol");
  expectOutOfOrder(file_.write(keys.data(), values.data()), "writing a record");
  expectOutOfOrder(file_.finishWriting(), "end of a symbol");
  expectOutOfOrder(file_.setDomain(given.data()), "a domain");
  expectOutOfOrder(file_.setDomainNames(1, given.data()), "domain names");
}

TEST_F(Misuse, ofASecondFileInOneObjectIsRefused) {
  ASSERT_EQ(file_.openRead(path_), 0);
  EXPECT_EQ(file_.openRead(path_), kCallOutOfOrder);
  EXPECT_EQ(file_.openWrite(folder_.file("y.rxf")), kCallOutOfOrder);
  EXPECT_EQ(file_.labelCount(), 1) << "the first one is still open";
}

TEST_F(Misuse, ofASymbolThatThereIsNotNamesIt) {
  ASSERT_EQ(file_.openRead(path_), 0);
  std::array<char, 256> text{};
  std::array<char*, 20> names{};
  int place = 0;
  for (const int number : {0, 2, -1}) {
    EXPECT_EQ(number == 0, file_.symbolInfo(number, text.data(), &place, &place)) << number;
    EXPECT_EQ(file_.symbolDomain(number, names.data()), 0) << number;
  }
  EXPECT_FALSE(file_.label(2, text.data()));
  EXPECT_FALSE(file_.elementText(2, text.data()));
}

}  // namespace
}  // namespace rxftest
