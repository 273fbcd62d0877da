// Names, labels and texts as views, keys as ranges, and what is reached by [] and symbols().
#include <gtest/gtest.h>

#include <array>
#include <iterator>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

using namespace std::string_view_literals;

// A view that no zero ends.
constexpr std::string_view part(std::string_view text, std::size_t size) {
  return text.substr(0, size);
}

template <class Use>
std::string failure(Use&& use) {
  try {
    use();
  } catch (const ztb::Error& error) {
    return error.what();
  }
  return "";
}

TEST(TextArguments, MayBeViewsWithoutAZeroBehindThem) {
  ztb::Database database;
  ztb::Symbol food = database.addSet(part("foods", 4), {part("*?", 1)}, part("To eat", 3));
  EXPECT_EQ(food.name(), "food");
  EXPECT_EQ(food.text(), "To ");
  ztb::Symbol price = database.addParameter("price", {part("foods", 4)});
  EXPECT_EQ(price.domains()[0].name, "food");
  food.add(part("Milky", 4)).setText(part("1 qt. or so", 5));
  EXPECT_EQ(food.find("milk")->text(), "1 qt.");
  EXPECT_EQ(database.findLabel(part("MILKY", 4)), 1);
  const int number[] = {database.mergeLabel(part("Bread!", 5))};
  food.putElement(number, part("white bread", 5));
  EXPECT_EQ(food.find(part("Breads", 5))->text(), "white");
  EXPECT_EQ(database.symbol(part("pricey", 5)), price);
  EXPECT_TRUE(food.remove(part("Breads", 5)));
  EXPECT_EQ(food.recordCount(), 1);
}

TEST(TextArguments, LongerThanALabelAreGivenWhole) {
  ztb::Database database;
  const std::string text(200, 't');
  EXPECT_EQ(database.addSet("i", {"*"}, std::string_view(text)).text(), text);
  const std::string most(63, 'l');
  EXPECT_EQ(database.mergeLabel(std::string_view(most)), 1);
  EXPECT_EQ(database.label(1), most);
  EXPECT_EQ(failure([&] { database.mergeLabel(std::string_view(most + "l")); }),
            "Label exceeds maximum size of 63: >" + most + "l<");
}

TEST(TextArguments, OfFilesMayBeViews) {
  const ztbtest::TempFolder folder;
  const std::string path = folder.file("a.rxf");
  const std::string longer = path + ".more";
  const std::string_view view(longer.data(), path.size());
  ztb::Database database;
  database.addParameter("p", {"*"}).add("a");
  database.write(view);
  EXPECT_EQ(ztb::Database::open(view)["p"].recordCount(), 1);
  const ztb::RxfFile file(view);
  EXPECT_EQ(file[part("pq", 1)].recordCount, 1);
  EXPECT_EQ(file.findLabel(part("ab", 1)), 1);
}

TEST(TextArguments, WithAZeroByteAreRefusedAndNeverCut) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  p.add("a");
  const std::string text = "A zero byte stands at position 2 of >a\\x00b<, expected none";
  EXPECT_EQ(failure([&] { p.add("a\0b"sv); }), text);
  EXPECT_EQ(failure([&] { p.merge(std::string("a\0b", 3)); }), text);
  EXPECT_EQ(failure([&] { static_cast<void>(p.find("a\0b"sv)); }), text);
  EXPECT_EQ(failure([&] { static_cast<void>(p["a\0b"sv]); }), text);
  EXPECT_EQ(failure([&] { p.remove("a\0b"sv); }), text);
  EXPECT_EQ(failure([&] { static_cast<void>(p.slice("a\0b"sv)); }), text);
  EXPECT_EQ(failure([&] { p.add(std::vector{"a\0b"sv}); }), text);
  EXPECT_EQ(failure([&] { database.mergeLabel("a\0b"sv); }), text);
  EXPECT_EQ(failure([&] { database.addSet("a\0b"sv, {"*"}); }), text);
  EXPECT_EQ(failure([&] { database.addSet("c", {"a\0b"sv}); }), text);
  EXPECT_EQ(failure([&] { database.addSet("c", {"*"}, "a\0b"sv); }), text);
  EXPECT_EQ(failure([&] { database.write("a\0b"sv); }), text);
  EXPECT_EQ(p.recordCount(), 1);
  EXPECT_EQ(database.labelCount(), 1);
  EXPECT_EQ(database.symbolCount(), 1);
}

TEST(TextArguments, MayBeAnEmptyView) {
  ztb::Database database;
  EXPECT_EQ(database.mergeLabel(std::string_view()), 1);
  EXPECT_EQ(database.label(1), "");
}

template <class Range>
void useKeys(const Range& milk, const Range& bread, const Range& any) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  p.add(milk).setLevel(1);
  p.merge(bread).setLevel(2);
  EXPECT_EQ(p.find("Milk", "iron")->level(), 1);
  EXPECT_EQ(p.find(bread)->level(), 2);
  EXPECT_EQ(p[bread].level(), 2);
  double sum = 0;
  for (const ztb::Record& record : p.slice(any)) sum += record.level();
  for (const auto [keys, values] : p.sliceRows(any)) sum += 10 * values[0];
  EXPECT_EQ(sum, 3 + 30);
  EXPECT_TRUE(p.remove(milk));
  EXPECT_FALSE(p.remove(milk));
  EXPECT_EQ(p.recordCount(), 1);
}

TEST(RunTimeKeys, MayBeAnyRangeOfTexts) {
  useKeys<std::vector<std::string_view>>({"Milk", "iron"}, {"Bread", "iron"}, {" ", "iron"});
  useKeys<std::vector<std::string>>({"Milk", "iron"}, {"Bread", "iron"}, {" ", "iron"});
  useKeys<std::vector<const char*>>({"Milk", "iron"}, {"Bread", "iron"}, {" ", "iron"});
  useKeys<std::array<std::string_view, 2>>({"Milk", "iron"}, {"Bread", "iron"}, {" ", "iron"});
  const std::vector<std::string_view> milk{part("Milky", 4), part("irony", 4)};
  const std::vector<std::string_view> bread{"Bread", "iron"};
  const std::vector<std::string_view> any{ztb::anyLabel, "iron"};
  useKeys<std::span<const std::string_view>>(milk, bread, any);
}

TEST(RunTimeKeys, MayBeTwentyLongLabels) {
  ztb::Database database;
  const std::vector<ztb::DomainArgument> domains(20, ztb::DomainArgument("*"));
  ztb::Symbol p = database.addSymbol("p", ztb::Type::parameter, domains);
  std::vector<std::string> labels;
  for (char c = 'a'; c < 'a' + 20; ++c) labels.emplace_back(63, c);
  p.add(labels).setLevel(4);
  EXPECT_EQ(p.find(labels)->level(), 4);
  EXPECT_EQ(p.find(labels)->key(19), std::string(63, 't'));
  labels.emplace_back("one more");
  EXPECT_EQ(failure([&] { p.add(labels); }), "21 keys given, symbol p has 20 positions");
}

TEST(RunTimeKeys, MayBeAListInBraces) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  p.add({"a", "b"}).setLevel(6);
  EXPECT_EQ(p.find({"A", "B"})->level(), 6);
  EXPECT_TRUE(p.remove({"a", "b"}));
}

TEST(RunTimeKeys, OfAScalarAreNone) {
  ztb::Database database;
  ztb::Symbol pi = database.addParameter("pi", {});
  pi.add(std::vector<std::string_view>()).setLevel(3.5);
  EXPECT_EQ(pi.find(std::vector<std::string>())->level(), 3.5);
}

TEST(Subscript, GivesSymbolsAndRecordsThatAreThere) {
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"*"});
  ztb::Symbol holds = database.addParameter("holds", {"*", "*"});
  price.add("Milk").setLevel(11);
  holds.add("Milk", "iron").setLevel(3);
  EXPECT_EQ(database["PRICE"], price);
  EXPECT_EQ(database["price"]["milk"].level(), 11);
  price[std::string("Milk")].setLevel(12);
  EXPECT_EQ(price["Milk"sv].level(), 12);
  const double iron = holds[{"Milk", "iron"}].level();
  EXPECT_EQ(iron, 3);
}

TEST(Subscript, RefusesWhatIsNotThereAndAddsNothing) {
  ztb::Database database;
  ztb::Symbol price = database.addParameter("price", {"*"});
  EXPECT_EQ(failure([&] { static_cast<void>(database["cost"]); }), "Cannot find symbol cost");
  EXPECT_EQ(failure([&] { static_cast<void>(price["Milk"]); }),
            "Cannot find record (\"Milk\") in Symbol price");
  EXPECT_EQ(failure([&] {
              static_cast<void>(price[{"Milk", "iron"}]);
            }),
            "2 keys given, symbol price has 1 positions");
  EXPECT_EQ(database.labelCount(), 0);
  EXPECT_EQ(price.recordCount(), 0);
}

TEST(SymbolsOfADatabase, AreARangeInTheOrderOfTheirMaking) {
  ztb::Database database;
  EXPECT_EQ(database.symbols().begin(), database.symbols().end());
  const ztb::Symbol i = database.addSet("i", {"*"});
  database.addAlias("j", i);
  database.addParameter("p", {i});
  std::vector<std::string> names;
  for (const ztb::Symbol& symbol : database.symbols()) names.push_back(symbol.name().str());
  EXPECT_EQ(names, (std::vector<std::string>{"i", "j", "p"}));
  EXPECT_EQ(database.symbols().size(), 3U);
  const auto last = std::next(database.symbols().begin(), 2);
  EXPECT_EQ((*last).name(), "p");
  static_assert(std::input_iterator<ztb::Symbols::Iterator>);
}

TEST(SymbolsOfADatabase, AreNoAliasWithoutASet) {
  ztb::Database database;
  database.addSet("i", {"*"});
  const std::vector<ztb::DomainArgument> one{"*"};
  EXPECT_EQ(failure([&] { database.addSymbol("j", ztb::Type::alias, one); }),
            "Symbol j cannot be added as an alias without the set it stands for, addAlias does");
  EXPECT_EQ(failure([&] { database.addSymbol("j", ztb::Type::alias, {}); }),
            "Symbol j cannot be added as an alias without the set it stands for, addAlias does");
  EXPECT_EQ(failure([&] { database.addSymbol("j", static_cast<ztb::Type>(9), one); }),
            "Type 9 of symbol j is outside [0,3]");
  EXPECT_EQ(database.symbolCount(), 1);
}

}  // namespace
