// A model file: its families, as ztb model tells them, and a picture of its matrix.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <sstream>
#include <unordered_map>
#include <ztb/model.hpp>

#include "tools/files/scratch_folder.h"
#include "tools/models/model_session.h"
#include "view/api.h"

namespace view {

namespace {

// Cells of the picture each way.
constexpr std::size_t pictureSide = 200;

std::string_view kindWord(const ztbModelFamily& family) {
  static constexpr std::array<std::string_view, 3> kinds{"continuous", "integer", "binary"};
  static constexpr std::array<std::string_view, 4> types{"=", ">=", "<=", "free"};
  if (family.kind < 0) return "mixed";
  const auto kind = static_cast<std::size_t>(family.kind);
  return family.isRow != 0 ? types.at(kind) : kinds.at(kind);
}

// Where a matrix has entries, told by the model written as MPS: rows and columns in the order of
// the file, those that are many put together.
class Picture {
 public:
  explicit Picture(ztb::Model& model) {
    const tool::ScratchFolder folder;
    const std::string path = folder.file("model.mps");
    model.write(path);
    read(path);
  }

  void write(formats::JsonText& answer) const {
    const std::size_t height = std::min(pictureSide, std::max<std::size_t>(rows_.size(), 1));
    const std::size_t width = std::min(pictureSide, std::max<std::size_t>(columns_, 1));
    std::vector<std::size_t> counts(height * width);
    for (const auto& [row, column] : entries_) {
      ++counts[row * height / rows_.size() * width + column * width / columns_];
    }
    answer.name("matrix");
    answer.beginObject();
    answer.name("rows");
    answer.count(rows_.size());
    answer.name("cols");
    answer.count(columns_);
    answer.name("entries");
    answer.count(entries_.size());
    answer.name("density");
    answer.beginArray();
    for (std::size_t line = 0; line < height; ++line) {
      answer.beginArray();
      for (std::size_t at = 0; at < width; ++at) answer.count(counts[line * width + at]);
      answer.endArray();
    }
    answer.endArray();
    answer.endObject();
  }

 private:
  void read(const std::string& path) {
    std::ifstream file(path);
    std::string section;
    std::string latest;
    for (std::string line; std::getline(file, line);) {
      std::istringstream words(line);
      std::string first;
      words >> first;
      if (line.empty() || line[0] == '*') continue;
      if (line[0] != ' ') {
        section = first;
      } else if (section == "ROWS") {
        std::string name;
        words >> name;
        rows_.emplace(name, rows_.size());
      } else if (section == "COLUMNS" && line.find("'MARKER'") == std::string::npos) {
        if (first != latest) {
          latest = first;
          ++columns_;
        }
        for (std::string row, value; words >> row >> value;) {
          const auto found = rows_.find(row);
          if (found != rows_.end()) entries_.emplace_back(found->second, columns_ - 1);
        }
      }
    }
  }

  std::unordered_map<std::string, std::size_t> rows_;
  std::size_t columns_ = 0;
  std::vector<std::pair<std::size_t, std::size_t>> entries_;
};

// Sizes of numbers; null where there is none but 0.
void writeRange(const char* least, double smallest, const char* greatest, double largest,
                formats::JsonText& answer) {
  for (const auto& [name, value] : {std::pair(least, smallest), std::pair(greatest, largest)}) {
    answer.name(name);
    if (largest == 0) {
      answer.null();
    } else {
      answer.number(value);
    }
  }
}

void writeFamily(const ztbModelFamily& family, formats::JsonText& answer) {
  answer.beginObject();
  answer.name("name");
  answer.text(family.name);
  answer.name("of");
  answer.text(family.isRow != 0 ? "rows" : "columns");
  answer.name("dimension");
  answer.count(static_cast<std::size_t>(family.dimension));
  answer.name("count");
  answer.count(static_cast<std::size_t>(family.count));
  answer.name("kind");
  answer.text(kindWord(family));
  answer.name("entries");
  answer.count(static_cast<std::size_t>(family.entries));
  writeRange("min", family.smallest, "max", family.largest, answer);
  writeRange("side_min", family.smallestSide, "side_max", family.largestSide, answer);
  answer.endObject();
}

}  // namespace

void answerModel(Question& question) {
  const std::size_t number = question.parameters.number("f", 0, question.session.files.size() - 1);
  const std::string& path = question.session.files[number]->path();
  if (question.session.files[number]->kind() != FileKind::model) {
    throw RequestError(400, fmt::format("{} is no model", question.session.files[number]->name()));
  }
  ztb::Model model = tool::openModel(path, "");
  const ztbModelSize size = model.size();
  formats::JsonText& answer = question.answer;
  const auto count = [&](const char* name, long long value) {
    answer.name(name);
    answer.count(static_cast<std::size_t>(value));
  };
  answer.beginObject();
  answer.name("sense");
  answer.text(size.maximize != 0 ? "maximize" : "minimize");
  count("columns", size.columns);
  count("integers", size.integers);
  count("binaries", size.binaries);
  count("rows", size.rows);
  count("terms", size.terms);
  count("products", size.products);
  writeRange("min", size.smallest, "max", size.largest, answer);
  answer.name("families");
  answer.beginArray();
  for (int family = 0; family < size.families; ++family) writeFamily(model.family(family), answer);
  answer.endArray();
  Picture(model).write(answer);
  answer.name("solved");
  answer.boolean(false);
  answer.endObject();
}

}  // namespace view
