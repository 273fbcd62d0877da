// Which thread a process began with.
#ifndef ZTB_PROVIDERS_MODEL_SOLVERS_FIRST_THREAD_H_
#define ZTB_PROVIDERS_MODEL_SOLVERS_FIRST_THREAD_H_

namespace lomu {

// Whether the calling thread is the one that the process began with.
bool isFirstThread();

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_SOLVERS_FIRST_THREAD_H_
