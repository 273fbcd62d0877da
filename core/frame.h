// The frame of every exported operation: trace line, guarded body, status.
//
// Nothing else in the library traces operations or turns exceptions into messages. An operation is
// its checks and its body in a callable that takes the database and returns 1 or 0.
#ifndef ZTB_CORE_FRAME_H_
#define ZTB_CORE_FRAME_H_

#include <ztb/types.h>

#include <cstdio>
#include <exception>
#include <new>
#include <utility>

#include "core/ztb.h"

namespace ztb {

// The words by which an operation traces itself and names itself in the texts of its guard. Without
// a name for running out of memory, that is an exception like any other.
struct OperationName {
  constexpr OperationName(const char* name) : OperationName(name, name) {}
  constexpr OperationName(const char* traceName, const char* guardName)
      : OperationName(traceName, guardName, guardName) {}
  constexpr OperationName(const char* traceName, const char* memoryName, const char* exceptionName)
      : trace(traceName), outOfMemory(memoryName), exception(exceptionName) {}

  const char* trace;
  const char* outOfMemory;
  const char* exception;
};

inline void traceOperation(const char* name) {
  if (traceLevel() > 0) {
    std::puts(name);
  }
}

inline ZTB& databaseOf(ztbRec* handle) {
  return *static_cast<ZTB*>(handle);
}
inline ztbRec* handleOf(ZTB* database) {
  return database;
}

// Runs `body(database)`. Running out of memory gives "Out of memory in NAME", also on standard
// output; any other standard exception "Unexpected exception in NAME: TEXT". The result is then 0.
// Always inlined: passing the body's captures on through memory costs more than many a body.
template <class Body>
[[gnu::always_inline]] inline int operation(ztbRec* handle, OperationName name, Body&& body) {
  traceOperation(name.trace);
  ZTB& db = databaseOf(handle);
  try {
    return std::forward<Body>(body)(db);
  } catch (const std::exception& e) {
    const bool outOfMemory = dynamic_cast<const std::bad_alloc*>(&e) != nullptr;
    if (outOfMemory && name.outOfMemory != nullptr) {
      return db.failOutOfMemory(name.outOfMemory);
    }
    return db.failAs(outOfMemory ? ZTB_ERROR_OUT_OF_MEMORY : ZTB_ERROR_INTERNAL,
                     "Unexpected exception in %s: %s", name.exception, e.what());
  }
}

// The same without a guard, for operations whose exceptions leave the library.
template <class Body>
int unguardedOperation(ztbRec* handle, const char* name, Body&& body) {
  traceOperation(name);
  return std::forward<Body>(body)(databaseOf(handle));
}

// The twin of an operation for callers that take the handle as the function's value: `body` is
// called with the database and a null handle to fill, inside the frame.
template <class Body>
void* handleOperation(ztbRec* handle, OperationName name, int* status, Body&& body) {
  void* result = nullptr;
  *status = operation(handle, name, [&](ZTB& db) { return body(db, &result); });
  return result;
}

// The twin that leads to its plain operation, which traces and guards itself.
template <class Plain>
void* handleFromPlain(const char* name, int* status, Plain&& plain) {
  traceOperation(name);
  void* result = nullptr;
  *status = plain(&result);
  return result;
}

}  // namespace ztb

#endif  // ZTB_CORE_FRAME_H_
