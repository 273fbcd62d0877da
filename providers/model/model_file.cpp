#include "providers/model/model_file.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>
#include <system_error>
#include <ztb/case_folding.hpp>

#include "providers/model/glpk_reader.h"
#include "providers/model/lp_reader.h"
#include "providers/model/mathprog_fill.h"
#include "providers/model/memory_file.h"
#include "providers/model/model_error.h"
#include "providers/model/mps_reader.h"
#include "providers/model/text_source.h"
#include "providers/model/written_names.h"

namespace lomu {

namespace {

enum class FileKind { lp, mps, mathProg };

FileKind kindOf(const std::string& file) {
  if (hasEnding(file, ".lp") || hasEnding(file, ".lp.gz")) return FileKind::lp;
  if (hasEnding(file, ".mps") || hasEnding(file, ".mps.gz")) return FileKind::mps;
  if (hasEnding(file, ".mod")) return FileKind::mathProg;
  throw ModelError(file + ": unknown ending, expected .lp, .lp.gz, .mps, .mps.gz or .mod");
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

// The symbol whose statement a line of the data is in, as "cap(*, *)" with the positions of what
// fills it; "it" where that is none of the fills.
std::string filledAt(std::string_view data, std::size_t line, std::span<const ztbModelFill> fills) {
  std::string_view name;
  for (std::size_t number = 1; number <= line && !data.empty(); ++number) {
    const std::string_view text = data.substr(0, data.find('\n'));
    data.remove_prefix(std::min(data.size(), text.size() + 1));
    for (const std::string_view word : {"set ", "param "}) {
      if (!text.starts_with(word)) continue;
      name = text.substr(word.size());
      name = name.substr(0, name.find_first_of(" ["));
    }
  }
  for (const ztbModelFill& fill : fills) {
    if (fill.taken == 0 || !ztb::sameFolded(fill.name, name)) continue;
    std::string text(name);
    for (int position = 0; position < fill.dimension; ++position) {
      text += position == 0 ? "(*" : ", *";
    }
    return fill.dimension > 0 ? text + ")" : text;
  }
  return "it";
}

ModelData readFilled(const std::string& file, const std::string& dataFile,
                     std::span<ztbModelFill> fills) {
  checkNesting(file, readText(file));
  if (!dataFile.empty()) checkReadable(dataFile);
  const MathProgData data = fills.empty() ? MathProgData{} : filledData(file, dataFile, fills);
  if (data.text.empty()) return readMathProg(file, dataFile);
  const MemoryFile filled(data.text);
  try {
    return readMathProg(file, filled.path());
  } catch (const ModelError& error) {
    // The place in what was made up here tells nobody anything.
    const std::string text = error.what();
    if (!text.starts_with(filled.path())) throw;
    const std::size_t place = text.find(": ", filled.path().size());
    const std::size_t line = std::strtoul(text.c_str() + filled.path().size() + 1, nullptr, 10);
    const std::string reason = text.substr(place == std::string::npos ? 0 : place + 2);
    if (line <= data.ownLines) {
      throw ModelError(
          (dataFile.empty() ? file : dataFile) + ":" + std::to_string(line) + ": " + reason,
          error.kind());
    }
    throw ModelError(
        file + ": the data that fill " + filledAt(data.text, line, fills) + ": " + reason,
        error.kind());
  }
}

ModelData read(FileKind kind, const std::string& file, const std::string& dataFile,
               std::span<ztbModelFill> fills) {
  switch (kind) {
    case FileKind::lp:
      return readLp(file, readText(file));
    case FileKind::mps:
      return readMps(file);
    default:
      return readFilled(file, dataFile, fills);
  }
}

}  // namespace

ModelData readModelFile(const std::string& file, const std::string& dataFile,
                        std::span<ztbModelFill> fills) {
  const FileKind kind = kindOf(file);
  for (ztbModelFill& fill : fills) fill.taken = 0;
  if (kind != FileKind::mathProg && !dataFile.empty()) {
    throw ModelError(file +
                     ": this kind of model takes no data file, expected none beside it but " +
                     dataFile + " was given");
  }
  try {
    ModelData model = read(kind, file, dataFile, fills);
    if (kind != FileKind::mathProg) restoreNames(file, model);
    return model;
  } catch (const std::system_error& error) {
    throw ModelError(file + ": " + error.what());
  }
}

}  // namespace lomu
