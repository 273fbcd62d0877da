#include "tools/sweep/sweep_options.h"

#include <filesystem>

#include "tools/files/system_files.h"

namespace tool {

namespace {

using Words = std::vector<std::pair<std::string, std::string>>;

// What decides the results, as ztbSweepOption takes it, with files called as `fileName` has them.
template <class FileName>
Words wordsOf(const SweepOptions& options, const FileName& fileName) {
  Words words;
  const auto give = [&](const char* name, const std::string& value) {
    if (!value.empty()) words.emplace_back(name, value);
  };
  const auto giveFile = [&](const char* name, const std::string& file) {
    if (!file.empty()) words.emplace_back(name, fileName(file));
  };
  giveFile("model", options.model);
  giveFile("model-data", options.modelData);
  giveFile("data", options.data);
  giveFile("scenarios", options.scenarios);
  give("over", options.over);
  give("solver", options.solver);
  give("time-limit", options.timeLimit);
  if (options.chunk) give("chunk", std::to_string(*options.chunk));
  for (const std::string& drive : options.drives) give("drive", drive);
  for (const std::string& report : options.reports) give("report", report);
  return words;
}

}  // namespace

void SweepOptions::open(ztb::Sweep& sweep) const {
  if (model.empty()) {
    sweep.load(parts);
    return;
  }
  const auto asGiven = [](const std::string& file) { return file; };
  for (const auto& [name, value] : wordsOf(*this, asGiven)) sweep.option(name, value);
  sweep.open();
}

Words SweepOptions::ofSweep() const {
  return wordsOf(*this, [](const std::string& file) {
    return nameOf(std::filesystem::absolute(pathOf(file)));
  });
}

}  // namespace tool
