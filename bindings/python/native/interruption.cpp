#include "bindings/python/native/interruption.h"

namespace python {

namespace {

using Clock = std::chrono::steady_clock;

}  // namespace

Interruption::Interruption() : next_(Clock::now() + betweenSignalLooks) {}

bool Interruption::asked() {
  if (error_) {
    return true;
  }
  const Clock::time_point now = Clock::now();
  if (now < next_) {
    return false;
  }
  const py::gil_scoped_acquire acquired;
  if (PyErr_CheckSignals() != 0) {
    error_.emplace();
  }
  next_ = Clock::now() + betweenSignalLooks;
  return error_.has_value();
}

void Interruption::raise() {
  if (error_) {
    const py::error_already_set error = std::move(*error_);
    error_.reset();
    throw error;
  }
}

}  // namespace python
