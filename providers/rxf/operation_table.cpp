#include "providers/rxf/operation_table.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

namespace rxffile {

namespace {

constexpr int kMaxArguments = 5;
constexpr std::size_t kReasonRoom = 160;

struct Operation {
  std::string_view name;
  int argCount;
  std::array<int, kMaxArguments + 1> codes;  // the result's, then the arguments'
};

constexpr std::array<Operation, 31> kOperations = {{
    {"rxfOpenRead", 2, {3, 11, 4}},
    {"rxfOpenWrite", 3, {3, 11, 11, 4}},
    {"rxfClose", 0, {3}},
    {"rxfErrorStr", 2, {3, 3, 12}},
    {"rxfErrorCount", 0, {3}},
    {"rxfGetLastError", 0, {3}},
    {"rxfGetSpecialValues", 1, {3, 58}},
    {"rxfSetSpecialValues", 1, {15, 57}},
    {"rxfSetReadSpecialValues", 1, {15, 57}},
    {"rxfSystemInfo", 2, {3, 4, 4}},
    {"rxfSymbolInfo", 4, {3, 3, 12, 4, 4}},
    {"rxfSymbolInfoX", 4, {3, 3, 4, 4, 12}},
    {"rxfSymbolGetDomainX", 2, {3, 3, 56}},
    {"rxfFindSymbol", 2, {3, 11, 4}},
    {"rxfGetElemText", 3, {15, 3, 12, 4}},
    {"rxfUMUelInfo", 2, {3, 4, 4}},
    {"rxfUMUelGet", 3, {3, 3, 12, 4}},
    {"rxfDataReadRawStart", 2, {3, 3, 4}},
    {"rxfDataReadRaw", 3, {3, 52, 54, 4}},
    {"rxfDataReadDone", 0, {3}},
    {"rxfStoreDomainSetsSet", 1, {0, 15}},
    {"rxfUELRegisterRawStart", 0, {3}},
    {"rxfUELRegisterRaw", 1, {3, 11}},
    {"rxfUELRegisterDone", 0, {3}},
    {"rxfAddAlias", 2, {15, 11, 11}},
    {"rxfAddSetText", 2, {3, 11, 4}},
    {"rxfDataWriteRawStart", 5, {15, 11, 11, 3, 3, 3}},
    {"rxfDataWriteRaw", 2, {3, 51, 53}},
    {"rxfDataWriteDone", 0, {3}},
    {"rxfSymbolSetDomain", 1, {15, 55}},
    {"rxfSymbolSetDomainX", 2, {3, 3, 55}},
}};

}  // namespace

bool offersOperation(const char* operation, int argCount, const int* codes, char* msg) {
  const std::string_view name = operation == nullptr ? "" : operation;
  const auto* found = std::find_if(kOperations.begin(), kOperations.end(),
                                   [&](const Operation& o) { return o.name == name; });
  if (found == kOperations.end()) {
    if (msg != nullptr) std::snprintf(msg, kReasonRoom, "not offered by this RXF library");
    return false;
  }
  if (found->argCount != argCount) {
    if (msg != nullptr) {
      std::snprintf(msg, kReasonRoom, "it has %d arguments, %d were asked for", found->argCount,
                    argCount);
    }
    return false;
  }
  for (int i = 0; i <= argCount; ++i) {
    const int offered = found->codes.at(static_cast<unsigned>(i));
    if (codes != nullptr && codes[i] == offered) continue;
    if (msg != nullptr) {
      std::snprintf(msg, kReasonRoom, "%s %d has type code %d, %d was asked for",
                    i == 0 ? "result" : "argument", i, offered, codes == nullptr ? -1 : codes[i]);
    }
    return false;
  }
  return true;
}

}  // namespace rxffile
