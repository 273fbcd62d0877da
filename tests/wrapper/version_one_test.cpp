// A file of format version 1 that was written when the format was made: it must always read. It is
// never written anew; what is in it stands here.

#include <gtest/gtest.h>

#include <array>
#include <bit>
#include <cstdint>
#include <string>
#include <vector>
#include <ztb/ztb.hpp>

namespace {

class VersionOneTest : public testing::Test {
 protected:
  ztb::Database database_ = ztb::Database::open(VERSION_ONE_FILE);
};

TEST_F(VersionOneTest, HasItsSymbolsAndTexts) {
  std::vector<std::string> found;
  for (int position = 0; position < database_.symbolCount(); ++position) {
    const ztb::Symbol symbol = database_.symbolAt(position);
    found.push_back(std::string(symbol.name()) + "/" + std::to_string(symbol.dimension()) + "/" +
                    std::string(symbol.text()));
  }
  EXPECT_EQ(found, (std::vector<std::string>{
                       "city/1/Where things are made and sold", "town/1/", "road/2/",
                       "special/1/One of each", "pi/0/A number alone", "x/1/Bought", "e/0/",
                       "many/1/More than a block holds", "loose/2/", "none/1/No record"}));
  EXPECT_EQ(database_.symbol("x").type(), ztb::Type::variable);
  EXPECT_EQ(database_.symbol("x").userInfo(), 3);
  EXPECT_EQ(database_.symbol("e").type(), ztb::Type::equation);
  EXPECT_EQ(database_.symbol("e").userInfo(), 2);
  EXPECT_EQ(database_.symbolAt(1).type(), ztb::Type::alias);
}

TEST_F(VersionOneTest, HasItsDomains) {
  const auto domains = database_.symbol("road").domains();
  ASSERT_EQ(domains.size(), 2U);
  EXPECT_EQ(std::string(domains[0].name), "city");
  EXPECT_EQ(std::string(domains[1].name), "town");
  EXPECT_EQ(std::string(database_.symbol("loose").domains()[0].name), "no set");
}

TEST_F(VersionOneTest, HasItsSets) {
  const ztb::Symbol city = database_.symbol("city");
  EXPECT_EQ(city.recordCount(), 3);
  EXPECT_EQ(city.find("Oslo")->text(), "Norway's capital");
  EXPECT_EQ(city.find("S\xc3\xa3o Paulo")->text(), "");
  EXPECT_TRUE(city.find("a 'quoted', label"));
  EXPECT_EQ(database_.symbol("road").find("Oslo", "S\xc3\xa3o Paulo")->text(), "by ship");
}

TEST_F(VersionOneTest, HasEachSpecialValue) {
  const ztb::Symbol special = database_.symbol("special");
  const ztb::SpecialValues values = database_.specialValues();
  const std::array<const char*, 5> labels{"undef", "na", "inf", "-inf", "eps"};
  for (std::size_t kind = 0; kind < labels.size(); ++kind) {
    // Undefined and not available are no numbers, told apart by their bits.
    EXPECT_EQ(std::bit_cast<std::uint64_t>(special.find(labels.at(kind))->level()),
              std::bit_cast<std::uint64_t>(values.at(kind)))
        << labels.at(kind);
  }
  EXPECT_EQ(special.find("tenth")->level(), 0.1);
  EXPECT_EQ(special.find("huge")->level(), -1.7976931348623157e299);
  EXPECT_EQ(special.recordCount(), 7);
}

TEST_F(VersionOneTest, HasItsValues) {
  EXPECT_EQ(database_.symbol("pi").find()->level(), 3.141592653589793);
  const ztb::Record oslo = *database_.symbol("x").find("Oslo");
  EXPECT_EQ(oslo.level(), 2.5);
  EXPECT_EQ(oslo.marginal(), -0.25);
  EXPECT_EQ(oslo.lower(), 1);
  EXPECT_EQ(oslo.upper(), 7);
  EXPECT_EQ(oslo.scale(), 10);
  EXPECT_EQ(database_.symbol("x").recordCount(), 2);
  EXPECT_EQ(database_.symbol("e").find()->level(), 1);
  EXPECT_EQ(database_.symbol("loose").find("Oslo", "far")->level(), 1);
  EXPECT_EQ(database_.symbol("none").recordCount(), 0);
}

TEST_F(VersionOneTest, HasMoreRecordsThanABlockHolds) {
  const ztb::Symbol many = database_.symbol("many");
  EXPECT_EQ(many.recordCount(), 70000);
  for (const int n : {1, 65536, 65537, 70000}) {
    EXPECT_EQ(many.find(std::to_string(n))->level(), n * 0.5) << n;
  }
}

}  // namespace
