// A library that is opened when the first of its functions is called, so that it costs the start of
// a command that calls none nothing.
#ifndef ZTB_TOOLS_FILES_LATE_LIBRARY_H_
#define ZTB_TOOLS_FILES_LATE_LIBRARY_H_

namespace tool {

class LateLibrary {
 public:
  // The library of this name, such as "ztbsweep", looked for beside the program's own. REQUIRES:
  // the text outlives the library.
  explicit constexpr LateLibrary(const char* name) : name_(name) {}

  // A function of the library; `Function` is the type of its pointer. Throws Failure where the
  // library cannot be opened or lacks it. Safe in any thread.
  template <class Function>
  [[nodiscard]] Function function(const char* name) const {
    return reinterpret_cast<Function>(find(name));
  }

 private:
  [[nodiscard]] void* find(const char* name) const;

  const char* name_;
};

}  // namespace tool

// The function `name`, which a header declares, of a LateLibrary; looked for by the first call.
#define ZTB_LATE(library, name)                                                \
  ([] {                                                                        \
    static const auto function = (library).function<decltype(&(name))>(#name); \
    return function;                                                           \
  }())

#endif  // ZTB_TOOLS_FILES_LATE_LIBRARY_H_
