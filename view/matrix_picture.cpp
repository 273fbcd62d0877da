#include "view/matrix_picture.h"

#include <algorithm>
#include <map>
#include <numeric>
#include <ztb/model_names.hpp>

#include "tools/text/failure.h"

namespace view {

namespace {

// Cells of the picture each way.
constexpr std::size_t pictureSide = 200;

// Families each way whose blocks are told; beyond, they are too narrow to be seen.
constexpr std::size_t mostBlockFamilies = 100;

std::string familyKey(const std::string& name, std::size_t dimension) {
  return name + " " + std::to_string(dimension);
}

// What the elements of a family have in common: the name in front of their labels, and how many of
// these there are. A name without labels is a family by itself.
std::string familyKeyOf(const std::string& element) {
  if (element.find_first_of("[(") == std::string::npos) return familyKey(element, 0);
  std::string problem;
  const ztb::ElementText parts = ztb::readElement(element, problem);
  return problem.empty() ? familyKey(parts.symbol, parts.labels.size()) : familyKey(element, 0);
}

}  // namespace

void MatrixPicture::Side::addFamily(const ztbModelFamily& family) {
  const auto dimension = static_cast<std::size_t>(family.dimension);
  families.emplace(familyKey(family.name, dimension), names.size());
  names.emplace_back(family.name);
  counts.push_back(static_cast<std::size_t>(family.count));
}

void MatrixPicture::Side::add(const std::string& element) {
  const auto found = families.find(familyKeyOf(element));
  if (found == families.end()) {
    throw tool::Failure(element + ": the model tells no family of it");
  }
  familyOf.push_back(found->second);
}

std::vector<std::size_t> MatrixPicture::Side::places() const {
  std::vector<std::size_t> next(counts.size());
  for (std::size_t family = 1; family < counts.size(); ++family) {
    next[family] = next[family - 1] + counts[family - 1];
  }
  std::vector<std::size_t> result;
  result.reserve(familyOf.size());
  for (const std::size_t family : familyOf) result.push_back(next[family]++);
  return result;
}

std::size_t MatrixPicture::Side::size() const {
  return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
}

MatrixPicture::MatrixPicture(ztb::Model& model) {
  const ztbModelSize size = model.size();
  for (int number = 0; number < size.families; ++number) {
    const ztbModelFamily family = model.family(number);
    (family.isRow != 0 ? rows_ : columns_).addFamily(family);
  }
  const ModelText text(model);
  for (const std::string& row : text.rows()) rows_.add(row);
  for (const std::string& column : text.columns()) columns_.add(column);
  entries_ = text.entries();
}

void MatrixPicture::write(formats::JsonText& answer) const {
  const std::size_t rows = rows_.size();
  const std::size_t columns = columns_.size();
  const std::size_t height = std::min(pictureSide, rows);
  const std::size_t width = std::min(pictureSide, columns);
  const std::vector<std::size_t> rowPlaces = rows_.places();
  const std::vector<std::size_t> columnPlaces = columns_.places();
  std::vector<std::size_t> counts(height * width);
  for (const auto& [row, column] : entries_) {
    ++counts[rowPlaces[row] * height / rows * width + columnPlaces[column] * width / columns];
  }
  const auto number = [&](const char* name, std::size_t value) {
    answer.name(name);
    answer.count(value);
  };
  answer.name("matrix");
  answer.beginObject();
  number("rows", rows);
  number("cols", columns);
  number("entries", entries_.size());
  answer.name("density");
  answer.beginArray();
  for (std::size_t line = 0; line < height; ++line) {
    answer.beginArray();
    for (std::size_t at = 0; at < width; ++at) answer.count(counts[line * width + at]);
    answer.endArray();
  }
  answer.endArray();
  if (rows_.names.size() <= mostBlockFamilies && columns_.names.size() <= mostBlockFamilies) {
    writeFamilies("row_families", rows_, answer);
    writeFamilies("col_families", columns_, answer);
    writeBlocks(answer);
  }
  answer.endObject();
}

void MatrixPicture::writeFamilies(const char* name, const Side& side,
                                  formats::JsonText& answer) const {
  answer.name(name);
  answer.beginArray();
  for (std::size_t family = 0; family < side.names.size(); ++family) {
    answer.beginObject();
    answer.name("name");
    answer.text(side.names[family]);
    answer.name("count");
    answer.count(side.counts[family]);
    answer.endObject();
  }
  answer.endArray();
}

void MatrixPicture::writeBlocks(formats::JsonText& answer) const {
  std::map<std::pair<std::size_t, std::size_t>, std::size_t> blocks;
  for (const auto& [row, column] : entries_) {
    ++blocks[{rows_.familyOf[row], columns_.familyOf[column]}];
  }
  answer.name("blocks");
  answer.beginArray();
  for (const auto& [block, entries] : blocks) {
    answer.beginArray();
    answer.count(block.first);
    answer.count(block.second);
    answer.count(entries);
    answer.endArray();
  }
  answer.endArray();
}

}  // namespace view
