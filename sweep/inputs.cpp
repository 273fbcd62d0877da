#include "sweep/inputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <vector>

#include "sweep/checksum.h"
#include "tools/files/system_files.h"
#include "tools/models/table_files.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace sweep {

using tool::Failure;
using tool::folded;
using tool::tableInputs;
using tool::withFile;

namespace {

struct Word {
  const char* key;
  const char* difference;
};

// The word of the files that a MathProg model reads tables from; only such models have it.
constexpr const char* kTables = "tables";

// The word of what --drive says; only sweeps that were given it have it.
constexpr const char* kDrives = "drive";

// The word of the file of --data, likewise.
constexpr const char* kFills = "fills";

// The words of --time-limit, likewise, and of the size of chunks.
constexpr const char* kLimit = "limit";
constexpr const char* kChunk = "chunk";

constexpr std::array<Word, 11> kWords{{{"model", "another model file"},
                                       {"data", "another --model-data"},
                                       {"scenarios", "another scenario file"},
                                       {"over", "another --over"},
                                       {"solver", "another --solver"},
                                       {"report", "another --report"},
                                       {kTables, "another table of the model"},
                                       {kDrives, "another --drive"},
                                       {kFills, "another --data"},
                                       {kLimit, "another --time-limit"},
                                       {kChunk, "another --chunk"}}};

// The files that a MathProg model reads tables from; none of any other model.
std::vector<std::string> tablesOf(const std::string& model) {
  std::vector<std::string> files;
  if (!folded(model).ends_with(".mod")) return files;
  std::ifstream in(tool::pathOf(model), std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  for (const std::string& name : tableInputs(text)) {
    std::error_code error;
    if (std::filesystem::is_regular_file(tool::pathOf(name), error)) files.push_back(name);
  }
  return files;
}

}  // namespace

std::string inputsOf(const Options& options) {
  std::string reports;
  for (const std::string& report : options.reports) {
    reports += folded(report) + ' ';
  }
  const std::array<std::uint64_t, 6> sums{
      checksumOfFile(options.model),
      options.modelData.empty() ? checksumOfText("") : checksumOfFile(options.modelData),
      checksumOfFile(options.scenarios),
      checksumOfText(folded(options.over)),
      checksumOfText(options.solver),
      checksumOfText(reports)};
  std::string text;
  for (std::size_t part = 0; part < sums.size(); ++part) {
    text += fmt::format("{}{}={:016x}", part == 0 ? "" : " ", kWords.at(part).key, sums.at(part));
  }
  std::string tables;
  for (const std::string& name : tablesOf(options.model)) {
    tables += fmt::format("{} {:016x}\n", name, checksumOfFile(name));
  }
  if (!tables.empty()) text += fmt::format(" {}={:016x}", kTables, checksumOfText(tables));
  std::string drives;
  for (const std::string& statement : options.drives) drives += statement + '\n';
  if (!drives.empty()) text += fmt::format(" {}={:016x}", kDrives, checksumOfText(drives));
  if (!options.data.empty())
    text += fmt::format(" {}={:016x}", kFills, checksumOfFile(options.data));
  if (!options.timeLimit.empty()) text += fmt::format(" {}={}", kLimit, options.timeLimit);
  return text;
}

std::string chunkWord(int size) {
  return fmt::format(" {}={}", kChunk, size);
}

std::string inputsDifference(std::string_view one, std::string_view other) {
  for (const Word& part : kWords) {
    if (inputsWord(one, part.key) != inputsWord(other, part.key)) {
      return part.difference;
    }
  }
  return "";
}

std::string keyOf(std::string_view inputs) {
  return fmt::format("{:016x}", checksumOfText(inputs));
}

std::string filesOf(const Options& options) {
  std::vector<std::string> files = tablesOf(options.model);
  files.insert(files.end(), {options.model, options.modelData, options.data, options.scenarios});
  std::string text;
  for (const std::string& file : files) {
    posix::FileStatus found{};
    if (file.empty() || posix::stat(file.c_str(), &found) != 0) continue;
    text += fmt::format("{} {} {} {} {}.{:09} {}.{:09}\n", file, found.st_dev, found.st_ino,
                        found.st_size, found.st_mtim.tv_sec, found.st_mtim.tv_nsec,
                        found.st_ctim.tv_sec, found.st_ctim.tv_nsec);
  }
  return text;
}

}  // namespace sweep
