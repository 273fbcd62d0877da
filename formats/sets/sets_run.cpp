#include "formats/sets/sets_run.h"

#include <fmt/format.h>

#include <array>
#include <charconv>
#include <optional>

#include "formats/file_name.h"
#include "tools/text/words.h"

namespace formats {

namespace {

using tool::UsageError;

std::string withoutBlanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return "";
  return std::string(text.substr(first, text.find_last_not_of(' ') + 1 - first));
}

// The two names of  old = new , each of which may stand in double quotes, with a quote in it
// doubled.
class PairParser {
 public:
  explicit PairParser(const std::string& text) : text_(text) {}

  std::pair<std::string, std::string> parse() {
    std::string old = name("=");
    if (at_ == text_.size()) fail();
    ++at_;
    std::string other = name("");
    if (at_ != text_.size()) fail();
    return {std::move(old), std::move(other)};
  }

 private:
  [[noreturn]] void fail() const {
    throw UsageError(
        fmt::format("{}: expected OLD = NEW, each in double quotes where it has an = "
                    "or blanks at its ends",
                    tool::inQuotes(text_)));
  }

  void skipBlanks() {
    while (at_ < text_.size() && text_[at_] == ' ') ++at_;
  }

  std::string name(std::string_view end) {
    skipBlanks();
    if (at_ < text_.size() && text_[at_] == '"') return quoted();
    const std::size_t stop =
        end.empty() ? text_.size() : std::min(text_.find(end, at_), text_.size());
    std::string result = withoutBlanks(std::string_view(text_).substr(at_, stop - at_));
    at_ = stop;
    if (result.empty()) fail();
    return result;
  }

  std::string quoted() {
    std::string result;
    for (++at_; at_ < text_.size(); ++at_) {
      if (text_[at_] == '"') {
        ++at_;
        if (at_ == text_.size() || text_[at_] != '"') {
          skipBlanks();
          return result;
        }
      }
      result += text_[at_];
    }
    fail();
  }

  const std::string& text_;
  std::size_t at_ = 0;
};

Preferred preferredOf(const std::string& word) {
  if (word == "first") return Preferred::first;
  if (word == "last") return Preferred::last;
  throw UsageError(fmt::format("--prefer {}: expected first or last", word));
}

std::optional<Statistic> statisticOf(const std::string& name) {
  if (name == "sum") return Statistic::sum;
  if (name == "mean") return Statistic::mean;
  if (name == "min") return Statistic::min;
  if (name == "max") return Statistic::max;
  if (name == "count") return Statistic::count;
  return std::nullopt;
}

}  // namespace

std::string SetRun::folder() const {
  return formats::folderOf(path);
}

bool SetsRun::option(const std::string& name, const std::string& value) {
  if (name == "file") {
    options_.files.push_back(value);
  } else if (name == "case") {
    options_.caseSet = value;
  } else if (name == "prefer") {
    options_.preferred = preferredOf(value);
  } else if (name == "rename") {
    options_.symbols.push_back(PairParser(value).parse());
  } else if (name == "label") {
    options_.labels.push_back(PairParser(value).parse());
  } else if (name == "where") {
    options_.condition = value;
  } else if (name == "symbol") {
    options_.chosen.push_back(value);
  } else if (name == "by") {
    options_.by = value;
  } else if (const std::optional<Statistic> statistic = statisticOf(name)) {
    if (options_.statistic != Statistic::none) {
      throw UsageError("give one of --sum, --mean, --min, --max and --count");
    }
    options_.statistic = *statistic;
  } else if (name == "field") {
    options_.field = value;
  } else if (name == "name") {
    options_.name = value;
  } else if (name == "skip-na") {
    options_.skipsMissing = true;
  } else if (name == "max-errors") {
    const auto [end, error] =
        std::from_chars(value.data(), value.data() + value.size(), options_.maxErrors);
    if (error != std::errc{} || end != value.data() + value.size()) {
      throw UsageError(fmt::format("--{} {}: expected a whole number", name, value));
    }
  } else if (name == "shown-name") {
    options_.shownName = value;
  } else {
    return false;
  }
  return true;
}

void SetsRun::requireOneFile() const {
  if (options_.files.size() != 1) {
    throw UsageError(fmt::format("expected one file, {} given",
                                 options_.files.empty()
                                     ? std::string("none is")
                                     : fmt::format("{} are", options_.files.size())));
  }
}

void SetsRun::run(void (*make)(const SetRun& run), const std::string& path, bool shows,
                  RunResult& result) const {
  tool::Progress progress(shows);
  make({.options = options_,
        .path = path,
        .shownName = options_.shownName.empty() ? path : options_.shownName,
        .progress = progress,
        .result = result});
}

void SetsRun::merge(const std::string& path, bool shows, RunResult& result) const {
  if (options_.files.empty()) throw UsageError("no file to merge is given");
  run(mergeFiles, path, shows, result);
}

void SetsRun::concatenate(const std::string& path, bool shows, RunResult& result) const {
  if (options_.files.empty()) throw UsageError("no file to put behind another is given");
  run(concatenateFiles, path, shows, result);
}

void SetsRun::rename(const std::string& path, bool shows, RunResult& result) const {
  requireOneFile();
  if (options_.symbols.empty() && options_.labels.empty()) {
    throw UsageError("nothing to rename: give 'OLD = NEW' for symbols, or --label 'OLD = NEW'");
  }
  run(renameIn, path, shows, result);
}

void SetsRun::where(const std::string& path, bool shows, RunResult& result) const {
  requireOneFile();
  if (options_.condition.empty()) throw UsageError("no condition: give --where CONDITION");
  run(selectWhere, path, shows, result);
}

void SetsRun::aggregate(const std::string& path, bool shows, RunResult& result) const {
  requireOneFile();
  if (options_.chosen.size() != 1) throw UsageError("expected the name of one symbol");
  if (options_.statistic == Statistic::none) {
    throw UsageError("give one of --sum, --mean, --min, --max and --count");
  }
  run(aggregateSymbol, path, shows, result);
}

}  // namespace formats
