// A model as it is read or built: names, kinds, bounds, terms, in the order in which they came.
//
// Row 0 is the objective. Terms may repeat; they add up. Notes are what the user is to be told of a
// file that was read all the same.
#ifndef ZTB_PROVIDERS_MODEL_MODEL_DATA_H_
#define ZTB_PROVIDERS_MODEL_MODEL_DATA_H_

#include <limits>
#include <string>
#include <vector>

namespace lomu {

inline constexpr double kInfinity = std::numeric_limits<double>::infinity();

enum class ColumnKind { continuous = 0, integer = 1, binary = 2 };

enum class RowType { equal = 0, greaterOrEqual = 1, lessOrEqual = 2, free = 3 };

// A semi-continuous column is 0, or within its bounds (and an integer there, if it is of that
// kind).
struct ColumnData {
  std::string name;
  ColumnKind kind = ColumnKind::continuous;
  double lower = 0;
  double upper = kInfinity;
  bool semiContinuous = false;
};

// A range of 0 is none; otherwise a >= row ends at rhs + range and a <= row begins at rhs - range.
// A negative one is that of a row which no point satisfies.
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

struct SetMember {
  int column;
  double weight;
};

// A special ordered set: of its columns, in ascending order of their weights, at most one (kind 1)
// or two neighbours (kind 2) are not 0.
struct OrderedSet {
  std::string name;
  int kind = 1;
  std::vector<SetMember> members;
};

struct ModelData {
  bool maximize = false;
  double objectiveConstant = 0;
  std::vector<ColumnData> columns;
  std::vector<RowData> rows{RowData{"objective"}};
  std::vector<Term> terms;
  std::vector<Product> products;
  std::vector<OrderedSet> sets;
  std::vector<std::string> notes;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_MODEL_DATA_H_
