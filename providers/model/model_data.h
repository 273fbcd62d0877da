// A model as it is read or built: names, kinds, bounds, terms, in the order in which they came.
//
// Row 0 is the objective. Terms may repeat; they add up.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_DATA_H_
#define ZTB_PROVIDERS_MODEL_MODEL_DATA_H_

#include <limits>
#include <string>
#include <vector>

namespace lomu {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

enum class ColumnKind { continuous = 0, integer = 1, binary = 2 };

enum class RowType { equal = 0, greaterOrEqual = 1, lessOrEqual = 2, free = 3 };

struct ColumnData {
  std::string name;
  ColumnKind kind = ColumnKind::continuous;
  double lower = 0;
  double upper = kInfinity;
};

// A range of 0 is none; otherwise a >= row ends at rhs + range and a <= row begins at rhs - range.
struct RowData {
  std::string name;
  RowType type = RowType::free;
  double rhs = 0;
  double range = 0;
};

struct Term {
  int row;
  int column;
  double value;
};

struct Product {
  int row;
  int column1;
  int column2;
  double value;
};

struct ModelData {
  bool maximize = false;
  double objectiveConstant = 0;
  std::vector<ColumnData> columns;
  std::vector<RowData> rows{RowData{"objective"}};
  std::vector<Term> terms;
  std::vector<Product> products;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_DATA_H_
