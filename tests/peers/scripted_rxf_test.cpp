// The scripted exchange-file peer, reached through the slots: it does what its control header says.

#include <gtest/gtest.h>

#include <array>
#include <limits>
#include <string>
#include <vector>

#include "peers/rxf_family.h"
#include "tests/peers/child_process.h"
#include "tests/support/scripted_rxf/scripted_rxf_client.h"

namespace ztb::peers {
namespace {

using Lines = std::vector<std::string>;

constexpr double notAvailable = std::numeric_limits<double>::quiet_NaN();

void* makeObject() {
  void* rxf = nullptr;
  char msg[256];
  EXPECT_TRUE(rxfCreateD(&rxf, scripted::Client::directory().c_str(), msg, sizeof msg)) << msg;
  return rxf;
}

// A file with a set, an alias of it and a variable, one value of which isn't available.
void prepareFile(const scripted::Client& peer) {
  const int flour = 1;
  const double text = 1;
  const std::array<double, 5> record{1.5, peer.specialValue(1), 0, 10, 1};
  peer.file("diet.rxf");
  peer.addText("a food");
  peer.addLabel("flour");
  peer.addLabel("milk");
  peer.addSymbol("foods", 1, 0, 0, "what there is");
  peer.addRecord(&flour, &text);
  peer.addSymbol("f", 1, 4, 1, "");
  peer.addSymbol("amount", 1, 2, 0, "bought");
  const char* domain[] = {"foods"};
  peer.setDomain(domain);
  peer.addRecord(&flour, record.data());
}

TEST(ScriptedRxf, ServesAPreparedFile) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    prepareFile(peer);
    void* rxf = makeObject();
    int errorNumber = -1;
    rxfOpenRead(rxf, "diet.rxf", &errorNumber);
    ASSERT_EQ(errorNumber, 0);

    std::array<double, 16> special{};
    rxfGetSpecialValues(rxf, special.data());
    EXPECT_EQ(special[1], peer.specialValue(1));
    special[1] = notAvailable;
    EXPECT_NE(rxfSetReadSpecialValues(rxf, special.data()), 0);

    int symbolCount = 0;
    int labelCount = 0;
    int number = 0;
    rxfSystemInfo(rxf, &symbolCount, &labelCount);
    EXPECT_EQ(symbolCount, 3);
    EXPECT_EQ(labelCount, 2);
    rxfUMUelInfo(rxf, &labelCount, &number);
    EXPECT_EQ(labelCount, 2);
    char text[256];
    rxfUMUelGet(rxf, 2, text, &number);
    EXPECT_STREQ(text, "milk");
    EXPECT_NE(rxfGetElemText(rxf, 1, text, &number), 0);
    EXPECT_STREQ(text, "a food");
    EXPECT_EQ(rxfGetElemText(rxf, 2, text, &number), 0);

    int dim = 0;
    int type = 0;
    int recordCount = 0;
    int userInfo = -1;
    rxfFindSymbol(rxf, "AMOUNT", &number);
    EXPECT_EQ(number, 3);
    rxfSymbolInfo(rxf, number, text, &dim, &type);
    EXPECT_STREQ(text, "amount");
    EXPECT_EQ(dim, 1);
    EXPECT_EQ(type, 2);
    rxfSymbolInfoX(rxf, 2, &recordCount, &userInfo, text);
    EXPECT_EQ(userInfo, 1);
    char* names[] = {text};
    EXPECT_EQ(rxfSymbolGetDomainX(rxf, 1, names), 0);
    EXPECT_NE(rxfSymbolGetDomainX(rxf, 3, names), 0);
    EXPECT_STREQ(text, "foods");

    int key = 0;
    int firstChanged = 0;
    std::array<double, 5> values{};
    rxfDataReadRawStart(rxf, number, &recordCount);
    ASSERT_EQ(recordCount, 1);
    EXPECT_NE(rxfDataReadRaw(rxf, &key, values.data(), &firstChanged), 0);
    EXPECT_EQ(key, 1);
    EXPECT_EQ(values[0], 1.5);
    EXPECT_NE(values[1], values[1]);
    EXPECT_EQ(values[3], 10.0);
    EXPECT_EQ(rxfDataReadRaw(rxf, &key, values.data(), &firstChanged), 0);
    rxfDataReadDone(rxf);
    rxfClose(rxf);
    rxfFree(&rxf);
    EXPECT_EQ(peer.objects(), 0);
  });
}

TEST(ScriptedRxf, KeepsAWrittenFileFromItsClosingOn) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    void* rxf = makeObject();
    int errorNumber = -1;
    rxfOpenWrite(rxf, "new.rxf", "", &errorNumber);
    ASSERT_EQ(errorNumber, 0);
    std::array<double, 16> special{};
    rxfGetSpecialValues(rxf, special.data());
    special[1] = notAvailable;
    EXPECT_NE(rxfSetSpecialValues(rxf, special.data()), 0);
    rxfStoreDomainSetsSet(rxf, 0);
    rxfUELRegisterRawStart(rxf);
    rxfUELRegisterRaw(rxf, "flour");
    rxfUELRegisterDone(rxf);
    const int key = 1;
    const double one = 1;
    const char* everything[] = {"*"};
    const char* foods[] = {"foods"};
    EXPECT_NE(rxfDataWriteRawStart(rxf, "foods", "all", 1, 0, 0), 0);
    EXPECT_NE(rxfSymbolSetDomain(rxf, everything), 0);
    rxfDataWriteRaw(rxf, &key, &one);
    rxfDataWriteDone(rxf);
    EXPECT_NE(rxfAddAlias(rxf, "f", "foods"), 0);
    EXPECT_NE(rxfAddAlias(rxf, "any", "*"), 0);
    EXPECT_EQ(rxfAddAlias(rxf, "g", "unknown"), 0);
    EXPECT_NE(rxfDataWriteRawStart(rxf, "cost", "of a food", 1, 1, 0), 0);
    rxfDataWriteRaw(rxf, &key, &notAvailable);
    rxfDataWriteDone(rxf);
    rxfSymbolSetDomainX(rxf, 4, foods);
    int number = 0;
    rxfAddSetText(rxf, "first", &number);
    EXPECT_EQ(number, 1);
    EXPECT_EQ(peer.dump("new.rxf"), nullptr);
    rxfClose(rxf);
    rxfFree(&rxf);

    EXPECT_STREQ(peer.dump("new.rxf"),
                 "text \"first\"\n"
                 "label \"flour\"\n"
                 "symbol 1 \"foods\" 1 0 0 \"all\"\n"
                 "domain (\"*\")\n"
                 "record [1] [1]\n"
                 "symbol 2 \"f\" 1 4 1 \"\"\n"
                 "symbol 3 \"any\" 1 4 0 \"\"\n"
                 "symbol 4 \"cost\" 1 1 0 \"of a food\"\n"
                 "relaxed (\"foods\")\n"
                 "record [1] [8.5e+290]\n");
    const Lines lines = peer.lines();
    EXPECT_EQ(Lines(lines.begin(), lines.begin() + 10),
              (Lines{"SetLoadPath \"" + scripted::Client::directory() + '"', "1 XCreate",
                     "1 rxfOpenWrite \"new.rxf\" \"\"", "1 rxfGetSpecialValues",
                     "1 rxfSetSpecialValues", "1 rxfStoreDomainSetsSet 0",
                     "1 rxfUELRegisterRawStart", "1 rxfUELRegisterRaw \"flour\"",
                     "1 rxfUELRegisterDone", "1 rxfDataWriteRawStart \"foods\" \"all\" 1 0 0"}));
    EXPECT_EQ(lines[10], "1 rxfSymbolSetDomain (\"*\")");
    EXPECT_EQ(lines[11], "1 rxfDataWriteRaw [1] [1]");
    EXPECT_EQ(lines.back(), "1 XFree");
  });
}

TEST(ScriptedRxf, ForgetsAFileThatIsNotClosed) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    void* rxf = makeObject();
    int errorNumber = -1;
    rxfOpenWrite(rxf, "new.rxf", "", &errorNumber);
    rxfFree(&rxf);
    EXPECT_EQ(peer.dump("new.rxf"), nullptr);
  });
}

TEST(ScriptedRxf, FailsOnceAfterTheGivenNumberOfCalls) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    void* rxf = makeObject();
    int errorNumber = -1;
    rxfOpenWrite(rxf, "new.rxf", "", &errorNumber);
    peer.fail("rxfAddAlias", 1, 0);
    EXPECT_NE(rxfAddAlias(rxf, "a", "*"), 0);
    EXPECT_EQ(rxfAddAlias(rxf, "b", "*"), 0);
    EXPECT_NE(rxfAddAlias(rxf, "c", "*"), 0);
    peer.fail("rxfOpenRead", 0, 42);
    rxfOpenRead(rxf, "new.rxf", &errorNumber);
    EXPECT_EQ(errorNumber, 42);
    char text[256];
    rxfErrorStr(rxf, errorNumber, text);
    EXPECT_STREQ(text, "Scripted error 42");
    peer.errorText(42, "locked");
    rxfErrorStr(rxf, errorNumber, text);
    EXPECT_STREQ(text, "locked");
    rxfFree(&rxf);
  });
}

TEST(ScriptedRxf, MissingFileIsAnError) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    void* rxf = makeObject();
    int errorNumber = 0;
    rxfOpenRead(rxf, "nothing.rxf", &errorNumber);
    EXPECT_EQ(errorNumber, 1);
    rxfFree(&rxf);
  });
}

TEST(ScriptedRxf, RaisedErrorsAreCountedAndDrainedLatestFirst) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    void* rxf = makeObject();
    peer.raise("rxfDataReadDone", 0, 7);
    peer.raise("rxfDataReadDone", 1, 8);
    rxfDataReadDone(rxf);
    rxfDataReadDone(rxf);
    rxfDataReadDone(rxf);
    EXPECT_EQ(rxfErrorCount(rxf), 2);
    EXPECT_EQ(rxfGetLastError(rxf), 8);
    EXPECT_EQ(rxfGetLastError(rxf), 7);
    EXPECT_EQ(rxfGetLastError(rxf), 0);
    EXPECT_EQ(rxfErrorCount(rxf), 2);
    rxfFree(&rxf);
  });
}

TEST(ScriptedRxf, LacksAnOperationWhenTold) {
  const peertest::ChildResult result = peertest::inChild([] {
    const scripted::Client peer;
    peer.lack("rxfAddAlias", "no aliases here");
    // Nobody frees the object when the process ends; static, so that it doesn't count as lost.
    static void* rxf = makeObject();
    rxfAddAlias(rxf, "a", "*");
  });
  EXPECT_EQ(result.exitCode, 123);
  EXPECT_EQ(result.output, "rxfAddAlias could not be loaded: no aliases here\n");
}

TEST(ScriptedRxf, RefusesItsVersionWhenTold) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    peer.refuseVersion("not today");
    void* rxf = nullptr;
    char msg[256];
    EXPECT_FALSE(rxfCreateD(&rxf, scripted::Client::directory().c_str(), msg, sizeof msg));
    EXPECT_STREQ(msg, "not today");
    peer.refuseVersion(nullptr);
    rxf = makeObject();
    rxfFree(&rxf);
  });
}

TEST(ScriptedRxf, ResetForgetsAllButTheLiveObjects) {
  peertest::expectPassesInChild([] {
    const scripted::Client peer;
    prepareFile(peer);
    void* rxf = makeObject();
    peer.fail("rxfClose", 0, 5);
    peer.reset();
    EXPECT_STREQ(peer.log(), "");
    EXPECT_EQ(peer.dump("diet.rxf"), nullptr);
    EXPECT_EQ(rxfClose(rxf), 1);
    EXPECT_EQ(peer.objects(), 1);
    void* second = makeObject();
    EXPECT_EQ(peer.lines(), (Lines{"1 rxfClose", "2 XCreate"}));
    rxfFree(&rxf);
    rxfFree(&second);
    peer.reset();
    rxf = makeObject();
    EXPECT_EQ(peer.lines(), Lines{"1 XCreate"});
    rxfFree(&rxf);
    peer.clearLog();
    EXPECT_STREQ(peer.log(), "");
  });
}

}  // namespace
}  // namespace ztb::peers
