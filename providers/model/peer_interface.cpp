#include "providers/model/peer_interface.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "providers/model/fixed_text.h"

namespace lomu {

namespace {

constexpr int kReasonRoom = 160;

int refuse(const std::string& reason, char* msg) {
  copyText(reason, msg, kReasonRoom);
  return 0;
}

}  // namespace

int checkOperation(const PeerFamily& family, const char* operation, int argCount, const int* codes,
                   char* msg) {
  const std::string_view name = operation == nullptr ? "" : operation;
  const auto found = std::find_if(family.operations.begin(), family.operations.end(),
                                  [&](const Operation& o) { return o.name == name; });
  if (found == family.operations.end()) {
    return refuse("not offered by this " + std::string(family.name) + " library", msg);
  }
  const int arguments = static_cast<int>(found->codes.size()) - 1;
  if (arguments != argCount) {
    return refuse("it has " + std::to_string(arguments) + " arguments, " +
                      std::to_string(argCount) + " were asked for",
                  msg);
  }
  for (std::size_t i = 0; i < found->codes.size(); ++i) {
    const int asked = codes == nullptr ? -1 : codes[i];
    if (asked == found->codes[i]) continue;
    return refuse((i == 0 ? "result " : "argument ") + std::to_string(i) + " has type code " +
                      std::to_string(found->codes[i]) + ", " + std::to_string(asked) +
                      " was asked for",
                  msg);
  }
  return 1;
}

int checkVersion(const PeerFamily& family, int api, char* msg, int* compatibility) {
  if (compatibility != nullptr) *compatibility = family.apiVersion;
  copyText("", msg, 1);
  if (api == family.apiVersion) return 1;
  return refuse("The " + std::string(family.name) + " library offers API version " +
                    std::to_string(family.apiVersion) + ", version " + std::to_string(api) +
                    " was asked for",
                msg);
}

}  // namespace lomu
