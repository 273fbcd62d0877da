// The model-instance family: its operations. The core makes no object of it; the caller gives his
// model, so the family only needs to be made ready. Row and column numbers `rc` count from 0.

#ifndef ZTB_PEERS_PBI_FAMILY_H_
#define ZTB_PEERS_PBI_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily pbiFamily;

// Makes the family ready from the default search path (pbiGetReady) or from `directory`
// (pbiGetReadyD). True on success, and at once if the family is ready already; otherwise the reason
// stands in `msg`, a buffer of `msgSize` chars.
bool pbiGetReady(char* msg, int msgSize);
bool pbiGetReadyD(const char* directory, char* msg, int msgSize);

// One slot for each row of the table, under the operation's name.
#define ROW(...) ZTB_PEER_SLOT(pbiFamily, __VA_ARGS__)
ZTB_PEER_PBI_OPERATIONS(ROW)
#undef ROW

}  // namespace ztb::peers

#endif  // ZTB_PEERS_PBI_FAMILY_H_
