// Which numbers of a model data give, by columns that carry them.
//
// The carriers are the last columns of the model: they stand still at data, stand in no row, and no
// solver sees them.
#ifndef ZTB_PROVIDERS_MODEL_DRIVEN_NUMBERS_H_
#define ZTB_PROVIDERS_MODEL_DRIVEN_NUMBERS_H_

#include <cstddef>
#include <vector>

namespace lomu {

// What a symbol can drive. A cost is the coefficient of a column in row 0.
enum class DrivenKind { cost, rhs, lower, upper, coefficient };

// A number of the model that is what column `carrier` stands at, instead of what the model has.
struct DrivenNumber {
  DrivenKind kind;
  int carrier;
  int row;     // of a right-hand side or coefficient
  int column;  // of a bound or coefficient
  // Of a coefficient, its place in the matrix: the instance looks it up.
  std::size_t entry = 0;
};

struct DrivenNumbers {
  int carrierCount = 0;
  // A coefficient that is driven has a term in the model.
  std::vector<DrivenNumber> numbers;
};

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_DRIVEN_NUMBERS_H_
