#include "tests/tools/program.h"

#include <filesystem>
#include <fstream>
#include <iterator>

namespace tooltest {

namespace {

// A name, which is UTF-8, as the system has it.
std::filesystem::path pathOf(const std::string& name) {
  return std::u8string(name.begin(), name.end());
}

std::string contentOf(const std::string& path) {
  std::ifstream in(pathOf(path), std::ios::binary);
  return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
}

}  // namespace

std::vector<std::string> solvers() {
#ifdef _WIN32
  return {"clp", "cbc", "glpk"};
#else
  return {"clp", "cbc", "glpk", "ipopt", "bonmin"};
#endif
}

std::string listOfSolvers() {
  const std::vector<std::string> names = solvers();
  std::string list = names.front();
  for (std::size_t at = 1; at + 1 < names.size(); ++at) list += ", " + names[at];
  return list + " and " + names.back();
}

Outcome ProgramTest::ztb(const std::vector<std::string>& arguments, const std::string& input,
                         OutputTo output) const {
  const ztbtest::TempFolder streams;
  std::ofstream(streams.file("in"), std::ios::binary) << input;
  const int status = runProgram(ZTB_PROGRAM, arguments, folder_.path(), streams, output);
  return {.status = status,
          .output = contentOf(streams.file("out")),
          .errors = contentOf(streams.file("err"))};
}

std::string ProgramTest::ztbFine(const std::vector<std::string>& arguments) const {
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, 0);
  EXPECT_EQ(outcome.errors, "");
  return outcome.output;
}

void ProgramTest::expectFails(int status, const std::string& errors,
                              const std::vector<std::string>& arguments) const {
  const Outcome outcome = ztb(arguments);
  EXPECT_EQ(outcome.status, status);
  EXPECT_EQ(outcome.errors, errors);
}

void ProgramTest::write(const std::string& file, const std::string& content) const {
  std::ofstream(pathOf(path(file)), std::ios::binary) << content;
}

std::string ProgramTest::read(const std::string& file) const {
  return contentOf(path(file));
}

bool ProgramTest::exists(const std::string& file) const {
  return std::filesystem::exists(pathOf(path(file)));
}

}  // namespace tooltest
