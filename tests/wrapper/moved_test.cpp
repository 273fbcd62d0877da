// Objects whose content was moved to another one: they end as any, take new content, and say what
// they are when they are used.
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <ztb/model.hpp>
#include <ztb/rxf.hpp>
#include <ztb/ztb.hpp>

#include "tests/support/temp_folder.h"

namespace {

// The text of what `use` throws, with its kind behind it.
template <class Use>
std::string refusal(const Use& use) {
  try {
    use();
  } catch (const ztb::Error& error) {
    return std::string(error.what()) +
           (error.kind() == ztb::ErrorKind::closed ? " (closed)" : " (of another kind)");
  }
  return "nothing";
}

TEST(Moved, ADatabaseSaysWhatItIs) {
  ztb::Database first;
  first.addSet("plants", {"*"}).merge("rome");
  const ztb::Database second = std::move(first);
  EXPECT_EQ(1, second.symbol("plants").recordCount());
  const std::string expected = "This database was moved to another object (closed)";
  EXPECT_EQ(expected, refusal([&] { first.addSet("towns", {"*"}); }));
  EXPECT_EQ(expected, refusal([&] { first.addAlias("cities", second.symbol("plants")); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.symbol("plants")); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.symbols()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.symbolCount()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.lastError()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.lastErrorKind()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.specialValues()); }));
  EXPECT_EQ(expected, refusal([&] { first.write("none.rxf"); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.handle()); }));
}

TEST(Moved, ARecordHandleSaysWhatItIs) {
  for (const ztb::Store store : {ztb::Store::map, ztb::Store::vector, ztb::Store::trie}) {
    ztb::Database database;
    database.selectStore(store);
    ztb::Symbol cost = database.addParameter("cost", {"*"});
    cost.merge("rome").setLevel(3);
    cost.merge("oslo").setLevel(4);
    ztb::Record first = cost.find({"rome"}).value();
    const ztb::Record second = std::move(first);
    EXPECT_EQ(3, second.level());
    const std::string expected = "This record handle was moved to another object (closed)";
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.level()); }));
    EXPECT_EQ(expected, refusal([&] { first.setLevel(1); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.key(0)); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.moveNext()); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.movePrevious()); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.hasNext()); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.hasPrevious()); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.copy()); }));
    EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.sameAs(second)); }));
    EXPECT_EQ(expected, refusal([&] { first.erase(); }));
    EXPECT_EQ(2, cost.recordCount());
  }
}

TEST(Moved, ADatabaseTakesNewContent) {
  ztb::Database first;
  ztb::Database second = std::move(first);
  first = ztb::Database();
  first.addSet("towns", {"*"}).merge("oslo");
  EXPECT_EQ(1, first.symbol("towns").recordCount());
  second = std::move(first);
  EXPECT_EQ(1, second.symbol("towns").recordCount());
}

TEST(Moved, AModelSaysWhatItIs) {
  ztb::Model first;
  first.setObjective("total");
  first.addColumn("make", 0, 4);
  ztb::Model second = std::move(first);
  const std::string expected = "This model was moved to another object (closed)";
  EXPECT_EQ(expected, refusal([&] { first.addColumn("ship", 0, 4); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.status()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.message()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.explain()); }));
  EXPECT_EQ(expected, refusal([&] { first.setWatch({}); }));
  EXPECT_EQ(expected, refusal([&] {
              ztb::Database database;
              const ztb::ModelTie tie(database, first);
            }));
  first.terminate();  // ends nothing; a handler of signals cannot take an exception
  ztb::Database database;
  const ztb::ModelTie tie(database, second);
  EXPECT_EQ(1, database.symbol("make").recordCount());
}

TEST(Moved, AnExchangeFileSaysWhatItIs) {
  const ztbtest::TempFolder folder;
  const std::string file = folder.file("plants.rxf");
  ztb::Database database;
  database.addSet("plants", {"*"}).merge("rome");
  database.write(file);
  ztb::RxfFile first(file);
  const ztb::RxfFile second = std::move(first);
  EXPECT_EQ(1, second.symbolCount());
  const std::string expected = "This file was moved to another object (closed)";
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.version()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.symbolCount()); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.label(1)); }));
  EXPECT_EQ(expected, refusal([&] { static_cast<void>(first.findSymbol("plants")); }));

  ztb::RxfRecords records(second, second.symbol(1));
  ztb::RxfRecords moved = std::move(records);
  EXPECT_TRUE(moved.next());
  const std::string ended = "These records were moved to another object (closed)";
  EXPECT_EQ(ended, refusal([&] { static_cast<void>(records.next()); }));
  EXPECT_EQ(ended, refusal([&] { static_cast<void>(records.skip(1)); }));
  EXPECT_EQ(ended, refusal([&] { records.rewind(); }));
  EXPECT_EQ(ended, refusal([&] { static_cast<void>(records.blockNumber()); }));
  EXPECT_EQ(0U, records.size());
}

}  // namespace
