#include "sweep/scenario_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <span>
#include <ztb/rxf.hpp>

#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace sweep {

namespace {

using tool::ExchangeFile;
using tool::Failure;
using tool::FileDomain;
using tool::FileSymbol;
using tool::RecordWalk;
using tool::sameFolded;
using tool::withFile;

Failure noSet(const ExchangeFile& file, const std::string& over) {
  return Failure(withFile(
      file.path(), fmt::format("has no set {} to sweep over, nor a parameter with that name for "
                               "its first position",
                               over)));
}

const FileSymbol& sweptSet(const ExchangeFile& file, const FileSymbol& named,
                           const std::string& over) {
  if (file.resolved(named).isUniverse()) throw noSet(file, over);
  const FileSymbol& found = file.resolved(named);
  if (found.type != ztb::Type::set) {
    throw Failure(withFile(file.path(), fmt::format("{} is a {}; --over wants a set", over,
                                                    tool::typeWord(found.type))));
  }
  if (found.dimension != 1) {
    throw Failure(withFile(
        file.path(),
        fmt::format("set {} has {}; --over wants one", over,
                    tool::counted(static_cast<std::size_t>(found.dimension), "position"))));
  }
  if (found.recordCount == 0) {
    throw Failure(withFile(file.path(), fmt::format("set {} is empty", over)));
  }
  return found;
}

bool isOver(const ExchangeFile& file, const FileSymbol& parameter, const FileSymbol& set) {
  if (parameter.dimension == 0) return false;
  const FileDomain& domain = parameter.domains.front();
  return domain.set < 0 ? sameFolded(domain.name, set.name)
                        : file.resolved(file.symbolAt(domain.set)).number == set.number;
}

// Enters the next block that is not damaged; false behind the last.
bool nextBlock(ztb::RxfRecords& records) {
  for (;;) {
    try {
      return records.next();
    } catch (const ztb::Error&) {
      if (!records.skipDamage()) return false;
    }
  }
}

}  // namespace

ScenarioFile::ScenarioFile(const std::string& path, const std::string& over) : file_(path) {
  const FileSymbol* named = file_.findSymbol(over);
  if (named == nullptr) {
    takeLabels(over);
  } else {
    takeSet(*named, over);
  }
}

void ScenarioFile::takeSet(const FileSymbol& named, const std::string& over) {
  const FileSymbol& set = sweptSet(file_, named, over);
  over_ = set.name;
  text_ = set.text;
  bool hasTexts = false;
  for (RecordWalk walk(file_, set); walk.next();) {
    numbers_.push_back(walk.keys()[0]);
    texts_.push_back(static_cast<int>(walk.values()[0]));
    hasTexts = hasTexts || texts_.back() != 0;
  }
  if (!hasTexts) texts_ = {};
  for (const FileSymbol& symbol : file_.symbols()) {
    if (symbol.type == ztb::Type::parameter) {
      (isOver(file_, symbol, set) ? driving_ : others_).push_back(&symbol);
    }
  }
  if (driving_.empty()) {
    throw Failure(
        withFile(file_.path(), fmt::format("no parameter has set {} as its first domain", over_)));
  }
}

void ScenarioFile::takeLabels(const std::string& over) {
  std::vector<bool> found(static_cast<std::size_t>(file_.labelCount()) + 1);
  for (const FileSymbol& symbol : file_.symbols()) {
    if (symbol.type != ztb::Type::parameter) continue;
    const bool drives = symbol.dimension > 0 && symbol.domains.front().set < 0 &&
                        sameFolded(symbol.domains.front().name, over);
    (drives ? driving_ : others_).push_back(&symbol);
    if (!drives) continue;
    over_ = symbol.domains.front().name;
    for (RecordWalk walk(file_, symbol); walk.next();) {
      found[static_cast<std::size_t>(walk.keys()[0])] = true;
    }
  }
  if (driving_.empty()) throw noSet(file_, over);
  for (std::size_t number = 1; number < found.size(); ++number) {
    if (found[number]) numbers_.push_back(static_cast<int>(number));
  }
  if (numbers_.empty()) {
    throw Failure(withFile(file_.path(),
                           fmt::format("no parameter has a record of {} to sweep over", over_)));
  }
}

void ScenarioFile::requireNumbers() const {
  constexpr double kUndefined = 1e300;  // as files hold `undef`
  const auto isMissing = [](double value) { return std::isnan(value) || value == kUndefined; };
  for (const FileSymbol* parameter : driving_) {
    ztb::RxfRecords records(file_.file(), file_.file().symbol(parameter->number));
    while (nextBlock(records)) {
      const std::span<const double> values = records.values(0);
      for (auto found = std::ranges::find_if(values, isMissing); found != values.end();
           found = std::find_if(found + 1, values.end(), isMissing)) {
        const auto place = static_cast<std::size_t>(found - values.begin());
        const int number = records.keys(0)[place];
        if (!std::ranges::binary_search(numbers_, number)) continue;
        std::string record;
        for (int position = 1; position < parameter->dimension; ++position) {
          record += record.empty() ? "(" : ", ";
          record += file_.label(records.keys(position)[place]);
        }
        throw Failure(withFile(
            file_.path(),
            fmt::format("scenario {}, record {}{}{} holds {}, a number is expected; what a "
                        "scenario has no record for stays as the model has it",
                        file_.label(number), parameter->name, record, record.empty() ? "" : ")",
                        tool::NumberText(*found).view())));
      }
    }
  }
}

std::optional<int> ScenarioFile::find(const std::string& label) const {
  const std::optional<int> number = file_.file().findLabel(label);
  if (!number) return std::nullopt;
  const auto found = std::ranges::lower_bound(numbers_, *number);
  if (found == numbers_.end() || *found != *number) return std::nullopt;
  return static_cast<int>(found - numbers_.begin());
}

}  // namespace sweep
