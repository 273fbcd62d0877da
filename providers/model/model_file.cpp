#include "providers/model/model_file.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string_view>
#include <system_error>
#include <ztb/case_folding.hpp>

#include "providers/model/glpk_reader.h"
#include "providers/model/lp_reader.h"
#include "providers/model/lp_tokens.h"
#include "providers/model/model_error.h"

namespace lomu {

namespace {

enum class FileKind { lp, mps, mathProg };

bool endsWith(std::string_view file, std::string_view ending) {
  return file.size() > ending.size() &&
         ztb::sameFolded(file.substr(file.size() - ending.size()), ending);
}

FileKind kindOf(const std::string& file) {
  if (endsWith(file, ".lp")) return FileKind::lp;
  if (endsWith(file, ".mps") || endsWith(file, ".mps.gz")) return FileKind::mps;
  if (endsWith(file, ".mod")) return FileKind::mathProg;
  throw ModelError(file + ": unknown ending, expected .lp, .mps, .mps.gz or .mod");
}

[[noreturn]] void failReading(const std::string& file, const std::error_code& error) {
  throw ModelError(
      file + ": " + error.message() + ", expected a file that can be read",
      error == std::errc::no_such_file_or_directory ? ZTB_ERROR_NO_FILE : ZTB_ERROR_IO);
}

// Opens an ordinary file with something in it and gives its size.
std::ifstream open(const std::string& file, std::uintmax_t& size) {
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (error) failReading(file, error);
  if (std::filesystem::is_directory(status)) {
    throw ModelError(file + ": this is a folder, expected a file", ZTB_ERROR_IO);
  }
  if (!std::filesystem::is_regular_file(status)) {
    throw ModelError(file + ": this is no ordinary file, expected one", ZTB_ERROR_IO);
  }
  errno = 0;
  std::ifstream in(file, std::ios::binary);
  if (!in) failReading(file, {errno, std::generic_category()});
  size = std::filesystem::file_size(file, error);
  if (error) failReading(file, error);
  if (size == 0) {
    throw ModelError(file + ":1: the file is empty, expected text", ZTB_ERROR_DAMAGED_FILE);
  }
  if (size > static_cast<std::uintmax_t>(std::numeric_limits<int>::max())) {
    throw ModelError(file + ": the file has " + std::to_string(size) + " bytes, expected at most " +
                     std::to_string(std::numeric_limits<int>::max()));
  }
  return in;
}

void checkReadable(const std::string& file) {
  std::uintmax_t size = 0;
  open(file, size);
}

std::string readText(const std::string& file) {
  std::uintmax_t size = 0;
  std::ifstream in = open(file, size);
  std::string text(static_cast<std::size_t>(size), '\0');
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  if (in.gcount() != static_cast<std::streamsize>(text.size())) {
    throw ModelError(file + ": reading ended after " + std::to_string(in.gcount()) +
                         " bytes, expected " + std::to_string(size),
                     ZTB_ERROR_IO);
  }
  return text;
}

// GLPK parses MathProg by recursion; this depth is far within the stack that it gets.
constexpr std::size_t kMaxNesting = 10000;

void checkNesting(const std::string& file, std::string_view text) {
  std::size_t line = 1;
  std::size_t depth = 0;
  for (const char c : text) {
    if (c == '\n') ++line;
    if (c == '(' || c == '[' || c == '{') ++depth;
    if ((c == ')' || c == ']' || c == '}') && depth > 0) --depth;
    if (depth > kMaxNesting) {
      throw ModelError(file + ":" + std::to_string(line) + ": brackets within brackets, expected " +
                           "at most " + std::to_string(kMaxNesting) + " levels",
                       ZTB_ERROR_DAMAGED_FILE);
    }
  }
}

ModelData read(FileKind kind, const std::string& file, const std::string& dataFile) {
  switch (kind) {
    case FileKind::lp:
      return readLp(file, readText(file));
    case FileKind::mps:
      checkReadable(file);
      return readMps(file);
    default:
      checkNesting(file, readText(file));
      if (!dataFile.empty()) checkReadable(dataFile);
      return readMathProg(file, dataFile);
  }
}

}  // namespace

ModelData readModelFile(const std::string& file, const std::string& dataFile) {
  const FileKind kind = kindOf(file);
  if (kind != FileKind::mathProg && !dataFile.empty()) {
    throw ModelError(file +
                     ": this kind of model takes no data file, expected none beside it but " +
                     dataFile + " was given");
  }
  try {
    return read(kind, file, dataFile);
  } catch (const std::system_error& error) {
    throw ModelError(file + ": " + error.what());
  }
}

}  // namespace lomu
