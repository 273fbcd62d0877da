// Two-way tables: some positions in rows, some in columns, the others summed over.

#include <algorithm>
#include <map>

#include "view/cell_groups.h"

namespace view {

namespace {

// One side of the table: combinations of labels, numbered as they are met.
class Side {
 public:
  std::size_t numberOf(std::span<const int> labels) {
    return numbers_.try_emplace(std::vector<int>(labels.begin(), labels.end()), numbers_.size())
        .first->second;
  }
  // Numbers in the order of the labels, which from then on are the numbers.
  std::vector<std::size_t> order() {
    std::vector<std::size_t> places(numbers_.size());
    std::size_t place = 0;
    for (auto& [labels, number] : numbers_) places[number] = place++;
    return places;
  }
  void write(const char* name, const RecordScan& scan, formats::JsonText& answer) const {
    answer.name(name);
    answer.beginArray();
    for (const auto& [labels, number] : numbers_) {
      answer.beginArray();
      for (const int label : labels) answer.text(scan.label(label));
      answer.endArray();
    }
    answer.endArray();
  }

 private:
  std::map<std::vector<int>, std::size_t> numbers_;
};

struct Cell {
  std::size_t row;
  std::size_t column;
  double value;
};

}  // namespace

void answerPivot(Question& question) {
  RecordScan scan(question);
  std::vector<std::size_t> positions = question.parameters.numbers("rows", scan.dimension());
  const std::size_t rowPositions = positions.size();
  for (const std::size_t position : question.parameters.numbers("cols", scan.dimension())) {
    if (std::ranges::find(positions, position) != positions.end()) {
      throw RequestError(400, "A position goes to rows or to columns, not to both.");
    }
    positions.push_back(position);
  }
  Side rows;
  Side columns;
  std::vector<Cell> cells;
  visitCells(scan, question.parameters, positions, [&](std::span<const int> labels, double value) {
    cells.push_back({rows.numberOf(labels.first(rowPositions)),
                     columns.numberOf(labels.subspan(rowPositions)), value});
  });
  // Rows were met in their order, columns were not.
  const std::vector<std::size_t> places = columns.order();
  formats::JsonText& answer = question.answer;
  answer.beginObject();
  rows.write("rows", scan, answer);
  columns.write("cols", scan, answer);
  answer.name("cells");
  answer.beginArray();
  for (const Cell& cell : cells) {
    answer.beginArray();
    answer.count(cell.row);
    answer.count(places[cell.column]);
    answer.number(cell.value);
    answer.endArray();
  }
  answer.endArray();
  answer.name("limit");
  answer.count(mostCells);
  answer.endObject();
}

}  // namespace view
