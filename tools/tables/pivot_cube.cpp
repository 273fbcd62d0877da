#include "tools/tables/pivot_cube.h"

#include <fmt/format.h>

#include <algorithm>

#include "tools/text/failure.h"

namespace tool {

namespace {

// What a table for people can sensibly come from, and what fits into memory anywhere.
constexpr std::size_t mostCells = 50'000'000;

}  // namespace

PivotCube::PivotCube(const ExchangeFile& file, const FileSymbol& symbol, ztb::Field field,
                     const SliceFilter& filter)
    : labels_(static_cast<std::size_t>(symbol.dimension)) {
  RecordWalk record(file, symbol);
  collectLabels(file, record, filter);
  if (recordCount_ == 0) {
    return;
  }
  std::size_t cells = 1;
  for (const std::vector<int>& labels : labels_) {
    cells *= labels.size();
    if (cells > mostCells) {
      throw Failure(
          fmt::format("{}: {}: a table over all labels of its records has more than {} cells; "
                      "choose fewer with --slice",
                      file.path(), signature(symbol), mostCells));
    }
  }
  values_.resize(cells);
  records_.resize(cells);
  record.rewind();
  fill(record, field, filter, file.labelCount());
}

std::size_t PivotCube::cellOf(std::span<const std::size_t> places) const {
  std::size_t cell = 0;
  for (std::size_t position = 0; position < places.size(); ++position) {
    cell = cell * labels_[position].size() + places[position];
  }
  return cell;
}

void PivotCube::collectLabels(const ExchangeFile& file, RecordWalk& record,
                              const SliceFilter& filter) {
  std::vector<std::vector<bool>> used(
      labels_.size(), std::vector<bool>(static_cast<std::size_t>(file.labelCount()) + 1));
  while (record.next()) {
    if (filter.matches(record.keys())) {
      ++recordCount_;
      for (std::size_t position = 0; position < used.size(); ++position) {
        used[position][static_cast<std::size_t>(record.keys()[position])] = true;
      }
    }
  }
  for (std::size_t position = 0; position < used.size(); ++position) {
    for (int label = 1; label <= file.labelCount(); ++label) {
      if (used[position][static_cast<std::size_t>(label)]) {
        labels_[position].push_back(label);
      }
    }
  }
}

void PivotCube::fill(RecordWalk& record, ztb::Field field, const SliceFilter& filter,
                     int labelCount) {
  std::vector<std::vector<std::size_t>> placeOf(
      labels_.size(), std::vector<std::size_t>(static_cast<std::size_t>(labelCount) + 1));
  for (std::size_t position = 0; position < labels_.size(); ++position) {
    for (std::size_t place = 0; place < labels_[position].size(); ++place) {
      placeOf[position][static_cast<std::size_t>(labels_[position][place])] = place;
    }
  }
  std::vector<std::size_t> places(labels_.size());
  while (record.next()) {
    if (filter.matches(record.keys())) {
      for (std::size_t position = 0; position < places.size(); ++position) {
        places[position] = placeOf[position][static_cast<std::size_t>(record.keys()[position])];
      }
      const std::size_t cell = cellOf(places);
      values_[cell] = record.values()[static_cast<std::size_t>(field)];
      records_[cell] = true;
    }
  }
}

}  // namespace tool
