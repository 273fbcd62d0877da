// The built library as a loader sees it: its names, versions and signatures.

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <set>
#include <string>
#include <vector>

#include "tests/rxf/peer_file.h"

namespace rxftest {
namespace {

struct Operation {
  const char* name;
  std::vector<int> codes;
};

const std::vector<Operation>& operations() {
  static const std::vector<Operation> all = {
      {"rxfOpenRead", {3, 11, 4}},
      {"rxfOpenWrite", {3, 11, 11, 4}},
      {"rxfClose", {3}},
      {"rxfErrorStr", {3, 3, 12}},
      {"rxfErrorCount", {3}},
      {"rxfGetLastError", {3}},
      {"rxfGetSpecialValues", {3, 58}},
      {"rxfSetSpecialValues", {15, 57}},
      {"rxfSetReadSpecialValues", {15, 57}},
      {"rxfSystemInfo", {3, 4, 4}},
      {"rxfSymbolInfo", {3, 3, 12, 4, 4}},
      {"rxfSymbolInfoX", {3, 3, 4, 4, 12}},
      {"rxfSymbolGetDomainX", {3, 3, 56}},
      {"rxfFindSymbol", {3, 11, 4}},
      {"rxfGetElemText", {15, 3, 12, 4}},
      {"rxfUMUelInfo", {3, 4, 4}},
      {"rxfUMUelGet", {3, 3, 12, 4}},
      {"rxfDataReadRawStart", {3, 3, 4}},
      {"rxfDataReadRaw", {3, 52, 54, 4}},
      {"rxfDataReadDone", {3}},
      {"rxfStoreDomainSetsSet", {0, 15}},
      {"rxfUELRegisterRawStart", {3}},
      {"rxfUELRegisterRaw", {3, 11}},
      {"rxfUELRegisterDone", {3}},
      {"rxfAddAlias", {15, 11, 11}},
      {"rxfAddSetText", {3, 11, 4}},
      {"rxfDataWriteRawStart", {15, 11, 11, 3, 3, 3}},
      {"rxfDataWriteRaw", {3, 51, 53}},
      {"rxfDataWriteDone", {3}},
      {"rxfSymbolSetDomain", {15, 55}},
      {"rxfSymbolSetDomainX", {3, 3, 55}},
  };
  return all;
}

int check(const char* name, int argCount, const std::vector<int>& codes, char* msg) {
  static auto* const function = exported<int(const char*, int, const int*, char*)>("C__XCheck");
  return function(name, argCount, codes.data(), msg);
}

TEST(Interface, everyOperationIsOfferedWithItsSignatureAndIsExported) {
  for (const Operation& operation : operations()) {
    std::array<char, 256> msg{};
    const int arguments = static_cast<int>(operation.codes.size()) - 1;
    EXPECT_EQ(check(operation.name, arguments, operation.codes, msg.data()), 1) << msg.data();
    EXPECT_NE(exportedAddress((std::string("C__") + operation.name).c_str()), nullptr);
  }
}

TEST(Interface, anotherSignatureIsRefusedWithTheReason) {
  std::array<char, 256> msg{};
  for (const Operation& operation : operations()) {
    const int arguments = static_cast<int>(operation.codes.size()) - 1;
    for (std::size_t i = 0; i < operation.codes.size(); ++i) {
      std::vector<int> codes = operation.codes;
      ++codes[i];
      EXPECT_EQ(check(operation.name, arguments, codes, msg.data()), 0) << operation.name;
    }
    std::vector<int> more = operation.codes;
    more.push_back(3);
    EXPECT_EQ(check(operation.name, arguments + 1, more, msg.data()), 0) << operation.name;
  }
  check("rxfClose", 1, {3, 3}, msg.data());
  EXPECT_STREQ(msg.data(), "it has 0 arguments, 1 were asked for");
  check("rxfErrorCount", 0, {15}, msg.data());
  EXPECT_STREQ(msg.data(), "result 0 has type code 3, 15 was asked for");
}

TEST(Interface, anUnknownOperationIsRefused) {
  std::array<char, 256> msg{};
  EXPECT_EQ(check("rxfDataReadStr", 0, {3}, msg.data()), 0);
  EXPECT_STREQ(msg.data(), "not offered by this RXF library");
  EXPECT_EQ(check("rxfDataReadStr", 0, {3}, nullptr), 0);
}

TEST(Interface, versionNineIsSpokenAndNoOther) {
  auto* const version = exported<int(int, char*, int*)>("C__XAPIVersion");
  std::array<char, 256> msg{'x'};
  int compatibility = 0;
  EXPECT_EQ(version(9, msg.data(), &compatibility), 1);
  EXPECT_EQ(compatibility, 9);
  EXPECT_STREQ(msg.data(), "");
  EXPECT_EQ(version(8, msg.data(), &compatibility), 0);
  EXPECT_STREQ(msg.data(), "The RXF library offers API version 9, version 8 was asked for");
  EXPECT_EQ(version(10, nullptr, nullptr), 0);
}

TEST(Interface, theLoadPathIsGivenBack) {
  auto* const set = exported<void(const char*)>("C__rxfSetLoadPath");
  auto* const get = exported<void(char*)>("C__rxfGetLoadPath");
  std::array<char, 256> path{};
  set("/opt/here");
  get(path.data());
  EXPECT_STREQ(path.data(), "/opt/here");
  void* object = nullptr;
  exported<void(void**, const char*)>("XCreateD")(&object, "/opt/there");
  ASSERT_NE(object, nullptr);
  exported<void(void**)>("XFree")(&object);
  EXPECT_EQ(object, nullptr);
  get(path.data());
  EXPECT_STREQ(path.data(), "/opt/there");
  set(std::string(256, 'p').c_str());
  get(path.data());
  EXPECT_STREQ(path.data(), "");
}

// What nm tells of the built file.
std::set<std::string> exportedNames() {
  std::set<std::string> names;
  std::FILE* pipe = popen("nm -D --defined-only '" RXF_LIBRARY "'", "r");
  std::array<char, 512> line{};
  while (std::fgets(line.data(), line.size(), pipe) != nullptr) {
    std::string text = line.data();
    text.pop_back();
    names.insert(text.substr(text.rfind(' ') + 1));
  }
  pclose(pipe);
  return names;
}

// The functions of ztb/rxf.h stand beside these and have tests of their own.
TEST(Interface, nothingElseIsExported) {
  std::set<std::string> expected = {"XCreate",
                                    "XCreateD",
                                    "XFree",
                                    "C__XCheck",
                                    "C__XAPIVersion",
                                    "C__rxfSetLoadPath",
                                    "C__rxfGetLoadPath",
                                    "C__rxfDataReadBlockStart",
                                    "C__rxfDataReadBlock"};
  for (const Operation& operation : operations()) {
    expected.insert(std::string("C__") + operation.name);
  }
  std::set<std::string> names = exportedNames();
  std::erase_if(names, [](const std::string& name) { return name.starts_with("ztbRxf"); });
  EXPECT_EQ(names, expected);
}

TEST(Interface, aNullHandleIsHarmless) {
  PeerFile file;
  file.free();
  EXPECT_EQ(file.handle(), nullptr);
  EXPECT_EQ(file.close(), 0);
  EXPECT_EQ(file.errorCount(), 0);
  EXPECT_FALSE(file.startLabels());
  EXPECT_NE(file.openRead("x"), 0);
  exported<void(void**)>("XFree")(nullptr);
  exported<void(void**)>("XCreate")(nullptr);
}

}  // namespace
}  // namespace rxftest
