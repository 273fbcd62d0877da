// Exchange files, from outside.

#include "core/frame.h"
#include "core/operations.h"

namespace ztb {

int ztbInitFromRXF(ztbRec* handle, const char* fileName) {
  return operation(handle, "ztbInitFromRXF", [&](ZTB& db) { return db.InitFromRXF(fileName); });
}

int ztbCloseRXF(ztbRec* handle, int loadRemain) {
  return operation(handle, "ztbCloseRXF", [&](ZTB& db) { return db.CloseRXF(loadRemain != 0); });
}

int ztbWriteRXF(ztbRec* handle, const char* fileName, int noDomainCheck) {
  return operation(handle, "ztbWriteRXF",
                   [&](ZTB& db) { return db.WriteRXF(fileName, noDomainCheck); });
}

}  // namespace ztb
