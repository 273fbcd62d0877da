// Work that a Python thread waits for, and that Ctrl-C lets it leave.
//
// A call of the library cannot be ended on its way without leaving half a symbol. So it runs in a
// thread of its own while the calling one looks for signals. When a handler raises, the caller goes
// on with that and leaves the work to its end; the turn with the database goes over to the work.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_LEFT_WORK_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_LEFT_WORK_H_

#include <functional>

#include "bindings/python/native/connection.h"

namespace python {

// Runs the work, which must own all that it uses but the connection, and throws what it throws.
// Throws what a signal handler raises meanwhile, with the work left.
// REQUIRES: the interpreter's lock, and the turn with the database.
void runOrLeave(const Shared& connection, std::function<void()> work);

// Waits until no left work runs: the library must not end before. For the end of the interpreter.
void awaitLeftWork();

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_LEFT_WORK_H_
