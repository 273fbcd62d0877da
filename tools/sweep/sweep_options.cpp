#include "tools/sweep/sweep_options.h"

#include <filesystem>

#include "tools/files/system_files.h"

namespace tool {

void SweepOptions::open(ztb::Sweep& sweep) const {
  if (model.empty()) {
    sweep.load(parts);
    return;
  }
  const auto give = [&](const char* name, const std::string& value) {
    if (!value.empty()) sweep.option(name, value);
  };
  give("model", model);
  give("model-data", modelData);
  give("data", data);
  give("scenarios", scenarios);
  give("over", over);
  give("solver", solver);
  give("time-limit", timeLimit);
  if (chunk) give("chunk", std::to_string(*chunk));
  for (const std::string& drive : drives) give("drive", drive);
  for (const std::string& report : reports) give("report", report);
  sweep.open();
}

std::vector<std::pair<std::string, std::string>> SweepOptions::ofSweep() const {
  std::vector<std::pair<std::string, std::string>> words;
  const auto give = [&](const char* name, const std::string& value) {
    if (!value.empty()) words.emplace_back(name, value);
  };
  const auto absolute = [](const std::string& file) {
    return file.empty() ? file : nameOf(std::filesystem::absolute(pathOf(file)));
  };
  give("model", absolute(model));
  give("model-data", absolute(modelData));
  give("data", absolute(data));
  give("scenarios", absolute(scenarios));
  give("over", over);
  give("solver", solver);
  give("time-limit", timeLimit);
  if (chunk) give("chunk", std::to_string(*chunk));
  for (const std::string& drive : drives) give("drive", drive);
  for (const std::string& report : reports) give("report", report);
  return words;
}

}  // namespace tool
