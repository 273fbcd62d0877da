// The universe of labels, from outside.

#include "core/frame.h"
#include "core/operations.h"
#include "core/text.h"

namespace ztb {

int ztbMergeUel(ztbRec* handle, const char* label, int* uelNr) {
  return operation(handle, "ztbMergeUel",
                   [&](ZTB& db) { return db.uels.merge(label, uelNr) ? success : failure; });
}

int ztbFindUel(ztbRec* handle, const char* label, int* uelNr) {
  return operation(handle, "ztbFindUel",
                   [&](ZTB& db) { return db.uels.find(label, uelNr) ? success : failure; });
}

int ztbGetUelByIndex(ztbRec* handle, int uelNr, char* label) {
  return operation(handle, "ztbGetUelByIndex", [&](ZTB& db) {
    if (uelNr <= 0 || uelNr >= db.uels.size()) {
      return db.fail("Uel index %d out of range [1,%d]", uelNr, db.uels.size() - 1);
    }
    copyText(label, db.uels.at(uelNr));
    return success;
  });
}

}  // namespace ztb
