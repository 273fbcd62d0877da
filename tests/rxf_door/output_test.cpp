// Files that are written through ztb/rxf.hpp, read back by the peer operations.
#include <gtest/gtest.h>

#include <ztb/rxf.hpp>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

class RxfOutputTest : public testing::Test {
 protected:
  static ztbRxfSymbolInfo info(const char* name, int type, int dimension, int domainKind = 0) {
    ztbRxfSymbolInfo made{};
    made.name = name;
    made.text = "";
    made.type = type;
    made.dimension = dimension;
    made.domainKind = domainKind;
    return made;
  }

  std::string publishingText(ztb::RxfOutput& output) const {
    try {
      output.publish();
    } catch (const ztb::Error& error) {
      return error.what();
    }
    return "";
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

TEST_F(RxfOutputTest, WritesWhatThePeerReads) {
  Content content;
  content.labels = {"a", "b", "c"};
  content.texts = {"first", "second"};
  Symbol s{"s", kSet, 1, 7, "a set", {}, 0, {}, ""};
  s.records = {record({1}, {2}), record({2}, {0}), record({3}, {1})};
  Symbol t{"t", kAlias, 1, 1, "", {}, 0, {}, "s"};
  Symbol p{"p", kParameter, 2, -1, "values", {}, 3, {"s", "*"}, ""};
  p.records = {record({1, 2}, {1.5}), record({2, 1}, {1e300})};
  Symbol e{"e", kEquation, 1, 55, "", {record({2}, {1, 2, 3, 4, 5})}, 2, {"later"}, ""};
  Symbol pi{"pi", kParameter, 0, 0, "", {record({}, {3.25})}, 0, {}, ""};
  content.symbols = {s, t, p, e, pi};
  {
    ztb::RxfOutput output(path_, "test");
    for (const std::string& label : content.labels) EXPECT_TRUE(output.addLabel(label));
    for (const Symbol& symbol : content.symbols) {
      ztbRxfSymbolInfo made = info(symbol.name.c_str(), symbol.type, symbol.dim, symbol.domainKind);
      made.text = symbol.text.c_str();
      made.userInfo = symbol.type == kEquation ? symbol.userInfo - 53 : symbol.userInfo;
      EXPECT_TRUE(output.addSymbol(
          made, symbol.type == kAlias ? std::vector<std::string>{symbol.aliasOf} : symbol.domain))
          << symbol.name;
      for (const Record& one : symbol.records) {
        std::vector<const int*> keys;
        for (const int& key : one.keys) keys.push_back(&key);
        keys.push_back(nullptr);
        std::vector<double> values;
        for (const std::uint64_t bits : one.bits) values.push_back(std::bit_cast<double>(bits));
        std::vector<const double*> slots;
        for (const double& value : values) slots.push_back(&value);
        EXPECT_TRUE(output.addRecords(1, keys, slots)) << symbol.name;
      }
    }
    EXPECT_EQ(output.addText("first"), 1);
    EXPECT_EQ(output.addText("second"), 2);
    output.publish();
  }
  PeerFile peer;
  ASSERT_EQ(peer.openRead(path_), 0);
  EXPECT_EQ(readContent(peer), content);
  EXPECT_EQ(ztb::RxfFile(path_).producer(), "test");
}

TEST_F(RxfOutputTest, PublishesNothingThatWasRefused) {
  writeFile(path_, "old");
  ztb::RxfOutput output(path_);
  output.addLabel("a");
  output.addLabel("b");
  ASSERT_TRUE(output.addSymbol(info("p", kParameter, 1), {"*"}));
  const int second = 2;
  const int first = 1;
  const double value = 1;
  EXPECT_TRUE(output.addRecords(1, {&second}, {&value}));
  EXPECT_FALSE(output.addRecords(1, {&first}, {&value}));
  EXPECT_EQ(publishingText(output),
            "1 RXF Error(s). First Error: Keys not in ascending order: p, key 1 at position 1, "
            "behind key 2 of record 1");
  EXPECT_EQ(readFile(path_), "old");
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"a.rxf"});
}

// What makes no sense is refused like any other content, and no file without it is published.
TEST_F(RxfOutputTest, PublishesNothingAfterACallThatMakesNoSense) {
  const int key = 1;
  const double value = 1;
  const auto text = [&](auto fill) {
    writeFile(path_, "old");
    ztb::RxfOutput output(path_);
    output.addLabel("a");
    EXPECT_FALSE(fill(output));
    const std::string told = publishingText(output);
    EXPECT_EQ(readFile(path_), "old");
    return told;
  };
  const std::string one = "1 RXF Error(s). First Error: ";
  ztbRxfOutput* made = nullptr;
  ASSERT_EQ(ztbRxfCreate(&made, path_.c_str(), "", nullptr, 0), 1);
  EXPECT_EQ(ztbRxfAddSymbol(made, nullptr, nullptr), 0);
  std::array<char, 256> message{};
  EXPECT_EQ(ztbRxfPublish(&made, message.data(), 256), 0);
  EXPECT_EQ(message.data(), one + "Call out of order: a symbol without a description");
  for (const int kind : {ZTB_RXF_DOMAIN_NAMES, ZTB_RXF_DOMAIN_CHECKED}) {
    EXPECT_EQ(text([&](ztb::RxfOutput& output) {
                return output.addSymbol(info("p", kParameter, 3, kind), {"*"});
              }),
              one + "Call out of order: p without a name for the domain at position 2");
  }
  for (const std::size_t count : {static_cast<std::size_t>(-3), (std::size_t{1} << 32U) + 1}) {
    EXPECT_EQ(text([&](ztb::RxfOutput& output) {
                EXPECT_TRUE(output.addSymbol(info("p", kParameter, 1), {}));
                return output.addRecords(count, {&key}, {&value});
              }),
              one + "Limit exceeded: a call adds 0 to 2147483647 records, saw -1");
  }
}

TEST_F(RxfOutputTest, HoldsRecordsAgainstCheckedDomains) {
  writeFile(path_, "old");
  ztb::RxfOutput output(path_);
  output.addLabel("in");
  output.addLabel("out");
  const int in = 1;
  const int out = 2;
  const double value = 0;
  ASSERT_TRUE(output.addSymbol(info("s", kSet, 1), {"*"}));
  EXPECT_TRUE(output.addRecords(1, {&in}, {&value}));
  ASSERT_TRUE(output.addSymbol(info("p", kParameter, 1, ZTB_RXF_DOMAIN_CHECKED), {"s"}));
  EXPECT_TRUE(output.addRecords(1, {&in}, {&value}));
  EXPECT_FALSE(output.addRecords(1, {&out}, {&value}));
  EXPECT_EQ(publishingText(output),
            "1 RXF Error(s). First Error: Record outside its domain: p, label >out< at position 1 "
            "is not in s");
  EXPECT_EQ(readFile(path_), "old");
}

TEST_F(RxfOutputTest, KeepsNamesOfDomainsThatCannotBeChecked) {
  {
    ztb::RxfOutput output(path_);
    ASSERT_TRUE(output.addSymbol(info("p", kParameter, 1, ZTB_RXF_DOMAIN_CHECKED), {"later"}));
    output.publish();
  }
  const ztb::RxfFile file(path_);
  EXPECT_EQ(file.symbol("p").domainKind, ZTB_RXF_DOMAIN_NAMES);
  EXPECT_EQ(file.symbol("p").domains, std::vector<std::string_view>{"later"});
}

TEST_F(RxfOutputTest, LeavesNothingWhenItIsGivenUp) {
  writeFile(path_, "old");
  { const ztb::RxfOutput output(path_); }
  EXPECT_EQ(readFile(path_), "old");
  EXPECT_EQ(folder_.names(), std::vector<std::string>{"a.rxf"});
}

TEST_F(RxfOutputTest, SaysWhyAFileCannotBeMade) {
  const std::string path = folder_.file("none/a.rxf");
  try {
    const ztb::RxfOutput output(path);
    FAIL();
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.operation(), "ztbRxfCreate");
    EXPECT_STREQ(error.what(), "No such file: the folder does not exist");
  }
}

TEST_F(RxfOutputTest, TakesNullHandles) {
  std::array<char, 256> message{};
  EXPECT_EQ(ztbRxfCreate(nullptr, path_.c_str(), "", message.data(), 256), 0);
  EXPECT_STREQ(message.data(), "Call out of order: there is no place for the file");
  EXPECT_EQ(ztbRxfAddLabel(nullptr, "a"), 0);
  EXPECT_EQ(ztbRxfAddSymbol(nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(ztbRxfAddRecords(nullptr, 0, nullptr, nullptr), 0);
  EXPECT_EQ(ztbRxfAddText(nullptr, "a"), 0);
  EXPECT_EQ(ztbRxfPublish(nullptr, message.data(), 256), 0);
  ztbRxfDiscard(nullptr);
}

}  // namespace
}  // namespace rxftest
