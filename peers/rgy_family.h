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

inline const Slot<"rgyReadConfigVUC", int(const char* fileName, const char* systemDirectory)>
    rgyReadConfigVUC{rgyFamily, {3, 11, 11}};
inline const Slot<"rgyAlgNumber", int(const char* solverName)> rgyAlgNumber{rgyFamily, {3, 11}};
inline const Slot<"rgyAlgAllowsModifyProblem", int(int solver)> rgyAlgAllowsModifyProblem{rgyFamily,
                                                                                          {15, 3}};
inline const Slot<"rgyAlgCreate",
                  int(int solver, void** alg, const char* systemDirectory, char* msg)>
    rgyAlgCreate{rgyFamily, {15, 3, 2, 11, 12}};
inline const Slot<"rgyAlgReadyAPI", int(int solver, void* alg, void* pbi)> rgyAlgReadyAPI{
    rgyFamily, {3, 3, 1, 1}};
inline const Slot<"rgyAlgModifyProblem", int(int solver, void* alg)> rgyAlgModifyProblem{rgyFamily,
                                                                                         {3, 3, 1}};
inline const Slot<"rgyAlgCallSolver", int(int solver, void* alg, void* pbi)> rgyAlgCallSolver{
    rgyFamily, {3, 3, 1, 1}};
inline const Slot<"rgyAlgFree", void(int solver, void** alg)> rgyAlgFree{rgyFamily, {0, 3, 2}};

}  // namespace ztb::peers

#endif  // ZTB_PEERS_RGY_FAMILY_H_
