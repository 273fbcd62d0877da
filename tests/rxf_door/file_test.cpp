// What an open file tells of itself: facts, labels, texts, symbols.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <ztb/rxf.hpp>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// One symbol of each kind.
Content kinds() {
  Content content;
  content.labels = {"Milk", "Tofu", "", "it's", "iron"};
  content.texts = {"1 qt.", "say \"it\""};
  Symbol food{"food", kSet, 1, 3, "Things to eat \xC3\xA9", {}, 0, {}, ""};
  food.records = {record({1}, {1}), record({2}, {0}), record({4}, {2})};
  Symbol alias{"f", kAlias, 1, 1, "", {}, 0, {}, "food"};
  Symbol every{"every", kAlias, 1, 0, "", {}, 0, {}, "*"};
  Symbol holds{"holds", kParameter, 2, -7, "A dollar", {}, 3, {"f", "*"}, ""};
  holds.records = {record({1, 5}, {3.5})};
  Symbol pi{"pi", kParameter, 0, 0, "", {record({}, {3.25})}, 0, {}, ""};
  Symbol buy{"buy", kVariable, 1, 4, "", {}, 2, {"Anything"}, ""};
  Symbol need{"need", kEquation, 3, 55, "no records", {}, 0, {}, ""};
  content.symbols = {food, alias, every, holds, pi, buy, need};
  return content;
}

class RxfFileTest : public testing::Test {
 protected:
  void SetUp() override {
    PeerFile file;
    ASSERT_EQ(file.openWrite(path_, "the producer"), 0);
    writeContent(file, kinds());
    ASSERT_EQ(file.close(), 0);
  }

  TempFolder folder_;
  std::string path_ = folder_.file("a.rxf");
};

std::string openingText(const std::string& path) {
  try {
    const ztb::RxfFile file(path);
  } catch (const ztb::Error& error) {
    EXPECT_STREQ(error.operation(), "ztbRxfOpen");
    return error.what();
  }
  return "";
}

TEST_F(RxfFileTest, TellsTheFactsOfTheFormat) {
  const ztb::RxfFile file(path_);
  EXPECT_EQ(file.version(), 1);
  EXPECT_EQ(file.producer(), "the producer");
  EXPECT_EQ(file.size(), std::filesystem::file_size(path_));
}

TEST_F(RxfFileTest, TellsLabels) {
  const ztb::RxfFile file(path_);
  ASSERT_EQ(file.labelCount(), 5);
  EXPECT_EQ(file.label(1), "Milk");
  EXPECT_EQ(file.label(3), "");
  EXPECT_EQ(file.label(4), "it's");
  EXPECT_EQ(file.label(5), "iron");
  EXPECT_EQ(file.findLabel("mILK"), 1);
  EXPECT_EQ(file.findLabel(""), 3);
  EXPECT_EQ(file.findLabel("Mil"), std::nullopt);
  EXPECT_EQ(ztbRxfLabel(file.handle(), 0), nullptr);
  EXPECT_EQ(ztbRxfLabel(file.handle(), 6), nullptr);
}

TEST_F(RxfFileTest, TellsTexts) {
  const ztb::RxfFile file(path_);
  ASSERT_EQ(file.textCount(), 2);
  EXPECT_EQ(file.text(0), "");
  EXPECT_EQ(file.text(1), "1 qt.");
  EXPECT_EQ(file.text(2), "say \"it\"");
  EXPECT_EQ(ztbRxfText(file.handle(), 3), nullptr);
  EXPECT_EQ(ztbRxfText(file.handle(), -1), nullptr);
}

TEST_F(RxfFileTest, ThrowsForNumbersThatThereAreNot) {
  const ztb::RxfFile file(path_);
  const auto textOf = [](const auto& call) {
    try {
      static_cast<void>(call());
    } catch (const ztb::Error& error) {
      return std::string(error.what());
    }
    return std::string();
  };
  EXPECT_EQ(textOf([&] { return file.label(6); }), "No label has the number 6");
  EXPECT_EQ(textOf([&] { return file.text(3); }), "No text has the number 3");
  EXPECT_EQ(textOf([&] { return file.symbol(8); }), "No symbol has the number 8");
  EXPECT_EQ(textOf([&] { return file.symbol(-1); }), "No symbol has the number -1");
  EXPECT_EQ(textOf([&] { return file.symbol("fod"); }), "Cannot find symbol fod");
}

TEST_F(RxfFileTest, TellsASet) {
  const ztb::RxfFile file(path_);
  const ztb::RxfSymbol food = file.symbol("FOOD");
  EXPECT_EQ(food.number, 1);
  EXPECT_EQ(food.name, "food");
  EXPECT_EQ(food.text, "Things to eat \xC3\xA9");
  EXPECT_EQ(food.type, ztb::Type::set);
  EXPECT_EQ(food.dimension, 1);
  EXPECT_EQ(food.valueCount, 1);
  EXPECT_EQ(food.userInfo, 3);
  EXPECT_EQ(food.recordCount, 3);
  EXPECT_EQ(food.domainKind, ZTB_RXF_DOMAIN_NONE);
  EXPECT_EQ(food.domains, std::vector<std::string_view>{"*"});
  EXPECT_EQ(food.aliasTarget, -1);
  EXPECT_FALSE(food.isAlias());
  EXPECT_FALSE(food.isUniverse());
}

TEST_F(RxfFileTest, TellsAliasesWithTheShapeOfTheirSets) {
  const ztb::RxfFile file(path_);
  const ztb::RxfSymbol f = file.symbol("f");
  EXPECT_EQ(f.type, ztb::Type::alias);
  EXPECT_TRUE(f.isAlias());
  EXPECT_EQ(f.aliasTarget, 1);
  EXPECT_EQ(f.dimension, 1);
  EXPECT_EQ(f.recordCount, 3);
  EXPECT_EQ(f.userInfo, 0);
  EXPECT_EQ(f.domains, std::vector<std::string_view>{"*"});
  const ztb::RxfSymbol every = file.symbol("every");
  EXPECT_EQ(every.aliasTarget, 0);
  EXPECT_EQ(every.recordCount, 5);
}

TEST_F(RxfFileTest, TellsTheOtherKinds) {
  const ztb::RxfFile file(path_);
  const ztb::RxfSymbol holds = file.symbol("holds");
  EXPECT_EQ(holds.type, ztb::Type::parameter);
  EXPECT_EQ(holds.userInfo, -7);
  EXPECT_EQ(holds.domainKind, ZTB_RXF_DOMAIN_CHECKED);
  EXPECT_EQ(holds.domains, (std::vector<std::string_view>{"f", "*"}));
  const ztb::RxfSymbol pi = file.symbol("pi");
  EXPECT_EQ(pi.dimension, 0);
  EXPECT_TRUE(pi.domains.empty());
  const ztb::RxfSymbol buy = file.symbol("buy");
  EXPECT_EQ(buy.type, ztb::Type::variable);
  EXPECT_EQ(buy.valueCount, 5);
  EXPECT_EQ(buy.domainKind, ZTB_RXF_DOMAIN_NAMES);
  EXPECT_EQ(buy.domains, std::vector<std::string_view>{"Anything"});
  const ztb::RxfSymbol need = file.symbol("need");
  EXPECT_EQ(need.type, ztb::Type::equation);
  EXPECT_EQ(need.userInfo, 2) << "the subtype, 53 less than in the file";
  EXPECT_EQ(need.dimension, 3);
  EXPECT_EQ(need.recordCount, 0);
}

TEST_F(RxfFileTest, TellsTheUniverse) {
  const ztb::RxfFile file(path_);
  const ztb::RxfSymbol all = file.symbol("*");
  EXPECT_TRUE(all.isUniverse());
  EXPECT_EQ(all.name, "*");
  EXPECT_EQ(all.text, "universe") << "as a database has it";
  EXPECT_EQ(all.type, ztb::Type::set);
  EXPECT_EQ(all.dimension, 1);
  EXPECT_EQ(all.recordCount, 5);
  EXPECT_EQ(all.domains, std::vector<std::string_view>{"*"});
}

TEST_F(RxfFileTest, ListsSymbolsInTheOrderOfTheFile) {
  const ztb::RxfFile file(path_);
  std::vector<std::string> names;
  for (const ztb::RxfSymbol& symbol : file.symbols()) names.emplace_back(symbol.name);
  EXPECT_EQ(names, (std::vector<std::string>{"food", "f", "every", "holds", "pi", "buy", "need"}));
  EXPECT_EQ(file.symbolCount(), 7);
}

// A node of the map has 32 bytes of links, keys to a multiple of 8, values, and the allocator's 8.
TEST_F(RxfFileTest, EstimatesTheMemoryOfASymbol) {
  const ztb::RxfFile file(path_);
  EXPECT_EQ(file.memory(file.symbol("food")), 3U * 64U);
  EXPECT_EQ(file.memory(file.symbol("f")), 3U * 64U);
  EXPECT_EQ(file.memory(file.symbol("pi")), 48U);
  EXPECT_EQ(file.memory(file.symbol("need")), 0U);
  EXPECT_LT(file.memory(file.symbol("food"), ztb::Store::vector), 3U * 64U);
  EXPECT_LT(file.memory(file.symbol("food"), ztb::Store::trie), 3U * 64U);
  EXPECT_EQ(ztbRxfMemory(file.handle(), 1, 3), 0U);
  EXPECT_EQ(ztbRxfMemory(file.handle(), 8, ZTB_STORAGE_TREE_MAP), 0U);
}

TEST_F(RxfFileTest, MovesAndStaysOpen) {
  ztb::RxfFile first(path_);
  ztb::RxfFile second(std::move(first));
  ztb::RxfFile third(path_);
  third = std::move(second);
  EXPECT_EQ(third.label(1), "Milk");
}

TEST_F(RxfFileTest, StaysTheFileThatWasOpened) {
  const ztb::RxfFile file(path_);
  Content other = kinds();
  other.labels[0] = "Soup";
  other.symbols[0].records.pop_back();
  PeerFile peer;
  ASSERT_EQ(peer.openWrite(path_), 0);
  writeContent(peer, other);
  ASSERT_EQ(peer.close(), 0);
  EXPECT_EQ(file.label(1), "Milk");
  ztb::RxfRecords records(file, file.symbol("food"));
  ASSERT_TRUE(records.next());
  EXPECT_EQ(records.size(), 3U);
}

TEST_F(RxfFileTest, SaysWhyAFileCannotBeOpened) {
  EXPECT_EQ(openingText(folder_.file("none.rxf")), "No such file: " + folder_.file("none.rxf"));
  EXPECT_EQ(openingText(folder_.path()), "Is a folder: " + folder_.path());
  EXPECT_EQ(openingText(""), "File name not acceptable: it is empty");
  writeFile(folder_.file("x"), "label,value\n");
  EXPECT_TRUE(openingText(folder_.file("x")).starts_with("Not an RXF file: ")) << "x";
  std::string bytes = readFile(path_);
  writeFile(folder_.file("x"), bytes.substr(0, bytes.size() - 1));
  EXPECT_TRUE(openingText(folder_.file("x")).starts_with("File is cut short: "));
  bytes[bytes.size() - 1] = static_cast<char>(~bytes[bytes.size() - 1]);
  writeFile(folder_.file("x"), bytes);
  const std::string text = openingText(folder_.file("x"));
  EXPECT_TRUE(text.starts_with("File is damaged: symbol table of ")) << text;
  EXPECT_NE(text.find("chunk 1"), std::string::npos) << text;
}

}  // namespace
}  // namespace rxftest
