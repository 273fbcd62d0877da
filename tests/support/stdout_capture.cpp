#include "tests/support/stdout_capture.h"

#include <unistd.h>

#include <array>
#include <filesystem>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>

namespace ztbtest {

namespace {

// A file that is gone when it is closed. That of Windows lies in the folder above all, where
// processes that ask for one at the same moment get in each other's way.
std::FILE* openScratchFile() {
#ifdef _WIN32
  const auto name = "ztb-output-" + std::to_string(std::random_device()());
  return std::fopen((std::filesystem::temp_directory_path() / name).string().c_str(), "w+bD");
#else
  return std::tmpfile();
#endif
}

void flushAll() {
  std::cout.flush();
  std::fflush(stdout);
}

}  // namespace

StdoutCapture::StdoutCapture() : file_(openScratchFile()), savedDescriptor_(dup(STDOUT_FILENO)) {
  if (file_ == nullptr || savedDescriptor_ < 0) {
    throw std::runtime_error("cannot capture standard output");
  }
  flushAll();
  dup2(fileno(file_), STDOUT_FILENO);
}

StdoutCapture::~StdoutCapture() {
  restore();
  std::fclose(file_);
}

void StdoutCapture::restore() {
  if (savedDescriptor_ >= 0) {
    flushAll();
    dup2(savedDescriptor_, STDOUT_FILENO);
    close(savedDescriptor_);
    savedDescriptor_ = -1;
  }
}

std::string StdoutCapture::text() {
  restore();
  std::string result;
  std::array<char, 4096> piece{};
  std::rewind(file_);
  for (size_t count = 0; (count = std::fread(piece.data(), 1, piece.size(), file_)) > 0;) {
    result.append(piece.data(), count);
  }
  return result;
}

}  // namespace ztbtest
