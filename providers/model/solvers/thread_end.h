// The end of a thread.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_THREAD_END_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_THREAD_END_H_

namespace lomu {

// Has function() called once when the calling thread ends, while its variables (thread_local) are
// still there. Not for the thread that the process began with, and not where the process ends
// first. A second call for the same thread changes nothing; all calls of a program name the same
// function.
void atThreadEnd(void (*function)());

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_THREAD_END_H_
