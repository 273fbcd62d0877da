// Strict and relaxed domains, through the built library.

#include <gtest/gtest.h>

#include <array>

#include "tests/rxf/content.h"
#include "tests/rxf/peer_file.h"
#include "tests/rxf/temp_folder.h"

namespace rxftest {
namespace {

// A file being written with labels a, b, c, d, the set i = {a, c}, its alias ii, the
// two-dimensional set ij, the alias u of the universe and the parameter q.
class Domain : public testing::Test {
 protected:
  void SetUp() override {
    ASSERT_EQ(file_.openWrite(path_), 0);
    file_.startLabels();
    for (const char* label : {"a", "b", "c", "d"}) file_.addLabel(label);
    file_.finishLabels();
    file_.startWriting("i", "", 1, kSet, 0);
    write({1}, 0);
    write({3}, 0);
    file_.finishWriting();
    file_.addAlias("ii", "i");
    file_.startWriting("ij", "", 2, kSet, 0);
    file_.finishWriting();
    file_.addAlias("u", "*");
    file_.startWriting("q", "", 1, kParameter, 0);
    file_.finishWriting();
    ASSERT_EQ(file_.errorCount(), 0);
  }

  bool write(const std::vector<int>& keys, double value = 1) {
    return file_.write(keys.data(), &value);
  }

  bool setDomain(const std::vector<std::string>& names) {
    return file_.setDomain(pointers(names).data());
  }

  // The last symbol of the finished file.
  Symbol lastSymbol() {
    file_.close();
    PeerFile reader;
    EXPECT_EQ(reader.openRead(path_), 0);
    return readContent(reader).symbols.back();
  }

  TempFolder folder_;
  std::string path_ = folder_.file("x.rxf");
  PeerFile file_;
};

TEST_F(Domain, aFileWithARecordOutsideItsStrictDomainIsNotPublished) {
  file_.startWriting("p", "", 2, kParameter, 0);
  ASSERT_TRUE(setDomain({"I", "*"}));
  EXPECT_TRUE(write({1, 1}));
  EXPECT_FALSE(write({2, 1}));
  EXPECT_TRUE(write({3, 4}));
  EXPECT_FALSE(write({4, 4}));
  file_.finishWriting();
  EXPECT_EQ(file_.errorCount(), 2);
  EXPECT_EQ(file_.drainErrors(),
            std::vector<std::string>(2,
                                     "Record outside its domain: p, label >b< at position 1 is "
                                     "not in I"));
  EXPECT_EQ(file_.close(), 10);
  EXPECT_EQ(folder_.names(), std::vector<std::string>{});
}

TEST_F(Domain, aStrictDomainIsKeptWithTheRecordsInIt) {
  file_.startWriting("p", "", 2, kParameter, 0);
  ASSERT_TRUE(setDomain({"I", "*"}));
  EXPECT_TRUE(write({1, 1}));
  EXPECT_TRUE(write({3, 4}));
  file_.finishWriting();
  const Symbol p = lastSymbol();
  EXPECT_EQ(p.domainKind, 3);
  EXPECT_EQ(p.domain, (std::vector<std::string>{"I", "*"}));
  EXPECT_EQ(p.records, (std::vector<Record>{record({1, 1}, {1}), record({3, 4}, {1})}));
}

TEST_F(Domain, anAliasStandsForItsSetAndAnAliasOfTheUniverseForAllLabels) {
  file_.startWriting("p", "", 2, kParameter, 0);
  ASSERT_TRUE(setDomain({"u", "ii"}));
  EXPECT_TRUE(write({2, 1}));
  EXPECT_FALSE(write({2, 2}));
  EXPECT_TRUE(write({4, 3}));
  file_.finishWriting();
  EXPECT_EQ(file_.takeLastError(), 24);
}

TEST_F(Domain, eachBadPositionIsAnErrorAndTheSymbolStaysOpenWithoutADomain) {
  file_.startWriting("p", "", 4, kParameter, 0);
  EXPECT_FALSE(setDomain({"i", "nowhere", "ij", "q"}));
  EXPECT_EQ(file_.errorCount(), 3);
  EXPECT_EQ(file_.drainErrors(),
            (std::vector<std::string>{
                "Domain is no set written before: nowhere at position 2 of p",
                "Domain set is not one-dimensional: ij of dimension 2 at position 3 of p",
                "Domain is no set written before: nowhere at position 2 of p"}));
  EXPECT_TRUE(write({2, 2, 2, 2}));
  file_.finishWriting();
  const Symbol p = lastSymbol();
  EXPECT_EQ(p.domainKind, 0);
  EXPECT_EQ(p.records.size(), 1U);
}

TEST_F(Domain, aSetIsNotItsOwnDomain) {
  file_.startWriting("s", "", 1, kSet, 0);
  EXPECT_FALSE(setDomain({"s"}));
  EXPECT_EQ(file_.takeLastError(), 22);
  EXPECT_EQ(file_.errorText(22), "Domain is no set written before: s at position 1 of s");
}

TEST_F(Domain, aSetOfTwoDimensionsIsNoDomainThroughAnAliasEither) {
  file_.addAlias("iijj", "ij");
  for (const char* name : {"ij", "iijj"}) {
    file_.startWriting((std::string("p") + name).c_str(), "", 1, kParameter, 0);
    EXPECT_FALSE(setDomain({name}));
    EXPECT_EQ(file_.takeLastError(), 23);
    EXPECT_EQ(file_.errorText(23), std::string("Domain set is not one-dimensional: ") + name +
                                       " of dimension 2 at position 1 of p" + name);
    file_.finishWriting();
  }
}

TEST_F(Domain, aDomainBehindARecordIsOutOfOrder) {
  file_.startWriting("p", "", 1, kParameter, 0);
  write({2});
  EXPECT_FALSE(setDomain({"i"}));
  EXPECT_EQ(file_.takeLastError(), 25);
  file_.finishWriting();
  EXPECT_EQ(lastSymbol().domainKind, 0);
}

TEST_F(Domain, namesAloneAreKeptAndHoldNoRecordBack) {
  file_.startWriting("p", "", 2, kParameter, 0);
  write({2, 2});
  file_.finishWriting();
  EXPECT_TRUE(file_.setDomainNames(6, pointers({"i", "later"}).data()));
  EXPECT_EQ(file_.errorCount(), 0);
  const Symbol p = lastSymbol();
  EXPECT_EQ(p.domainKind, 2);
  EXPECT_EQ(p.domain, (std::vector<std::string>{"i", "later"}));
  EXPECT_EQ(p.records.size(), 1U);
}

TEST_F(Domain, namesForNoSymbolOrAnAliasAreRefusedAndTheFileIsNotPublished) {
  EXPECT_FALSE(file_.setDomainNames(0, pointers({"i"}).data()));
  EXPECT_FALSE(file_.setDomainNames(6, pointers({"i"}).data()));
  EXPECT_FALSE(file_.setDomainNames(2, pointers({"i"}).data()));
  EXPECT_EQ(file_.drainErrors(),
            std::vector<std::string>(3, "No such symbol number: domain names for symbol 0 of 5"));
  EXPECT_NE(file_.close(), 0);
  EXPECT_EQ(folder_.names(), std::vector<std::string>{});
}

TEST_F(Domain, anyNameOfUpTo255BytesIsKept) {
  const std::vector<std::string> names = {
      "my dom", "1999", "_x", "", " ", "**", "a\nb", "\xC3\xA9\xFF", std::string(255, 'n')};
  const int dim = static_cast<int>(names.size());
  file_.startWriting("p", "", dim, kParameter, 0);
  file_.finishWriting();
  EXPECT_TRUE(file_.setDomainNames(6, pointers(names).data()));
  EXPECT_EQ(file_.errorCount(), 0);
  const Symbol p = lastSymbol();
  EXPECT_EQ(p.domainKind, 2);
  EXPECT_EQ(p.domain, names);
}

TEST_F(Domain, aLongerNameIsRefusedAndTheFileIsNotPublished) {
  EXPECT_FALSE(file_.setDomainNames(5, pointers({std::string(256, 'n')}).data()));
  EXPECT_EQ(file_.drainErrors(),
            std::vector<std::string>{"Text longer than 255 bytes: domain name at position 1 of q "
                                     "has 256, >" +
                                     std::string(80, 'n') + "...<"});
  EXPECT_NE(file_.close(), 0);
  EXPECT_EQ(folder_.names(), std::vector<std::string>{});
}

}  // namespace
}  // namespace rxftest
