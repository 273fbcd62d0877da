// The solver-catalogue family: its operations, and how an object of it is made and freed. `solver`
// is the number that rgyAlgNumber gives for a solver's name, `alg` a live solver object.

#ifndef ZTB_PEERS_RGY_FAMILY_H_
#define ZTB_PEERS_RGY_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily rgyFamily;

// Makes the family ready from the default search path (rgyCreate) or from `directory` (rgyCreateD)
// and creates an object. True on success; otherwise the reason stands in `msg`, a buffer of
// `msgSize` chars. A family that is ready already ignores the directory.
bool rgyCreate(void** handleOut, char* msg, int msgSize);
bool rgyCreateD(void** handleOut, const char* directory, char* msg, int msgSize);

// Frees the object. Always 1.
int rgyFree(void** handleRef);

// One slot for each row of the table, under the operation's name.
#define ROW(...) ZTB_PEER_SLOT(rgyFamily, __VA_ARGS__)
ZTB_PEER_RGY_OPERATIONS(ROW)
#undef ROW

}  // namespace ztb::peers

#endif  // ZTB_PEERS_RGY_FAMILY_H_
