#include "tools/sweep/dask_workers.h"

#include <fmt/format.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <optional>
#include <utility>

#include "tools/sweep/child_program.h"
#include "tools/text/failure.h"
#include "tools/text/output.h"

namespace tool {

namespace {

namespace fs = std::filesystem;

// Where the package lies of the command's own build, installation or wheel; empty: where Python
// itself looks.
std::string packageFolder(const fs::path& program) {
  const fs::path folder = program.parent_path();
  const auto isPackage = [](const fs::path& place) {
    std::error_code error;
    return fs::exists(place / "ztb" / "cluster.py", error);
  };
  if (isPackage(folder.parent_path())) return folder.parent_path().string();
  if (isPackage(folder.parent_path() / "python")) return (folder.parent_path() / "python").string();
  std::error_code error;
  for (fs::directory_iterator entry(folder.parent_path() / "lib", error), end;
       !error && entry != end; entry.increment(error)) {
    if (!entry->path().filename().string().starts_with("python")) continue;
    for (const char* place : {"dist-packages", "site-packages"}) {
      if (isPackage(entry->path() / place)) return (entry->path() / place).string();
    }
  }
  return "";
}

std::string requestOf(const SweepOptions& options, const std::string& folder,
                      const std::vector<int>& chunks, const fs::path& program) {
  nlohmann::json request{{"address", options.dask},
                         {"folder", fs::absolute(folder).string()},
                         {"shared", !options.parts.empty()},
                         {"program", program.string()},
                         {"options", nlohmann::json::array()},
                         {"chunks", nlohmann::json::array()}};
  for (const auto& [name, value] : options.ofSweep()) request["options"].push_back({name, value});
  for (std::size_t at = 0; at < chunks.size();) {
    std::size_t last = at;
    while (last + 1 < chunks.size() && chunks[last + 1] == chunks[last] + 1) ++last;
    request["chunks"].push_back({chunks[at], chunks[last] + 1});
    at = last + 1;
  }
  try {
    return request.dump();
  } catch (const nlohmann::json::exception&) {
    throw Failure("--dask takes names of files in UTF-8 only");
  }
}

std::string lastLineOf(const std::string& text) {
  const std::size_t before = text.find_last_of('\n');
  return before == std::string::npos ? text : text.substr(before + 1);
}

}  // namespace

void solveWithDask(const SweepOptions& options, const std::string& folder,
                   const std::vector<int>& chunks, SweepProgress& progress, bool (*stops)()) {
  const fs::path program = fs::read_symlink("/proc/self/exe");
  const char* const named = std::getenv("ZTB_PYTHON");
  const std::string python = named != nullptr && *named != '\0' ? named : "/usr/bin/python3";
  std::vector<std::pair<std::string, std::string>> variables;
  if (std::string path = packageFolder(program); !path.empty()) {
    const char* const others = std::getenv("PYTHONPATH");
    if (others != nullptr && *others != '\0') path += std::string(":") + others;
    variables.emplace_back("PYTHONPATH", path);
  }
  std::optional<ChildProgram> child;
  try {
    child.emplace(std::vector<std::string>{python, "-m", "ztb.cluster"},
                  requestOf(options, folder, chunks, program), variables);
  } catch (const NoProgram& error) {
    throw Failure(
        fmt::format("{}; --dask needs Python with the packages python3-ztb and "
                    "python3-distributed (ZTB_PYTHON names another Python)",
                    error.what()));
  }
  progress.step("asking " + options.dask);
  std::string failure;
  bool isAsked = false;
  while (child->isOpen()) {
    if (!isAsked && stops()) {
      isAsked = true;
      child->interrupt();
    }
    const auto line = child->line(std::chrono::milliseconds(200));
    if (!line) continue;
    const nlohmann::json told = nlohmann::json::parse(*line, nullptr, false);
    if (!told.is_object()) continue;
    if (told.contains("error")) {
      failure = told["error"].get<std::string>();
    } else if (told.contains("note")) {
      progress.pause();
      printError("ztb: " + told["note"].get<std::string>());
    } else {
      progress.show({.done = told.value("done", 0),
                     .failures = told.value("failures", 0),
                     .lost = told.value("lost", 0),
                     .workers = told.value("workers", 0)});
    }
  }
  const int status = child->wait();
  if (isAsked || (status == 0 && failure.empty())) return;
  if (failure.empty()) {
    const std::string last = lastLineOf(child->errors());
    failure = last.find("No module named") == std::string::npos
                  ? fmt::format("{} ended with {}: {}", python, status, last)
                  : fmt::format("{}: {}; --dask needs the Python package of ZTB (python3-ztb)",
                                python, last.substr(last.find("No module named")));
  }
  throw Failure(failure);
}

}  // namespace tool
