// The families with arrays of twenty strings, met with symbols and counts that do not fit them.
#include <gtest/gtest.h>

#include <array>
#include <string>
#include <vector>

#include "tests/support/database.h"
#include "tests/support/text_buffer.h"

namespace ztbtest {
namespace {

class ShortStringLimits : public testing::Test {
 protected:
  ShortStringLimits() {
    db.uel("a");
    std::vector<void*> domains(21, db.universe());
    lib().c__ztbaddsymbolx(db, "wide", 21, ZTB_PARAMETER, 0, "", domains.data(), nullptr, &wide);
  }

  Database db;
  void* wide = nullptr;
  void* found = nullptr;
  StringBlock block;
};

TEST_F(ShortStringLimits, moreThanTwentyLabelsAreRefused) {
  block = StringBlock::shortStrings({"a"});
  int status = 7;
  ASSERT_NE(nullptr, wide);
  db.markError();
  EXPECT_EQ(0, lib().d__ztbfindrecord(db, wide, block, &found));
  EXPECT_FALSE(db.errorUntouched());
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ(0, lib().d__ztbaddrecord(db, wide, block, &found));
  EXPECT_EQ(0, lib().d__ztbmergerecord(db, wide, block, &found));
  EXPECT_EQ(0, lib().d__ztbfindfirstrecordslice(db, wide, block, &found));
  EXPECT_EQ(nullptr, lib().d__ztbfindlastrecordslicepy(db, wide, block, &status));
  EXPECT_EQ(0, status);
  EXPECT_EQ(1, db.info(ZTB_INFO_UEL_COUNT));
}

TEST_F(ShortStringLimits, moreThanTwentyDomainNamesAreRefused) {
  std::array<void*, 21> domains{};
  db.markError();
  EXPECT_EQ(0, lib().d__ztbgetdomain(db, wide, 20, domains.data(), block));
  EXPECT_FALSE(db.errorUntouched());
  db.markError();
  EXPECT_EQ(0, lib().n__ztbgetdomain(db, wide, 20, domains.data(), block));
  EXPECT_FALSE(db.errorUntouched());
}

// The plain operation tests no dimension; a name behind the twentieth is no name.
TEST_F(ShortStringLimits, symbolsOfAnyDimensionGoToThePlainOperation) {
  std::vector<void*> domains(25, db.universe());
  int status = 7;
  for (const int dim : {-1, 0, 21, 25}) {
    const ShortString name("q" + std::to_string(dim + 1));
    EXPECT_EQ(1, lib().d__ztbaddsymbolx(db, name, dim, ZTB_PARAMETER, 0, ShortString(""),
                                        domains.data(), block, &found));
    ASSERT_NE(nullptr, found);
    EXPECT_EQ(dim, db.symbolInfo(found, ZTB_SYMBOL_INFO_DIMENSION));
    EXPECT_EQ(nullptr, lib().d__ztbaddsymbolxpy(db, name, dim, ZTB_PARAMETER, 0, ShortString(""),
                                                domains.data(), block, &status));
    EXPECT_EQ(1, status) << "a name that exists";
    db.markError();
    EXPECT_EQ(0, lib().d__ztbaddsymbolx(db, ShortString(""), dim, ZTB_PARAMETER, 0, ShortString(""),
                                        domains.data(), block, &found));
    EXPECT_FALSE(db.errorUntouched());
  }
  domains[20] = nullptr;
  EXPECT_EQ(1, lib().d__ztbaddsymbolx(db, ShortString("unnamed"), 25, ZTB_PARAMETER, 0,
                                      ShortString(""), domains.data(), block, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ("Domain 21 of Symbol unnamed has neither a set nor a name", db.lastError());
}

TEST_F(ShortStringLimits, aNullBlockIsNoLabels) {
  void* const data = db.addParameter("p");
  void* const scalar = db.addParameter("s", 0);
  db.put(data, {"a"});
  found = &block;
  EXPECT_UNEXPECTED(db, "ztbFindRecord", lib().d__ztbfindrecord(db, data, nullptr, &found));
  EXPECT_UNEXPECTED(db, "ztbAddRecord", lib().d__ztbaddrecord(db, data, nullptr, &found));
  EXPECT_UNEXPECTED(db, "ztbFindLastRecordSlice",
                    lib().d__ztbfindlastrecordslice(db, data, nullptr, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_SUCCESS(db, lib().d__ztbaddrecord(db, scalar, nullptr, &found));
  const Record record(db, found);
  EXPECT_EQ(1, db.recordCount(scalar));
}

TEST_F(ShortStringLimits, aNullBlockIsNoDomainNames) {
  void* domain = db.addSet("i");
  EXPECT_EQ(1, lib().d__ztbaddsymbolx(db, ShortString("q"), 1, ZTB_PARAMETER, 0, ShortString(""),
                                      &domain, nullptr, &found));
  EXPECT_EQ(found, db.find("q"));
  domain = nullptr;
  EXPECT_EQ(1, lib().d__ztbaddsymbolx(db, ShortString("r"), 1, ZTB_PARAMETER, 0, ShortString(""),
                                      &domain, nullptr, &found));
  EXPECT_EQ(nullptr, found);
  EXPECT_EQ("Domain 1 of Symbol r has neither a set nor a name", db.lastError());
}

TEST_F(ShortStringLimits, aFailureStillConvertsTheTextsThatWereAskedFor) {
  EXPECT_EQ(0, lib().d__ztbgetkeys(db, nullptr, 2, block));
  EXPECT_EQ("", block.shortString(0));
  EXPECT_EQ("", block.shortString(1));
  EXPECT_TRUE(block.untouched(2));
}

TEST_F(ShortStringLimits, aLabelOfTheUniverseIsGivenWhateverTheCount) {
  const Record label = db.first(db.universe());
  for (const int count : {1, 20, 50}) {
    StringBlock keys;
    EXPECT_EQ(1, lib().d__ztbgetkeys(db, label, count, keys)) << count;
    EXPECT_EQ("a", keys.shortString(0)) << count;
    StringBlock flat;
    EXPECT_EQ(1, lib().n__ztbgetkeys(db, label, count, flat)) << count;
    EXPECT_EQ("a", flat.flatString(0)) << count;
  }
}

TEST_F(ShortStringLimits, aNullPlaceForATextIsLeftAlone) {
  int number = -1;
  EXPECT_EQ(1, lib().d__ztbinfo(db, ZTB_INFO_UEL_COUNT, &number, nullptr, nullptr));
  EXPECT_EQ(1, number);
  EXPECT_EQ(1,
            lib().d__ztbsymbolinfo(db, wide, ZTB_SYMBOL_INFO_DIMENSION, &number, nullptr, nullptr));
  EXPECT_EQ(21, number);
}

}  // namespace
}  // namespace ztbtest
