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

// What belongs to the model, and its properties.
inline const Slot<"pbiDict", void*()> pbiDict{pbiFamily, {1}};
inline const Slot<"pbiEnvironment", void*()> pbiEnvironment{pbiFamily, {1}};
inline const Slot<"pbiPinfSet", void(double value)> pbiPinfSet{pbiFamily, {0, 13}};
inline const Slot<"pbiMinfSet", void(double value)> pbiMinfSet{pbiFamily, {0, 13}};
inline const Slot<"pbiN", int()> pbiN{pbiFamily, {3}};
inline const Slot<"pbiM", int()> pbiM{pbiFamily, {3}};
inline const Slot<"pbiModelType", int()> pbiModelType{pbiFamily, {3}};

// All columns or rows at once.
inline const Slot<"pbiGetVarL", int(double* values)> pbiGetVarL{pbiFamily, {3, 6}};
inline const Slot<"pbiGetVarM", int(double* values)> pbiGetVarM{pbiFamily, {3, 6}};
inline const Slot<"pbiGetEquL", int(double* values)> pbiGetEquL{pbiFamily, {3, 6}};
inline const Slot<"pbiGetEquM", int(double* values)> pbiGetEquM{pbiFamily, {3, 6}};

// One column.
inline const Slot<"pbiGetVarLOne", double(int rc)> pbiGetVarLOne{pbiFamily, {13, 3}};
inline const Slot<"pbiSetVarLOne", void(int rc, double value)> pbiSetVarLOne{pbiFamily, {0, 3, 13}};
inline const Slot<"pbiGetVarLowerOne", double(int rc)> pbiGetVarLowerOne{pbiFamily, {13, 3}};
inline const Slot<"pbiGetVarUpperOne", double(int rc)> pbiGetVarUpperOne{pbiFamily, {13, 3}};
inline const Slot<"pbiGetVarScaleOne", double(int rc)> pbiGetVarScaleOne{pbiFamily, {13, 3}};
inline const Slot<"pbiGetVarStatOne", int(int rc)> pbiGetVarStatOne{pbiFamily, {3, 3}};
inline const Slot<"pbiGetVarCStatOne", int(int rc)> pbiGetVarCStatOne{pbiFamily, {3, 3}};
inline const Slot<"pbiSetAltVarLowerOne", void(int rc, double value)> pbiSetAltVarLowerOne{
    pbiFamily, {0, 3, 13}};
inline const Slot<"pbiSetAltVarUpperOne", void(int rc, double value)> pbiSetAltVarUpperOne{
    pbiFamily, {0, 3, 13}};

// One row.
inline const Slot<"pbiGetEquLOne", double(int rc)> pbiGetEquLOne{pbiFamily, {13, 3}};
inline const Slot<"pbiSetEquLOne", void(int rc, double value)> pbiSetEquLOne{pbiFamily, {0, 3, 13}};
inline const Slot<"pbiGetEquStatOne", int(int rc)> pbiGetEquStatOne{pbiFamily, {3, 3}};
inline const Slot<"pbiGetEquCStatOne", int(int rc)> pbiGetEquCStatOne{pbiFamily, {3, 3}};
inline const Slot<"pbiGetEquScaleOne", double(int rc)> pbiGetEquScaleOne{pbiFamily, {13, 3}};
inline const Slot<"pbiGetEquTypeOne", int(int rc)> pbiGetEquTypeOne{pbiFamily, {3, 3}};
inline const Slot<"pbiGetRhsOne", double(int rc)> pbiGetRhsOne{pbiFamily, {13, 3}};
inline const Slot<"pbiSetAltRHSOne", void(int rc, double value)> pbiSetAltRHSOne{pbiFamily,
                                                                                 {0, 3, 13}};

// Solution records.
inline const Slot<"pbiGetSolutionVarRec",
                  int(int rc, double* level, double* marginal, int* status, int* status2)>
    pbiGetSolutionVarRec{pbiFamily, {3, 3, 14, 14, 4, 4}};
inline const Slot<"pbiSetSolutionVarRec",
                  int(int rc, double level, double marginal, int status, int status2)>
    pbiSetSolutionVarRec{pbiFamily, {3, 3, 13, 13, 3, 3}};
inline const Slot<"pbiGetSolutionEquRec",
                  int(int rc, double* level, double* marginal, int* status, int* status2)>
    pbiGetSolutionEquRec{pbiFamily, {3, 3, 14, 14, 4, 4}};
inline const Slot<"pbiSetSolutionEquRec",
                  int(int rc, double level, double marginal, int status, int status2)>
    pbiSetSolutionEquRec{pbiFamily, {3, 3, 13, 13, 3, 3}};

// Switches and status of the model.
inline const Slot<"pbiAltBoundsSet", void(int on)> pbiAltBoundsSet{pbiFamily, {0, 15}};
inline const Slot<"pbiAltRHSSet", void(int on)> pbiAltRHSSet{pbiFamily, {0, 15}};
inline const Slot<"pbiForceLinearSet", void(int on)> pbiForceLinearSet{pbiFamily, {0, 15}};
inline const Slot<"pbiModelStatSet", void(int status)> pbiModelStatSet{pbiFamily, {0, 3}};
inline const Slot<"pbiSolveStatSet", void(int status)> pbiSolveStatSet{pbiFamily, {0, 3}};

// Right-hand side and view.
inline const Slot<"pbiEvalGradNLUpdate", int(double* deltaRhs, int doUpdate, int* errorCount)>
    pbiEvalGradNLUpdate{pbiFamily, {3, 6, 15, 21}};
inline const Slot<"pbiViewStore", void*()> pbiViewStore{pbiFamily, {1}};
inline const Slot<"pbiViewRestore", void(void** view)> pbiViewRestore{pbiFamily, {0, 2}};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_PBI_FAMILY_H_
