// Every growth of the vector store's arrays fails once.
#include <gtest/gtest.h>
#include <ztb/ztb.h>

#include <array>
#include <functional>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "store/dmap_vector.h"
#include "store/symbol_factory.h"
#include "tests/stores/failing_realloc.h"
#include "tests/stores/rows.h"
#include "tests/support/stdout_capture.h"

namespace ztb::storetest {
namespace {

constexpr int lastLabel = 200;

TEST(VectorFault, appendThrowsKeepsTheRowsAndWorksAfterwards) {
  int number = 0;
  for (bool happened = true; happened;) {
    ++number;
    dmap::DMapVector store(1, 1);
    int rows = 0;
    {
      const FailingRealloc failing(number);
      for (int label = 1; label <= lastLabel; ++label) {
        const double value = label;
        try {
          store.append(&label, &value);
        } catch (const std::bad_alloc&) {
          EXPECT_EQ(rows, store.size());
          EXPECT_TRUE(store.iteratorAt(rows).equals(store.end()));
          store.append(&label, &value);
        }
        ++rows;
      }
      happened = FailingRealloc::happened();
    }
    const Rows content = rowsOf(store, 1);
    ASSERT_EQ(static_cast<std::size_t>(lastLabel), content.size());
    EXPECT_EQ((Row{{lastLabel}, lastLabel}), content.back());
  }
  EXPECT_LT(20, number) << "the arrays hardly ever grew";
}

TEST(VectorFault, insertBelowTheFirstRowThrowsAndKeepsTheRows) {
  for (const int number : {1, 2}) {
    dmap::DMapVector store(2, 1);
    appendAll(store, {{2, 2}});
    const Key key = {1, 1};
    const double value = 7;
    {
      const FailingRealloc failing(number);
      EXPECT_THROW(store.insert(key.data(), &value), std::bad_alloc);
    }
    EXPECT_EQ((Rows{{{2, 2}, 1}}), rowsOf(store, 2));
    store.insert(key.data(), &value);
    EXPECT_EQ((Rows{{{1, 1}, 7}, {{2, 2}, 1}}), rowsOf(store, 2));
  }
}

TEST(VectorFault, aScalarsFirstValueThrowsAndLeavesItEmpty) {
  dmap::DMapVector store(0, 2);
  {
    const FailingRealloc failing(1);
    EXPECT_THROW(store.append(nullptr, slots), std::bad_alloc);
  }
  EXPECT_TRUE(store.empty());
  store.append(nullptr, slots);
  EXPECT_EQ(1, store.size());
}

// Values that are held are copied before they change; without memory for that nothing changes.
TEST(VectorFault, aChangeOfHeldValuesThrowsAndKeepsTheRows) {
  const double value = 7;
  const std::vector<std::function<void(dmap::DMapVector&)>> changes = {
      [&](auto& store) { store.erase(store.begin()); },
      [&](auto& store) { store.insert(Key{1}.data(), &value); },
      [&](auto& store) { store.insertOrAssign(store.end(), Key{2}.data(), &value); },
      [](auto& store) { store.ownValues(); }};
  for (std::size_t change = 0; change < changes.size(); ++change) {
    dmap::DMapVector store(1, 1);
    appendAll(store, {{2}, {4}, {6}});
    // Memory for one row more, so that none is needed but for the copy.
    appendAll(store, {{8}});
    store.erase(store.iteratorAt(3));
    const dmap::HeldValues held = store.holdValues();
    {
      const FailingRealloc failing(1);
      EXPECT_THROW(changes[change](store), std::bad_alloc) << change;
    }
    EXPECT_EQ((Rows{{{2}, 1}, {{4}, 2}, {{6}, 3}}), rowsOf(store, 1)) << change;
    EXPECT_EQ(held.values, store.begin().get().values) << change;
    changes[change](store);
    EXPECT_NE(held.values, store.begin().get().values) << change;
    held.memory->drop();
  }
}

TEST(VectorFault, reserveThrowsAndKeepsTheStoreUsable) {
  for (const int number : {1, 2}) {
    dmap::DMapVector store(1, 1);
    {
      const FailingRealloc failing(number);
      EXPECT_THROW(store.reserve(1000), std::bad_alloc);
    }
    appendAll(store, keysOver({1, 2}));
    EXPECT_EQ((Rows{{{1}, 1}, {{2}, 2}}), rowsOf(store, 1));
  }
}

TEST(VectorFault, theOperationSaysThatMemoryRanOut) {
  ztbRec* db = nullptr;
  std::array<char, ZTB_TEXT_BUFFER_SIZE> text{};
  ASSERT_EQ(1, ztbcreate(&db, text.data(), static_cast<int>(text.size())));
  ASSERT_EQ(1, c__ztbselectrecordstorage(db, nullptr, ZTB_STORAGE_VECTOR));
  void* symbol = nullptr;
  ASSERT_EQ(1, c__ztbaddsymbol(db, "p", 1, ZTB_PARAMETER, 0, "", &symbol));
  int label = 0;
  ASSERT_EQ(1, c__ztbmergeuel(db, "a", &label));
  const char* keys[] = {"a"};
  void* record = nullptr;
  ztbtest::StdoutCapture output;
  {
    const FailingRealloc failing(1);
    EXPECT_EQ(0, c__ztbmergerecord(db, symbol, keys, &record));
  }
  EXPECT_EQ("Out of memory in ztbMergeRecord\n", output.text());
  c__ztbgetlasterror(db, text.data());
  EXPECT_STREQ("Out of memory in ztbMergeRecord", text.data());
  EXPECT_EQ(1, c__ztbmergerecord(db, symbol, keys, &record));
  EXPECT_EQ(1, c__ztbfreesymboliterator(db, record));
  ztbfree(&db);
}

TEST(VectorFault, aFailedMoveToTheVectorLeavesTheSymbolAsItWas) {
  SymbolDescription description;
  description.name = "p";
  description.dim = 1;
  description.type = dmap::typeParameter;
  const auto source = makeSymbol(dmap::StorageKind::dMap, nullptr, std::move(description));
  for (int label = 1; label <= lastLabel; ++label) {
    const double value = label;
    source->insertRecord(&label, &value);
  }
  int number = 0;
  for (bool happened = true; happened;) {
    const FailingRealloc failing(++number);
    std::unique_ptr<AbstractZTBSymbol> moved;
    try {
      moved = convertSymbol(dmap::StorageKind::dMapVector, *source);
      EXPECT_EQ(lastLabel, moved->recordCount());
    } catch (const std::bad_alloc&) {
      EXPECT_EQ(nullptr, moved);
    }
    happened = FailingRealloc::happened();
    EXPECT_EQ(lastLabel, source->recordCount());
    EXPECT_EQ(!happened, moved != nullptr);
  }
  EXPECT_LT(20, number);
}

}  // namespace
}  // namespace ztb::storetest
