// Gives symbols and labels of a file other names.

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

#include "formats/sets/open_files.h"
#include "formats/sets/set_options.h"
#include "formats/sets/set_output.h"
#include "formats/tables/problem_list.h"
#include "tools/text/words.h"

namespace formats {

namespace {

using Pairs = std::vector<std::pair<std::string, std::string>>;

// New names by the numbers of what has them, from 1; all change at once, so that two can change
// places.
class NewNames {
 public:
  NewNames(std::vector<std::string> names, std::string kind, const std::string& path,
           ProblemList& problems)
      : names_(std::move(names)), kind_(std::move(kind)), path_(path), problems_(problems) {}

  void change(const Pairs& pairs) {
    std::unordered_map<std::string, std::size_t> known;
    for (std::size_t number = 1; number < names_.size(); ++number) {
      known.emplace(tool::folded(names_[number]), number);
    }
    std::vector<bool> changed(names_.size());
    for (const auto& [old, name] : pairs) {
      const auto found = known.find(tool::folded(old));
      if (found == known.end()) {
        problems_.add(path_, fmt::format("no {} {}", kind_, tool::inQuotes(old)));
      } else if (changed[found->second]) {
        problems_.add(path_, fmt::format("{} {} gets two names", kind_, tool::inQuotes(old)));
      } else {
        changed[found->second] = true;
        names_[found->second] = name;
      }
    }
    known.clear();
    for (std::size_t number = 1; number < names_.size(); ++number) {
      const auto [other, isNew] = known.emplace(tool::folded(names_[number]), number);
      if (!isNew && (changed[number] || changed[other->second])) {
        problems_.add(path_, fmt::format("two {}s would have the name {}", kind_,
                                         tool::inQuotes(names_[number])));
      }
    }
  }

  [[nodiscard]] const std::string& at(int number) const {
    return names_[static_cast<std::size_t>(number)];
  }

 private:
  std::vector<std::string> names_;
  std::string kind_;
  const std::string& path_;
  ProblemList& problems_;
};

}  // namespace

void renameIn(const SetRun& run) {
  auto opened = openFiles(run);
  const tool::ExchangeFile& file = *opened.front();
  ProblemList problems(run.options.maxErrors);
  std::vector<std::string> symbolNames{""};
  for (const tool::FileSymbol& symbol : file.symbols()) symbolNames.push_back(symbol.name);
  NewNames symbols(std::move(symbolNames), "symbol", file.path(), problems);
  symbols.change(run.options.symbols);
  std::vector<std::string> labelNames{""};
  for (int number = 1; number <= file.labelCount(); ++number) {
    labelNames.emplace_back(file.label(number));
  }
  NewNames labels(std::move(labelNames), "label", file.path(), problems);
  labels.change(run.options.labels);
  run.result.problems = problems.report();
  run.result.problemCount = problems.count();
  if (!problems.empty()) {
    throw tool::Failure(fmt::format("{}: not written: {} with the new names", run.shownName,
                                    tool::counted(problems.count(), "problem")),
                        ZTB_ERROR_REFUSED);
  }
  SetOutput output(run.path, run.shownName, run.progress);
  for (int number = 1; number <= file.labelCount(); ++number) output.addLabel(labels.at(number));
  for (const tool::FileSymbol& symbol : file.symbols()) {
    run.progress.step("copying " + symbol.name);
    NewSymbol renamed = describeNew(file, symbol);
    renamed.name = symbols.at(symbol.number);
    if (symbol.isAlias() && symbol.aliasTarget > 0)
      renamed.aliasOf = symbols.at(symbol.aliasTarget);
    for (std::size_t position = 0; position < renamed.domains.size(); ++position) {
      const int set = symbol.isAlias() ? 0 : symbol.domains[position].set;
      if (set > 0) renamed.domains[position] = symbols.at(set);
    }
    output.addSymbol(renamed);
    if (!symbol.isAlias()) output.copyRecords(file, symbol);
  }
  output.addTexts(file);
  run.result.labels = static_cast<std::size_t>(file.labelCount());
  output.publish(opened);
  run.result.symbols = output.symbolCount();
  run.result.records = output.recordCount();
}

}  // namespace formats
