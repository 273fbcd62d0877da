// The bounds of the columns of an MPS file.
//
// Each is applied as it comes, and what depends on all bounds of a column is settled at the end: a
// negative upper bound without a lower one, and the upper bound of integer columns.
#ifndef ZTB_PROVIDERS_MODEL_MPS_BOUNDS_H_
#define ZTB_PROVIDERS_MODEL_MPS_BOUNDS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "providers/model/file_notes.h"
#include "providers/model/model_data.h"
#include "providers/model/mps_lines.h"

namespace lomu {

class MpsBounds {
 public:
  MpsBounds(std::vector<ColumnData>& columns, FileNotes& notes)
      : columns_(columns), notes_(notes) {}

  // Whether a bound of this type has a number; none when there is no such type.
  enum class Value { needed, unused, optional, noType };
  static Value valueOf(std::string_view type);

  // Applies the bound of the present line, its number, if any, in `valueField`.
  void apply(const MpsLines& lines, std::string_view type, int column, std::size_t valueField);
  // To be called when all bounds are applied.
  void settle();

 private:
  // What a file gave for a column.
  static constexpr std::uint8_t kLower = 1;
  static constexpr std::uint8_t kUpper = 2;

  struct Place {
    int column;
    std::size_t line;
    std::size_t position;
  };

  void setLower(const MpsLines& lines, std::size_t field, int column, double value);
  void setUpper(const MpsLines& lines, std::size_t field, int column, double value);

  std::vector<ColumnData>& columns_;
  FileNotes& notes_;
  std::vector<std::uint8_t> given_;  // of each column
  std::vector<Place> negativeUppers_;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MPS_BOUNDS_H_
