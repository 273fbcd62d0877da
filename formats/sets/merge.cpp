// Puts the symbols of several files together: merge and concatenate.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <deque>
#include <filesystem>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <ztb/column_names.hpp>

#include "formats/file_name.h"
#include "formats/sets/label_union.h"
#include "formats/sets/open_files.h"
#include "formats/sets/set_options.h"
#include "formats/sets/source_records.h"
#include "formats/tables/problem_list.h"
#include "tools/text/number_text.h"
#include "tools/text/words.h"

namespace formats {

namespace {

// Files whose records are walked side by side; those of more are sorted together.
constexpr std::size_t mostSideBySide = 16;

struct MergedSource {
  const MergedFile* file;
  const tool::FileSymbol* symbol;
};

// A symbol of the new file.
struct MergedSymbol {
  NewSymbol symbol;
  bool hasCase = false;
  // The files do not agree what it is.
  bool broken = false;
  std::vector<MergedSource> sources;
};

class Merge {
 public:
  // `parts`: the files are parts of one whole.
  Merge(const SetRun& run, bool parts)
      : run_(run),
        parts_(parts),
        hasCases_(!run.options.caseSet.empty()),
        problems_(run.options.maxErrors),
        opened_(openFiles(run)) {
    numberLabels();
    if (hasCases_) findUnited();
    for (const MergedFile& file : files_) {
      for (const tool::FileSymbol& symbol : file.file->symbols()) addSource(file, symbol);
    }
    if (parts_) requireInAll();
  }

  void write() {
    SetOutput output(run_.path, run_.shownName, run_.progress);
    for (const std::string_view label : labels_.entries()) output.addLabel(label);
    if (hasCases_) writeCases(output);
    for (const MergedSymbol& symbol : symbols_) {
      if (symbol.broken) continue;
      run_.progress.step("merging " + symbol.symbol.name);
      output.addSymbol(symbol.symbol);
      if (!symbol.symbol.isAlias()) writeRecords(output, symbol);
    }
    for (const std::string_view text : texts_.entries()) output.addText(text);
    run_.result.problems = problems_.report();
    run_.result.problemCount = problems_.count();
    if (!problems_.empty()) {
      throw tool::Failure(fmt::format("{}: not written: {} between the files", run_.shownName,
                                      tool::counted(problems_.count(), "conflict")),
                          ZTB_ERROR_REFUSED);
    }
    output.publish(opened_);
    run_.result.symbols = output.symbolCount();
    run_.result.labels = static_cast<std::size_t>(labels_.size());
    run_.result.records = output.recordCount();
    if (const std::size_t count = labels_.respelled() + texts_.respelled(); count > 0) {
      run_.result.warnings +=
          fmt::format("ztb: {} kept as the first file has them: only the case of letters differs\n",
                      tool::counted(count, "spelling"));
    }
  }

 private:
  // Cases come first, so that records of files stand one behind the other.
  void numberLabels() {
    files_.resize(opened_.size());
    for (std::size_t place = 0; hasCases_ && place < opened_.size(); ++place) {
      const std::string& path = run_.options.files[place];
      const std::string& stem =
          stems_.emplace_back(path == "-" ? "stdin" : tool::nameOf(tool::pathOf(path).stem()));
      if (stem.size() > ZTB_MAX_NAME_LENGTH) {
        throw tool::UsageError(fmt::format("--case {}: the name of {} is no label: it has {} bytes",
                                           run_.options.caseSet, path, stem.size()));
      }
      files_[place].caseLabel = labels_.add(stem);
      if (files_[place].caseLabel <= static_cast<int>(place)) {
        const auto first = static_cast<std::size_t>(files_[place].caseLabel) - 1;
        throw tool::UsageError(fmt::format("--case {}: {} and {} would both be the case {}",
                                           run_.options.caseSet, run_.options.files[first], path,
                                           stem));
      }
    }
    for (std::size_t place = 0; place < opened_.size(); ++place) {
      MergedFile& merged = files_[place];
      const tool::ExchangeFile& file = *opened_[place];
      merged.file = &file;
      merged.place = place;
      merged.labels.push_back(0);
      for (int number = 1; number <= file.labelCount(); ++number) {
        const int label = labels_.add(file.label(number));
        merged.inOrder = merged.inOrder && label > merged.labels.back();
        merged.labels.push_back(label);
      }
      merged.texts.push_back(0);
      for (int number = 1; number <= file.file().textCount(); ++number) {
        merged.texts.push_back(texts_.add(file.file().text(number)));
      }
    }
  }

  // With cases, sets that are domains or have other names stay what they are, put together.
  void findUnited() {
    for (const MergedFile& file : files_) {
      for (const tool::FileSymbol& symbol : file.file->symbols()) {
        if (symbol.isAlias()) united_.insert(tool::folded(file.file->resolved(symbol).name));
        for (const tool::FileDomain& domain : symbol.domains) {
          if (domain.set > 0) united_.insert(tool::folded(domain.name));
        }
      }
    }
  }

  void addSource(const MergedFile& file, const tool::FileSymbol& symbol) {
    const auto [known, isNew] = byName_.try_emplace(tool::folded(symbol.name), symbols_.size());
    if (isNew) {
      MergedSymbol& merged = symbols_.emplace_back();
      merged.symbol = describeNew(*file.file, symbol);
      merged.sources.push_back({.file = &file, .symbol = &symbol});
      if (hasCases_) addCase(merged);
      return;
    }
    MergedSymbol& merged = symbols_[known->second];
    const std::string difference = differenceOf(merged.sources.front(), {&file, &symbol});
    if (!difference.empty()) {
      problems_.add(merged.symbol.name, difference);
      merged.broken = true;
      return;
    }
    NewSymbol further = describeNew(*file.file, symbol);
    if (merged.symbol.text.empty()) merged.symbol.text = std::move(further.text);
    merged.symbol.checked = merged.symbol.checked && further.checked;
    merged.sources.push_back({.file = &file, .symbol = &symbol});
  }

  void addCase(MergedSymbol& merged) {
    const MergedSource& source = merged.sources.front();
    if (tool::sameFolded(merged.symbol.name, run_.options.caseSet)) {
      problems_.add(merged.symbol.name, fmt::format("is a symbol of {}; give --case another name",
                                                    source.file->file->path()));
      merged.broken = true;
    }
    merged.hasCase =
        !merged.symbol.isAlias() && !united_.contains(tool::folded(merged.symbol.name));
    if (!merged.hasCase) return;
    if (merged.symbol.dimension() == ZTB_MAX_DIMENSION) {
      problems_.add(merged.symbol.name,
                    fmt::format("has {} in {}, none is left for {}",
                                tool::counted(static_cast<std::size_t>(merged.symbol.dimension()),
                                              "position"),
                                source.file->file->path(), run_.options.caseSet));
      merged.broken = true;
    }
    merged.symbol.domains.insert(merged.symbol.domains.begin(), run_.options.caseSet);
  }

  // What two files say differently of a symbol; nothing where they agree.
  static std::string differenceOf(const MergedSource& first, const MergedSource& second) {
    const tool::FileSymbol& a = *first.symbol;
    const tool::FileSymbol& b = *second.symbol;
    const std::string& left = first.file->file->path();
    const std::string& right = second.file->file->path();
    if (a.type != b.type) {
      return fmt::format("{} in {}, {} in {}", tool::typeWord(a.type), left, tool::typeWord(b.type),
                         right);
    }
    if (a.isAlias()) {
      const std::string& target = first.file->file->resolved(a).name;
      const std::string& other = second.file->file->resolved(b).name;
      return tool::sameFolded(target, other)
                 ? ""
                 : fmt::format("alias of {} in {}, of {} in {}", target, left, other, right);
    }
    if (a.dimension != b.dimension) {
      return fmt::format("{} in {}, {} in {}",
                         tool::counted(static_cast<std::size_t>(a.dimension), "position"), left,
                         tool::counted(static_cast<std::size_t>(b.dimension), "position"), right);
    }
    if (!std::ranges::equal(tool::domainNames(a), tool::domainNames(b), tool::sameFolded)) {
      return fmt::format("{} in {}, {} in {}", tool::signature(a), left, tool::signature(b), right);
    }
    if (a.valueCount > 1 && a.userInfo != b.userInfo) {
      return fmt::format("subtype {} in {}, {} in {}", a.userInfo, left, b.userInfo, right);
    }
    return "";
  }

  // Parts of one whole have the same symbols.
  void requireInAll() {
    for (const MergedSymbol& merged : symbols_) {
      for (const MergedFile& file : files_) {
        if (file.file->findSymbol(merged.symbol.name) == nullptr) {
          problems_.add(merged.symbol.name,
                        fmt::format("is in {}, not in {}",
                                    merged.sources.front().file->file->path(), file.file->path()));
        }
      }
    }
  }

  void writeCases(SetOutput& output) {
    output.addSymbol({.name = run_.options.caseSet,
                      .text = "Files that were put together",
                      .type = ztb::Type::set,
                      .userInfo = 0,
                      .checked = false,
                      .domains = {"*"},
                      .aliasOf = {}});
    for (const MergedFile& file : files_) {
      const double noText = 0;
      output.addRecord({&file.caseLabel, 1}, {&noText, 1});
    }
  }

  void writeRecords(SetOutput& output, const MergedSymbol& symbol) {
    const KeyPacking packing(symbol.symbol.dimension(), labels_.size());
    const auto valueCount = static_cast<std::size_t>(symbol.sources.front().symbol->valueCount);
    if (symbol.hasCase) {
      for (const MergedSource& source : symbol.sources) {
        std::vector<std::unique_ptr<RecordStream>> one;
        addStreams(one, {source}, symbol, packing, valueCount);
        walk(output, symbol, packing, one);
      }
      return;
    }
    std::vector<std::unique_ptr<RecordStream>> streams;
    addStreams(streams, symbol.sources, symbol, packing, valueCount);
    walk(output, symbol, packing, streams);
  }

  void addStreams(std::vector<std::unique_ptr<RecordStream>>& streams,
                  const std::vector<MergedSource>& sources, const MergedSymbol& symbol,
                  const KeyPacking& packing, std::size_t valueCount) const {
    std::unique_ptr<SortedRecords> sorted;
    for (const MergedSource& source : sources) {
      auto records =
          std::make_unique<FileRecords>(*source.file, *source.symbol, symbol.hasCase, packing);
      if (source.file->inOrder && sources.size() <= mostSideBySide) {
        streams.push_back(std::move(records));
      } else {
        if (!sorted) sorted = std::make_unique<SortedRecords>(packing, valueCount, run_.folder());
        sorted->add(*records);
      }
    }
    if (sorted) streams.push_back(std::move(sorted));
  }

  // Whether the present record of a stream stands before that of another one.
  static bool before(const RecordStream& left, const RecordStream& right, std::size_t words) {
    for (std::size_t word = 0; word < words; ++word) {
      if (left.key()[word] != right.key()[word]) return left.key()[word] < right.key()[word];
    }
    return left.place() < right.place();
  }

  void walk(SetOutput& output, const MergedSymbol& symbol, const KeyPacking& packing,
            std::vector<std::unique_ptr<RecordStream>>& streams) {
    std::erase_if(streams, [](const auto& stream) { return !stream->next(); });
    const std::size_t words = packing.words();
    std::vector<std::uint64_t> key(words);
    std::vector<double> values;
    std::size_t place = 0;
    bool held = false;
    while (!streams.empty()) {
      auto least = streams.begin();
      for (auto stream = std::next(least); stream != streams.end(); ++stream) {
        if (before(**stream, **least, words)) least = stream;
      }
      RecordStream& record = **least;
      if (held && std::equal(key.begin(), key.end(), record.key())) {
        combine(symbol, packing, key, values, place, record);
      } else {
        if (held) put(output, packing, key, values);
        std::copy_n(record.key(), words, key.begin());
        values.assign(record.values().begin(), record.values().end());
        place = record.place();
        held = true;
      }
      if (!record.next()) streams.erase(least);
    }
    if (held) put(output, packing, key, values);
  }

  static void put(SetOutput& output, const KeyPacking& packing,
                  const std::vector<std::uint64_t>& key, const std::vector<double>& values) {
    std::array<int, ZTB_MAX_DIMENSION> keys{};
    for (std::size_t position = 0; position < packing.dimension(); ++position) {
      keys[position] = packing.label(key.data(), position);
    }
    output.addRecord({keys.data(), packing.dimension()}, values);
  }

  // Takes a second record of one key to the first.
  void combine(const MergedSymbol& symbol, const KeyPacking& packing,
               const std::vector<std::uint64_t>& key, std::vector<double>& values,
               std::size_t& place, const RecordStream& record) {
    const std::span<const double> other = record.values();
    const bool isSet = symbol.symbol.type == ztb::Type::set;
    if (parts_ && !isSet && packing.dimension() > 0) {
      problems_.add(recordName(symbol, packing, key),
                    fmt::format("stands in {} and in {}", opened_[place]->path(),
                                opened_[record.place()]->path()));
      return;
    }
    // An element without a text has nothing against another file's.
    if (isSet && other[0] == 0) return;
    const auto differs = std::ranges::mismatch(values, other, tool::sameBits);
    if (differs.in1 == values.end()) return;
    const bool takes = (isSet && values[0] == 0) || run_.options.preferred == Preferred::last;
    if (takes) {
      values.assign(other.begin(), other.end());
      place = record.place();
    } else if (run_.options.preferred == Preferred::none) {
      const auto field = static_cast<std::size_t>(differs.in1 - values.begin());
      problems_.add(
          recordName(symbol, packing, key),
          fmt::format("{}{} in {}, {} in {}",
                      values.size() > 1 ? fmt::format("{} ", ztb::fieldNames.at(field)) : "",
                      valueText(isSet, values[field]), opened_[place]->path(),
                      valueText(isSet, other[field]), opened_[record.place()]->path()));
    }
  }

  [[nodiscard]] std::string valueText(bool isSet, double value) const {
    return isSet ? tool::inQuotes(texts_.at(static_cast<int>(value)))
                 : std::string(tool::NumberText(value).view());
  }

  [[nodiscard]] std::string recordName(const MergedSymbol& symbol, const KeyPacking& packing,
                                       const std::vector<std::uint64_t>& key) const {
    std::string name = symbol.symbol.name;
    for (std::size_t position = 0; position < packing.dimension(); ++position) {
      name += fmt::format("{}\"{}\"", position == 0 ? "(" : ",",
                          labels_.at(packing.label(key.data(), position)));
    }
    return packing.dimension() == 0 ? name : name + ')';
  }

  const SetRun& run_;
  bool parts_;
  bool hasCases_;
  ProblemList problems_;
  std::vector<std::unique_ptr<tool::ExchangeFile>> opened_;
  std::vector<MergedFile> files_;
  std::deque<std::string> stems_;
  LabelUnion labels_;
  LabelUnion texts_;
  std::unordered_set<std::string> united_;
  std::unordered_map<std::string, std::size_t> byName_;
  std::vector<MergedSymbol> symbols_;
};

}  // namespace

void mergeFiles(const SetRun& run) {
  Merge(run, false).write();
}

void concatenateFiles(const SetRun& run) {
  Merge(run, true).write();
}

}  // namespace formats
