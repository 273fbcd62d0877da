// The exchange-file family: its operations, and how an object of it is made and freed.

#ifndef ZTB_PEERS_RXF_FAMILY_H_
#define ZTB_PEERS_RXF_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily rxfFamily;

// Makes the family ready from the default search path (rxfCreate) or from `directory` (rxfCreateD)
// and creates an object. True on success; otherwise the reason stands in `msg`, a buffer of
// `msgSize` chars. A family that is ready already ignores the directory.
bool rxfCreate(void** handleOut, char* msg, int msgSize);
bool rxfCreateD(void** handleOut, const char* directory, char* msg, int msgSize);

// Frees the object. Always 1.
int rxfFree(void** handleRef);

// One slot for each row of the table, under the operation's name.
#define ROW(...) ZTB_PEER_SLOT(rxfFamily, __VA_ARGS__)
ZTB_PEER_RXF_OPERATIONS(ROW)
#undef ROW

}  // namespace ztb::peers

#endif  // ZTB_PEERS_RXF_FAMILY_H_
