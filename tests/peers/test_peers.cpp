#include "tests/peers/test_peers.h"

#include <dlfcn.h>

#include <sstream>
#include <stdexcept>
#include <thread>

namespace peertest {
namespace {

// Without RTLD_NOLOAD: a library that is open already only counts one user more.
void* open(const std::string& fileName) {
  return dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
}

std::string pathOf(const std::string& kind, const char* fileName) {
  return peerDirectory(kind) + '/' + fileName;
}

}  // namespace

std::string peerDirectory(const std::string& kind) {
  return TEST_PEERS_DIRECTORY "/" + kind;
}

std::vector<std::string> peerLog(const std::string& kind, const char* fileName) {
  void* library = dlopen(pathOf(kind, fileName).c_str(), RTLD_NOW | RTLD_NOLOAD);
  if (library == nullptr) throw std::runtime_error(kind + " is not open");
  const auto log = reinterpret_cast<const char* (*)()>(dlsym(library, "peerLog"));
  std::istringstream text(log());
  std::vector<std::string> lines;
  for (std::string line; std::getline(text, line);) lines.push_back(line);
  dlclose(library);
  return lines;
}

void enterAllLocksFromAnotherThread(ztb::peers::PeerFamily& family) {
  std::thread other([&] {
    for (ztb::peers::platform::Lock* lock :
         {&family.state.libraryLock, &family.state.objectCountLock, &family.state.errorLock}) {
      lock->enter();
      lock->leave();
    }
  });
  other.join();
}

std::string openError(const std::string& fileName) {
  if (open(fileName) != nullptr) throw std::runtime_error(fileName + " can be opened");
  return dlerror();
}

std::string symbolError(const std::string& kind, const char* fileName, const char* symbol) {
  void* library = open(pathOf(kind, fileName));
  if (library == nullptr) throw std::runtime_error(kind + " cannot be opened");
  dlerror();
  if (dlsym(library, symbol) != nullptr)
    throw std::runtime_error(std::string(symbol) + " is there");
  return dlerror();
}

}  // namespace peertest
