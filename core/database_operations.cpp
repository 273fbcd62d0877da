// Creation and release, the last error, the trace level, the log and questions to the database.

#include <algorithm>
#include <cstring>
#include <stdexcept>
#include <string>

#include "core/frame.h"
#include "core/operations.h"
#include "core/text.h"

namespace ztb {
namespace {

// The frame of operations that make or end the object: while there is none, a failure can only go
// to standard output.
template <class Body>
int lifetimeOperation(ztbRec** pztb, const char* name, Body&& body) {
  traceOperation(name);
  try {
    body();
    return success;
  } catch (const std::bad_alloc&) {
    if (*pztb == nullptr) {
      std::printf("Out of memory in %s\n", name);
      return failure;
    }
    return databaseOf(*pztb).failAs(ZTB_ERROR_OUT_OF_MEMORY, "Out of memory in %s", name);
  } catch (const std::exception& e) {
    if (*pztb == nullptr) {
      std::printf("Unexpected exception in %s: %s\n", name, e.what());
      return failure;
    }
    return databaseOf(*pztb).failAs(ZTB_ERROR_INTERNAL, "Unexpected exception in %s: %s", name,
                                    e.what());
  }
}

// What messages name as the largest key, one more than there is.
constexpr int largestInfoKeyInMessages = 5;

}  // namespace

int ztbCreate(ztbRec** pztb, char* msg) {
  return lifetimeOperation(pztb, "ztbCreate", [&] {
    *pztb = handleOf(new ZTB);
    msg[0] = '\0';
  });
}

int ztbCreateD(ztbRec** pztb, const char* sysDir, char* msg) {
  return lifetimeOperation(pztb, "ztbCreateD", [&] {
    *pztb = handleOf(new ZTB(sysDir == nullptr ? "" : sysDir));
    msg[0] = '\0';
  });
}

int ztbFree(ztbRec** pztb) {
  return lifetimeOperation(pztb, "ztbFree", [&] {
    if (*pztb != nullptr) {
      delete &databaseOf(*pztb);
    }
    *pztb = nullptr;
  });
}

int ztbGetLastError(ztbRec* handle, char* msg) {
  return unguardedOperation(handle, "ztbGetLastError", [&](const ZTB& db) {
    copyText(msg, db.lastError);
    return db.lastError[0] != '\0' ? success : failure;
  });
}

int ztbSetDebug(ztbRec* /*handle*/, int level) {
  traceOperation("ztbSetDebug");
  debugLevel.store(level, std::memory_order_relaxed);
  return success;
}

int ztbPrintLog(ztbRec* handle, const char* msg) {
  return operation(handle, "ztbPrintLog", [&](const ZTB& db) {
    if (msg == nullptr) {
      throw std::logic_error("there is no text to print");
    }
    if (db.logCallback == nullptr) {
      std::puts(msg);
      return success;
    }
    char shortString[ZTB_TEXT_BUFFER_SIZE] = {};
    const std::size_t length = std::min<std::size_t>(std::strlen(msg), sizeof shortString - 1);
    std::copy_n(msg, length, shortString + 1);
    shortString[0] = static_cast<char>(length);
    db.logCallback(shortString, db.hvexUserMem);
    return success;
  });
}

int ztbInfo(ztbRec* handle, int infoKey, int* ival, double* dval, char* sval) {
  return operation(handle, "ztbInfo", [&](ZTB& db) {
    int unasked = 0;
    int& answer = ival == nullptr ? unasked : *ival;
    answer = 0;
    if (dval != nullptr) {
      *dval = 0.0;
    }
    if (sval != nullptr) {
      sval[0] = '\0';
    }
    switch (infoKey) {
      case ZTB_INFO_SYMBOL_COUNT:
        answer = db.symbols.orderedSize();
        return success;
      case ZTB_INFO_UEL_COUNT:
        answer = db.uels.size() - 1;
        return success;
      case ZTB_INFO_SYMBOL_COUNT_WITH_ALIAS:
        answer = db.symbols.size();
        return success;
      case ZTB_INFO_RECORD_STORAGE:
        answer = static_cast<int>(db.recordStorage);
        return success;
      case ZTB_INFO_FILE_BACKED:
        answer = db.initFrom == Source::rxf || db.initFrom == Source::hvex ? 1 : 0;
        return success;
      default:
        return db.fail("infoKey needs to be between %d and %d, saw %d", 0, largestInfoKeyInMessages,
                       infoKey);
    }
  });
}

}  // namespace ztb
