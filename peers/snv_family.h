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

inline const Slot<"snvGetStrOpt", char*(const char* key, char* buffer)> snvGetStrOpt{snvFamily,
                                                                                     {12, 11, 12}};
inline const Slot<"snvLog", void(const char* text)> snvLog{snvFamily, {0, 11}};
inline const Slot<"snvTerminateClear", void()> snvTerminateClear{snvFamily, {0}};
inline const Slot<"snvCallSolver",
                  int(void* pbi, const char* text2, const char* solverName, int number4,
                      int number5, const char* text6, const char* text7, double number8,
                      int number9, int number10, double number11, double number12, void** handle13,
                      char* msg)>
    snvCallSolver{snvFamily, {3, 1, 11, 11, 3, 3, 11, 11, 13, 3, 3, 13, 13, 2, 12}};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_SNV_FAMILY_H_
