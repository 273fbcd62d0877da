// One mark a symbol: whether it was written to while recording was on.

#include "core/frame.h"
#include "core/operations.h"

namespace ztb {

int ztbStartWriteRecording(ztbRec* handle) {
  return operation(handle,
                   {"ztbStartWriteRecording", "ztbStartWriteRecording`", "ztbStartWriteRecording"},
                   [](ZTB& db) {
                     if (db.writeRecording) {
                       return db.fail("Write Recording already active");
                     }
                     db.writeRecording = true;
                     // From the second symbol on: the first keeps its mark from an earlier
                     // recording.
                     for (int index = 1; index < db.symbols.orderedSize(); ++index) {
                       if (AbstractZTBSymbol* symbol = db.symbols.orderedAt(index)) {
                         symbol->writeRecorded = false;
                       }
                     }
                     return success;
                   });
}

int ztbStopWriteRecording(ztbRec* handle) {
  return unguardedOperation(handle, "ztbStopWriteRecording", [](ZTB& db) {
    if (!db.writeRecording) {
      return db.fail("Write Recording not active");
    }
    db.writeRecording = false;
    return success;
  });
}

}  // namespace ztb
