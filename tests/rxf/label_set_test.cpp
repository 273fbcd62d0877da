#include "providers/rxf/label_set.h"

#include <gtest/gtest.h>

#include <vector>

#include "providers/rxf/strict_domain.h"

namespace rxffile {
namespace {

LabelBits bitsOf(const std::vector<std::int32_t>& labels) {
  LabelSet set;
  set.add(labels.data(), labels.size());
  return set.bits();
}

TEST(LabelSet, holdsItsLabelsAndNoOthers) {
  const LabelBits bits = bitsOf({1, 2, 3, 63, 64, 200});
  for (const std::uint32_t label : {1U, 2U, 3U, 63U, 64U, 200U}) EXPECT_TRUE(bits.holds(label));
  for (const std::uint32_t label : {0U, 4U, 62U, 65U, 199U, 201U, 4000000000U}) {
    EXPECT_FALSE(bits.holds(label)) << label;
  }
}

TEST(LabelSet, anEmptySetHoldsNothing) {
  EXPECT_FALSE(bitsOf({}).holds(1));
}

TEST(LabelSet, scatteredLabelsTakeABitOfTheUniverseEach) {
  std::vector<std::int32_t> odd;
  for (std::int32_t label = 1; label < 100000; label += 2) odd.push_back(label);
  LabelSet set;
  for (std::size_t i = 0; i < odd.size(); i += 1000) set.add(odd.data() + i, 1000);
  const LabelBits bits = set.bits();
  for (std::uint32_t label = 1; label < 100000; ++label) {
    ASSERT_EQ(bits.holds(label), label % 2 == 1) << label;
  }
  EXPECT_LT(bits.bytes(), 2U * 100000 / 8);
}

TEST(StrictDomain, namesTheFirstPositionOutside) {
  StrictDomain domain;
  std::array<std::shared_ptr<const LabelBits>, kMaxDimension> members;
  members[1] = std::make_shared<const LabelBits>(bitsOf({5}));
  domain.set(members);
  EXPECT_EQ(domain.firstOutside(std::vector<int>{9, 5, 9}.data(), 0, 3), 3);
  EXPECT_EQ(domain.firstOutside(std::vector<int>{9, 6, 9}.data(), 0, 3), 1);
  EXPECT_EQ(domain.firstOutside(std::vector<int>{9, 6, 9}.data(), 2, 3), 3);
}

}  // namespace
}  // namespace rxffile
