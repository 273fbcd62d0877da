// The operations that a peer family offers, and its version: what the core asks before it binds.
#ifndef ZTB_PROVIDERS_MODEL_PEER_INTERFACE_H_
#define ZTB_PROVIDERS_MODEL_PEER_INTERFACE_H_

#include <span>
#include <string_view>
#include <vector>

namespace lomu {

struct Operation {
  std::string_view name;
  std::vector<int> codes;  // the result's, then those of the arguments behind the handle
};

struct PeerFamily {
  std::string_view name;
  int apiVersion;
  std::vector<Operation> operations;
};

// 1 when the family offers `operation` with exactly this signature, else 0 with the reason in
// `msg`, which, unless null, has room for 160 bytes.
int checkOperation(const PeerFamily& family, const char* operation, int argCount, const int* codes,
                   char* msg);

// 1 when `api` is the family's version, else 0 with the reason in `msg`.
int checkVersion(const PeerFamily& family, int api, char* msg, int* compatibility);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_PEER_INTERFACE_H_
