// A model file: its families, as ztb model tells them, and a picture of its matrix.

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <ztb/model.hpp>

#include "tools/models/model_session.h"
#include "view/api.h"
#include "view/matrix_picture.h"

namespace view {

namespace {

std::string_view kindWord(const ztbModelFamily& family) {
  static constexpr std::array<std::string_view, 3> kinds{"continuous", "integer", "binary"};
  static constexpr std::array<std::string_view, 4> types{"=", ">=", "<=", "free"};
  if (family.kind < 0) return "mixed";
  const auto kind = static_cast<std::size_t>(family.kind);
  return family.isRow != 0 ? types.at(kind) : kinds.at(kind);
}

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

// All that a file tells of its model.
std::string describedModel(const std::string& path) {
  ztb::Model model = tool::openModel(path, "");
  const ztbModelSize size = model.size();
  formats::JsonText answer;
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
  MatrixPicture(model).write(answer);
  answer.endObject();
  return answer.chars();
}

}  // namespace

void answerModel(Question& question) {
  const std::size_t number = question.parameters.number("f", 0, question.session.files.size() - 1);
  const OpenedFile& file = *question.session.files[number];
  if (file.kind() != FileKind::model) {
    throw RequestError(400, fmt::format("{} is no model", file.name()));
  }
  const auto answer = question.session.models.get(
      std::to_string(number), [&] { return KeptAnswer{describedModel(file.path())}; });
  question.answer.json(answer->json);
}

}  // namespace view
