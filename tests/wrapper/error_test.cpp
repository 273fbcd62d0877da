#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

void expectError(const std::function<void()>& action, const std::string& operation,
                 const std::string& text) {
  try {
    action();
    FAIL() << text;
  } catch (const ztb::Error& error) {
    EXPECT_EQ(error.what(), text);
    EXPECT_EQ(error.operation(), operation);
  }
}

TEST(Error, CarriesTheTextAndTheOperation) {
  ztb::Database database;
  expectError([&] { static_cast<void>(database.symbol("q")); }, "ztbFindSymbol",
              "Cannot find symbol q");
  expectError([&] { database.addSet("1a", {"*"}); }, "ztbAddSymbolX",
              "'1a' is not a valid name for a VELT symbol");
  expectError([&] { database.addSet("s", {}); }, "ztbAddSymbol",
              "Dimension must be greater than 0 for a Set");
  expectError([&] { static_cast<void>(database.label(1)); }, "ztbGetUelByIndex",
              "Uel index 1 out of range [1,0]");
}

TEST(Error, IsThrownForASymbolThatIsThereAlready) {
  ztb::Database database;
  database.addParameter("p", {"*"});
  expectError([&] { database.addParameter("P", {"*"}); }, "ztbAddSymbolX",
              "The name P is that of symbol p already (the case of letters does not matter): "
              "Symbol P exists already");
  expectError([&] { database.addParameter("p", {}); }, "ztbAddSymbol",
              "The name p is that of symbol p already: Symbol p exists already");
  const ztb::Symbol food = database.addSet("food", {"*"});
  expectError([&] { database.addAlias("FOOD", food); }, "ztbAddSymbol",
              "The name FOOD is that of symbol food already (the case of letters does not matter): "
              "Symbol FOOD exists already");
}

TEST(Error, IsThrownForASubtypeThatThereIsNot) {
  ztb::Database database;
  expectError([&] { database.addVariable("v", 17, {"*"}); }, "ztbAddSymbol",
              "Subtype 17 of variable v is outside [0,9]");
  expectError([&] { database.addEquation("e", -1, {}); }, "ztbAddSymbol",
              "Subtype -1 of equation e is outside [0,6]");
  EXPECT_EQ(database.symbolCount(), 0);
}

TEST(Error, IsThrownForMoreThanTwentyPositions) {
  ztb::Database database;
  const std::vector<ztb::DomainArgument> domains(21, ztb::DomainArgument("*"));
  expectError([&] { database.addSymbol("p", ztb::Type::parameter, domains); }, "ztbAddSymbol",
              "Dimension must be greater or equal 0 and smaller or equal 20 (saw 21)");
}

TEST(Error, IsThrownForARecordThatIsThereAlready) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  p.add("a", "b");
  expectError([&] { p.add("a", "b"); }, "ztbAddRecord",
              "Record (\"a\",\"b\") exists already for symbol p");
}

TEST(Error, IsThrownForAWrongNumberOfKeys) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*", "*"});
  expectError([&] { p.add("a"); }, "ztbAddRecord", "1 keys given, symbol p has 2 positions");
  expectError([&] { static_cast<void>(p.find("a", "b", "c")); }, "ztbFindRecord",
              "3 keys given, symbol p has 2 positions");
  expectError([&] { static_cast<void>(p.slice("a")); }, "ztbFindFirstRecordSlice",
              "1 keys given, symbol p has 2 positions");
  const int one[] = {1};
  expectError([&] { p.put(one, 1.0); }, "ztbMergeRecordInt",
              "1 keys given, symbol p has 2 positions");
}

// The library leaves the text of an older failure there.
TEST(Error, NamesAControlCharacterInALabel) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  static_cast<void>(database.findSymbol("q"));
  const std::string text = "Label holds a control character >a\\tb<";
  expectError([&] { database.mergeLabel("a\tb"); }, "ztbMergeUel", text);
  expectError([&] { static_cast<void>(database.findLabel("a\tb")); }, "ztbFindUel", text);
  expectError([&] { p.add("a\tb"); }, "ztbAddRecord", text);
  p.add("a");
  expectError([&] { static_cast<void>(p.find("a\tb")); }, "ztbFindRecord", text);
  expectError([&] { static_cast<void>(p.slice("a\tb")); }, "ztbFindFirstRecordSlice", text);
}

TEST(Error, NamesANullLabel) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  static_cast<void>(database.findSymbol("q"));
  const char* const none = nullptr;
  expectError([&] { database.mergeLabel(none); }, "ztbMergeUel", "Label is null");
  expectError([&] { p.add(none); }, "ztbAddRecord", "Label is null");
  p.add("a");
  expectError([&] { static_cast<void>(p.find(none)); }, "ztbFindRecord", "Label is null");
}

TEST(Error, NamesALabelThatIsTooLong) {
  ztb::Database database;
  const std::string label(64, 'x');
  expectError([&] { database.mergeLabel(label); }, "ztbMergeUel",
              "Label exceeds maximum size of 63: >" + label + "<");
}

TEST(Error, IsThrownForNumbersThatNoLabelHas) {
  ztb::Database database;
  ztb::Symbol p = database.addParameter("p", {"*"});
  const int zero[] = {0};
  expectError([&] { p.put(zero, 1.0); }, "ztbMergeRecordInt",
              "Error when adding record to symbol p: UEL needs to be greater than zero but is 0");
}

}  // namespace
