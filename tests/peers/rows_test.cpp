// The five tables, held against the list of expected rows.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <vector>

#include "peers/nmt_family.h"
#include "peers/pbi_family.h"
#include "peers/rgy_family.h"
#include "peers/rxf_family.h"
#include "peers/signature.h"
#include "peers/slot.h"
#include "peers/snv_family.h"

namespace ztb::peers {
namespace {

// The C type of every slot is the expected prototype.
template <typename SlotType, typename Prototype>
inline constexpr bool hasPrototype =
    std::is_same_v<typename std::remove_const_t<SlotType>::Function, Prototype>;

#define ROW(family, result, name, symbol, parameters, arguments, ...) \
  static_assert(hasPrototype<decltype(name), result parameters>, #name);
#include "tests/peers/expected_rows.inc"
#undef ROW

// The codes of a row that are allowed for the C types, and no others, make a signature.
static_assert(std::is_constructible_v<Signature<int(int, const char*)>, int, int, int>);
static_assert(!std::is_constructible_v<Signature<int(int, const char*)>, int, int>);
static_assert(!std::is_constructible_v<Signature<int(int, const char*)>, int, int, int, int>);
static_assert(codeFits<int>(3) && codeFits<int>(15) && !codeFits<int>(13) && !codeFits<int>(0));
static_assert(codeFits<void>(0) && !codeFits<void>(3));
static_assert(codeFits<char*>(12) && codeFits<char*>(17) && codeFits<char*>(19));
static_assert(codeFits<const char*>(11) && !codeFits<const char*>(12));
static_assert(!codeFits<float>(13) && !codeFits<float*>(14));

struct ExpectedRow {
  const PeerFamily* family;
  std::string operation;
  std::string symbol;
  std::vector<int> codes;
};

const std::vector<ExpectedRow>& expectedRows() {
#define ROW(family, result, name, symbol, parameters, arguments, ...) \
  {&family##Family, #name, #symbol, {__VA_ARGS__}},
  static const std::vector<ExpectedRow> rows{
#include "tests/peers/expected_rows.inc"
  };
#undef ROW
  return rows;
}

const SlotBase* find(const PeerFamily& family, const std::string& operation) {
  const SlotBase* slot = family.firstSlot();
  while (slot != nullptr && operation != slot->name()) slot = slot->next();
  return slot;
}

int countSlots(const PeerFamily& family) {
  int count = 0;
  for (const SlotBase* slot = family.firstSlot(); slot != nullptr; slot = slot->next()) ++count;
  return count;
}

TEST(PeerRows, EveryFamilyHasItsNumberOfOperations) {
  EXPECT_EQ(countSlots(rxfFamily), 31);
  EXPECT_EQ(countSlots(pbiFamily), 40);
  EXPECT_EQ(countSlots(snvFamily), 4);
  EXPECT_EQ(countSlots(nmtFamily), 14);
  EXPECT_EQ(countSlots(rgyFamily), 8);
  EXPECT_EQ(expectedRows().size(), 97U);
}

TEST(PeerRows, EveryOperationHasTheExpectedCodesAndSymbol) {
  for (const ExpectedRow& row : expectedRows()) {
    SCOPED_TRACE(row.operation);
    const SlotBase* slot = find(*row.family, row.operation);
    ASSERT_NE(slot, nullptr);
    EXPECT_EQ(std::vector<int>(slot->codes().begin(), slot->codes().end()), row.codes);
    EXPECT_EQ(slot->argumentCount(), static_cast<int>(row.codes.size()) - 1);
    EXPECT_EQ(std::string(slot->symbolName()), row.symbol);
  }
}

TEST(PeerRows, ASlotAndItsEntryInTheTableAreTheSame) {
#define ROW(family, result, name, symbol, parameters, arguments, ...) \
  EXPECT_EQ(&name, find(family##Family, #name)) << #name;
#include "tests/peers/expected_rows.inc"
#undef ROW
}

TEST(PeerRows, SlotsAreNullBeforeTheirFamilyIsReady) {
  for (const PeerFamily* family : {&rxfFamily, &pbiFamily, &snvFamily, &nmtFamily, &rgyFamily}) {
    for (const SlotBase* slot = family->firstSlot(); slot != nullptr; slot = slot->next()) {
      EXPECT_TRUE(slot->isNull()) << slot->name();
    }
  }
}

TEST(PeerRows, FamiliesStartWithTheirStateAtRest) {
  for (const PeerFamily* family : {&rxfFamily, &pbiFamily, &snvFamily, &nmtFamily, &rgyFamily}) {
    const FamilyState& state = family->state;
    EXPECT_EQ(state.libraryHandle, nullptr);
    EXPECT_EQ(state.libraryLoaded, 0);
    EXPECT_EQ(state.XCreate, nullptr);
    EXPECT_EQ(state.XCreateD, nullptr);
    EXPECT_EQ(state.XFree, nullptr);
    EXPECT_EQ(state.XCheck, nullptr);
    EXPECT_EQ(state.XAPIVersion, nullptr);
    EXPECT_EQ(state.SetLoadPath, nullptr);
    EXPECT_EQ(state.GetLoadPath, nullptr);
    EXPECT_EQ(state.ReadBlockStart, nullptr);
    EXPECT_EQ(state.ReadBlock, nullptr);
    EXPECT_EQ(state.screenIndicator, 1);
    EXPECT_EQ(state.exitIndicator, 1);
    EXPECT_EQ(state.errorCallback, nullptr);
    EXPECT_EQ(state.apiErrorCount, 0);
    EXPECT_EQ(state.objectCount, 0);
    EXPECT_EQ(state.mutexesEnabled, 0);
  }
}

}  // namespace
}  // namespace ztb::peers
