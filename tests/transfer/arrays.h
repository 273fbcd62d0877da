// What the tests of array transfers share: a database with two sets whose ranks are not their label
// numbers, and cubes whose ends are watched.
#ifndef ZTB_TESTS_TRANSFER_ARRAYS_H_
#define ZTB_TESTS_TRANSFER_ARRAYS_H_

#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/database.h"

namespace ztbtest {

using Sizes = std::vector<int>;
using Symbols = std::vector<void*>;
using Doubles = std::vector<double>;
using Integers = std::vector<int>;

// A cube with filler in its cells and behind them.
template <class Cell>
class Cube {
 public:
  static constexpr Cell filler = 77;

  explicit Cube(std::size_t size) : size_(size), cells_(size + 8, filler) {}

  operator void*() { return cells_.data(); }

  // The cells; fails the test when something was written behind them.
  std::vector<Cell> cells() const {
    const auto end = cells_.begin() + static_cast<std::ptrdiff_t>(size_);
    EXPECT_TRUE(std::all_of(end, cells_.end(), [](Cell cell) { return cell == filler; }));
    return {cells_.begin(), end};
  }
  bool untouched() const {
    return std::all_of(cells_.begin(), cells_.end(), [](Cell cell) { return cell == filler; });
  }

 private:
  std::size_t size_;
  std::vector<Cell> cells_;
};

inline std::uint64_t bitsOf(double value) {
  return std::bit_cast<std::uint64_t>(value);
}

inline constexpr std::uint64_t undefinedBits = 0x7E37E43C8800759C;
inline constexpr std::uint64_t notAvailableBits = 0x7FF8000000000000;
inline constexpr std::uint64_t plusInfinityBits = 0x7FF0000000000000;
inline constexpr std::uint64_t minusInfinityBits = 0xFFF0000000000000;
inline constexpr std::uint64_t epsilonBits = 0x0000000000000001;

inline double doubleOf(std::uint64_t bits) {
  return std::bit_cast<double>(bits);
}

// Adds a set with these labels.
inline void* addSetOf(Database& db, const char* name, const Labels& labels) {
  void* const set = db.addSet(name);
  for (const std::string& label : labels) {
    db.put(set, {label.c_str()});
  }
  return set;
}

// Stores a record by numbers that are not checked.
inline void putByNumber(const Database& db, void* symbol, const std::vector<int>& keys,
                        const Doubles& values) {
  Doubles five = values;
  five.resize(5);
  EXPECT_EQ(1, lib().c__ztbmergerecordint(db, symbol, keys.data(), 0, 0, nullptr, 1, five.data()));
}
inline void putInSetByNumber(const Database& db, void* set, const std::vector<int>& keys,
                             const char* text = nullptr) {
  EXPECT_EQ(1, lib().c__ztbmergesetrecordint(db, set, keys.data(), 0, 0, nullptr, text));
}

// The level of each record as the library stores it.
inline Doubles storedLevels(Database& db, void* symbol) {
  Doubles spelling(5);
  EXPECT_EQ(1, lib().c__ztbgetuserspecialvalues(db, spelling.data()));
  Doubles internal(5);
  EXPECT_EQ(1, lib().c__ztbgetspecialvalues(db, internal.data()));
  EXPECT_EQ(1, lib().c__ztbsetspecialvalues(db, internal.data()));
  Doubles levels;
  for (const Row& row : db.rows(symbol)) {
    levels.push_back(row.level);
  }
  EXPECT_EQ(1, lib().c__ztbsetspecialvalues(db, spelling.data()));
  return levels;
}

class ArrayTest : public testing::Test {
 protected:
  ArrayTest() {
    db.uel("unused");
    i = addSetOf(db, "i", {"a", "b", "c"});
    j = addSetOf(db, "j", {"x", "y"});
  }

  int dense(void* cube, const Sizes& vDim, void* symbol, int field = 0) {
    return lib().c__ztbdensesymboltodensearray(db, cube, vDim.data(), symbol, field);
  }
  int sparse(void* cube, const Sizes& vDim, void* symbol, Symbols domains, int field = 0) {
    dropped = 99;
    return lib().c__ztbsparsesymboltodensearray(db, cube, vDim.data(), symbol, domains.data(),
                                                field, &dropped);
  }
  int squeezed(void* cube, const Sizes& vDim, void* symbol, Symbols squeezeDomains, Symbols domains,
               int field = 0) {
    dropped = 99;
    return lib().c__ztbsparsesymboltosqzdarray(db, cube, vDim.data(), symbol, squeezeDomains.data(),
                                               domains.data(), field, &dropped);
  }
  int fromDense(void* symbol, Symbols domains, const void* cube, const Sizes& vDim) {
    return lib().c__ztbdensearraytosymbol(db, symbol, domains.data(), cube, vDim.data());
  }
  int fromSlices(void* symbol, Symbols sliceDomains, Symbols domains, const void* cube,
                 const Sizes& vDim) {
    return lib().c__ztbdensearrayslicestosymbol(db, symbol, sliceDomains.data(), domains.data(),
                                                cube, vDim.data());
  }

  // A caller's own values for undefined, not available, the infinities and epsilon.
  void spellSpecialValues(const Doubles& values) {
    ASSERT_EQ(1, lib().c__ztbsetspecialvalues(db, values.data()));
  }

  Database db;
  void* i;
  void* j;
  int dropped = 99;
};

}  // namespace ztbtest

#endif  // ZTB_TESTS_TRANSFER_ARRAYS_H_
