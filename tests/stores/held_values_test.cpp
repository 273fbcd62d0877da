// Values of the vector store that are held outside: they stay as they were, and cost the store
// nothing but the copy that it takes before it changes them.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

#include "tests/stores/vector_rows.h"

namespace ztb::storetest {
namespace {

using dmap::HeldValues;

class Hold {
 public:
  explicit Hold(DMapVector& store) : held_(store.holdValues()) {}
  Hold(const Hold&) = delete;
  Hold& operator=(const Hold&) = delete;
  ~Hold() {
    if (held_.memory != nullptr) {
      held_.memory->drop();
    }
  }

  [[nodiscard]] const double* address() const { return held_.values; }
  [[nodiscard]] std::vector<double> values() const {
    return {held_.values, held_.values + held_.count};
  }

 private:
  HeldValues held_;
};

const double* addressOf(Vector& vector) {
  return vector.store.begin().get().values;
}

struct Change {
  std::string name;
  std::function<void(Vector&)> make;
  Rows after;

  friend void PrintTo(const Change& change, std::ostream* out) { *out << change.name; }
};

class HeldVector : public testing::TestWithParam<Change> {};

TEST_P(HeldVector, staysAsItWasAndTheStoreChanges) {
  Vector vector(1, {{2}, {4}, {6}});
  const Hold held(vector.store);
  const Hold second(vector.store);
  EXPECT_EQ(held.address(), addressOf(vector));
  EXPECT_EQ(second.address(), held.address());
  GetParam().make(vector);
  EXPECT_EQ(GetParam().after, vector.rows());
  EXPECT_EQ((std::vector<double>{1, 2, 3}), held.values());
  const Hold third(vector.store);
  GetParam().make(vector);
  EXPECT_EQ((std::vector<double>{1, 2, 3}), second.values());
}

INSTANTIATE_TEST_SUITE_P(
    By, HeldVector,
    testing::Values(Change{"writing",
                           [](Vector& vector) {
                             vector.store.ownValues();
                             *vector.store.iteratorAt(1).get().values = 9;
                           },
                           {{{2}, 1}, {{4}, 9}, {{6}, 3}}},
                    Change{"assigning",
                           [](Vector& vector) { vector.insertOrAssign({2}, 8); },
                           {{{2}, 8}, {{4}, 2}, {{6}, 3}}},
                    Change{"erasingTheFirst",
                           [](Vector& vector) {
                             if (vector.store.size() == 3) vector.store.erase(vector.store.begin());
                           },
                           {{{4}, 2}, {{6}, 3}}},
                    Change{"erasingTheLastAndAppending",
                           [](Vector& vector) {
                             vector.store.erase(vector.store.iteratorAt(2));
                             vector.append({7}, 5);
                           },
                           {{{2}, 1}, {{4}, 2}, {{7}, 5}}},
                    Change{"insertingInFront",
                           [](Vector& vector) { vector.insert({1}, 5); },
                           {{{1}, 5}, {{2}, 1}, {{4}, 2}, {{6}, 3}}},
                    Change{"clearing",
                           [](Vector& vector) {
                             vector.store.clear();
                             vector.append({3}, 5);
                             vector.append({4}, 6);
                           },
                           {{{3}, 5}, {{4}, 6}}},
                    Change{"clearingAndReserving",
                           [](Vector& vector) {
                             vector.store.clear();
                             vector.store.reserve(3);
                             vector.append({3}, 5);
                           },
                           {{{3}, 5}}},
                    Change{"startingAnew",
                           [](Vector& vector) {
                             vector.store.startAnew();
                             vector.append({3}, 5);
                           },
                           {{{3}, 5}}},
                    Change{"releasing",
                           [](Vector& vector) {
                             vector.store.release();
                             vector.append({3}, 5);
                           },
                           {{{3}, 5}}}),
    [](const testing::TestParamInfo<Change>& change) { return change.param.name; });

TEST(HeldVectorMemory, outlivesTheStore) {
  std::optional<Hold> held;
  {
    Vector vector(1, {{2}, {4}});
    held.emplace(vector.store);
  }
  EXPECT_EQ((std::vector<double>{1, 2}), held->values());
}

TEST(HeldVectorMemory, ofAScalarStaysToo) {
  for (const bool erases : {false, true}) {
    DMapVector scalar(0, 1);
    double value = 4;
    scalar.append(nullptr, &value);
    const Hold held(scalar);
    if (erases) {
      scalar.erase(scalar.begin());
    }
    value = 5;
    scalar.append(nullptr, &value);
    EXPECT_EQ((std::vector<double>{4}), held.values());
    EXPECT_EQ(5, *scalar.begin().get().values);
  }
}

TEST(HeldVectorMemory, growsWithoutAChangeForThoseWhoHoldIt) {
  Vector vector(1, {{1}});
  std::vector<std::unique_ptr<Hold>> holds;
  for (int label = 2; label <= 300; ++label) {
    holds.push_back(std::make_unique<Hold>(vector.store));
    vector.append({label}, label);
  }
  for (std::size_t count = 1; count <= holds.size(); ++count) {
    const std::vector<double> values = holds[count - 1]->values();
    ASSERT_EQ(count, values.size());
    for (std::size_t row = 0; row < count; ++row) {
      ASSERT_EQ(static_cast<double>(row + 1), values[row]);
    }
  }
  // New rows where there is memory for them are no change of what is held.
  int moves = 0;
  for (std::size_t at = 1; at < holds.size(); ++at) {
    moves += holds[at]->address() != holds[at - 1]->address() ? 1 : 0;
  }
  EXPECT_LT(moves, 20);
}

TEST(HeldVectorMemory, isTheStoresOwnAgainWhenAllHaveDroppedIt) {
  Vector vector(1, {{2}, {4}});
  const double* before = addressOf(vector);
  { const Hold held(vector.store); }
  vector.store.ownValues();
  *vector.store.begin().get().values = 7;
  EXPECT_EQ(before, addressOf(vector)) << "copied for nobody";
  { const Hold held(vector.store); }
  vector.store.clear();
  vector.append({1}, 1);
  EXPECT_EQ(before, addressOf(vector));
}

TEST(HeldVectorMemory, isHeldOnlyWhereValuesLieOneBehindTheOther) {
  DMapVector variable(1, 2);
  variable.append(Key{1}.data(), slots);
  EXPECT_EQ(nullptr, variable.holdValues().memory);
  DMapVector none(1, 1);
  EXPECT_EQ(nullptr, none.holdValues().memory);
}

}  // namespace
}  // namespace ztb::storetest
