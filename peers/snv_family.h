// The solver-environment family: its operations. The core makes no object of it; it gets the one
// that belongs to a model, so the family only needs to be made ready.

#ifndef ZTB_PEERS_SNV_FAMILY_H_
#define ZTB_PEERS_SNV_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily snvFamily;

// Makes the family ready from the default search path (snvGetReady) or from `directory`
// (snvGetReadyD). True on success, and at once if the family is ready already; otherwise the reason
// stands in `msg`, a buffer of `msgSize` chars.
bool snvGetReady(char* msg, int msgSize);
bool snvGetReadyD(const char* directory, char* msg, int msgSize);

// One slot for each row of the table, under the operation's name.
#define ROW(...) ZTB_PEER_SLOT(snvFamily, __VA_ARGS__)
ZTB_PEER_SNV_OPERATIONS(ROW)
#undef ROW

}  // namespace ztb::peers

#endif  // ZTB_PEERS_SNV_FAMILY_H_
