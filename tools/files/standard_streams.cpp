#include "tools/files/standard_streams.h"

#include <fmt/format.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "tools/files/system_files.h"
#include "tools/text/console.h"
#include "tools/text/failure.h"

namespace tool {

namespace {

constexpr const char* inputTitle = "standard input";
constexpr const char* outputTitle = "standard output";

[[noreturn]] void fail(const std::string& file, const char* what) {
  throw Failure(fmt::format("{}: {}: {}", file, what, systemText(errno)));
}

// Copies all that is left of one file to the end of another.
void copyAll(int from, const std::string& fromName, int to, const std::string& toName) {
  std::array<char, 1U << 16U> buffer{};
  for (;;) {
    const ssize_t count = posix::read(from, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) fail(fromName, "cannot be read");
    if (count == 0) return;
    for (ssize_t done = 0; done < count;) {
      const ssize_t written =
          posix::write(to, buffer.data() + done, static_cast<std::size_t>(count - done));
      if (written < 0 && errno != EINTR) fail(toName, "cannot be written");
      done += written < 0 ? 0 : written;
    }
  }
}

}  // namespace

std::string inputFile(const std::string& path) {
  if (path != "-") {
    return path;
  }
  takeStandardInput();
  std::string name;
  const int file = openTemporary(temporaryFolder(), name);
  if (file < 0) {
    fail(name, "cannot be written");
  }
  copyAll(STDIN_FILENO, inputTitle, file, name);
  return name;
}

void takeStandardInput() {
  static bool taken = false;
  if (taken) {
    throw UsageError("-: standard input can be read once, so - can stand once");
  }
  taken = true;
}

std::string inputName(const std::string& path) {
  return path == "-" ? inputTitle : path;
}

OutputFile::OutputFile(const std::string& path) : name_(path), path_(path) {
  if (path != "-") {
    return;
  }
  if (isTerminal(STDOUT_FILENO)) {
    throw UsageError(
        "-: an RXF file is nothing for a terminal; give a name or redirect the output");
  }
  name_ = outputTitle;
  if (makeTemporaryFolder(folder_) != 0) {
    fail(folder_, "cannot be made");
  }
  path_ = folder_ + "/output.rxf";
  output_ = posix::duplicate(STDOUT_FILENO);
  if (output_ < 0 || dup2(STDERR_FILENO, STDOUT_FILENO) < 0) {
    fail(name_, "cannot be written");
  }
}

OutputFile::~OutputFile() {
  if (!folder_.empty()) {
    posix::close(output_);
    std::error_code error;
    std::filesystem::remove_all(pathOf(folder_), error);
  }
}

void OutputFile::finish() {
  if (folder_.empty()) {
    return;
  }
  const int file = posix::open(path_.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) {
    fail(path_, "cannot be read");
  }
  try {
    copyAll(file, path_, output_, name_);
  } catch (...) {
    posix::close(file);
    throw;
  }
  posix::close(file);
}

}  // namespace tool
