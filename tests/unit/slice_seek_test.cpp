// Walks over slices against a plain filter of all keys: on each store, both ways, for every mask.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <memory>
#include <random>
#include <set>
#include <tuple>

#include "tests/unit/symbols.h"

namespace ztb {
namespace {

using unittest::Keys;
using unittest::keysOf;

enum class Arrival { sorted, shuffled, sortedAndThinned };

class SliceSeek : public testing::TestWithParam<std::tuple<dmap::StorageKind, int, int, Arrival>> {
 protected:
  void SetUp() override {
    SymbolDescription description;
    description.name = "p";
    description.dim = dim();
    description.type = dmap::typeParameter;
    symbol_ = makeSymbol(kind(), nullptr, std::move(description));
    std::mt19937 random(7);
    const int count = std::get<2>(GetParam());
    const int labels = 2 + count / 40;
    std::set<Keys> drawn;
    while (static_cast<int>(drawn.size()) < count) {
      Keys key;
      for (int d = 0; d < dim(); ++d) {
        key.push_back(1 + static_cast<int>(random() % static_cast<unsigned>(labels)));
      }
      drawn.insert(key);
      if (std::pow(labels, dim()) <= static_cast<double>(drawn.size())) {
        break;
      }
    }
    std::vector<Keys> order(drawn.begin(), drawn.end());
    if (arrival() == Arrival::shuffled) {
      std::shuffle(order.begin(), order.end(), random);
    }
    for (const Keys& key : order) {
      const double value = key[0];
      if (arrival() == Arrival::shuffled) {
        symbol_->insertRecord(key.data(), &value);
      } else {
        symbol_->appendRecord(key.data(), &value);
      }
    }
    if (arrival() == Arrival::sortedAndThinned) {
      for (std::size_t place = order.size(); place-- > 1;) {
        if (random() % 3 == 0) {
          symbol_->eraseRecord(*symbol_->findRecord(order[place].data()));
          order.erase(order.begin() + static_cast<std::ptrdiff_t>(place));
        }
      }
    }
    keys_ = std::set<Keys>(order.begin(), order.end());
    labels_ = labels;
  }

  static dmap::StorageKind kind() { return std::get<0>(GetParam()); }
  static int dim() { return std::get<1>(GetParam()); }
  static Arrival arrival() { return std::get<3>(GetParam()); }

  std::vector<Keys> filtered(const Keys& mask) const {
    std::vector<Keys> result;
    for (const Keys& key : keys_) {
      bool takes = true;
      for (std::size_t d = 0; d < key.size(); ++d) {
        takes = takes && (mask[d] == 0 || mask[d] == key[d]);
      }
      if (takes) {
        result.push_back(key);
      }
    }
    return result;
  }

  void expectWalks(const Keys& mask) {
    const std::vector<Keys> expected = filtered(mask);
    auto record = symbol_->firstRecordInSlice(mask.data());
    std::vector<Keys> forward;
    if (record != nullptr) {
      do {
        forward.push_back(keysOf(*record));
        ASSERT_EQ(record->hasNext(0), forward.size() < expected.size());
      } while (record->moveNext(0));
      EXPECT_STREQ(record->message(), "Last record reached in slice of symbol p");
      EXPECT_EQ(keysOf(*record), expected.back());
    }
    ASSERT_EQ(forward, expected);
    record = symbol_->lastRecordInSlice(mask.data());
    std::vector<Keys> backward;
    if (record != nullptr) {
      do {
        backward.push_back(keysOf(*record));
        ASSERT_EQ(record->hasPrev(), backward.size() < expected.size());
      } while (record->movePrev());
      EXPECT_STREQ(record->message(), expected.front() == *keys_.begin()
                                          ? "First record reached in symbol p"
                                          : "First record reached in slice of symbol p");
      EXPECT_EQ(keysOf(*record), expected.front());
    }
    ASSERT_EQ(backward, std::vector<Keys>(expected.rbegin(), expected.rend()));
  }

  // All masks over the labels, one that no key has, and no label at all.
  void expectAllWalks(Keys& mask, std::size_t place) {
    if (place == mask.size()) {
      expectWalks(mask);
      return;
    }
    const int step = mask.size() > 2 ? std::max(1, labels_ / 3) : 1;
    for (int label = 0; label <= labels_ + 1; label += step) {
      mask[place] = label;
      expectAllWalks(mask, place + 1);
      if (HasFatalFailure()) {
        return;
      }
    }
  }

  std::unique_ptr<AbstractZTBSymbol> symbol_;
  std::set<Keys> keys_;
  int labels_ = 0;
};

TEST_P(SliceSeek, GivesWhatAFilterGives) {
  Keys mask(static_cast<std::size_t>(dim()));
  expectAllWalks(mask, 0);
}

constexpr auto allStores = {dmap::StorageKind::dMap, dmap::StorageKind::dMapVector,
                            dmap::StorageKind::dMapGTree};

INSTANTIATE_TEST_SUITE_P(Sorted, SliceSeek,
                         testing::Combine(testing::ValuesIn(allStores), testing::Values(1, 2, 3, 4),
                                          testing::Values(1, 7, 60, 500),
                                          testing::Values(Arrival::sorted)));
// Of more dimensions, a trie keeps branches without records, in which no walk goes on.
INSTANTIATE_TEST_SUITE_P(Thinned, SliceSeek,
                         testing::Combine(testing::ValuesIn(allStores), testing::Values(1, 2),
                                          testing::Values(1, 7, 60, 500),
                                          testing::Values(Arrival::sortedAndThinned)));
INSTANTIATE_TEST_SUITE_P(ThinnedFurther, SliceSeek,
                         testing::Combine(testing::Values(dmap::StorageKind::dMap,
                                                          dmap::StorageKind::dMapVector),
                                          testing::Values(3, 4), testing::Values(7, 60, 500),
                                          testing::Values(Arrival::sortedAndThinned)));
INSTANTIATE_TEST_SUITE_P(Shuffled, SliceSeek,
                         testing::Combine(testing::Values(dmap::StorageKind::dMap),
                                          testing::Values(1, 2, 3, 4),
                                          testing::Values(1, 7, 60, 500),
                                          testing::Values(Arrival::shuffled)));

// Rows that do not ascend, as only the store of rows can hold them, are looked at one by one.
TEST(SliceOfRows, InAnyOrderIsWalkedInTheirOrder) {
  SymbolDescription description;
  description.name = "p";
  description.dim = 2;
  description.type = dmap::typeParameter;
  const auto symbol = makeSymbol(dmap::StorageKind::dMapVector, nullptr, std::move(description));
  const double value = 1;
  for (const Keys& key : std::vector<Keys>{{3, 1}, {1, 1}, {1, 2}, {3, 2}, {2, 1}, {2, 1}}) {
    symbol->appendRecord(key.data(), &value);
  }
  const Keys mask{0, 1};
  const auto record = symbol->firstRecordInSlice(mask.data());
  std::vector<Keys> walked;
  do {
    walked.push_back(keysOf(*record));
  } while (record->moveNext(0));
  EXPECT_EQ(walked, (std::vector<Keys>{{3, 1}, {1, 1}, {2, 1}, {2, 1}}));
  const Keys three{3, 0};
  EXPECT_EQ(keysOf(*symbol->firstRecordInSlice(three.data())), (Keys{3, 1}));
  EXPECT_EQ(keysOf(*symbol->lastRecordInSlice(three.data())), (Keys{3, 2}));
}

// Keys are any integers where they are not checked, the extremes included.
TEST(SliceOfExtremes, IsFound) {
  constexpr int least = std::numeric_limits<int>::min();
  constexpr int most = std::numeric_limits<int>::max();
  for (const auto kind :
       {dmap::StorageKind::dMap, dmap::StorageKind::dMapVector, dmap::StorageKind::dMapGTree}) {
    SymbolDescription description;
    description.name = "p";
    description.dim = 3;
    description.type = dmap::typeParameter;
    const auto symbol = makeSymbol(kind, nullptr, std::move(description));
    const double value = 1;
    for (const Keys& key : std::vector<Keys>{{least, 5, least},
                                             {least, most, 7},
                                             {-1, 5, most},
                                             {most, least, 7},
                                             {most, 5, 7},
                                             {most, most, 8}}) {
      symbol->appendRecord(key.data(), &value);
    }
    const auto walk = [&](const Keys& mask) {
      std::vector<Keys> walked;
      auto record = symbol->firstRecordInSlice(mask.data());
      while (record != nullptr) {
        walked.push_back(keysOf(*record));
        if (!record->moveNext(0)) break;
      }
      std::vector<Keys> back;
      record = symbol->lastRecordInSlice(mask.data());
      while (record != nullptr) {
        back.push_back(keysOf(*record));
        if (!record->movePrev()) break;
      }
      EXPECT_EQ(walked, std::vector<Keys>(back.rbegin(), back.rend()));
      return walked;
    };
    EXPECT_EQ(walk({0, 5, 0}), (std::vector<Keys>{{least, 5, least}, {-1, 5, most}, {most, 5, 7}}));
    EXPECT_EQ(walk({0, 0, 7}),
              (std::vector<Keys>{{least, most, 7}, {most, least, 7}, {most, 5, 7}}));
    EXPECT_EQ(walk({most, 0, 0}),
              (std::vector<Keys>{{most, least, 7}, {most, 5, 7}, {most, most, 8}}));
    EXPECT_EQ(walk({least, 0, 7}), (std::vector<Keys>{{least, most, 7}}));
    EXPECT_EQ(walk({0, most, 9}), std::vector<Keys>{});
  }
}

}  // namespace
}  // namespace ztb
