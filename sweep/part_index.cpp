#include "sweep/part_index.h"

#include <fmt/format.h>

#include <algorithm>
#include <functional>
#include <tuple>

#include "sweep/inputs.h"
#include "tools/files/record_walk.h"
#include "tools/text/failure.h"

namespace sweep {

using tool::ExchangeFile;
using tool::Failure;
using tool::FileSymbol;
using tool::RecordWalk;
using tool::withFile;

PartIndex::PartIndex(const ScenarioFile& scenarios, int size)
    : scenarios_(scenarios),
      size_(size),
      chunks_(static_cast<std::size_t>((scenarios.count() + size - 1) / size)),
      outcomes_(static_cast<std::size_t>(scenarios.count())) {
  for (int chunk = 0; chunk < chunkCount(); ++chunk) {
    chunks_[static_cast<std::size_t>(chunk)].missing = end(chunk) - begin(chunk);
  }
}

int PartIndex::end(int chunk) const {
  return std::min(scenarios_.count(), (chunk + 1) * size_);
}

std::string PartIndex::inputsOf(const ExchangeFile& file) {
  const FileSymbol* inputs = file.findSymbol(kInputs);
  if (inputs == nullptr || inputs->type != ztb::Type::set) {
    throw Failure(withFile(file.path(), "is no result of a sweep"));
  }
  return inputs->text;
}

void PartIndex::take(const std::string& path, int first, int end, std::string_view inputs) {
  const ExchangeFile file(path);
  const std::string difference = inputsDifference(inputsOf(file), inputs);
  if (!difference.empty()) {
    throw Failure(withFile(
        path,
        fmt::format("is from a sweep with {}; without --resume all is solved anew", difference)));
  }
  if (end > scenarios_.count()) {
    throw Failure(withFile(path, fmt::format("is said to have scenarios up to number {}, and the "
                                             "sweep has {}",
                                             end, scenarios_.count())));
  }
  Content content = read(file, first, end);
  for (int scenario = first; scenario < end; ++scenario) {
    if (content.outcomes[static_cast<std::size_t>(scenario - first)].isThere()) continue;
    throw Failure(withFile(path, fmt::format("lacks scenario {}, which it is said to have",
                                             scenarios_.label(scenario))));
  }
  const int source = static_cast<int>(files_.size());
  files_.push_back(path);
  for (int chunk = first / size_; chunk < chunkCount() && begin(chunk) < end; ++chunk) {
    Chunk found{.source = source, .missing = this->end(chunk) - begin(chunk), .failed = 0};
    const int from = std::max(begin(chunk), first);
    const int to = std::min(this->end(chunk), end);
    for (int scenario = from; scenario < to; ++scenario) {
      const Outcome& outcome = content.outcomes[static_cast<std::size_t>(scenario - first)];
      found.missing -= outcome.isThere() ? 1 : 0;
      found.failed += outcome.hasFailed() ? 1 : 0;
    }
    Chunk& known = chunks_[static_cast<std::size_t>(chunk)];
    if (std::tie(found.missing, found.failed) > std::tie(known.missing, known.failed)) continue;
    known = found;
    for (int scenario = begin(chunk); scenario < this->end(chunk); ++scenario) {
      outcomes_[static_cast<std::size_t>(scenario)] =
          scenario < from || scenario >= to
              ? Outcome()
              : content.outcomes[static_cast<std::size_t>(scenario - first)];
      reasons_.erase(scenario);
      if (const auto reason = content.reasons.find(scenario); reason != content.reasons.end()) {
        reasons_.insert(*reason);
      }
    }
  }
  const FileSymbol* unmatched = file.findSymbol(kUnmatched);
  std::string names = unmatched == nullptr ? "" : unmatched->text;
  while (!names.empty()) {
    const std::size_t blank = std::min(names.find(' '), names.size());
    unmatched_.insert(names.substr(0, blank));
    names.erase(0, blank + 1);
  }
}

void PartIndex::takeResult(const std::string& path, std::string_view inputs) {
  const ExchangeFile file(path);
  for (const FileSymbol& symbol : file.symbols()) {
    if (symbol.isAlias()) continue;
    ztb::RxfRecords records(file.file(), file.file().symbol(symbol.number));
    try {
      while (records.next()) {
      }
    } catch (const ztb::Error& error) {
      throw Failure(withFile(path, error.what()));
    }
  }
  take(path, 0, scenarios_.count(), inputs);
}

PartIndex::Content PartIndex::read(const ExchangeFile& file, int first, int end) const {
  Content content;
  content.outcomes.resize(static_cast<std::size_t>(end - first));
  const auto each = [&](const char* name, const std::function<void(int, RecordWalk&)>& take) {
    const FileSymbol* symbol = file.findSymbol(name);
    if (symbol == nullptr || symbol->dimension != 1 || symbol->isAlias()) return;
    for (RecordWalk walk(file, *symbol); walk.next();) {
      const auto scenario = scenarios_.find(std::string(file.label(walk.keys()[0])));
      if (scenario && *scenario >= first && *scenario < end) take(*scenario, walk);
    }
  };
  const auto outcome = [&](int scenario) -> Outcome& {
    return content.outcomes[static_cast<std::size_t>(scenario - first)];
  };
  each(kStatus, [&](int scenario, RecordWalk& walk) {
    outcome(scenario).status = static_cast<int>(walk.values()[0]);
  });
  each(kSolveStatus, [&](int scenario, RecordWalk& walk) {
    outcome(scenario).solveStatus = static_cast<int>(walk.values()[0]);
  });
  each(kObjective,
       [&](int scenario, RecordWalk& walk) { outcome(scenario).objective = walk.values()[0]; });
  each(kReason, [&](int scenario, RecordWalk& walk) {
    content.reasons.emplace(scenario, std::string(walk.text()));
  });
  return content;
}

std::string PartIndex::reason(int scenario) const {
  const auto found = reasons_.find(scenario);
  return found == reasons_.end() ? "" : found->second;
}

}  // namespace sweep
