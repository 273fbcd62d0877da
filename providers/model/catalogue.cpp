#include "providers/model/catalogue.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <fstream>
#include <ztb/case_folding.hpp>

#include "providers/model/model_error.h"
#include "providers/model/platform.h"
#include "providers/model/solver_library.h"

namespace lomu {

namespace {

constexpr std::array<std::string_view, 4> kKinds{"LP", "MIP", "QP", "MIQP"};
constexpr std::size_t kMaxRowLength = 4096;

constexpr std::string_view kBlanks = " \t\r\v\f";

std::vector<std::string> wordsOf(std::string_view line) {
  std::string_view rest = line.substr(0, line.find('#'));
  std::vector<std::string> words;
  for (;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(kBlanks), rest.size()));
    if (rest.empty()) return words;
    const std::size_t length = std::min(rest.find_first_of(kBlanks), rest.size());
    words.emplace_back(rest.substr(0, length));
    rest.remove_prefix(length);
  }
}

// Reads one row; what it throws does not name the place yet.
class RowReader {
 public:
  explicit RowReader(const std::string& directory) : directory_(directory) {}

  [[nodiscard]] CatalogueRow read(const std::vector<std::string>& words) const {
    if (words.size() != 4) {
      throw ModelError("a row has a name, kinds, in-place and a library, this one has " +
                       std::to_string(words.size()) + " words");
    }
    CatalogueRow row;
    row.name = words[0];
    row.kinds = kindsOf(words[1]);
    row.inPlace = inPlaceOf(words[2]);
    row.library = platform::pathOf(words[3]).has_parent_path() ? words[3] : directory_ + words[3];
    return row;
  }

 private:
  static std::vector<std::string> kindsOf(const std::string& word) {
    std::vector<std::string> kinds;
    for (std::size_t begin = 0; begin <= word.size();) {
      const std::size_t end = std::min(word.find(',', begin), word.size());
      const std::string kind = word.substr(begin, end - begin);
      if (std::find(kKinds.begin(), kKinds.end(), kind) == kKinds.end()) {
        throw ModelError("\"" + kind + "\" is no kind of model; kinds are LP, MIP, QP, MIQP");
      }
      kinds.push_back(kind);
      begin = end + 1;
    }
    return kinds;
  }

  static bool inPlaceOf(const std::string& word) {
    if (word != "yes" && word != "no") {
      throw ModelError(R"(in-place is "yes" or "no", not ")" + word + "\"");
    }
    return word == "yes";
  }

  const std::string& directory_;
};

}  // namespace

std::string_view kindOf(ModelType type) {
  switch (type) {
    case ModelType::linear:
    case ModelType::relaxedMixedInteger:
      return "LP";
    case ModelType::mixedInteger:
      return "MIP";
    case ModelType::quadratic:
      return "QP";
    default:
      return "MIQP";
  }
}

Catalogue Catalogue::read(const std::string& file, const std::string& directory) {
  std::ifstream stream(platform::pathOf(file), std::ios::binary);
  std::string text;
  std::array<char, kMaxRowLength> part{};
  while (stream.read(part.data(), part.size()), stream.gcount() > 0) {
    text.append(part.data(), static_cast<std::size_t>(stream.gcount()));
  }
  if (text.empty()) throw ModelError(file + ": the solver catalogue cannot be read or is empty");
  return parse(text, file, directory);
}

Catalogue Catalogue::parse(std::string_view text, const std::string& file,
                           const std::string& directory) {
  Catalogue catalogue;
  const RowReader reader(directory);
  int line = 0;
  while (!text.empty()) {
    ++line;
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view content = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    try {
      if (content.size() > kMaxRowLength) throw ModelError("the row has more than 4096 bytes");
      const std::vector<std::string> words = wordsOf(content);
      if (words.empty()) continue;
      CatalogueRow row = reader.read(words);
      const bool twice =
          std::any_of(catalogue.rows_.begin(), catalogue.rows_.end(),
                      [&](const CatalogueRow& r) { return ztb::sameFolded(r.name, row.name); });
      if (twice) throw ModelError("solver \"" + row.name + "\" stands twice");
      catalogue.rows_.push_back(std::move(row));
    } catch (const ModelError& error) {
      throw ModelError(file + ":" + std::to_string(line) + ": " + error.what());
    }
  }
  if (catalogue.rows_.empty()) throw ModelError(file + ": the solver catalogue names no solver");
  return catalogue;
}

const CatalogueRow* Catalogue::named(std::string_view name) const {
  const auto found = std::find_if(rows_.begin(), rows_.end(), [&](const CatalogueRow& row) {
    return ztb::sameFolded(row.name, name);
  });
  return found == rows_.end() ? nullptr : &*found;
}

int Catalogue::number(std::string_view name) const {
  const CatalogueRow* const found = named(name);
  if (found == nullptr || !SolverLibrary::canOpen(found->library)) return 0;
  return static_cast<int>(found - rows_.data()) + 1;
}

std::string Catalogue::whyNot(std::string_view name) const {
  if (const CatalogueRow* const found = named(name)) return SolverLibrary::whyNot(found->library);
  if (rows_.size() == 1) return "the only solver is " + rows_.front().name;
  std::string text = "the solvers are ";
  for (const CatalogueRow& row : rows_) {
    if (&row == &rows_.back()) {
      text += " and ";
    } else if (&row != &rows_.front()) {
      text += ", ";
    }
    text += row.name;
  }
  return text;
}

const CatalogueRow* Catalogue::row(int number) const {
  if (number < 1 || static_cast<std::size_t>(number) > rows_.size()) return nullptr;
  return &rows_[static_cast<std::size_t>(number) - 1];
}

}  // namespace lomu
