// Moving, comparing, copying and ending record handles.

#include "core/frame.h"
#include "core/handles.h"
#include "core/operations.h"
#include "core/text.h"
#include "store/symbol_factory.h"

namespace ztb {
namespace {

int statusOf(bool answer) {
  return answer ? success : failure;
}

int lastLabelOf(const ZTB& db) {
  return db.uels.size() - 1;
}

bool standOnSame(AbstractZTBSymbolIterator& first, AbstractZTBSymbolIterator& second) {
  if (first.onUniverse() || second.onUniverse()) {
    return first.universePosition() == second.universePosition();
  }
  return first.valuesAddress() == second.valuesAddress();
}

}  // namespace

int ztbRecordMoveNext(ztbRec* handle, void* rec) {
  return operation(handle, "ztbRecordMoveNext", [&](ZTB& db) {
    AbstractZTBSymbolIterator* record = recordOf(rec);
    if (record == nullptr) {
      return failNoRecord(db);
    }
    return record->moveNextAtHand() || record->moveNext(lastLabelOf(db))
               ? success
               : db.fail("%s", record->message());
  });
}

int ztbRecordHasNext(ztbRec* handle, void* rec) {
  return operation(handle, "ztbRecordHasNext", [&](ZTB& db) {
    return rec == nullptr ? failNoRecord(db) : statusOf(recordOf(rec)->hasNext(lastLabelOf(db)));
  });
}

int ztbRecordMovePrev(ztbRec* handle, void* rec) {
  return operation(handle, "ztbRecordMovePrev", [&](ZTB& db) {
    return rec == nullptr ? failNoRecord(db) : statusOf(recordOf(rec)->movePrev());
  });
}

int ztbRecordHasPrev(ztbRec* handle, void* rec) {
  return operation(handle, "ztbRecordHasPrev", [&](ZTB& db) {
    return rec == nullptr ? failNoRecord(db) : statusOf(recordOf(rec)->hasPrev());
  });
}

int ztbSameRecord(ztbRec* handle, void* rec1, void* rec2) {
  return operation(handle, {"ztbSameRecord", nullptr, "ztbSameRecord"}, [&](const ZTB&) {
    if (rec1 == rec2) {
      return success;
    }
    return statusOf(rec1 != nullptr && rec2 != nullptr &&
                    standOnSame(*recordOf(rec1), *recordOf(rec2)));
  });
}

int ztbCopySymbolIterator(ztbRec* handle, void* rec, void** recPtr) {
  return operation(handle, "ztbCopySymbolIterator", [&](ZTB& db) {
    if (rec == nullptr) {
      return db.fail("No source symbol record handle specified");
    }
    *recPtr = nullptr;
    *recPtr = copyRecordHandle(db.recordStorage, *recordOf(rec)).release();
    return success;
  });
}

void* ztbCopySymbolIteratorPy(ztbRec* handle, void* rec, int* status) {
  return handleFromPlain("ztbCopySymbolIteratorPy", status,
                         [&](void** result) { return ztbCopySymbolIterator(handle, rec, result); });
}

int ztbFreeSymbolIterator(ztbRec* handle, void* rec) {
  return operation(handle, "ztbFreeSymbolIterator", [&](ZTB& db) {
    if (rec == nullptr) {
      return db.fail("No iterator to be freed defined");
    }
    delete recordOf(rec);
    return success;
  });
}

}  // namespace ztb
