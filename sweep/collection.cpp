#include "sweep/collection.h"

#include <ztb/model.h>
#include <ztb/rxf.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>
#include <ztb/rxf.hpp>

#include "tools/files/record_walk.h"
#include "tools/text/failure.h"
#include "tools/text/words.h"

namespace sweep {

using tool::ExchangeFile;
using tool::Failure;
using tool::FileSymbol;
using tool::RecordWalk;
using tool::withFile;

namespace {

// Columns of records of one symbol on their way out.
class Columns {
 public:
  Columns(ztb::RxfOutput& output, int dimension)
      : output_(output), keys_(static_cast<std::size_t>(dimension)) {}

  void add(std::span<const int> keys, double value) {
    for (std::size_t position = 0; position < keys_.size(); ++position) {
      keys_[position].push_back(keys[position]);
    }
    values_.push_back(value);
    if (values_.size() == ZTB_RXF_BLOCK_RECORDS) flush();
  }
  void flush() {
    std::vector<const int*> keys;
    for (const std::vector<int>& column : keys_) keys.push_back(column.data());
    if (!values_.empty()) output_.addRecords(values_.size(), keys, {values_.data()});
    for (std::vector<int>& column : keys_) column.clear();
    values_.clear();
  }

 private:
  ztb::RxfOutput& output_;
  std::vector<std::vector<int>> keys_;
  std::vector<double> values_;
};

class Collection {
 public:
  Collection(const PartIndex& index, const ScenarioFile& scenarios, const std::string& out)
      : index_(index), scenarios_(scenarios), output_(out, "ztb sweep") {}

  void run(const std::string& inputs) {
    addLabels();
    addSet();
    addOutcomes(kStatus,
                [](const Outcome& outcome) { return std::optional<double>(outcome.status); });
    addOutcomes(kSolveStatus,
                [](const Outcome& outcome) { return std::optional<double>(outcome.solveStatus); });
    addOutcomes(kObjective, [](const Outcome& outcome) { return outcome.objective; });
    addSymbol(kInputs, inputs, ZTB_SET, 1, {"*"});
    for (const auto& [name, dimension] : reports_) addReport(name, dimension);
    for (const std::string_view text : texts_) output_.addText(std::string(text));
    output_.publish();
  }

 private:
  // Neighbouring chunks whose results stand in one file.
  struct Run {
    const std::string* file;
    int first;
    int end;
  };

  [[nodiscard]] std::vector<Run> runs() const {
    std::vector<Run> runs;
    for (int chunk = 0; chunk < index_.chunkCount(); ++chunk) {
      const std::string* file = index_.file(chunk);
      if (file == nullptr) continue;
      if (!runs.empty() && runs.back().file == file && runs.back().end == index_.begin(chunk)) {
        runs.back().end = index_.end(chunk);
      } else {
        runs.push_back({file, index_.begin(chunk), index_.end(chunk)});
      }
    }
    return runs;
  }

  // Scenarios first, then the labels that occur beside them, in the order of the parts.
  void addLabels() {
    for (int scenario = 0; scenario < scenarios_.count(); ++scenario) {
      output_.addLabel(std::string(scenarios_.label(scenario)));
    }
    int count = scenarios_.count();
    for (const Run& run : runs()) {
      const ExchangeFile file(*run.file);
      if (reports_.empty()) takeReports(file);
      for (int number = 1; number <= file.labelCount(); ++number) {
        const std::string label(file.label(number));
        if (scenarios_.find(label)) continue;
        if (numbers_.emplace(tool::folded(label), count + 1).second) {
          ++count;
          output_.addLabel(label);
        }
      }
    }
  }

  void takeReports(const ExchangeFile& file) {
    static const std::set<std::string_view> own{kStatus, kSolveStatus, kObjective};
    for (const FileSymbol& symbol : file.symbols()) {
      if (symbol.type == ztb::Type::parameter && !own.contains(symbol.name)) {
        reports_.emplace_back(symbol.name, symbol.dimension);
      }
    }
  }

  void addSymbol(const std::string& name, const std::string& text, int type, int dimension,
                 const std::vector<std::string>& domains) {
    ztbRxfSymbolInfo info{};
    info.name = name.c_str();
    info.text = text.c_str();
    info.type = type;
    info.dimension = dimension;
    info.domainKind = domains.front() == "*" ? ZTB_RXF_DOMAIN_NONE : ZTB_RXF_DOMAIN_CHECKED;
    output_.addSymbol(info, domains);
  }

  void addSet() {
    addSymbol(scenarios_.over(), scenarios_.text(), ZTB_SET, 1, {"*"});
    Columns columns(output_, 1);
    for (int scenario = 0; scenario < scenarios_.count(); ++scenario) {
      const std::string_view text = scenarios_.elementText(scenario);
      if (!text.empty()) texts_.push_back(text);
      columns.add(std::array{scenario + 1}, text.empty() ? 0 : static_cast<double>(texts_.size()));
    }
    columns.flush();
  }

  template <class Take>
  void addOutcomes(const std::string& name, const Take& take) {
    const Outcome failed{.status = ztbModelNoSolution, .solveStatus = ztbSolveFailed};
    addSymbol(name, "", ZTB_PARAMETER, 1, {scenarios_.over()});
    Columns columns(output_, 1);
    for (int scenario = 0; scenario < scenarios_.count(); ++scenario) {
      const Outcome& outcome = index_.outcome(scenario);
      const std::optional<double> value = take(outcome.isThere() ? outcome : failed);
      if (value) columns.add(std::array{scenario + 1}, *value);
    }
    columns.flush();
  }

  void addReport(const std::string& name, int dimension) {
    std::vector<std::string> domains(static_cast<std::size_t>(dimension), "*");
    domains.front() = scenarios_.over();
    addSymbol(name, "", ZTB_PARAMETER, dimension, domains);
    Columns columns(output_, dimension);
    for (const Run& run : runs()) {
      try {
        copyRecords(run, name, dimension, columns);
      } catch (const Failure& error) {
        throw Failure(std::string(error.what()) + kRemovePart, ZTB_ERROR_DAMAGED_FILE);
      }
    }
    columns.flush();
  }

  // Whether the scenarios of the run come in their order in the file. They do not where a label of
  // the model, which a solution before them brought in, is the label of a scenario too.
  bool isInOrder(const ExchangeFile& file, const Run& run) {
    int last = 0;
    for (int own = 1; own <= file.labelCount(); ++own) {
      const int scenario = number(file, own);
      if (scenario <= run.first || scenario > run.end) continue;
      if (scenario < last) return false;
      last = scenario;
    }
    return true;
  }

  // The records of the run's scenarios by the labels' numbers in the result: a scenario at a time
  // where they come in their order, else all of the run at once.
  void copyRecords(const Run& run, const std::string& name, int dimension, Columns& columns) {
    const ExchangeFile file(*run.file);
    const FileSymbol* symbol = file.findSymbol(name);
    if (symbol == nullptr || symbol->dimension != dimension) {
      throw Failure(withFile(*run.file, "has no parameter " + name + " as the other parts have"));
    }
    numberOf_.assign(static_cast<std::size_t>(file.labelCount()) + 1, 0);
    const bool inOrder = isInOrder(file, run);
    std::vector<std::pair<std::vector<int>, double>> records;
    int present = 0;
    const auto leave = [&] {
      if (!std::ranges::is_sorted(records)) std::ranges::sort(records);
      for (const auto& [keys, value] : records) columns.add(keys, value);
      records.clear();
    };
    for (RecordWalk walk(file, *symbol); walk.next();) {
      const int scenario = number(file, walk.keys()[0]);
      if (scenario <= run.first || scenario > run.end) continue;
      if (inOrder && scenario != present) leave();
      present = scenario;
      auto& [keys, value] = records.emplace_back();
      for (const int key : walk.keys()) keys.push_back(number(file, key));
      value = walk.values()[0];
    }
    leave();
  }

  int number(const ExchangeFile& file, int own) {
    int& number = numberOf_[static_cast<std::size_t>(own)];
    if (number == 0) {
      const std::string label(file.label(own));
      const std::optional<int> scenario = scenarios_.find(label);
      number = scenario ? *scenario + 1 : numbers_.at(tool::folded(label));
    }
    return number;
  }

  const PartIndex& index_;
  const ScenarioFile& scenarios_;
  ztb::RxfOutput output_;
  std::unordered_map<std::string, int> numbers_;  // of labels that are no scenarios, folded
  std::vector<std::pair<std::string, int>> reports_;
  std::vector<std::string_view> texts_;
  std::vector<int> numberOf_;  // of the labels of the file that is read
};

}  // namespace

void collect(const PartIndex& index, const ScenarioFile& scenarios, const std::string& inputs,
             const std::string& out) {
  try {
    Collection(index, scenarios, out).run(inputs);
  } catch (const ztb::Error& error) {
    throw Failure(withFile(out, error.what()));
  }
}

}  // namespace sweep
