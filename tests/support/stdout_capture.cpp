#include "tests/support/stdout_capture.h"

#include <unistd.h>

#include <array>
#include <iostream>
#include <stdexcept>

namespace ztbtest {

namespace {

void flushAll() {
  std::cout.flush();
  std::fflush(stdout);
}

}  // namespace

StdoutCapture::StdoutCapture() : file_(std::tmpfile()), savedDescriptor_(dup(STDOUT_FILENO)) {
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
