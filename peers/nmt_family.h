// The name-dictionary family: its operations. The core makes no object of it; it gets the one that
// belongs to a model, so the family only needs to be made ready. Dictionary indices `i` count from
// 1, row and column numbers `rc` from 0.

#ifndef ZTB_PEERS_NMT_FAMILY_H_
#define ZTB_PEERS_NMT_FAMILY_H_

#include "peers/peer_family.h"
#include "peers/slot.h"

namespace ztb::peers {

extern PeerFamily nmtFamily;

// Makes the family ready from the default search path (nmtGetReady) or from `directory`
// (nmtGetReadyD). True on success, and at once if the family is ready already; otherwise the reason
// stands in `msg`, a buffer of `msgSize` chars.
bool nmtGetReady(char* msg, int msgSize);
bool nmtGetReadyD(const char* directory, char* msg, int msgSize);

// Labels and symbols.
inline const Slot<"nmtNUels", int()> nmtNUels{nmtFamily, {3}};
inline const Slot<"nmtUelLabel", int(int i, char* quote, char* buffer, int bufferSize)> nmtUelLabel{
    nmtFamily, {3, 3, 19, 17, 3}};
inline const Slot<"nmtNLSyms", int()> nmtNLSyms{nmtFamily, {3}};
inline const Slot<"nmtSymName", int(int i, char* buffer, int bufferSize)> nmtSymName{nmtFamily,
                                                                                     {3, 3, 17, 3}};
inline const Slot<"nmtSymType", int(int i)> nmtSymType{nmtFamily, {3, 3}};
inline const Slot<"nmtSymDim", int(int i)> nmtSymDim{nmtFamily, {3, 3}};
inline const Slot<"nmtSymText", int(int i, char* quote, char* buffer, int bufferSize)> nmtSymText{
    nmtFamily, {3, 3, 19, 17, 3}};
inline const Slot<"nmtSymUserInfo", int(int i)> nmtSymUserInfo{nmtFamily, {3, 3}};
inline const Slot<"nmtSymIndex", int(const char* name)> nmtSymIndex{nmtFamily, {3, 11}};

// Rows and columns. A walk ends when `rc` becomes negative, and is closed in any case.
inline const Slot<"nmtFindFirstRowCol", void*(int i, const int* keys, int* rc)> nmtFindFirstRowCol{
    nmtFamily, {1, 3, 51, 4}};
inline const Slot<"nmtFindNextRowCol", int(void* search, int* rc)> nmtFindNextRowCol{nmtFamily,
                                                                                     {3, 1, 4}};
inline const Slot<"nmtFindClose", void(void* search)> nmtFindClose{nmtFamily, {0, 1}};
inline const Slot<"nmtRowUels", int(int rc, int* symbol, int* keys, int* dim)> nmtRowUels{
    nmtFamily, {3, 3, 4, 52, 4}};
inline const Slot<"nmtColUels", int(int rc, int* symbol, int* keys, int* dim)> nmtColUels{
    nmtFamily, {3, 3, 4, 52, 4}};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_NMT_FAMILY_H_
