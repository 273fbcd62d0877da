// Sums of terms in an LP file: the objective and the sides of a row.
#ifndef ZTB_PROVIDERS_MODEL_LP_EXPRESSION_H_
#define ZTB_PROVIDERS_MODEL_LP_EXPRESSION_H_

#include <cstddef>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "providers/model/lp_tokens.h"
#include "providers/model/model_data.h"

namespace lomu {

// The columns of a model under way, by name. Names have to stay valid.
class LpColumns {
 public:
  explicit LpColumns(std::vector<ColumnData>& columns) : columns_(columns) {}
  // The number of the column, which is added when it is new.
  int findOrAdd(std::string_view name);
  [[nodiscard]] std::optional<int> find(std::string_view name) const;

 private:
  std::vector<ColumnData>& columns_;
  std::unordered_map<std::string_view, int> numbers_;
};

// The rows that terms and products name are left open.
struct LpExpression {
  std::vector<Term> terms;
  std::vector<Product> products;
  double constant = 0;

  [[nodiscard]] bool isConstant() const { return terms.empty() && products.empty(); }
  // Adds `factor` times the other. Constants of opposite infinity give one that is not a number.
  void add(const LpExpression& other, double factor);
};

// Where an expression stands decides where it ends and how its brackets are read.
enum class LpPlace {
  objective,  // each bracket is followed by / 2
  leftSide,
  rightSide  // ends at the end of a line, unless a sign goes on with a sum of variables
};

// Whether the token is a word for infinity.
bool isInfinityWord(const LpToken& token);

// Reads up to the first token that does not belong to the sum. Nothing at all is an expression too.
LpExpression readLpExpression(LpTokens& tokens, LpColumns& columns, LpPlace place);

}  // namespace lomu

#endif  // ZTB_PROVIDERS_MODEL_LP_EXPRESSION_H_
