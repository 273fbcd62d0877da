#include "tests/model/peer_library.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstdio>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "tests/support/library_name.h"

namespace modeltest {

namespace {

const std::string kFolder = ZTB_LIBRARY_FOLDER;

struct ClosePipe {
  void operator()(std::FILE* pipe) const { pclose(pipe); }
};

}  // namespace

PeerLibrary::PeerLibrary(const std::string& path)
    : path_(path), library_(dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL)) {
  if (library_ == nullptr) throw std::runtime_error(dlerror());
}

void* PeerLibrary::address(const std::string& name) const {
  return dlsym(library_, name.c_str());
}

void* PeerLibrary::required(const std::string& name) const {
  void* found = address(name);
  if (found == nullptr) throw std::runtime_error(path_ + " does not export " + name);
  return found;
}

std::vector<std::string> PeerLibrary::exportedNames() const {
  const std::string command = "nm -D --defined-only --format=posix '" + path_ + "'";
  const std::unique_ptr<std::FILE, ClosePipe> pipe(popen(command.c_str(), "r"));
  if (pipe == nullptr) throw std::runtime_error("cannot run " + command);
  std::string output;
  for (int c = std::fgetc(pipe.get()); c != EOF; c = std::fgetc(pipe.get())) {
    output.push_back(static_cast<char>(c));
  }
  std::vector<std::string> names;
  std::istringstream lines(output);
  for (std::string line; std::getline(lines, line);) {
    names.push_back(line.substr(0, line.find(' ')));
  }
  std::sort(names.begin(), names.end());
  return names;
}

const PeerLibrary& modelLibrary() {
  static const PeerLibrary library(kFolder + "/" ZTB_LIBRARY_NAME("lomudclib64"));
  return library;
}

const PeerLibrary& dictionaryLibrary() {
  static const PeerLibrary library(kFolder + "/" ZTB_LIBRARY_NAME("nmtmdclib64"));
  return library;
}

}  // namespace modeltest
