// Native work without the interpreter's lock, which Ctrl-C ends all the same.
#ifndef ZTB_BINDINGS_PYTHON_NATIVE_INTERRUPTION_H_
#define ZTB_BINDINGS_PYTHON_NATIVE_INTERRUPTION_H_

#include <pybind11/pybind11.h>
#include <ztb/ztb.h>

#include <chrono>
#include <optional>
#include <utility>
#include <ztb/error.hpp>

namespace python {

namespace py = pybind11;

// How long native work and waits go on between two looks for signals.
inline constexpr std::chrono::milliseconds betweenSignalLooks{50};

// Looks for signals on behalf of work that the interpreter does not see. What a signal handler
// raises, such as KeyboardInterrupt, waits here until the work has ended.
class Interruption {
 public:
  Interruption();
  Interruption(const Interruption&) = delete;
  Interruption& operator=(const Interruption&) = delete;
  ~Interruption() = default;

  // Whether the work has to end. Signals are looked for at most every few hundredths of a second,
  // for which the interpreter's lock is taken.
  bool asked();

  // Ends the work, if it has to end: throws what the handler raised.
  // REQUIRES: the interpreter's lock is not held.
  void check() {
    if (asked()) {
      throw Ended();
    }
  }

  // Throws what a signal handler raised, if one did. REQUIRES: the interpreter's lock.
  void raise();

  // Thrown by check(); runWithoutInterpreter turns it into the error.
  class Ended {};

 private:
  std::chrono::steady_clock::time_point next_;
  std::optional<py::error_already_set> error_;
};

// How many records a loop passes between two questions.
inline constexpr py::ssize_t recordsBetweenQuestions = 1 << 14;

// Runs work(interruption) without the interpreter's lock. Throws what a signal handler raised
// meanwhile, also when the work failed because of it or came to its end.
template <class Work>
void runWithoutInterpreter(Work&& work) {
  Interruption interruption;
  try {
    const py::gil_scoped_release released;
    work(interruption);
  } catch (const Interruption::Ended&) {
    interruption.raise();
  } catch (const ztb::Error&) {
    interruption.raise();
    throw;
  }
  interruption.raise();
}

}  // namespace python

#endif  // ZTB_BINDINGS_PYTHON_NATIVE_INTERRUPTION_H_
