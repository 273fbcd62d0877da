// A model that is read from an MPS file: what every section needs.
#ifndef ZTB_PROVIDERS_MODEL_MPS_MODEL_H_
#define ZTB_PROVIDERS_MODEL_MPS_MODEL_H_

#include <cstddef>
#include <string>

#include "providers/model/file_notes.h"
#include "providers/model/model_data.h"
#include "providers/model/mps_lines.h"
#include "providers/model/name_index.h"

namespace lomu {

// The functions look at a field of the present line; they throw MpsError.
struct MpsModel {
  MpsModel(const std::string& file, MpsFormat format) : lines(file, format), notes(file) {}

  // The number of the row or column that the field names.
  int row(std::size_t field) const;
  int column(std::size_t field) const;
  // A number that is not infinite.
  double coefficient(std::size_t field) const;
  [[nodiscard]] bool isRow(std::size_t field) const;
  [[nodiscard]] bool isColumn(std::size_t field) const;
  // From this field on a '$' begins a comment, unless a row or column is called so.
  void dropComment(std::size_t from);
  // Fails if the line has more fields than `count`.
  void endAt(std::size_t count) const;

  MpsLines lines;
  FileNotes notes;
  ModelData data;
  NameIndex<> rows;
  NameIndex<> columns;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_MODEL_H_
