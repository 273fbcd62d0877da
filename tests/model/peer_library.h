// The model libraries as the core meets them: opened at run time, reached by the names that they
// export and by nothing else.
#ifndef ZTB_TESTS_MODEL_PEER_LIBRARY_H_
#define ZTB_TESTS_MODEL_PEER_LIBRARY_H_

#include <string>
#include <vector>

namespace modeltest {

class PeerLibrary {
 public:
  // Throws std::runtime_error when there is no such library.
  explicit PeerLibrary(const std::string& path);

  // The address of an exported name, null when there is none.
  [[nodiscard]] void* address(const std::string& name) const;

  // Calls an operation: call<int(void*, int)>("pbiGetVarStatOne", pbi, 0). Throws
  // std::runtime_error when it is not exported.
  template <typename Function, typename... Arguments>
  auto call(const std::string& name, Arguments... arguments) const {
    return reinterpret_cast<Function*>(required(name))(arguments...);
  }

  // All names that the library defines for others, in ascending order, as `nm` lists them.
  [[nodiscard]] std::vector<std::string> exportedNames() const;

 private:
  [[nodiscard]] void* required(const std::string& name) const;

  std::string path_;
  void* library_;
};

const PeerLibrary& modelLibrary();
const PeerLibrary& dictionaryLibrary();

}  // namespace modeltest

#endif  // ZTB_TESTS_MODEL_PEER_LIBRARY_H_
