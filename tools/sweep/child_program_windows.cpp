#include "tools/sweep/child_program.h"

namespace tool {

bool startsPrograms() {
  return false;
}

ChildProgram::ChildProgram(const std::vector<std::string>& words, const std::string& /*input*/,
                           const std::vector<std::pair<std::string, std::string>>& /*variables*/) {
  throw NoProgram(words[0] + ": programs of others are not started on Windows");
}

ChildProgram::~ChildProgram() = default;

std::optional<std::string> ChildProgram::line(std::chrono::milliseconds /*time*/) {
  return std::nullopt;
}

void ChildProgram::interrupt() const {}

int ChildProgram::wait() {
  return process_;
}

std::string ChildProgram::errors() const {
  return "";
}

ProgramEnd runProgram(const std::vector<std::string>& words, const std::string& input) {
  const ChildProgram program(words, input);
  return {};
}

}  // namespace tool
