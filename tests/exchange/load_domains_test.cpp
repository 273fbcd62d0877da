// How the domains of a file's symbols become symbols or names.
#include "tests/exchange/exchange_fixture.h"

namespace ztb::exchangetest {
namespace {

using Symbols = std::vector<AbstractZTBSymbol*>;

class LoadDomains : public ExchangeTest {
 protected:
  LoadDomains() {
    peer_.file("f.rxf");
    symbol("i", 1, dmap::typeSet);
  }
};

TEST_F(LoadDomains, ofASymbolWithoutAnyAreTheUniverseAtEveryPosition) {
  symbol("p", 3, dmap::typeParameter);
  load("f.rxf");
  EXPECT_EQ(Symbols(3, db_->universe.get()), at("p").domainSymbols);
  EXPECT_FALSE(db_->universe->usedAsDomain);
}

TEST_F(LoadDomains, namedAsStarAreTheUniverse) {
  symbolOver("p", dmap::typeParameter, {"*", "i"});
  load("f.rxf");
  EXPECT_EQ((Symbols{db_->universe.get(), &at("i")}), at("p").domainSymbols);
  EXPECT_EQ((Lines{"", ""}), at("p").domainNames);
}

TEST_F(LoadDomains, namedAsAOneDimensionalSetAreThatSetWhichIsMarked) {
  symbol("k", 1, dmap::typeSet);
  symbolOver("p", dmap::typeParameter, {"I"});
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("i")}), at("p").domainSymbols);
  EXPECT_TRUE(at("i").usedAsDomain);
  EXPECT_FALSE(at("k").usedAsDomain);
  EXPECT_FALSE(at("p").usedAsDomain);
}

TEST_F(LoadDomains, namedAsAnAliasAreTheAliasItselfAndItsSetIsMarkedToo) {
  symbol("j", 1, dmap::typeAlias, 1);
  symbolOver("p", dmap::typeParameter, {"j"});
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("j")}), at("p").domainSymbols);
  EXPECT_TRUE(at("j").usedAsDomain);
  EXPECT_TRUE(at("i").usedAsDomain);
}

TEST_F(LoadDomains, namedAsAnAliasOfTheUniverseLeaveTheUniverseUnmarked) {
  symbol("all", 1, dmap::typeAlias, 0);
  symbolOver("p", dmap::typeParameter, {"all"});
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("all")}), at("p").domainSymbols);
  EXPECT_TRUE(at("all").usedAsDomain);
  EXPECT_FALSE(db_->universe->usedAsDomain);
}

TEST_F(LoadDomains, thatTheFileHasNoSymbolForKeepTheirName) {
  symbolOver("p", dmap::typeParameter, {"i", "Elsewhere"});
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("i"), nullptr}), at("p").domainSymbols);
  EXPECT_EQ((Lines{"", "Elsewhere"}), at("p").domainNames);
}

TEST_F(LoadDomains, namedAsATwoDimensionalSetKeepTheNameAndMarkNothing) {
  symbol("ij", 2, dmap::typeSet);
  symbolOver("p", dmap::typeParameter, {"ij"});
  load("f.rxf");
  EXPECT_EQ((Symbols{nullptr}), at("p").domainSymbols);
  EXPECT_EQ((Lines{"ij"}), at("p").domainNames);
  EXPECT_FALSE(at("ij").usedAsDomain);
}

TEST_F(LoadDomains, namedAsAnotherKindOfSymbolKeepTheNameAndMarkNothing) {
  symbol("q", 1, dmap::typeParameter);
  symbol("v", 1, dmap::typeVariable);
  symbolOver("p", dmap::typeParameter, {"q", "v"});
  load("f.rxf");
  EXPECT_EQ((Symbols{nullptr, nullptr}), at("p").domainSymbols);
  EXPECT_EQ((Lines{"q", "v"}), at("p").domainNames);
  EXPECT_FALSE(at("q").usedAsDomain);
}

TEST_F(LoadDomains, thatComeLaterInTheFileAreTheRealSymbols) {
  symbolOver("p", dmap::typeParameter, {"later", "latest"});
  symbol("later", 1, dmap::typeSet);
  symbol("latest", 1, dmap::typeAlias, 3);
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("later"), &at("latest")}), at("p").domainSymbols);
  EXPECT_TRUE(at("later").usedAsDomain);
}

TEST_F(LoadDomains, ofASetCanBeTheSetItself) {
  symbolOver("s", dmap::typeSet, {"s"});
  load("f.rxf");
  EXPECT_EQ((Symbols{&at("s")}), at("s").domainSymbols);
}

TEST_F(LoadDomains, ofAnAliasAreNotAskedFor) {
  symbol("j", 1, dmap::typeAlias, 1);
  symbol("p", 0, dmap::typeParameter);
  EXPECT_EQ(1, db_->InitFromRXF("f.rxf"));
  EXPECT_EQ((Lines{"1 rxfSymbolGetDomainX 1", "1 rxfSymbolGetDomainX 3"}),
            log("rxfSymbolGetDomainX"));
  EXPECT_TRUE(at("j").domainSymbols.empty());
}

TEST_F(LoadDomains, canBeTwenty) {
  symbolOver("p", dmap::typeParameter, std::vector<const char*>(20, "i"));
  load("f.rxf");
  EXPECT_EQ(Symbols(20, &at("i")), at("p").domainSymbols);
}

}  // namespace
}  // namespace ztb::exchangetest
