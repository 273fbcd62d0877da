#include "tools/sweep/sweep_inputs.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <new>
#include <optional>
#include <system_error>

#define XXH_INLINE_ALL
#include <xxhash.h>

#include "tools/models/table_files.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace tool {

namespace {

struct Part {
  const char* key;
  const char* difference;
};

// The word of the files that a MathProg model reads tables from; only such models have it.
constexpr const char* kTables = "tables";

// The word of what --drive says; only sweeps that were given it have it.
constexpr const char* kDrives = "drive";

// The word of the file of --data, likewise.
constexpr const char* kFills = "fills";

constexpr std::array<Part, 9> kParts{{{"model", "another model file"},
                                      {"data", "another --model-data"},
                                      {"scenarios", "another scenario file"},
                                      {"over", "another --over"},
                                      {"solver", "another --solver"},
                                      {"report", "another --report"},
                                      {kTables, "another table of the model"},
                                      {kDrives, "another --drive"},
                                      {kFills, "another --data"}}};

// XXH3 with 64 bits of a text or of the bytes of a file.
std::uint64_t ofText(std::string_view text) {
  return XXH3_64bits(text.data(), text.size());
}

std::uint64_t ofFile(const std::string& path) {
  struct FreeState {
    void operator()(XXH3_state_t* state) const { XXH3_freeState(state); }
  };
  const std::unique_ptr<XXH3_state_t, FreeState> state(XXH3_createState());
  // A pipe gives its content only once, and others read the file as well.
  std::error_code error;
  if (std::filesystem::exists(path, error) && !std::filesystem::is_regular_file(path, error)) {
    throw Failure(withFile(path, "cannot be read: it is no regular file"));
  }
  std::ifstream in(path, std::ios::binary);
  std::array<char, 65536> buffer{};
  if (!state || XXH3_64bits_reset(state.get()) != XXH_OK) {
    throw std::bad_alloc();
  }
  if (in) {
    do {
      in.read(buffer.data(), buffer.size());
      XXH3_64bits_update(state.get(), buffer.data(), static_cast<std::size_t>(in.gcount()));
    } while (in);
  }
  if (!in.eof()) {
    throw Failure(withFile(path, "cannot be read"));
  }
  return XXH3_64bits_digest(state.get());
}

// Names and contents of the table files of a MathProg model; nothing of any other model, or of one
// without such files.
std::optional<std::uint64_t> ofTables(const std::string& model) {
  if (!folded(model).ends_with(".mod")) {
    return std::nullopt;
  }
  std::ifstream in(model, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  std::string sums;
  for (const std::string& name : tableInputs(text)) {
    std::error_code error;
    if (std::filesystem::is_regular_file(name, error)) {
      sums += fmt::format("{} {:016x}\n", name, ofFile(name));
    }
  }
  return sums.empty() ? std::nullopt : std::optional(ofText(sums));
}

// The word "key=..." of a text of such words.
std::string_view wordOf(std::string_view text, std::string_view key) {
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    if (word.starts_with(key) && word.substr(key.size()).starts_with('=')) {
      return word;
    }
    text.remove_prefix(std::min(text.size(), word.size() + 1));
  }
  return {};
}

}  // namespace

std::string sweepInputs(const SweepOptions& options) {
  std::string reports;
  for (const std::string& report : options.reports) {
    reports += folded(report) + ' ';
  }
  const std::array<std::uint64_t, 6> sums{
      ofFile(options.model),     options.modelData.empty() ? ofText("") : ofFile(options.modelData),
      ofFile(options.scenarios), ofText(folded(options.over)),
      ofText(options.solver),    ofText(reports)};
  std::string text;
  for (std::size_t part = 0; part < sums.size(); ++part) {
    text += fmt::format("{}{}={:016x}", part == 0 ? "" : " ", kParts.at(part).key, sums.at(part));
  }
  if (const std::optional<std::uint64_t> tables = ofTables(options.model)) {
    text += fmt::format(" {}={:016x}", kTables, *tables);
  }
  std::string drives;
  for (const std::string& statement : options.drives) drives += statement + '\n';
  if (!drives.empty()) text += fmt::format(" {}={:016x}", kDrives, ofText(drives));
  if (!options.data.empty()) text += fmt::format(" {}={:016x}", kFills, ofFile(options.data));
  return text;
}

bool isSweepInputs(std::string_view text) {
  return std::ranges::all_of(kParts, [&](const Part& part) {
    const std::string_view key = part.key;
    return key == kTables || key == kDrives || key == kFills || !wordOf(text, part.key).empty();
  });
}

std::string sweepInputsDifference(std::string_view one, std::string_view other) {
  for (const Part& part : kParts) {
    if (wordOf(one, part.key) != wordOf(other, part.key)) {
      return part.difference;
    }
  }
  return "";
}

}  // namespace tool
