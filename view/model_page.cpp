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

// Where a matrix has entries: rows, the objective first, and columns as they come in the model
// written as LP, or as MPS where a name cannot stand in LP. What is many is put together.
class Picture {
 public:
  explicit Picture(ztb::Model& model) : columns_(static_cast<std::size_t>(model.size().columns)) {
    const tool::ScratchFolder folder;
    try {
      model.write(folder.file("model.lp"));
      readLp(folder.file("model.lp"));
    } catch (const ztb::Error&) {
      model.write(folder.file("model.mps"));
      readMps(folder.file("model.mps"));
    }
  }

  void write(formats::JsonText& answer) const {
    const std::size_t height = std::min(pictureSide, rows_);
    const std::size_t width = std::min(pictureSide, columns_);
    std::vector<std::size_t> counts(height * width);
    for (const auto& [row, column] : entries_) {
      ++counts[row * height / rows_ * width + column * width / columns_];
    }
    const auto number = [&](const char* name, std::size_t value) {
      answer.name(name);
      answer.count(value);
    };
    answer.name("matrix");
    answer.beginObject();
    number("rows", rows_);
    number("cols", columns_);
    number("entries", entries_.size());
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
  // Each row begins with a line of its name, " cost:"; each term has a line, " + 2.5 buy", and so
  // has a product, " + 2 price * buy", behind a line with a bracket.
  void readLp(const std::string& path) {
    std::ifstream file(path);
    bool inProducts = false;
    for (std::string line; std::getline(file, line) && line != "Bounds";) {
      const bool isTerm = line.starts_with(" + ") || line.starts_with(" - ");
      if (!isTerm) {
        if (line.starts_with(' ') && line.ends_with(':')) ++rows_;
        continue;
      }
      std::string name = withoutSide(line.substr(3));
      if (name == "[") {
        inProducts = true;
        continue;
      }
      // The bracket ends behind the last product, in the objective as " ] / 2".
      const bool isLast = inProducts && (name.ends_with(" ]") || name.ends_with(" ] / 2"));
      if (isLast) name.resize(name.rfind(" ]"));
      if (name[0] >= '0' && name[0] <= '9') name.erase(0, name.find(' ') + 1);
      const std::size_t times = inProducts ? name.find(" * ") : std::string::npos;
      if (times != std::string::npos) {
        enter(name.substr(0, times));
        name.erase(0, times + 3);
      } else if (inProducts && name.ends_with(" ^ 2")) {
        name.resize(name.size() - 4);
      }
      enter(name);
      if (isLast) inProducts = false;
    }
  }
  // A term without what may stand behind the last one of a row, " >= 4".
  static std::string withoutSide(std::string term) {
    for (const char* sign : {" >= ", " <= ", " = "}) {
      const std::size_t at = term.rfind(sign);
      // A label in quotes may hold one too.
      if (at != std::string::npos && term.find('\'', at) == std::string::npos) term.resize(at);
    }
    return term;
  }
  void enter(const std::string& column) {
    const std::size_t number = columnNumbers_.emplace(column, columnNumbers_.size()).first->second;
    if (rows_ > 0 && number < columns_) entries_.emplace_back(rows_ - 1, number);
  }

  void readMps(const std::string& path) {
    std::ifstream file(path);
    std::unordered_map<std::string, std::size_t> rows;
    std::string section;
    for (std::string line; std::getline(file, line);) {
      std::istringstream words(line);
      std::string first;
      words >> first;
      if (!line.starts_with(' ')) {
        section = first;
      } else if (section == "ROWS") {
        std::string name;
        words >> name;
        rows.emplace(name, rows_++);
      } else if (section == "COLUMNS" && line.find("'MARKER'") == std::string::npos) {
        const std::size_t column =
            columnNumbers_.emplace(first, columnNumbers_.size()).first->second;
        for (std::string row, value; words >> row >> value;) {
          const auto found = rows.find(row);
          if (found != rows.end() && column < columns_) {
            entries_.emplace_back(found->second, column);
          }
        }
      }
    }
  }

  std::size_t rows_ = 0;
  std::size_t columns_;
  std::unordered_map<std::string, std::size_t> columnNumbers_;
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
