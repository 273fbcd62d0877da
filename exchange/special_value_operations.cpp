// The caller's spelling of the special values. None of these operations can fail.

#include <algorithm>

#include "core/frame.h"
#include "core/operations.h"

namespace ztb {

int ztbSetSpecialValuesX(ztbRec* handle, const double* values, int* mode) {
  return unguardedOperation(handle, "ztbSetSpecialValuesX", [&](ZTB& db) {
    std::copy_n(values, specialValueCount, db.specialValues.begin());
    db.userSpecialValues = db.specialValues;
    db.specialValueMode = modeOf(db.specialValues);
    if (mode != nullptr) {
      *mode = static_cast<int>(db.specialValueMode);
    }
    return success;
  });
}

int ztbSetSpecialValues(ztbRec* handle, const double* values) {
  traceOperation("ztbSetSpecialValues");
  return ztbSetSpecialValuesX(handle, values, nullptr);
}

int ztbGetSpecialValues(ztbRec* handle, double* values) {
  return unguardedOperation(handle, "ztbGetSpecialValues", [&](const ZTB&) {
    std::copy(internalSpecialValues.begin(), internalSpecialValues.end(), values);
    return success;
  });
}

int ztbGetUserSpecialValues(ztbRec* handle, double* values) {
  return unguardedOperation(handle, "ztbGetUserSpecialValues", [&](const ZTB& db) {
    std::copy(db.specialValues.begin(), db.specialValues.end(), values);
    return success;
  });
}

}  // namespace ztb
