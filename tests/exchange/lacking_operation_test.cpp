// A peer that lacks an operation: everything works up to the call, which ends the process.
#include <gtest/gtest.h>

#include <string>

#include "core/ztb.h"
#include "tests/exchange/child_scenario.h"
#include "tests/support/scripted_rxf/scripted_rxf_client.h"

namespace ztb::exchangetest {
namespace {

constexpr int missingOperation = 123;

std::string peerDirectory() {
  return scripted::Client::directory();
}

// Opens a file, reads what is in it, and closes it.
void readAll() {
  ZTB db(peerDirectory().c_str());
  db.InitFromRXF("diet.rxf");
  db.CloseRXF(true);
}

// Writes a database with an alias, domains of both kinds, a record and a text.
void writeAll() {
  ZTB db(peerDirectory().c_str());
  int label = 0;
  ASSERT_TRUE(db.uels.merge("flour", &label));
  const auto add = [&](const char* name, int type, AbstractZTBSymbol* domain, const char* unknown) {
    SymbolDescription description;
    description.name = name;
    description.dim = 1;
    description.type = type;
    return db.addSymbol(description, &domain, &unknown);
  };
  AbstractZTBSymbol* foods = add("foods", dmap::typeSet, db.universe.get(), nullptr);
  const double text = db.textNumber("a food");
  foods->insertRecord(&label, &text);
  add("f", dmap::typeAlias, db.universe.get(), nullptr);
  add("cost", dmap::typeParameter, foods, nullptr);
  add("price", dmap::typeParameter, nullptr, "elsewhere");
  db.WriteRXF("out.rxf", 0);
}

void makeFile(const scripted::Client& peer) {
  const int key = 1;
  const double value = 1;
  peer.file("diet.rxf");
  peer.addText("a food");
  peer.addLabel("flour");
  peer.addSymbol("foods", 1, dmap::typeSet, 0, "");
  peer.addRecord(&key, &value);
}

// The text of the operation's stub, and nothing after it.
std::string stubText(const std::string& operation) {
  return operation + " could not be loaded: this peer is too old\n$";
}

template <class Use>
[[noreturn]] void useWithout(const std::string& operation, const Use& use) {
  runAsChild([&] {
    const scripted::Client peer;
    makeFile(peer);
    peer.lack(operation.c_str(), "this peer is too old");
    use();
  });
}

// An operation that reading a file needs. Two of them serve a write too.
class ReadingWithout : public testing::TestWithParam<const char*> {};

TEST_P(ReadingWithout, endsTheProcess) {
  EXPECT_EXIT(useWithout(GetParam(), readAll), testing::ExitedWithCode(missingOperation),
              stubText(GetParam()));
}

TEST_P(ReadingWithout, doesNotHinderWriting) {
  const std::string operation = GetParam();
  if (operation == "rxfGetSpecialValues" || operation == "rxfClose") {
    EXPECT_EXIT(useWithout(operation, writeAll), testing::ExitedWithCode(missingOperation),
                stubText(operation));
  } else {
    EXPECT_EXIT(useWithout(operation, writeAll), testing::ExitedWithCode(0), "^$");
  }
}

INSTANTIATE_TEST_SUITE_P(Each, ReadingWithout,
                         testing::Values("rxfOpenRead", "rxfGetSpecialValues",
                                         "rxfSetReadSpecialValues", "rxfGetElemText",
                                         "rxfUMUelInfo", "rxfUMUelGet", "rxfSystemInfo",
                                         "rxfSymbolInfo", "rxfSymbolInfoX", "rxfSymbolGetDomainX",
                                         "rxfFindSymbol", "rxfDataReadRawStart", "rxfDataReadRaw",
                                         "rxfDataReadDone", "rxfClose"));

class WritingWithout : public testing::TestWithParam<const char*> {};

TEST_P(WritingWithout, endsTheProcess) {
  EXPECT_EXIT(useWithout(GetParam(), writeAll), testing::ExitedWithCode(missingOperation),
              stubText(GetParam()));
}

TEST_P(WritingWithout, doesNotHinderReading) {
  EXPECT_EXIT(useWithout(GetParam(), readAll), testing::ExitedWithCode(0), "^$");
}

INSTANTIATE_TEST_SUITE_P(Each, WritingWithout,
                         testing::Values("rxfOpenWrite", "rxfStoreDomainSetsSet",
                                         "rxfSetSpecialValues", "rxfUELRegisterRawStart",
                                         "rxfUELRegisterRaw", "rxfUELRegisterDone",
                                         "rxfDataWriteRawStart", "rxfErrorCount",
                                         "rxfSymbolSetDomain", "rxfDataWriteRaw",
                                         "rxfDataWriteDone", "rxfSymbolSetDomainX", "rxfAddAlias",
                                         "rxfAddSetText"));

TEST(FailingWithout, theTextOfAnErrorEndsTheProcess) {
  EXPECT_EXIT(useWithout("rxfErrorStr",
                         [] {
                           ZTB db(peerDirectory().c_str());
                           db.InitFromRXF("none.rxf");
                         }),
              testing::ExitedWithCode(missingOperation), stubText("rxfErrorStr"));
}

TEST(FailingWithout, theQueueOfErrorsEndsTheProcess) {
  EXPECT_EXIT(useWithout("rxfGetLastError",
                         [] {
                           scripted::Client().raise("rxfUELRegisterDone", 0, 7);
                           writeAll();
                         }),
              testing::ExitedWithCode(missingOperation), stubText("rxfGetLastError"));
}

}  // namespace
}  // namespace ztb::exchangetest
