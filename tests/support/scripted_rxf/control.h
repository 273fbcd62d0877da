// A control function of a scripted peer, found in the peer's library by its name.

#ifndef ZTB_TESTS_SUPPORT_SCRIPTED_RXF_CONTROL_H_
#define ZTB_TESTS_SUPPORT_SCRIPTED_RXF_CONTROL_H_

#include <dlfcn.h>

#include <stdexcept>

namespace scripted {

// Throws std::runtime_error when it is made and the library has no such function.
template <typename Type>
class Control;

template <typename Result, typename... Args>
class Control<Result(Args...)> {
 public:
  Control(void* library, const char* name)
      : function_(reinterpret_cast<Result (*)(Args...)>(dlsym(library, name))) {
    if (function_ == nullptr) throw std::runtime_error(dlerror());
  }
  Result operator()(Args... args) const { return function_(args...); }

 private:
  Result (*function_)(Args...);
};

}  // namespace scripted

#endif  // ZTB_TESTS_SUPPORT_SCRIPTED_RXF_CONTROL_H_
